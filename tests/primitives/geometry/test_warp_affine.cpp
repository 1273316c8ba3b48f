// The affine warp through primiShear_8u_AC4R and primiRotateCenter_8u_AC4R:
// which destination pixels it writes, what it writes there with each kernel,
// the edge softening, and the order of its refusals.
#include <gtest/gtest.h>

#include <random>

#include "jump_index.h"
#include "warp_reference.h"

namespace {

using kvtest::ImageUnderTest;
using warpref::Coeffs;
using warpref::Pt;

constexpr int32_t kSmoothLinear = InterpLinear | InterpSmoothEdge;

// One warp: the images, the rectangles, and either a shear or a rotation.
struct WarpCase {
    PrimSize srcSize;
    PrimRect srcRoi;
    PrimSize dstSize;
    PrimRect dstRoi;
    int32_t srcPadding, dstPadding;
    bool rotation;
    double p0, p1, p2, p3;  // xShear, yShear, xShift, yShift; or angle, xCenter, yCenter
};

Coeffs CoeffsOf(const WarpCase& w) {
    if (!w.rotation) return warpref::ShearCoeffs(w.p0, w.p1, w.p2, w.p3);
    return warpref::RotationCoeffs(w.p0, w.p1, w.p2);
}

PrimStatus RunWarp(const WarpCase& w, ImageUnderTest& src, ImageUnderTest& dst, int32_t interpolation) {
    if (w.rotation)
        return primiRotateCenter_8u_AC4R(src.data(), w.srcSize, src.step, w.srcRoi, dst.data(), dst.step, w.dstRoi,
                                         w.p0, w.p1, w.p2, interpolation);
    return primiShear_8u_AC4R(src.data(), w.srcSize, src.step, w.srcRoi, dst.data(), dst.step, w.dstRoi, w.p0, w.p1,
                              w.p2, w.p3, interpolation);
}

// The source rectangle as the warp uses it: cut back to the image.
PrimRect ClippedSource(const WarpCase& w) {
    PrimRect r = w.srcRoi;
    r.width = std::min(r.width, w.srcSize.width - r.x);
    r.height = std::min(r.height, w.srcSize.height - r.y);
    return r;
}

bool InRect(PrimRect r, int32_t x, int32_t y) {
    return x >= r.x && x < r.x + r.width && y >= r.y && y < r.y + r.height;
}

void Sample(int32_t mode, ImageUnderTest& src, double x, double y, uint8_t out[3]) {
    switch (mode) {
        case InterpNearest: return warpref::Nearest(src, x, y, out);
        case InterpLinear: return warpref::Linear(src, x, y, out);
        case InterpCubic: return warpref::Cubic(src, x, y, out);
        default: return warpref::CatmullRom(src, x, y, out);
    }
}

// Runs the case on two destinations that differ in every colour byte: a
// pixel is written where both come out alike. The written pixels must cover
// every destination pixel whose source position lies clearly inside the
// source rectangle and none clearly outside it, and must hold the kernel's
// sample at the position carried as running sums from the polygon's top row
// and the span's first pixel. Everything else, fourth bytes and padding
// included, stays. Returns the number of pixels written.
int CheckWarp(const WarpCase& w, int32_t mode, uint32_t seed) {
    ImageUnderTest src(w.srcSize.width, w.srcSize.height, w.srcPadding, 1, seed);
    ImageUnderTest dst(w.dstSize.width, w.dstSize.height, w.dstPadding, 2, seed + 1);
    ImageUnderTest other = dst;
    for (int32_t y = 0; y < dst.size.height; ++y)
        for (int32_t x = 0; x < dst.size.width; ++x)
            for (int c = 0; c < 3; ++c) other.at(x, y, c) ^= 0xFF;
    ImageUnderTest out = dst, outOther = other;
    const PrimStatus status = RunWarp(w, src, out, mode);
    EXPECT_EQ(RunWarp(w, src, outOther, mode), status);

    const PrimRect roi = ClippedSource(w);
    const std::vector<Pt> quad = warpref::QuadOf(CoeffsOf(w), roi);
    const warpref::Sampling s = warpref::SamplingOf(quad, roi);
    const std::vector<Pt> polygon = warpref::ClipToRect(quad, w.dstRoi.x, w.dstRoi.y, w.dstRoi.x + w.dstRoi.width - 1,
                                                        w.dstRoi.y + w.dstRoi.height - 1);
    // The source rectangle widened or narrowed by a margin that covers the
    // spans' tolerance and the rounding of the inverse.
    const double margin = 1e-6;
    auto within = [&](double x, double y, double m) {
        return x >= roi.x - m && x <= roi.x + roi.width - 1 + m && y >= roi.y - m && y <= roi.y + roi.height - 1 + m;
    };

    ImageUnderTest expected = dst;
    int written = 0;
    const int32_t top = polygon.empty() ? 0 : int32_t(ceil(std::min_element(polygon.begin(), polygon.end(),
                                                                             [](Pt a, Pt b) { return a.y < b.y; })
                                                                ->y));
    for (int32_t y = 0; y < dst.size.height; ++y) {
        int32_t first = -1, last = -2;
        for (int32_t x = 0; x < dst.size.width; ++x) {
            const bool isWritten = out.at(x, y, 0) == outOther.at(x, y, 0) && out.at(x, y, 1) == outOther.at(x, y, 1) &&
                                   out.at(x, y, 2) == outOther.at(x, y, 2);
            const double sx = s.a * x + s.b * y + s.offX, sy = s.c * x + s.e * y + s.offY;
            const bool inside = InRect(w.dstRoi, x, y) && within(sx, sy, -margin);
            const bool outside = !InRect(w.dstRoi, x, y) || !within(sx, sy, margin);
            EXPECT_FALSE(inside && !isWritten) << "pixel " << x << "," << y << " inside but not written";
            EXPECT_FALSE(outside && isWritten) << "pixel " << x << "," << y << " outside but written";
            if (isWritten) {
                if (first < 0) first = x;
                last = x;
            }
        }
        if (first < 0) continue;
        double rowX = s.b * top + s.offX, rowY = s.e * top + s.offY;
        for (int32_t r = top; r < y; ++r) rowX += s.b, rowY += s.e;
        double x = s.a * first + rowX, yy = s.c * first + rowY;
        if (mode == InterpNearest) x += 0.5, yy += 0.5;
        for (int32_t px = first; px <= last; ++px, x += s.a, yy += s.c) {
            uint8_t sample[3];
            Sample(mode, src, x, yy, sample);
            for (int c = 0; c < 3; ++c) expected.at(px, y, c) = sample[c];
            ++written;
        }
    }
    // Nothing to draw when the clip leaves no polygon, or one whose bounds
    // hold no pixel centre; a polygon can still hold none within it.
    bool centres = !polygon.empty();
    if (centres) {
        double minX = polygon[0].x, maxX = minX, minY = polygon[0].y, maxY = minY;
        for (const Pt& p : polygon) {
            minX = std::min(minX, p.x), maxX = std::max(maxX, p.x);
            minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
        }
        centres = floor(maxX) >= ceil(minX) && floor(maxY) >= ceil(minY);
    }
    EXPECT_EQ(status, centres ? PrimOk : PrimNoResultWrn);
    EXPECT_EQ(out.bytes, expected.bytes);
    return written;
}

// Random cases of awkward sizes: source rectangles that reach past the
// image, padded rows, destination rectangles inside their image, shears of
// both orientations and rotations by any angle. A shear moves the picture
// near the destination rectangle; a rotation turns it about a point near its
// own centre.
WarpCase RandomCase(std::mt19937& random, bool rotation, int32_t minSourceSide) {
    auto pick = [&](int32_t lo, int32_t hi) { return std::uniform_int_distribution<int32_t>(lo, hi)(random); };
    auto real = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(random); };
    WarpCase w;
    w.srcSize = {pick(minSourceSide, 23), pick(minSourceSide, 17)};
    w.srcRoi = {pick(0, (w.srcSize.width - 2) / 2), pick(0, (w.srcSize.height - 2) / 2), 0, 0};
    w.srcRoi.width = pick(2 + (w.srcSize.width - w.srcRoi.x) / 2, w.srcSize.width - w.srcRoi.x + 3);
    w.srcRoi.height = pick(2 + (w.srcSize.height - w.srcRoi.y) / 2, w.srcSize.height - w.srcRoi.y + 3);
    w.dstSize = {pick(1, 37), pick(1, 29)};
    w.dstRoi = {pick(0, w.dstSize.width / 4), pick(0, w.dstSize.height / 4), 0, 0};
    w.dstRoi.width = pick((w.dstSize.width - w.dstRoi.x + 1) / 2, w.dstSize.width - w.dstRoi.x);
    w.dstRoi.height = pick((w.dstSize.height - w.dstRoi.y + 1) / 2, w.dstSize.height - w.dstRoi.y);
    w.srcPadding = pick(0, 2) * 4 + pick(0, 3);
    w.dstPadding = pick(0, 9);
    w.rotation = rotation;
    const double srcX = w.srcRoi.x + std::min(w.srcRoi.width, w.srcSize.width - w.srcRoi.x) / 2.0;
    const double srcY = w.srcRoi.y + std::min(w.srcRoi.height, w.srcSize.height - w.srcRoi.y) / 2.0;
    const double dstX = w.dstRoi.x + w.dstRoi.width / 2.0, dstY = w.dstRoi.y + w.dstRoi.height / 2.0;
    if (rotation) {
        w.p0 = real(-400.0, 400.0);
        w.p1 = srcX + real(-3.0, 3.0), w.p2 = srcY + real(-3.0, 3.0);
    } else {
        do {
            w.p0 = real(-1.3, 1.3), w.p1 = real(-1.3, 1.3);
        } while (fabs(1.0 - w.p0 * w.p1) < 0.3);
        w.p2 = dstX - (srcX + w.p0 * srcY) + real(-6.0, 6.0);
        w.p3 = dstY - (w.p1 * srcX + srcY) + real(-6.0, 6.0);
    }
    return w;
}

class WarpKernels : public EveryJumpIndex {};

void CheckRandomCases(int32_t mode, int32_t minSourceSide, uint32_t seed) {
    std::mt19937 random(seed);
    int written = 0;
    for (int i = 0; i < 400; ++i) {
        const WarpCase w = RandomCase(random, i % 2 == 1, minSourceSide);
        written += CheckWarp(w, mode, seed + i);
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << "case " << i << (w.rotation ? " rotation " : " shear ") << w.p0 << " " << w.p1 << " "
                          << w.p2 << " " << w.p3;
            return;
        }
    }
    EXPECT_GT(written, 5000) << "the cases should draw";
}

TEST_P(WarpKernels, NearestOnRandomShearsAndRotations) { CheckRandomCases(InterpNearest, 2, 100); }
TEST_P(WarpKernels, LinearOnRandomShearsAndRotations) { CheckRandomCases(InterpLinear, 2, 200); }
TEST_P(WarpKernels, CubicOnRandomShearsAndRotations) { CheckRandomCases(InterpCubic, 4, 300); }
TEST_P(WarpKernels, CatmullRomOnRandomShearsAndRotations) { CheckRandomCases(InterpCatmullRom, 2, 400); }

// A source under 4 pixels across turns the cubic into the linear kernel;
// one a single pixel across cannot give a rectangle two wide, although its
// kernel would fall to nearest.
TEST_P(WarpKernels, SmallSourcesStepTheKernelDown) {
    WarpCase w = {{3, 5}, {0, 0, 3, 5}, {12, 12}, {0, 0, 12, 12}, 0, 0, false, 0.2, -0.1, 2.3, 3.1};
    ImageUnderTest src(3, 5, 0, 0, 9), asCubic(12, 12, 0, 0, 10);
    ImageUnderTest asLinear = asCubic;
    ASSERT_EQ(RunWarp(w, src, asCubic, InterpCubic), PrimOk);
    ASSERT_EQ(RunWarp(w, src, asLinear, InterpLinear), PrimOk);
    EXPECT_EQ(asCubic.bytes, asLinear.bytes);
    EXPECT_GT(CheckWarp(w, InterpLinear, 11), 0);

    WarpCase column = {{1, 6}, {0, 0, 1, 6}, {8, 8}, {0, 0, 8, 8}, 0, 0, false, 0.0, 0.0, 1.0, 1.0};
    ImageUnderTest narrow(1, 6, 0, 0, 12), dst(8, 8, 0, 0, 13);
    const auto before = dst.bytes;
    EXPECT_EQ(RunWarp(column, narrow, dst, InterpCubic), PrimRectErr);
    EXPECT_EQ(dst.bytes, before);
}

// A span end that misses a pixel centre by rounding only (1e-14) keeps the
// pixel; one that misses it by 1e-12 does not.
TEST_P(WarpKernels, SpanEndsWithinRoundingOfAColumn) {
    auto columns = [](double xShift) {
        WarpCase w = {{4, 3}, {0, 0, 4, 3}, {12, 5}, {0, 0, 12, 5}, 0, 0, false, 0.0, 0.0, xShift, 1.0};
        return CheckWarp(w, InterpLinear, 70) / 3;
    };
    EXPECT_EQ(columns(5.0), 4);
    EXPECT_EQ(columns(5.00000000000001), 4) << "first column 5, not 6";
    EXPECT_EQ(columns(4.99999999999999), 4) << "last column 8, not 7";
    EXPECT_EQ(columns(5.000000000001), 3);
    EXPECT_EQ(columns(4.999999999999), 3);
}

// A full 1080p frame turned by 60 degrees about its centre pixel, as the
// effect does: positions summed along rows of up to 1920 pixels and down
// 1080 rows.
TEST_P(WarpKernels, FullFrameRotation) {
    WarpCase frame = {{1920, 1080}, {0, 0, 1920, 1080}, {1920, 1080}, {0, 0, 1920, 1080}, 0, 0, true,
                      60.0,         960.0,              540.0,        0.0};
    EXPECT_GT(CheckWarp(frame, InterpLinear, 90), 1000000);
}

// A quad that covers the whole destination rectangle fills it, and has no
// slanted edge left to soften; a quad with a horizontal top and bottom edge
// spans its rows from the slanted sides alone.
TEST_P(WarpKernels, ClippedAwayCornersAndHorizontalEdges) {
    WarpCase around = {{40, 40}, {0, 0, 40, 40}, {30, 30}, {15, 15, 10, 10}, 4, 0, true, 45.0, 20.0, 20.0, 0.0};
    EXPECT_EQ(CheckWarp(around, InterpLinear, 80), 100);
    ImageUnderTest src(40, 40, 4, 0, 81), plain(30, 30, 0, 0, 82);
    ImageUnderTest smooth = plain;
    ASSERT_EQ(RunWarp(around, src, plain, InterpLinear), PrimOk);
    ASSERT_EQ(RunWarp(around, src, smooth, kSmoothLinear), PrimOk);
    EXPECT_EQ(smooth.bytes, plain.bytes);

    for (double yShift : {1.0, 1.25, 0.75}) {
        WarpCase flat = {{9, 5}, {0, 0, 9, 5}, {20, 12}, {0, 0, 20, 12}, 0, 3, false, 0.45, 0.0, 2.3, yShift};
        EXPECT_GT(CheckWarp(flat, InterpNearest, 83), 30);
    }
}

KV_ALL_JUMP_INDICES(WarpKernels);

class WarpSmoothing : public EveryJumpIndex {};

// With InterpSmoothEdge the result is the plain warp with the pixels just
// outside each slanted edge of the clipped polygon blended, all four bytes.
TEST_P(WarpSmoothing, BlendsThePixelsOutsideSlantedEdges) {
    std::mt19937 random(500);
    int changed = 0;
    for (int i = 0; i < 200; ++i) {
        const WarpCase w = RandomCase(random, i % 2 == 0, 2);
        ImageUnderTest src(w.srcSize.width, w.srcSize.height, w.srcPadding, 0, 600 + i);
        ImageUnderTest plain(w.dstSize.width, w.dstSize.height, w.dstPadding, 1, 700 + i);
        ImageUnderTest smooth = plain;
        const PrimStatus status = RunWarp(w, src, plain, InterpLinear);
        ASSERT_EQ(RunWarp(w, src, smooth, kSmoothLinear), status);
        if (status != PrimOk) continue;
        const PrimRect roi = ClippedSource(w);
        const std::vector<Pt> quad = warpref::QuadOf(CoeffsOf(w), roi);
        const int orientation = warpref::SamplingOf(quad, roi).orientation;
        const std::vector<Pt> polygon = warpref::ClipToRect(
            quad, w.dstRoi.x, w.dstRoi.y, w.dstRoi.x + w.dstRoi.width - 1, w.dstRoi.y + w.dstRoi.height - 1);
        ImageUnderTest expected = plain;
        warpref::SmoothEdges(expected, polygon, orientation, w.dstRoi);
        changed += expected.bytes != plain.bytes;
        ASSERT_EQ(smooth.bytes, expected.bytes) << "case " << i;
    }
    EXPECT_GT(changed, 50);
}

// A rectangle moved by a fraction and a quarter turn by exact coefficients
// have no slanted edge: nothing to soften.
TEST_P(WarpSmoothing, AxisAlignedEdgesStayAsTheyAre) {
    ImageUnderTest src(6, 5, 0, 0, 30), plain(12, 12, 0, 0, 31);
    ImageUnderTest smooth = plain;
    ASSERT_EQ(primiShear_8u_AC4R(src.data(), src.size, src.step, {0, 0, 6, 5}, plain.data(), plain.step,
                                 {0, 0, 12, 12}, 0.0, 0.0, 2.25, 3.5, InterpLinear),
              PrimOk);
    ASSERT_EQ(primiShear_8u_AC4R(src.data(), src.size, src.step, {0, 0, 6, 5}, smooth.data(), smooth.step,
                                 {0, 0, 12, 12}, 0.0, 0.0, 2.25, 3.5, kSmoothLinear),
              PrimOk);
    EXPECT_EQ(smooth.bytes, plain.bytes);

    // 90 degrees about (2.5, 3): shifts -0.5 and 5.5, not whole, so the warp.
    ImageUnderTest turned(10, 10, 0, 0, 32), turnedSmooth = turned;
    ASSERT_EQ(primiRotateCenter_8u_AC4R(src.data(), src.size, src.step, {0, 0, 6, 5}, turned.data(), turned.step,
                                        {0, 0, 10, 10}, 90.0, 2.5, 3.0, InterpLinear),
              PrimOk);
    ASSERT_EQ(primiRotateCenter_8u_AC4R(src.data(), src.size, src.step, {0, 0, 6, 5}, turnedSmooth.data(),
                                        turnedSmooth.step, {0, 0, 10, 10}, 90.0, 2.5, 3.0, kSmoothLinear),
              PrimOk);
    EXPECT_EQ(turnedSmooth.bytes, turned.bytes);
    WarpCase w = {src.size, {0, 0, 6, 5}, {10, 10}, {0, 0, 10, 10}, 0, 0, true, 90.0, 2.5, 3.0, 0.0};
    EXPECT_EQ(CheckWarp(w, InterpLinear, 30), 20) << "half-pixel shifts lose a row and a column";
}

KV_ALL_JUMP_INDICES(WarpSmoothing);

class WarpArguments : public EveryJumpIndex {};

// Each test in its place: null pointers, sizes and rectangles, the
// interpolation code, the singular transform, then the source rectangle's
// origin and clipped size; the shear tests its steps before all of them, the
// rotation never. Nothing is written on any refusal.
TEST_P(WarpArguments, RefusalsInTheirOrder) {
    ImageUnderTest src(8, 6, 0, 0, 40), dst(8, 6, 0, 0, 41);
    const auto before = dst.bytes;
    const PrimSize size = src.size;
    const PrimRect all = {0, 0, 8, 6};
    auto shear = [&](const uint8_t* s, PrimSize ss, int32_t sStep, PrimRect sr, uint8_t* d, int32_t dStep,
                     PrimRect dr, double xs, double ys, int32_t interp) {
        return primiShear_8u_AC4R(s, ss, sStep, sr, d, dStep, dr, xs, ys, 0.5, 0.5, interp);
    };
    EXPECT_EQ(shear(nullptr, {0, 0}, 0, all, dst.data(), 32, all, 0.1, 0.1, 99), PrimStepErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), -1, all, 0.1, 0.1, 2), PrimStepErr);
    EXPECT_EQ(shear(nullptr, {0, 0}, 32, all, dst.data(), 32, all, 0.1, 0.1, 99), PrimNullPtrErr);
    EXPECT_EQ(shear(src.data(), {8, 0}, 32, all, dst.data(), 32, all, 0.1, 0.1, 99), PrimSizeErr);
    EXPECT_EQ(shear(src.data(), size, 32, {-1, 0, 8, 6}, dst.data(), 32, all, 0.1, 0.1, 99), PrimSizeErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, {0, 0, 8, 0}, 0.1, 0.1, 99), PrimSizeErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, {0, -2, 8, 6}, 1.0, 1.0, 99), PrimSizeErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, all, 1.0, 1.0, 99), PrimInterpolationErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, all, 1.0, 1.0, InterpLanczos3), PrimInterpolationErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, all, 1.0, 1.0, InterpSmoothEdge), PrimInterpolationErr);
    EXPECT_EQ(shear(src.data(), size, 32, {8, 0, 2, 2}, dst.data(), 32, all, 1.0, 1.0, 2), PrimCoeffErr)
        << "p = q = 1: singular before the rectangle is looked at";
    EXPECT_EQ(shear(src.data(), size, 32, {8, 0, 2, 2}, dst.data(), 32, all, 0.5, 0.5, 2), PrimNoOverlapWrn);
    EXPECT_EQ(shear(src.data(), size, 32, {0, 6, 2, 2}, dst.data(), 32, all, 0.5, 0.5, 2), PrimNoOverlapWrn);
    EXPECT_EQ(shear(src.data(), size, 32, {7, 0, 5, 5}, dst.data(), 32, all, 0.5, 0.5, 2), PrimRectErr);
    EXPECT_EQ(shear(src.data(), size, 32, {0, 3, 8, 1}, dst.data(), 32, all, 0.5, 0.5, 2), PrimRectErr);
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, all, 0.5, 0.5, 2 | InterpSmoothEdge), PrimOk);
    EXPECT_NE(dst.bytes, before);

    // The rotation tests no step: a step of 0 reads the first row over and over.
    ImageUnderTest fresh(8, 6, 0, 0, 41);
    EXPECT_EQ(primiRotateCenter_8u_AC4R(src.data(), size, 0, all, fresh.data(), fresh.step, all, 30.0, 4.0, 3.0, 7),
              PrimInterpolationErr);
    EXPECT_EQ(fresh.bytes, before);
    EXPECT_EQ(primiRotateCenter_8u_AC4R(src.data(), size, 0, all, fresh.data(), fresh.step, all, 0.0, 4.0, 3.0, 1),
              PrimOk);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(fresh.at(x, y, 1), src.at(x, 0, 1));
}

// A near-singular determinant is judged relative to c00 c11; when that is
// negligible, c01 c10 must be too.
TEST_P(WarpArguments, SingularTransforms) {
    ImageUnderTest src(8, 6, 0, 0, 50), dst(8, 6, 0, 0, 51);
    const PrimRect all = {0, 0, 8, 6};
    auto shear = [&](double xs, double ys) {
        return primiShear_8u_AC4R(src.data(), src.size, src.step, all, dst.data(), dst.step, all, xs, ys, 1.0, 1.0,
                                  InterpNearest);
    };
    EXPECT_EQ(shear(2.0, 0.5), PrimCoeffErr);
    EXPECT_EQ(shear(2.0, 0.5 + 1e-12), PrimCoeffErr);
    EXPECT_NE(shear(2.0, 0.5 + 1e-9), PrimCoeffErr);
    EXPECT_EQ(shear(-1.0, 1.0), PrimOk) << "p = 1, q = -1";
}

// A destination rectangle that the quad misses, in a corner or beside it,
// leaves everything as it was.
TEST_P(WarpArguments, MissedDestinationIsNoResult) {
    ImageUnderTest src(8, 6, 0, 0, 60), dst(20, 20, 0, 0, 61);
    const auto before = dst.bytes;
    for (PrimRect dstRoi : {PrimRect{12, 0, 8, 20}, PrimRect{0, 10, 20, 10}, PrimRect{15, 15, 5, 5}})
        EXPECT_EQ(primiShear_8u_AC4R(src.data(), src.size, src.step, {0, 0, 8, 6}, dst.data(), dst.step, dstRoi, 0.2,
                                     0.2, 0.0, 0.0, kSmoothLinear),
                  PrimNoResultWrn);
    // Nor does a turn by NaN degrees or a shift to infinity draw anything.
    EXPECT_EQ(primiRotateCenter_8u_AC4R(src.data(), src.size, src.step, {0, 0, 8, 6}, dst.data(), dst.step,
                                        {0, 0, 20, 20}, std::nan(""), 3.0, 3.0, kSmoothLinear),
              PrimNoResultWrn);
    EXPECT_EQ(primiShear_8u_AC4R(src.data(), src.size, src.step, {0, 0, 8, 6}, dst.data(), dst.step, {0, 0, 20, 20},
                                 0.0, 0.0, INFINITY, 0.0, kSmoothLinear),
              PrimNoResultWrn);
    // The quad ends at x = 7.4, short of the rectangle's first column.
    EXPECT_EQ(primiShear_8u_AC4R(src.data(), src.size, src.step, {0, 0, 8, 6}, dst.data(), dst.step,
                                 {8, 0, 12, 20}, 0.0, 0.0, 0.4, 0.0, kSmoothLinear),
              PrimNoResultWrn);
    EXPECT_EQ(dst.bytes, before);
}

KV_ALL_JUMP_INDICES(WarpArguments);

}  // namespace
