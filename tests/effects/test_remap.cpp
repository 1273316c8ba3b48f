// "Explode", "Faceted", "Eye" and "Whirl" (CRemap): parameters, the frames
// against maps built from their rules, and Explode's scatter by its
// properties.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <vector>

#include "effects/Remap.h"
#include "kelvarine.h"
#include "remap_reference.h"
#include "test_support.h"

namespace {

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

Maps EyeMaps(int32_t w, int32_t h, int32_t percent) {
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
std::vector<uint8_t> Expected(const std::vector<uint8_t>& frame, const Maps& maps) {
    int32_t w = maps.width, h = maps.height;
    std::vector<uint8_t> result(frame.size());
    for (size_t i = 0; i < result.size(); i += 4) result[i] = result[i + 1] = result[i + 2] = 0, result[i + 3] = 255;
    kvtest::RemapReference reference{frame.data(), {w, h}, w * 4, {0, 0, w, h}};
    reference.Run(maps.x.data(), w * 4, maps.y.data(), w * 4, result.data(), w * 4, {w, h}, InterpLinear);
    return result;
}

std::vector<uint8_t> Processed(int32_t id, const EffectArgs* args, std::vector<uint8_t> frame, int32_t w, int32_t h) {
    Effect_Base* effect = Kelvarine_NewInstance(id);
    if (args != nullptr) Kelvarine_SetEffectArgs(effect, const_cast<EffectArgs*>(args));
    EXPECT_EQ(Kelvarine_Proc(effect, frame.data(), w, h), 0);
    Kelvarine_Destory(effect);
    return frame;
}

TEST(RemapEffect, PresetsClampsAndTheRepeatedFirstParameter) {
    const int32_t presets[][4] = {{kExplode, 0, 6, 6}, {kFaceted, 1, 3, 3}, {kEye, 2, 70, 70}, {kWhirl, 3, 50, 50}};
    for (const auto& preset : presets) {
        Effect_Base* effect = Kelvarine_NewInstance(preset[0]);
        ASSERT_NE(effect, nullptr);
        EffectArgs args = {{9, 9, 9, 9, 9, 9}};
        EXPECT_EQ(Kelvarine_GetEffectArgs(effect, &args), 0);
        EXPECT_EQ(args.word[0], preset[1]);
        EXPECT_EQ(args.word[1], preset[2]);
        EXPECT_EQ(args.word[2], preset[3]) << "word 2 repeats the first parameter";
        EXPECT_EQ(args.word[3], 9);
        Kelvarine_Destory(effect);
    }

    Effect_Base* effect = Kelvarine_NewInstance(kEye);
    auto set = [&](int32_t mode, int32_t a, int32_t b) {
        EffectArgs args = {{mode, a, b}};
        EXPECT_EQ(effect->SetArgs(&args), 0);
        effect->GetArgs(&args);
        return std::vector<int32_t>{args.word[0], args.word[1], args.word[2]};
    };
    EXPECT_EQ(set(3, 50, 7), (std::vector<int32_t>{3, 50, 50}));
    EXPECT_EQ(set(0, 0, 99), (std::vector<int32_t>{0, 1, 1}));
    EXPECT_EQ(set(0, 31, 0), (std::vector<int32_t>{0, 30, 30}));
    EXPECT_EQ(set(1, 4, 1), (std::vector<int32_t>{1, 3, 3}));
    EXPECT_EQ(set(1, 0, 17), (std::vector<int32_t>{1, 1, 1}));
    EXPECT_EQ(set(2, -1, 5), (std::vector<int32_t>{2, 0, 0}));
    EXPECT_EQ(set(3, 101, -3), (std::vector<int32_t>{3, 100, 100}));
    EXPECT_EQ(set(4, 7, 7), (std::vector<int32_t>{4, 100, 100})) << "an unknown mode is kept, the parameters stay";
    EXPECT_EQ(set(-1, 7, 7), (std::vector<int32_t>{-1, 100, 100}));
    Kelvarine_Destory(effect);
}

// Faceted tiles over the whole tiles only; Eye and Whirl through their
// fractional maps; every parameter corner that changes the arithmetic.
TEST(RemapEffect, FramesFollowTheirMaps) {
    struct Case {
        int32_t id, mode, a, b;
        Maps (*maps)(int32_t w, int32_t h, int32_t a, int32_t b);
    };
    const Case cases[] = {
        {kFaceted, 1, 1, 5, FacetedMaps},
        {kFaceted, 1, 2, 2, FacetedMaps},
        {kFaceted, 1, 3, 16, FacetedMaps},
        {kEye, 2, 70, 0, [](int32_t w, int32_t h, int32_t a, int32_t) { return EyeMaps(w, h, a); }},
        {kEye, 2, 0, 0, [](int32_t w, int32_t h, int32_t a, int32_t) { return EyeMaps(w, h, a); }},
        {kEye, 2, 100, 0, [](int32_t w, int32_t h, int32_t a, int32_t) { return EyeMaps(w, h, a); }},
        {kWhirl, 3, 50, 0, WhirlMaps},
        {kWhirl, 3, 100, 10, WhirlMaps},
        {kWhirl, 3, 0, 3, WhirlMaps},
    };
    const int32_t sizes[][2] = {{1, 1}, {2, 5}, {17, 17}, {37, 23}, {100, 50}, {64, 33}};
    uint32_t seed = 40;
    for (const Case& c : cases)
        for (const auto& size : sizes) {
            int32_t w = size[0], h = size[1];
            auto frame = kvtest::RandomBytes(static_cast<size_t>(w) * h * 4, ++seed);
            EffectArgs args = {{c.mode, c.a, c.b}};
            ASSERT_EQ(Processed(c.id, &args, frame, w, h), Expected(frame, c.maps(w, h, c.a, c.b)))
                << "mode " << c.mode << " " << c.a << "," << c.b << " at " << w << "x" << h;
        }
}

// A frame whose pixel tells where it stands: blue and green the low bytes of
// x and y, red their high nibbles; the fourth byte is noise.
std::vector<uint8_t> CoordinateFrame(int32_t w, int32_t h) {
    auto frame = kvtest::RandomBytes(static_cast<size_t>(w) * h * 4, 3);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            uint8_t* p = &frame[(static_cast<size_t>(y) * w + x) * 4];
            p[0] = static_cast<uint8_t>(x), p[1] = static_cast<uint8_t>(y);
            p[2] = static_cast<uint8_t>((x >> 8) | ((y >> 8) << 4));
        }
    return frame;
}
int32_t SourceX(const uint8_t* p) { return p[0] | (p[2] & 0x0F) << 8; }
int32_t SourceY(const uint8_t* p) { return p[1] | (p[2] >> 4) << 8; }

// Each pixel copies one source pixel from the box of radius param1 around
// it, never from the last column or row; the scatter stays while the size
// does, and a new build draws a new one.
TEST(RemapEffect, ExplodeScattersInsideEachBox) {
    const int32_t w = 301, h = 47, p = 6;
    const auto coded = CoordinateFrame(w, h);
    Effect_Base* effect = Kelvarine_NewInstance(kExplode);
    auto first = coded;
    Kelvarine_Proc(effect, first.data(), w, h);
    std::vector<int> columnsSeen(w), rowsSeen(h);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            const uint8_t* out = &first[(static_cast<size_t>(y) * w + x) * 4];
            int32_t sx = SourceX(out), sy = SourceY(out);
            ASSERT_GE(sx, std::max(x - p, 0));
            ASSERT_LT(sx, std::min(x + p, w - 1));
            ASSERT_GE(sy, std::max(y - p, 0));
            ASSERT_LT(sy, std::min(y + p, h - 1));
            ASSERT_EQ(out[3], 255);
            ++columnsSeen[sx], ++rowsSeen[sy];
        }
    EXPECT_EQ(columnsSeen[w - 1], 0);
    EXPECT_EQ(rowsSeen[h - 1], 0);
    EXPECT_GT(columnsSeen[w - 2], 0);

    auto second = coded;
    Kelvarine_Proc(effect, second.data(), w, h);
    EXPECT_EQ(second, first) << "the same scatter on every frame of one size";

    // Another size builds for it, and back at this size the scatter is new.
    std::vector<uint8_t> small(8 * 8 * 4);
    Kelvarine_Proc(effect, small.data(), 8, 8);
    auto third = coded;
    Kelvarine_Proc(effect, third.data(), w, h);
    EXPECT_NE(third, first);
    Kelvarine_Destory(effect);
}

// The draws are the sequence that random() gives in a fresh process, pixel
// by pixel, x before y, and they run on from build to build; the host's own
// random() is neither reseeded nor advanced. The child's exit code names the
// first check that failed.
TEST(RemapEffect, ExplodeDrawsRunOnWithoutTouchingTheHostGenerator) {
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
        for (int32_t build = 0; build < 2; ++build) {
            const int32_t w = 23 + build, h = 9, p = 6;
            auto frame = CoordinateFrame(w, h);
            proc(effect, frame.data(), w, h);
            for (int32_t y = 0; y < h; ++y)
                for (int32_t x = 0; x < w; ++x) {
                    const uint8_t* out = &frame[(static_cast<size_t>(y) * w + x) * 4];
                    if (SourceX(out) != draw(std::max(x - p, 0), std::min(x + p, w - 1))) _exit(11 + build);
                    if (SourceY(out) != draw(std::max(y - p, 0), std::min(y + p, h - 1))) _exit(13 + build);
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
        std::vector<uint8_t> frame(4 * 4 * 4);
        effect->Proc(frame.data(), 4, 4);
    });
    EXPECT_NE(unknownMode.exitCode, 0);
    auto narrow = kvtest::RunInChild([] {
        std::vector<uint8_t> frame(1 * 5 * 4);
        Processed(kExplode, nullptr, frame, 1, 5);
    });
    EXPECT_NE(narrow.exitCode, 0);
}

}  // namespace
