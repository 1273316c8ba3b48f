// "Explode", "Faceted", "Eye" and "Whirl" (CRemap): parameters, the frames
// against maps built from their rules, and Explode's scatter by its
// properties.
#include <cmath>
#include <csignal>
#include <cstdlib>

#include "effects/Remap.h"
#include "geometry_effect_support.h"
#include "remap_reference.h"

namespace {

using kvgeo::Bytes;
using kvgeo::Words;

constexpr int32_t kExplode = 1050, kFaceted = 1051, kEye = 1052, kWhirl = 1053;

struct Maps {
    Maps(int32_t w, int32_t h) : width(w), height(h), x(static_cast<size_t>(w) * h), y(x.size()) {}
    void Set(int32_t i, int32_t j, double sx, double sy) {
        x[j * width + i] = static_cast<float>(sx);
        y[j * width + i] = static_cast<float>(sy);
    }
    int32_t width, height;
    std::vector<float> x, y;
};

Maps FacetedMaps(int32_t w, int32_t h, int32_t turns, int32_t side) {
    Maps maps(w, h);
    for (int32_t j = 0; j < h; ++j)
        for (int32_t i = 0; i < w; ++i) {
            int32_t bx = i / side * side, by = j / side * side, a = i - bx, b = j - by, far = side - 1;
            if (bx + side > w || by + side > h) maps.Set(i, j, i, j);
            else if (turns == 1) maps.Set(i, j, bx + far - b, by + a);
            else if (turns == 2) maps.Set(i, j, bx + far - a, by + far - b);
            else maps.Set(i, j, bx + b, by + far - a);
        }
    return maps;
}

Maps EyeMaps(int32_t w, int32_t h, int32_t percent, int32_t) {
    Maps maps(w, h);
    double cx = w * 0.5, cy = h * 0.5, R = std::min(cx, cy);
    double height = ((percent == 0 ? 1.0 : percent) * R) / 100.0;
    double S = ((height * height + R * R) / height) * 0.5, a0 = std::asin(R / S);
    for (int32_t j = 0; j < h; ++j)
        for (int32_t i = 0; i < w; ++i) {
            double dx = i - cx, dy = j - cy, r = std::sqrt(dx * dx + dy * dy);
            double t = r == 0 ? 0 : ((std::asin(r / S) * (1.0 / a0)) * R) / r;
            if (r >= R) maps.Set(i, j, i, j);
            else maps.Set(i, j, cx + dx * t, cy + dy * t);
        }
    return maps;
}

Maps WhirlMaps(int32_t w, int32_t h, int32_t rate, int32_t shrink) {
    Maps maps(w, h);
    double cx = w * 0.5, cy = h * 0.5;
    for (int32_t j = 0; j < h; ++j)
        for (int32_t i = 0; i < w; ++i) {
            double dx = i - cx, dy = j - cy, a = (rate / 3600.0) * std::sqrt(dx * dx + dy * dy);
            double d = a * shrink + 1.0, u = dy / d, v = dx / d;
            maps.Set(i, j, v * std::cos(a) - u * std::sin(a) + cx, v * std::sin(a) + u * std::cos(a) + cy);
        }
    return maps;
}

// The frame remapped linearly over opaque black, every fourth byte 255.
Bytes Expected(const Bytes& frame, const Maps& maps) {
    int32_t w = maps.width, h = maps.height;
    Bytes result(frame.size());
    for (size_t i = 0; i < result.size(); i += 4) result[i] = result[i + 1] = result[i + 2] = 0, result[i + 3] = 255;
    kvtest::RemapReference reference{frame.data(), {w, h}, w * 4, {0, 0, w, h}};
    reference.Run(maps.x.data(), w * 4, maps.y.data(), w * 4, result.data(), w * 4, {w, h}, InterpLinear);
    return result;
}

Bytes Processed(int32_t id, const EffectArgs* args, Bytes frame, int32_t w, int32_t h) {
    Effect_Base* effect = Kelvarine_NewInstance(id);
    if (args != nullptr) Kelvarine_SetEffectArgs(effect, const_cast<EffectArgs*>(args));
    EXPECT_EQ(Kelvarine_Proc(effect, frame.data(), w, h), 0);
    Kelvarine_Destory(effect);
    return frame;
}

// Word 2 repeats the first parameter. The mode is kept as given, and an
// unknown one leaves the parameters as they were.
TEST(RemapEffect, PresetsClampsAndTheRepeatedFirstParameter) {
    const int32_t presets[][4] = {{kExplode, 0, 6, 6}, {kFaceted, 1, 3, 3}, {kEye, 2, 70, 70}, {kWhirl, 3, 50, 50}};
    for (const auto& preset : presets) {
        Effect_Base* effect = Kelvarine_NewInstance(preset[0]);
        ASSERT_NE(effect, nullptr);
        EXPECT_EQ(kvgeo::WordsOf(effect, 3), Words(preset + 1, preset + 4)) << preset[0];
        Kelvarine_Destory(effect);
    }
    Effect_Base* effect = Kelvarine_NewInstance(kEye);
    const Words rows[][2] = {{{0, 0, 99}, {0, 1, 1}},   {{0, 31, 0}, {0, 30, 30}},      {{1, 4, 1}, {1, 3, 3}},
                             {{2, -1, 5}, {2, 0, 0}},   {{3, 101, -3}, {3, 100, 100}}, {{-1, 7, 7}, {-1, 100, 100}}};
    for (const auto& row : rows) EXPECT_EQ(kvgeo::WordsOf(effect, 3, row[0]), row[1]);
    Kelvarine_Destory(effect);
}

// Faceted tiles over the whole tiles only; Eye and Whirl through their
// fractional maps; every parameter corner that changes the arithmetic. One
// instance takes frames of awkward sizes one after another.
TEST(RemapEffect, FramesFollowTheirMaps) {
    struct Case {
        int32_t id, mode, a, b;
        Maps (*maps)(int32_t w, int32_t h, int32_t a, int32_t b);
    };
    const Case cases[] = {{kFaceted, 1, 1, 5, FacetedMaps}, {kFaceted, 1, 2, 2, FacetedMaps},
                          {kFaceted, 1, 3, 16, FacetedMaps}, {kEye, 2, 70, 0, EyeMaps},
                          {kEye, 2, 0, 0, EyeMaps},          {kEye, 2, 100, 0, EyeMaps},
                          {kWhirl, 3, 50, 0, WhirlMaps},     {kWhirl, 3, 100, 10, WhirlMaps},
                          {kWhirl, 3, 0, 3, WhirlMaps}};
    for (const Case& c : cases) {
        Effect_Base* effect = Kelvarine_NewInstance(c.id);
        EffectArgs args = {{c.mode, c.a, c.b}};
        Kelvarine_SetEffectArgs(effect, &args);
        SCOPED_TRACE(testing::Message() << "mode " << c.mode << " " << c.a << "," << c.b);
        kvgeo::ExpectFrames(effect, {{1, 1}, {2, 5}, {17, 17}, {37, 23}, {100, 50}, {64, 33}}, c.a,
                            [&](const Bytes& frame, int w, int h) { return Expected(frame, c.maps(w, h, c.a, c.b)); });
        Kelvarine_Destory(effect);
    }
}

// A frame whose pixel tells where it stands: blue x and green y; the other
// bytes are noise.
Bytes CoordinateFrame(int32_t w, int32_t h) {
    Bytes frame = kvtest::RandomBytes(static_cast<size_t>(w) * h * 4, 3);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) frame[(y * w + x) * 4] = uint8_t(x), frame[(y * w + x) * 4 + 1] = uint8_t(y);
    return frame;
}

// Each pixel copies the source pixel that two draws pick in the box of
// radius 6 around it, less the last column and row: the draws are the
// sequence random() gives in a fresh process, pixel by pixel, x before y,
// and they run on from one build to the next, at a new size or back at an
// old one. A second frame of the same size keeps the scatter; every fourth
// byte becomes 255; the host's own random() is neither reseeded nor
// advanced. The child's exit code names the first check that failed.
TEST(RemapEffect, ExplodeScattersByDrawsThatRunOn) {
    auto child = kvtest::RunInChild([] {
        kvtest::FreshLibrary library;
        if (library.handle == nullptr) _exit(10);
        auto newInstance = library.Get<decltype(Kelvarine_NewInstance)>("Kelvarine_NewInstance");
        auto proc = library.Get<decltype(Kelvarine_Proc)>("Kelvarine_Proc");

        srandom(77);
        long hostFirst = random();
        srandom(77);

        char state[128] = {};
        random_data fresh = {};
        initstate_r(1, state, sizeof state, &fresh);
        auto draw = [&](int32_t lo, int32_t hi) {
            int32_t value;
            random_r(&fresh, &value);
            return lo + value % (hi - lo);
        };
        Effect_Base* effect = newInstance(kExplode);
        for (int32_t w : {23, 24, 23}) {
            const int32_t h = 9, p = 6;
            auto frame = CoordinateFrame(w, h), again = frame;
            proc(effect, frame.data(), w, h);
            proc(effect, again.data(), w, h);
            if (again != frame) _exit(11);
            for (int32_t y = 0; y < h; ++y)
                for (int32_t x = 0; x < w; ++x) {
                    const uint8_t* out = &frame[(static_cast<size_t>(y) * w + x) * 4];
                    if (out[3] != 255) _exit(12);
                    if (out[0] != draw(std::max(x - p, 0), std::min(x + p, w - 1))) _exit(13);
                    if (out[1] != draw(std::max(y - p, 0), std::min(y + p, h - 1))) _exit(14);
                }
        }
        if (random() != hostFirst) _exit(15);
    });
    EXPECT_EQ(child.exitCode, 0) << child.standardError;
}

// Parameters reach the picture only when the maps are built: at a new size,
// in a new instance, or through OnParameterChanged.
TEST(RemapEffect, ParametersWaitForTheNextBuild) {
    const int32_t w = 40, h = 30;
    const auto frame = kvtest::RandomBytes(w * h * 4, 12);
    const EffectArgs gentle = {{3, 20, 0}}, strong = {{3, 90, 4}};
    Effect_Base* effect = Kelvarine_NewInstance(kWhirl);
    effect->SetArgs(const_cast<EffectArgs*>(&gentle));
    auto out = frame;
    effect->Proc(out.data(), w, h);
    effect->SetArgs(const_cast<EffectArgs*>(&strong));
    auto unchanged = frame;
    effect->Proc(unchanged.data(), w, h);
    EXPECT_EQ(unchanged, out);

    auto rebuilt = frame;
    static_cast<CRemap*>(effect)->OnParameterChanged();
    effect->Proc(rebuilt.data(), w, h);
    EXPECT_EQ(rebuilt, Expected(frame, WhirlMaps(w, h, 90, 4)));
    EXPECT_EQ(Processed(kWhirl, &strong, frame, w, h), rebuilt);
    Kelvarine_Destory(effect);
}

// A mode without a map generator, and Explode on a frame one pixel wide,
// where a draw's range is empty, stop the process.
TEST(RemapEffect, UnbuildableMapsStopTheProcess) {
    auto unknownMode = kvtest::RunInChild([] {
        Effect_Base* effect = Kelvarine_NewInstance(kEye);
        EffectArgs args = {{4}};
        effect->SetArgs(&args);
        Bytes frame(4 * 4 * 4);
        effect->Proc(frame.data(), 4, 4);
    });
    EXPECT_NE(unknownMode.exitCode, 0);
    auto narrow = kvtest::RunInChild([] {
        Bytes frame(1 * 5 * 4);
        Processed(kExplode, nullptr, frame, 1, 5);
    });
    EXPECT_NE(narrow.exitCode, 0);
}

}  // namespace
