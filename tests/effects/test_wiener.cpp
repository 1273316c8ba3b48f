// CWiener: its words, the catalog preset that the filter refuses, and the
// statics shared by the class, which keep the first frame's padded copy, the
// mask and the noise levels until the frame size changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

#include "effects/Wiener.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::array<int32_t, 6>;

Words Read(Effect_Base* effect) {
    EffectArgs args = {{-7, -7, -7, -7, -7, -7}};
    EXPECT_EQ(effect->GetArgs(&args), 0);
    return {args.word[0], args.word[1], args.word[2], args.word[3], args.word[4], args.word[5]};
}

Effect_Base* Wiener(int32_t size, int32_t noise0, int32_t noise1, int32_t noise2) {
    Effect_Base* effect = CWiener::CreateInstance();
    EffectArgs args = {{size, noise0, noise1, noise2}};
    EXPECT_EQ(effect->SetArgs(&args), 0);
    return effect;
}

Bytes Processed(Effect_Base* effect, Bytes frame, int32_t width, int32_t height) {
    EXPECT_EQ(effect->Proc(frame.data(), width, height), 0);
    return frame;
}

// What the effect makes of target when its padded copy holds source: the
// source with half the mask edge replicated around it, filtered (the filter
// is checked against its formula elsewhere) into the colour bytes of target,
// with the class's noise array, which the filter may rewrite.
Bytes Filtered(const Bytes& source, Bytes target, int32_t width, int32_t height, int32_t size, float noise[3]) {
    const int32_t border = size / 2, paddedWidth = width + 2 * border, paddedHeight = height + 2 * border;
    Bytes padded;
    for (int32_t y = 0; y < paddedHeight; ++y)
        for (int32_t x = 0; x < paddedWidth; ++x) {
            const size_t at =
                (size_t(std::clamp(y - border, 0, height - 1)) * width + std::clamp(x - border, 0, width - 1)) * 4;
            padded.insert(padded.end(), source.begin() + at, source.begin() + at + 4);
        }
    int32_t bytes = 0;
    primiFilterWienerGetBufferSize({width, height}, {size, size}, 4, &bytes);
    Bytes work(bytes);
    EXPECT_EQ(
        primiFilterWiener_8u_AC4R(&padded[(size_t(border) * paddedWidth + border) * 4], paddedWidth * 4, target.data(),
                                  width * 4, {width, height}, {size, size}, {border, border}, noise, work.data()),
        PrimOk);
    return target;
}

TEST(WienerEffect, WordsClampAndTheCatalogPresetStandsUnscaled) {
    Effect_Base* fresh = CWiener::CreateInstance();
    EXPECT_EQ(Read(fresh), (Words{3, 0, 0, 0, -7, -7}));
    Effect_Base* preset = Kelvarine_NewInstance(1058);
    ASSERT_NE(preset, nullptr);
    EXPECT_EQ(Read(preset), (Words{3, 5, 5, 5, -7, -7}));

    EffectArgs low = {{1, -1, 10, 4, 99, 99}};
    EXPECT_EQ(fresh->SetArgs(&low), 0);
    EXPECT_EQ(Read(fresh), (Words{3, 0, 9, 4, -7, -7}));
    EffectArgs high = {{11, 9, 0, 0}};
    EXPECT_EQ(fresh->SetArgs(&high), 0);
    EXPECT_EQ(Read(fresh), (Words{10, 9, 0, 0, -7, -7}));
    Kelvarine_Destory(fresh);
    Kelvarine_Destory(preset);
}

// Noise words of 1 to 9 reach the filter as levels of 1.0 and above, which it
// refuses: the catalog's "Wiener" never changes a frame.
TEST(WienerEffect, CatalogPresetLeavesEveryFrameAlone) {
    Effect_Base* preset = Kelvarine_NewInstance(1058);
    for (auto [width, height, seed] : {std::array<int32_t, 3>{13, 7, 1}, {13, 7, 2}, {1, 1, 3}, {6, 9, 4}}) {
        const Bytes frame = kvtest::RandomBytes(size_t(width) * height * 4, seed);
        EXPECT_EQ(Processed(preset, frame, width, height), frame) << width << "x" << height;
    }
    Kelvarine_Destory(preset);
}

// With all noise words 0 the filter estimates the noise and works. Later
// frames of the same size filter the first frame's padded copy again, with
// the levels the filter reported into the class's noise array.
TEST(WienerEffect, ZeroNoiseFiltersTheFirstFrameAndRepeatsItForLaterFrames) {
    for (int32_t size : {3, 4, 5, 8, 10}) {
        const int32_t width = 17 + size, height = 9;
        Effect_Base* effect = Wiener(size, 0, 0, 0);
        float noise[3] = {0.0f, 0.0f, 0.0f};
        const Bytes first = kvtest::RandomBytes(size_t(width) * height * 4, 10 + size);
        const Bytes firstResult = Processed(effect, first, width, height);
        EXPECT_EQ(firstResult, Filtered(first, first, width, height, size, noise)) << "size " << size;
        EXPECT_NE(firstResult, first);
        for (uint32_t seed : {20u, 21u}) {
            const Bytes later = kvtest::RandomBytes(size_t(width) * height * 4, seed + size);
            const Bytes laterResult = Processed(effect, later, width, height);
            EXPECT_EQ(laterResult, Filtered(first, later, width, height, size, noise))
                << "size " << size << ", the later frame's own fourth bytes stay";
            // The reported levels reproduce the estimate closely enough that
            // the picture is the first one's again.
            Bytes firstPicture = firstResult;
            for (size_t i = 3; i < later.size(); i += 4) firstPicture[i] = later[i];
            EXPECT_EQ(laterResult, firstPicture);
        }
        Kelvarine_Destory(effect);
    }
}

// The mask and the noise are taken when the buffers are made: new words wait
// for a frame of another size, and then the noise words refuse.
TEST(WienerEffect, NewWordsWaitForANewFrameSize) {
    Effect_Base* effect = Wiener(3, 0, 0, 0);
    float noise[3] = {0.0f, 0.0f, 0.0f};
    const Bytes first = kvtest::RandomBytes(16 * 8 * 4, 30);
    EXPECT_EQ(Processed(effect, first, 16, 8), Filtered(first, first, 16, 8, 3, noise));
    EffectArgs loud = {{7, 5, 5, 5}};
    effect->SetArgs(&loud);
    const Bytes second = kvtest::RandomBytes(16 * 8 * 4, 31);
    EXPECT_EQ(Processed(effect, second, 16, 8), Filtered(first, second, 16, 8, 3, noise));
    const Bytes resized = kvtest::RandomBytes(9 * 5 * 4, 32);
    EXPECT_EQ(Processed(effect, resized, 9, 5), resized);
    Kelvarine_Destory(effect);
}

// The recorded size, mask and noise are the class's, not the instance's: a
// preset instance whose buffers match the size that another instance has
// since recorded filters its own stale copy with the other's zero noise,
// as the filter has rewritten it.
TEST(WienerEffect, InstancesShareTheRecordedSizeAndNoise) {
    Effect_Base* preset = Kelvarine_NewInstance(1058);
    Effect_Base* zero = Wiener(3, 0, 0, 0);
    const Bytes presetFirst = kvtest::RandomBytes(12 * 6 * 4, 40);
    EXPECT_EQ(Processed(preset, presetFirst, 12, 6), presetFirst);

    float shared[3] = {0.0f, 0.0f, 0.0f};
    const Bytes zeroFrame = kvtest::RandomBytes(12 * 6 * 4, 41);
    EXPECT_EQ(Processed(zero, zeroFrame, 12, 6), Filtered(zeroFrame, zeroFrame, 12, 6, 3, shared));

    const Bytes presetLater = kvtest::RandomBytes(12 * 6 * 4, 42);
    EXPECT_EQ(Processed(preset, presetLater, 12, 6), Filtered(presetFirst, presetLater, 12, 6, 3, shared));
    Kelvarine_Destory(preset);
    Kelvarine_Destory(zero);
}

// Unguarded: a null frame or an empty size goes on to the primitives, which
// refuse it, and Proc still returns 0.
TEST(WienerEffect, RefusedFramesReturnZeroWithoutHarm) {
    Effect_Base* effect = Wiener(5, 0, 0, 0);
    const Bytes frame = kvtest::RandomBytes(5 * 4, 50);
    EXPECT_EQ(effect->Proc(nullptr, 8, 8), 0);
    EXPECT_EQ(Processed(effect, frame, 0, 5), frame);
    EXPECT_EQ(Processed(effect, frame, 5, -1), frame);
    Kelvarine_Destory(effect);
}

}  // namespace
