// The Wiener filter against a plain reference of its formula, on random
// images of awkward sizes, masks and anchors, under every jump index.
#include <xmmintrin.h>

#include <cmath>
#include <random>
#include <vector>

#include "image_under_test.h"
#include "jump_index.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;
using kvtest::ImageUnderTest;

constexpr float kFullScale = 65025.0f;

// A source whose region has around it exactly the pixels its windows reach,
// rows padded, and not one byte after the last pixel read.
struct WindowedSource {
    WindowedSource(PrimSize roi, PrimSize mask, PrimPoint anchor, int32_t padding, uint32_t seed)
        : left(mask.width - 1 - anchor.x),
          top(mask.height - 1 - anchor.y),
          columns(roi.width + mask.width - 1),
          step(columns * 4 + padding),
          bytes(kvtest::RandomBytes(size_t(step) * (roi.height + mask.height - 2) + 4 * columns, seed)) {}

    const uint8_t* region() const { return bytes.data() + top * step + 4 * left; }
    // Byte c of pixel (x, y) of the region; x and y reach into the margins.
    uint8_t& at(int x, int y, int c) { return bytes[size_t(y + top) * step + 4 * (x + left) + c]; }

    int32_t left, top, columns, step;
    Bytes bytes;
};

struct Case {
    PrimSize roi;
    PrimSize mask;
    PrimPoint anchor;
    float noise[3];
};

// Local mean and variance of each colour byte as the filter forms them:
// exact int32 window sums (wrapping), then float arithmetic in its order.
struct Moments {
    std::vector<float> mean, var;  // three per pixel, row by row
};

Moments LocalMoments(WindowedSource& src, const Case& k, const float floor[3]) {
    const float n = 1.0f / float(k.mask.width * k.mask.height);
    Moments m;
    for (int y = 0; y < k.roi.height; ++y)
        for (int x = 0; x < k.roi.width; ++x)
            for (int c = 0; c < 3; ++c) {
                uint32_t s = 0, q = 0;
                for (int j = -src.top; j <= k.anchor.y; ++j)
                    for (int i = -src.left; i <= k.anchor.x; ++i) {
                        uint32_t v = src.at(x + i, y + j, c);
                        s += v;
                        q += v * v;
                    }
                float fs = float(int32_t(s)), fq = float(int32_t(q));
                float v = fq - (fs * fs) * n;
                m.mean.push_back(n * fs);
                m.var.push_back(v > floor[c] ? v : floor[c]);
            }
    return m;
}

// The estimate: each row's variances summed in float with even and odd
// pixels apart, the row means summed in doubles, over the height.
void EstimatedLanes(const Moments& m, PrimSize roi, float lanes[3]) {
    for (int c = 0; c < 3; ++c) {
        double total = 0.0;
        for (int y = 0; y < roi.height; ++y) {
            float even = 0.0f, odd = 0.0f;
            for (int x = 0; x < roi.width; ++x) (x % 2 == 0 ? even : odd) += m.var[(y * roi.width + x) * 3 + c];
            total += double(even + odd) * (1.0 / double(roi.width));
        }
        lanes[c] = float(total / double(roi.height));
    }
}

// What the filter should do: the exact value of M + (V - noise) / V * (s - M)
// for each colour byte (not a number where V is 0), and the noise array as
// the caller sees it afterwards.
struct Expected {
    std::vector<double> value;
    float noise[3];
};

Expected Reference(WindowedSource& src, const Case& k) {
    const float n = 1.0f / float(k.mask.width * k.mask.height);
    const float w = float(k.mask.width), h = float(k.mask.height);
    Expected e;
    float lanes[3];
    const bool given = k.noise[0] >= 1.1920929e-7f && k.noise[1] >= 1.1920929e-7f && k.noise[2] >= 1.1920929e-7f;
    if (given) {
        lanes[0] = kFullScale * w * h * k.noise[0];
        for (int c = 1; c < 3; ++c) lanes[c] = k.noise[c] * kFullScale * w * h;
        for (int c = 0; c < 3; ++c) e.noise[c] = k.noise[c];
    } else {
        const float none[3] = {0.0f, 0.0f, 0.0f};
        EstimatedLanes(LocalMoments(src, k, none), k.roi, lanes);
        e.noise[0] = (n * 1.53787e-5f) * lanes[0];
        for (int c = 1; c < 3; ++c) e.noise[c] = (1.53787e-5f * lanes[c]) * n;
    }
    const Moments m = LocalMoments(src, k, lanes);
    for (int y = 0; y < k.roi.height; ++y)
        for (int x = 0; x < k.roi.width; ++x)
            for (int c = 0; c < 3; ++c) {
                const size_t i = (y * k.roi.width + x) * 3 + c;
                const double mean = m.mean[i], var = m.var[i];
                e.value.push_back(mean + (var - double(lanes[c])) / var * (double(src.at(x, y, c)) - mean));
            }
    return e;
}

uint8_t ToByte(double v) {
    if (std::isnan(v)) return 0;
    double r = std::nearbyint(v);
    return uint8_t(r < 0 ? 0 : (r > 255 ? 255 : r));
}

// The filter divides by a fast reciprocal refined by one Newton step, so its
// value is off the exact one by about 2^-21 relative, plus a few float
// roundings: below 2e-4 for bytes. A byte may therefore differ by one from
// the exact value's only where that value lies within this distance of a
// rounding boundary.
constexpr double kNearBoundary = 1e-3;

bool NearBoundary(double v) { return std::fabs(v - std::floor(v) - 0.5) < kNearBoundary; }

struct Tally {
    int bytes = 0, offByOne = 0;
};

// Runs the filter on one case and checks every byte of the destination: the
// colour bytes of the region against the reference, everything else as it
// was. The work buffer starts off any 16-byte boundary.
void CheckCase(const Case& k, int32_t dstPadding, int32_t bufferOffset, uint32_t seed, Tally* tally) {
    SCOPED_TRACE(::testing::Message() << k.roi.width << "x" << k.roi.height << " mask " << k.mask.width << "x"
                                      << k.mask.height << " anchor " << k.anchor.x << "," << k.anchor.y << " noise "
                                      << k.noise[0] << " " << k.noise[1] << " " << k.noise[2]);
    WindowedSource src(k.roi, k.mask, k.anchor, dstPadding % 7, seed);
    ImageUnderTest dst(k.roi.width, k.roi.height, dstPadding, bufferOffset % 4, seed + 1);
    const ImageUnderTest before = dst;
    int32_t bufferSize = 0;
    ASSERT_EQ(primiFilterWienerGetBufferSize(k.roi, k.mask, 4, &bufferSize), PrimOk);
    Bytes buffer(bufferOffset + bufferSize);
    float noise[3] = {k.noise[0], k.noise[1], k.noise[2]};
    ASSERT_EQ(primiFilterWiener_8u_AC4R(src.region(), src.step, dst.data(), dst.step, k.roi, k.mask, k.anchor, noise,
                                        buffer.data() + bufferOffset),
              PrimOk);

    const Expected e = Reference(src, k);
    for (int c = 0; c < 3; ++c) EXPECT_EQ(noise[c], e.noise[c]) << "channel " << c;
    for (size_t b = 0; b < dst.bytes.size(); ++b) {
        const ptrdiff_t at = ptrdiff_t(b) - dst.start;
        const int y = at < 0 ? -1 : int(at / dst.step), x = at < 0 ? 0 : int(at % dst.step) / 4;
        const int c = at < 0 ? 0 : int(at % dst.step) % 4;
        if (at < 0 || y >= k.roi.height || x >= k.roi.width || c == 3) {
            ASSERT_EQ(dst.bytes[b], before.bytes[b]) << "untouched byte " << b;
            continue;
        }
        const double v = e.value[(y * k.roi.width + x) * 3 + c];
        const int got = dst.bytes[b], want = ToByte(v);
        ++tally->bytes;
        if (got == want) continue;
        ++tally->offByOne;
        ASSERT_TRUE(NearBoundary(v) && std::abs(got - want) == 1)
            << "pixel " << x << "," << y << " byte " << c << ": " << got << ", exact value " << v;
    }

    // Every build gives the same bytes and the same estimate.
    const int index = primJumpIndex;
    primJumpIndex = 0;
    ImageUnderTest baseline = before;
    float baselineNoise[3] = {k.noise[0], k.noise[1], k.noise[2]};
    primiFilterWiener_8u_AC4R(src.region(), src.step, baseline.data(), baseline.step, k.roi, k.mask, k.anchor,
                              baselineNoise, buffer.data() + bufferOffset);
    primJumpIndex = index;
    EXPECT_EQ(dst.bytes, baseline.bytes) << "differs from the baseline build";
    for (int c = 0; c < 3; ++c) EXPECT_EQ(noise[c], baselineNoise[c]);
}

class Wiener : public EveryJumpIndex {
protected:
    void TearDown() override {
        _mm_setcsr(0x1F80);
        EveryJumpIndex::TearDown();
    }
};

TEST_P(Wiener, EqualsTheReferenceOnRandomImagesMasksAnchorsAndNoise) {
    std::mt19937 random(4242);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    const int widths[] = {1, 2, 3, 4, 5, 6, 7, 9, 13, 16, 17, 31, 37, 64};
    const PrimSize wideMasks[] = {{11, 2}, {2, 11}, {64, 8}};
    Tally tally;
    for (int round = 0; round < 150; ++round) {
        Case k;
        k.roi = {widths[pick(0, 13)], pick(1, 6)};
        k.mask = round % 25 == 24 ? wideMasks[round / 25 % 3] : PrimSize{pick(2, 8), pick(2, 8)};
        k.anchor = {pick(0, k.mask.width - 1), pick(0, k.mask.height - 1)};
        // Given levels, one level asking for an estimate, or the estimate of all.
        std::uniform_real_distribution<float> level(0.0005f, 0.3f);
        for (float& l : k.noise) l = level(random);
        if (round % 3 == 1) k.noise[pick(0, 2)] = 0.0f;
        if (round % 9 == 2) k.noise[0] = k.noise[1] = k.noise[2] = 0.0f;
        CheckCase(k, pick(0, 9), pick(0, 17), 1000 + round, &tally);
        if (HasFatalFailure()) return;
    }
    // How often the fast reciprocal moved a byte, all near a boundary.
    RecordProperty("BytesOffByOneNearRoundingBoundary", tally.offByOne);
    RecordProperty("BytesCompared", tally.bytes);
    EXPECT_LT(tally.offByOne * 200, tally.bytes);
}

// With noise above every local variance, V is the noise and each colour byte
// is its window's mean, rounded to even: no reciprocal is involved, so the
// sums and the mean are checked exactly, over every shape.
TEST_P(Wiener, NoiseAboveEveryVarianceGivesTheRoundedLocalMean) {
    uint32_t seed = 50;
    for (const auto& shape : kvtest::AwkwardShapes())
        for (PrimSize mask : {PrimSize{2, 2}, PrimSize{3, 3}, PrimSize{4, 7}, PrimSize{9, 2}}) {
            const PrimPoint anchor = {mask.width / 3, mask.height - 1};
            const PrimSize roi = {shape.width, shape.height};
            WindowedSource src(roi, mask, anchor, shape.padding, ++seed);
            ImageUnderTest dst(shape.width, shape.height, shape.padding, shape.offset, ++seed);
            ImageUnderTest expected = dst;
            const float n = 1.0f / float(mask.width * mask.height);
            for (int y = 0; y < roi.height; ++y)
                for (int x = 0; x < roi.width; ++x)
                    for (int c = 0; c < 3; ++c) {
                        int s = 0;
                        for (int j = -src.top; j <= anchor.y; ++j)
                            for (int i = -src.left; i <= anchor.x; ++i) s += src.at(x + i, y + j, c);
                        expected.at(x, y, c) = uint8_t(std::nearbyint(n * float(s)));
                    }
            int32_t size;
            primiFilterWienerGetBufferSize(roi, mask, 4, &size);
            Bytes buffer(size);
            float noise[3] = {0.999f, 0.999f, 0.999f};
            ASSERT_EQ(primiFilterWiener_8u_AC4R(src.region(), src.step, dst.data(), dst.step, roi, mask, anchor, noise,
                                                buffer.data()),
                      PrimOk);
            ASSERT_EQ(dst.bytes, expected.bytes) << shape.width << "x" << shape.height << " mask " << mask.width
                                                 << "x" << mask.height;
        }
}

// A channel flat over the source: under given noise it passes unchanged
// (V takes the noise and s - M is 0); when estimating, its noise is 0, so V
// is 0 everywhere, 0 times the infinite reciprocal is not a number, and the
// channel comes out 0. Any zero level has all three estimated.
TEST_P(Wiener, FlatChannelPassesUnderGivenNoiseAndGoesToZeroWhenEstimated) {
    const PrimSize roi = {19, 5}, mask = {3, 3};
    const PrimPoint anchor = {1, 1};
    WindowedSource src(roi, mask, anchor, 3, 77);
    for (int y = -1; y <= roi.height; ++y)
        for (int x = -1; x <= roi.width; ++x) src.at(x, y, 1) = 200;
    int32_t size;
    primiFilterWienerGetBufferSize(roi, mask, 4, &size);
    Bytes buffer(size);

    ImageUnderTest given(roi.width, roi.height, 0, 0, 78);
    float levels[3] = {0.01f, 0.01f, 0.01f};
    ASSERT_EQ(primiFilterWiener_8u_AC4R(src.region(), src.step, given.data(), given.step, roi, mask, anchor, levels,
                                        buffer.data()),
              PrimOk);
    ImageUnderTest estimated(roi.width, roi.height, 0, 0, 79);
    float estimate[3] = {0.0f, 0.5f, 0.5f};
    ASSERT_EQ(primiFilterWiener_8u_AC4R(src.region(), src.step, estimated.data(), estimated.step, roi, mask, anchor,
                                        estimate, buffer.data()),
              PrimOk);
    for (int y = 0; y < roi.height; ++y)
        for (int x = 0; x < roi.width; ++x) {
            ASSERT_EQ(given.at(x, y, 1), 200);
            ASSERT_EQ(estimated.at(x, y, 1), 0);
        }
    EXPECT_EQ(levels[1], 0.01f) << "given levels stay";
    EXPECT_EQ(estimate[1], 0.0f);
    EXPECT_GT(estimate[0], 0.0f);
    EXPECT_NE(estimate[2], 0.5f) << "a given level beside a zero one is re-estimated";
}

// The result is converted in the caller's rounding mode. One pixel under a
// 2x2 window whose variance lies below the noise, so each byte is its mean:
// 1/4, 3/4 and 2/4 in the three channels.
TEST_P(Wiener, RoundsInTheCurrentMode) {
    const uint8_t window[] = {1, 1, 1, 9, 0, 1, 1, 9, 0, 1, 0, 9, 0, 0, 0, 9};
    auto filtered = [&](uint32_t mxcsr) {
        uint8_t dst[4] = {7, 7, 7, 7};
        float noise[3] = {0.999f, 0.999f, 0.999f};
        uint8_t buffer[160];
        _mm_setcsr(mxcsr);
        primiFilterWiener_8u_AC4R(window, 8, dst, 4, {1, 1}, {2, 2}, {1, 1}, noise, buffer);
        _mm_setcsr(0x1F80);
        return Bytes(dst, dst + 4);
    };
    EXPECT_EQ(filtered(0x1F80), (Bytes{0, 1, 0, 7})) << "to nearest, ties to even";
    EXPECT_EQ(filtered(0x3F80), (Bytes{0, 0, 0, 7})) << "down";
    EXPECT_EQ(filtered(0x5F80), (Bytes{1, 1, 1, 7})) << "up";
}

TEST_P(Wiener, BufferSizeChecksInOrderAndSizesFourRows) {
    int32_t size = -1;
    EXPECT_EQ(primiFilterWienerGetBufferSize({0, 3}, {3, 3}, 4, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiFilterWienerGetBufferSize({10, 0}, {3, 3}, 2, &size), PrimSizeErr);
    EXPECT_EQ(primiFilterWienerGetBufferSize({10, 3}, {1, 3}, 2, &size), PrimChannelsErr);
    EXPECT_EQ(primiFilterWienerGetBufferSize({10, 3}, {1, 3}, 4, &size), PrimMaskSizeErr);
    EXPECT_EQ(primiFilterWienerGetBufferSize({10, 3}, {3, 1}, 4, &size), PrimMaskSizeErr);
    EXPECT_EQ(size, -1) << "an error writes nothing";

    // Rows of (width * channels + 6) floats, or (width + mask width + 6) for
    // one channel, rounded down to four; four rows and 15 bytes to align.
    const struct {
        int32_t width, maskWidth, channels, bytes;
    } rows[] = {{10, 3, 4, 44 * 16 + 15}, {10, 3, 3, 36 * 16 + 15}, {10, 3, 1, 16 * 16 + 15}, {1, 2, 4, 8 * 16 + 15},
                {1, 9, 1, 16 * 16 + 15}};
    for (const auto& r : rows) {
        ASSERT_EQ(primiFilterWienerGetBufferSize({r.width, 2}, {r.maskWidth, 2}, r.channels, &size), PrimOk);
        EXPECT_EQ(size, r.bytes) << r.width << " wide, " << r.channels << " channels";
    }
}

// Each argument test decides ahead of the next one, mask and anchor ahead of
// the steps; an error leaves the destination and the noise array alone.
TEST_P(Wiener, FilterChecksInOrderAndAnErrorWritesNothing) {
    const PrimSize roi = {6, 4};
    const PrimPoint centre = {1, 1};
    WindowedSource src(roi, {3, 3}, centre, 0, 5);
    ImageUnderTest dst(6, 4, 0, 0, 6);
    const Bytes before = dst.bytes;
    Bytes buffer(1024);
    float estimate[3] = {0.0f, 0.0f, 0.0f};
    auto filter = [&](const uint8_t* s, int32_t srcStep, int32_t dstStep, PrimSize size, PrimSize mask,
                      PrimPoint anchor, float* noise) {
        return primiFilterWiener_8u_AC4R(s, srcStep, dst.data(), dstStep, size, mask, anchor, noise, buffer.data());
    };
    const uint8_t* in = src.region();
    const int32_t step = src.step;
    EXPECT_EQ(filter(nullptr, step, 24, {0, 4}, {3, 3}, centre, estimate), PrimNullPtrErr);
    EXPECT_EQ(filter(in, step, 24, roi, {3, 3}, centre, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiFilterWiener_8u_AC4R(in, step, dst.data(), 24, roi, {3, 3}, centre, estimate, nullptr),
              PrimNullPtrErr);
    EXPECT_EQ(filter(in, step, 24, {6, 0}, {1, 3}, centre, estimate), PrimSizeErr);
    EXPECT_EQ(filter(in, step, 24, roi, {3, 1}, {-1, 0}, estimate), PrimMaskSizeErr);
    EXPECT_EQ(filter(in, 0, 24, roi, {3, 3}, {3, 1}, estimate), PrimAnchorErr);
    EXPECT_EQ(filter(in, 0, 24, roi, {3, 3}, {1, -1}, estimate), PrimAnchorErr);
    float tooLoud[3] = {0.5f, 0.5f, 1.0f};
    EXPECT_EQ(filter(in, step, 0, roi, {3, 3}, centre, tooLoud), PrimStepErr);
    EXPECT_EQ(filter(in, step, 24, roi, {3, 3}, centre, tooLoud), PrimNoiseRangeErr);
    float negative[3] = {-0.25f, 0.0f, 0.0f};
    EXPECT_EQ(filter(in, step, 24, roi, {3, 3}, centre, negative), PrimNoiseRangeErr);
    EXPECT_EQ(dst.bytes, before);
    EXPECT_EQ(estimate[0], 0.0f);
    EXPECT_EQ(negative[1], 0.0f) << "no estimate is written back after an error";

    float loudest[3] = {0.999f, 0.999f, 0.999f};
    EXPECT_EQ(filter(in, step, 24, roi, {3, 3}, centre, loudest), PrimOk);
}

KV_ALL_JUMP_INDICES(Wiener);

}  // namespace
