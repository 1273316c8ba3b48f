// The tone and colour effects, each against a plain reference of its rule
// (or of the primitives it repeats) on random frames of awkward sizes.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "kelvarine.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<int32_t>;
using Reference = std::function<Bytes(Bytes frame, int width, int height)>;

// Widths around the four- and eight-pixel loops, one column, longer rows.
const int kSizes[][2] = {{1, 1}, {1, 4}, {3, 1}, {4, 2}, {5, 3}, {9, 2}, {17, 9}, {131, 3}, {640, 2}};

// A fresh catalog instance, given the words when there are any, run once.
Bytes Processed(int32_t id, const Words& words, Bytes frame, int width, int height) {
    Effect_Base* effect = Kelvarine_NewInstance(id);
    EffectArgs args = {};
    std::copy(words.begin(), words.end(), args.word);
    if (!words.empty()) {
        EXPECT_EQ(effect->SetArgs(&args), 0);
    }
    EXPECT_EQ(effect->Proc(frame.data(), width, height), 0);
    Kelvarine_Destory(effect);
    return frame;
}

// Every size; each frame starts with a black pixel and ends with a white one.
void ExpectReference(int32_t id, const Words& words, const Reference& reference) {
    for (const auto& size : kSizes) {
        Bytes frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, id + size[0] * 7 + words[0] * 13);
        std::fill_n(frame.begin(), 3, 0);
        std::fill_n(frame.end() - 4, 3, 255);
        ASSERT_EQ(Processed(id, words, frame, size[0], size[1]), reference(frame, size[0], size[1]))
            << "effect " << id << " word 0 " << words[0] << " on " << size[0] << "x" << size[1];
    }
}

// Applies change(b, g, r) to each pixel's colour bytes; the fourth stays.
template <class Change>
Bytes EachPixel(Bytes frame, Change change) {
    for (size_t i = 0; i < frame.size(); i += 4) {
        int v[3] = {frame[i], frame[i + 1], frame[i + 2]};
        change(v);
        for (int c = 0; c < 3; ++c) frame[i + c] = static_cast<uint8_t>(v[c]);
    }
    return frame;
}

int Clamp255(int v) { return std::clamp(v, 0, 255); }

// Brightness saturates; saturation raises negatives to 0 and lets values
// above 255 through to contrast; only the end is clamped. A stage of 0 is
// left out.
Reference Tone(int brightness, int contrast, int saturation) {
    return [=](Bytes frame, int, int) {
        int scale[256], spread[768];
        for (int i = 0; i < 256; ++i) {
            scale[i] = ((2 * saturation + 255) * i) >> 8;
            for (int j = 0; j < 3; ++j) spread[3 * i + j] = i - scale[i];
        }
        return EachPixel(frame, [&](int* v) {
            for (int c = 0; c < 3; ++c) v[c] = Clamp255(v[c] + brightness);
            const int sum = v[0] + v[1] + v[2];
            for (int c = 0; c < 3; ++c) {
                if (saturation != 0) v[c] = std::max(scale[v[c]] + spread[sum], 0);
                if (contrast != 0) {
                    int q = std::abs(127 - v[c]) * 2 * contrast / 255;
                    v[c] = v[c] > 127 ? v[c] + q : v[c] - q;
                }
                v[c] = Clamp255(v[c]);
            }
        });
    };
}

TEST(ToneEffects, EachEqualsItsStagesOnRandomFrames) {
    for (int a : {-255, -50, -1, 0, 1, 37, 255}) ExpectReference(1013, {a}, Tone(a, 0, 0));
    for (int a = -201; a <= 201; ++a) ExpectReference(1031, {a}, Tone(0, std::clamp(a, -200, 200), 0));
    for (int a : {-999, -128, -127, -1, 0, 1, 2, 64, 128, 201})
        ExpectReference(1033, {a}, Tone(0, 0, std::clamp(a, -200, 200)));
    const int settings[][3] = {{30, 0, 0},      {0, 50, 0},      {0, 0, -60},  {10, 200, 200}, {0, -200, 200},
                               {-5, 200, -200}, {0, -200, -200}, {7, 3, 128},  {0, -1, -128},  {200, 150, 170},
                               {300, -300, 5},  {-201, 0, 0},    {0, 0, 0}};
    for (const auto& s : settings) {
        const auto held = [](int w) { return std::clamp(w, -200, 200); };
        ExpectReference(1040, {s[0], s[1], s[2]}, Tone(held(s[0]), held(s[1]), held(s[2])));
    }
}

TEST(ToneEffects, BrightnessRefusesAmountsBeyond255AndKeepsItsOwn) {
    Effect_Base* effect = Kelvarine_NewInstance(1013);
    EffectArgs args = {{256}}, read = {{1, 2, 3, 4, 5, 6}};
    EXPECT_EQ(effect->SetArgs(&args), -1);
    args.word[0] = -256;
    EXPECT_EQ(effect->SetArgs(&args), -1);
    effect->GetArgs(&read);
    EXPECT_EQ(read.word[0], -50);
    EXPECT_EQ(read.word[1], 2) << "only word 0 is written";
    Kelvarine_Destory(effect);
}

TEST(ToneEffects, NegativeBrightnessOfTheCombinedEffectTurnsPositiveAfterItsFirstFrame) {
    Effect_Base* effect = Kelvarine_NewInstance(1040);
    EffectArgs args = {{-20}}, read = {};
    effect->SetArgs(&args);
    uint8_t pixel[4] = {100, 10, 250, 3};
    effect->Proc(pixel, 1, 1);
    EXPECT_EQ(Bytes(pixel, pixel + 4), (Bytes{80, 0, 230, 3}));
    effect->GetArgs(&read);
    EXPECT_EQ(read.word[0], 20);
    effect->Proc(pixel, 1, 1);
    EXPECT_EQ(Bytes(pixel, pixel + 4), (Bytes{100, 20, 250, 3}));
    Kelvarine_Destory(effect);
}

// The primitive run on the whole frame, passes times.
Reference Repeated(std::function<void(uint8_t*, int32_t, PrimSize)> primitive, int passes) {
    return [=](Bytes frame, int width, int height) {
        for (int i = 0; i < passes; ++i) primitive(frame.data(), width * 4, {width, height});
        return frame;
    };
}

TEST(ColourEffects, GammaAndTheColourMatricesRepeatTheirPrimitive) {
    for (int a : {1, 10, -1, -3, 0, 11, -11})
        ExpectReference(1009, {a}, Repeated(a > 0 ? primiGammaFwd_8u_AC4IR : primiGammaInv_8u_AC4IR,
                                            std::min(std::abs(a), 10)));
    // 1.4, -0.2, -0.4 and -0.55 by their bit patterns, then the average.
    const uint32_t bits[4] = {0x3FB33333, 0xBE4CCCCD, 0xBECCCCCD, 0xBF0CCCCD};
    float f[4];
    memcpy(f, bits, sizeof f);
    const float emphase[3][4] = {{f[0], f[1], f[1], f[2]}, {f[1], f[0], f[1], f[3]}, {f[1], f[1], f[0], f[2]}};
    const float average[3][4] = {
        {0.75f, 0.125f, 0.125f, 0.75f}, {0.125f, 0.75f, 0.125f, 1.0f}, {0.125f, 0.125f, 0.75f, 0.75f}};
    for (int times : {0, 3, 16, 17}) {
        const int passes = std::clamp(times, 1, 16);
        auto twist = [](const float (&m)[3][4]) {
            return [&m](uint8_t* p, int32_t step, PrimSize size) { primiColorTwist32f_8u_AC4IR(p, step, size, m); };
        };
        ExpectReference(1004, {times}, Repeated(twist(emphase), passes));
        ExpectReference(1005, {times}, Repeated(twist(average), passes));
    }
}

// Each colour byte minus the one below and to the right, plus the bias, all
// read from the unchanged frame; the last row and column stay.
Reference Embossed(int bias) {
    return [=](Bytes in, int width, int height) {
        Bytes out = in;
        for (int y = 0; y + 1 < height && bias != 0; ++y)
            for (int x = 0; x + 1 < width; ++x)
                for (int c = 0; c < 3; ++c) {
                    int v = in[(y * width + x) * 4 + c] - in[((y + 1) * width + x + 1) * 4 + c] + bias;
                    out[(y * width + x) * 4 + c] = static_cast<uint8_t>(Clamp255(v));
                }
        return out;
    };
}

TEST(ColourEffects, EmbossFilmsAndMasksFollowTheirRules) {
    for (int bias : {-37, 200, 0, 300, -300}) ExpectReference(1034, {bias}, Embossed(std::clamp(bias, -200, 200)));
    ExpectReference(1059, {0}, [](Bytes frame, int, int) {
        return EachPixel(frame, [](int* v) {
            for (int c = 0; c < 3; ++c) v[c] = 255 - v[c];
        });
    });
    ExpectReference(1010, {0}, [](Bytes frame, int width, int height) {
        Bytes gray(size_t(width) * height);
        primiRGBToGray_8u_AC4C1R(frame.data(), width * 4, gray.data(), width, {width, height});
        for (size_t i = 0; i < gray.size(); ++i) std::fill_n(&frame[4 * i], 3, static_cast<uint8_t>(~gray[i]));
        return frame;
    });
    ExpectReference(1035, {0}, [](Bytes frame, int, int) {
        return EachPixel(frame, [](int* v) {
            const int m = (v[0] + v[1] + v[2]) / 3;
            v[0] = std::max(m - 20, 0), v[1] = std::min(m + 15, 255), v[2] = std::min(m + 35, 255);
        });
    });
    // Each mask row keeps its bytes of the pixel word; a mask id outside
    // 1060..1066 keeps the mask of before.
    const uint32_t masks[] = {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu, 0xFFFFFF00u,
                              0xFFFF00FFu, 0xFF00FFFFu, 0xFFFF00FFu};
    for (int32_t id = 1060; id <= 1066; ++id)
        for (int32_t word : {0, 1059, 1067})
            ExpectReference(id, {word}, [mask = masks[id - 1060]](Bytes frame, int, int) {
                for (size_t i = 0; i < frame.size(); ++i) frame[i] &= mask >> (i % 4 * 8);
                return frame;
            });
}

// A fresh instance works as one given its documented default words.
TEST(ColourEffects, DefaultsActAsTheirWords) {
    const struct {
        int32_t id;
        Words words;
    } defaults[] = {{1013, {-50}}, {1031, {2}}, {1033, {2}}, {1040, {0, 0, 0}},
                    {1009, {2}},   {1004, {3}}, {1005, {3}}, {1034, {10}}};
    const Bytes frame = kvtest::RandomBytes(17 * 5 * 4, 5);
    for (const auto& d : defaults)
        EXPECT_EQ(Processed(d.id, {}, frame, 17, 5), Processed(d.id, d.words, frame, 17, 5)) << d.id;
}

// Film Color and the masks have no guard, but leave an empty size alone.
TEST(ColourEffects, FilmColorAndMasksPassOverEmptySizes) {
    for (int32_t id : {1059, 1063}) {
        Effect_Base* effect = Kelvarine_NewInstance(id);
        EXPECT_EQ(effect->Proc(nullptr, 0, 8), 0);
        EXPECT_EQ(effect->Proc(nullptr, 5, -1), 0);
        Kelvarine_Destory(effect);
    }
}

int gMallocs = 0, gFrees = 0;

// The buffer's size is compared with members that are never written, so each
// call releases the buffer and makes a new one.
TEST(ColourEffects, FilmMonoMakesAFreshBufferOnEveryCall) {
    i_malloc = [](size_t n) {
        ++gMallocs;
        return std::malloc(n);
    };
    i_free = [](void* p) {
        ++gFrees;
        std::free(p);
    };
    Bytes frame(8 * 8 * 4, 60);
    Effect_Base* film = Kelvarine_NewInstance(1010);
    film->Proc(frame.data(), 8, 8);
    film->Proc(frame.data(), 8, 8);
    EXPECT_EQ(gMallocs, 2);
    EXPECT_EQ(gFrees, 1);
    Kelvarine_Destory(film);
    EXPECT_EQ(gFrees, 2);
    i_malloc = std::malloc;
    i_free = std::free;
}

// The guards write the log, which a process makes once: run them apart.
// Each refuses a null frame, then a zero width and a zero height, in the
// words of its class (Old Film borrows Film Mono's for the null frame).
TEST(ColourEffects, GuardsRefuseInTheirClassWords) {
    const struct {
        int32_t id;
        const char *nullText, *sizeText;
    } guards[] = {{1013, "Brightness", "Brightness"}, {1031, "Box", "Box"},         {1033, "Box", "Box"},
                  {1040, "Box", "Box"},               {1009, "Box", "Box"},         {1004, "ColorEmphase", "ColorEmphase"},
                  {1005, "ColorEmphase", "ColorEmphase"}, {1010, "FilmMono", "FilmMono"},
                  {1035, "FilmMono", "OldFilm"},      {1034, "Box", "Box"}};
    auto child = kvtest::RunInChild([&guards] {
        uint8_t pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (const auto& g : guards) {
            Effect_Base* effect = Kelvarine_NewInstance(g.id);
            refused = refused && Kelvarine_Proc(effect, nullptr, 2, 2) == -1 &&
                      Kelvarine_Proc(effect, pixel, 0, 3) == -1 && Kelvarine_Proc(effect, pixel, 2, 0) == -1;
            Kelvarine_Destory(effect);
        }
        _exit(refused && Bytes(pixel, pixel + 4) == Bytes{1, 2, 3, 4} ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    std::string expected;
    for (const auto& g : guards)
        expected += std::string(" *** ") + g.nullText + " Effect Src == NULL  *** " + g.sizeText +
                    " Effect Width = 0 Height =3 *** " + g.sizeText + " Effect Width = 2 Height =0";
    const std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
