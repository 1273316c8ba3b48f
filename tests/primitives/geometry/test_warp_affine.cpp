// Shears and rotations through primiShear_8u_AC4R and
// primiRotateCenter_8u_AC4R: which destination pixels the affine warp writes,
// what it writes there with each kernel, the edge softening; the exact path
// of quarter turns; the order of their refusals.
#include <gtest/gtest.h>

#include <random>

#include "jump_index.h"
#include "warp_reference.h"

namespace {

using kvtest::ImageUnderTest;
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

PrimStatus RunWarp(const WarpCase& w, ImageUnderTest& src, ImageUnderTest& dst, int32_t interpolation) {
    if (w.rotation)
        return primiRotateCenter_8u_AC4R(src.data(), w.srcSize, src.step, w.srcRoi, dst.data(), dst.step, w.dstRoi,
                                         w.p0, w.p1, w.p2, interpolation);
    return primiShear_8u_AC4R(src.data(), w.srcSize, src.step, w.srcRoi, dst.data(), dst.step, w.dstRoi, w.p0, w.p1,
                              w.p2, w.p3, interpolation);
}

bool InRect(PrimRect r, int32_t x, int32_t y) {
    return x >= r.x && x < r.x + r.width && y >= r.y && y < r.y + r.height;
}

// A pixel is written where two destinations that differ in every colour
// byte come out alike. The written pixels must be those whose source
// position lies inside the source rectangle (within a margin), each the
// kernel's sample at the position carried as running sums from the
// polygon's top row and the span's first pixel; all else stays. With
// InterpSmoothEdge the pixels outside the slanted edges are then blended.
// Returns the pixels written; counts the cases softening changed.
int CheckWarp(const WarpCase& w, int32_t mode, uint32_t seed, int* softened = nullptr) {
    ImageUnderTest src(w.srcSize.width, w.srcSize.height, w.srcPadding, 1, seed);
    ImageUnderTest dst(w.dstSize.width, w.dstSize.height, w.dstPadding, 2, seed + 1);
    ImageUnderTest other = dst;
    for (int32_t y = 0; y < dst.size.height; ++y)
        for (int32_t x = 0; x < dst.size.width; ++x)
            for (int c = 0; c < 3; ++c) other.at(x, y, c) ^= 0xFF;
    ImageUnderTest out = dst, outOther = other, smooth = dst;
    const PrimStatus status = RunWarp(w, src, out, mode);
    EXPECT_EQ(RunWarp(w, src, outOther, mode), status);
    EXPECT_EQ(RunWarp(w, src, smooth, mode | InterpSmoothEdge), status);
    // A source under 4 pixels across turns the cubic into the linear kernel.
    if (mode == InterpCubic && (w.srcSize.width < 4 || w.srcSize.height < 4)) mode = InterpLinear;

    PrimRect roi = w.srcRoi;  // cut back to the image
    roi.width = std::min(roi.width, w.srcSize.width - roi.x);
    roi.height = std::min(roi.height, w.srcSize.height - roi.y);
    const std::vector<Pt> quad = warpref::QuadOf(
        w.rotation ? warpref::RotationCoeffs(w.p0, w.p1, w.p2) : warpref::Coeffs{1.0, w.p0, w.p2, w.p1, 1.0, w.p3},
        roi);
    const warpref::Sampling s = warpref::SamplingOf(quad, roi);
    const std::vector<Pt> polygon = warpref::ClipToRect(quad, w.dstRoi.x, w.dstRoi.y, w.dstRoi.x + w.dstRoi.width - 1,
                                                        w.dstRoi.y + w.dstRoi.height - 1);
    // A margin for the spans' tolerance and the rounding of the inverse.
    const double margin = 1e-6;
    auto within = [&](double x, double y, double m) {
        return x >= roi.x - m && x <= roi.x + roi.width - 1 + m && y >= roi.y - m && y <= roi.y + roi.height - 1 + m;
    };

    ImageUnderTest expected = dst;
    int written = 0;
    double minX = INFINITY, maxX = -INFINITY, minY = INFINITY, maxY = -INFINITY;
    for (const Pt& p : polygon) {
        minX = std::min(minX, p.x), maxX = std::max(maxX, p.x);
        minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
    }
    const int32_t top = polygon.empty() ? 0 : int32_t(ceil(minY));
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
        for (int32_t px = first; px <= last; ++px, x += s.a, yy += s.c, ++written)
            warpref::Sample(mode, src, roi, x, yy, &expected.at(px, y, 0));
    }
    // Nothing to draw when the clip leaves no polygon, or one whose bounds
    // hold no pixel centre; a polygon can still hold none within it.
    const bool centres = !polygon.empty() && floor(maxX) >= ceil(minX) && floor(maxY) >= ceil(minY);
    EXPECT_EQ(status, centres ? PrimOk : PrimNoResultWrn);
    EXPECT_EQ(out.bytes, expected.bytes);
    if (status == PrimOk) warpref::SmoothEdges(expected, polygon, s.orientation, w.dstRoi);
    EXPECT_EQ(smooth.bytes, expected.bytes) << "softened";
    if (softened != nullptr) *softened += expected.bytes != out.bytes;
    return written;
}

// Random cases of awkward sizes: source rectangles that reach past the
// image, padded rows, destination rectangles inside their image. A shear
// moves the picture near the destination rectangle, some with level or
// upright edges or none slanted, some by whole or half pixels; a rotation
// turns it about a point near its own centre, some by exact quarter turns.
WarpCase RandomCase(std::mt19937& random, bool rotation) {
    auto pick = [&](int32_t lo, int32_t hi) { return std::uniform_int_distribution<int32_t>(lo, hi)(random); };
    auto real = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(random); };
    WarpCase w;
    w.srcSize = {pick(2, 23), pick(2, 17)};
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
    const int variant = pick(0, 5);
    if (rotation) {
        const double exact[] = {0.0, 90.0, 180.0, 270.0, 360.0, -90.0, 450.0, -180.0};
        w.p0 = variant == 0 ? exact[pick(0, 7)] : real(-400.0, 400.0);
        w.p1 = srcX + real(-3.0, 3.0), w.p2 = srcY + real(-3.0, 3.0);
    } else {
        do {
            w.p0 = variant == 1 || variant == 3 ? 0.0 : real(-1.3, 1.3);
            w.p1 = variant == 2 || variant == 3 ? 0.0 : real(-1.3, 1.3);
        } while (fabs(1.0 - w.p0 * w.p1) < 0.3);
        w.p2 = dstX - (srcX + w.p0 * srcY) + real(-6.0, 6.0);
        w.p3 = dstY - (w.p1 * srcX + srcY) + real(-6.0, 6.0);
        if (pick(0, 2) == 0) w.p2 = std::round(2 * w.p2) / 2, w.p3 = std::round(2 * w.p3) / 2;
    }
    return w;
}

class Warp : public EveryJumpIndex {};

TEST_P(Warp, EveryKernelOnRandomShearsAndRotations) {
    for (int32_t mode : {InterpNearest, InterpLinear, InterpCubic, InterpCatmullRom}) {
        std::mt19937 random(100 * mode);
        int written = 0, softened = 0;
        for (int i = 0; i < 400 && !HasFailure(); ++i) {
            const WarpCase w = RandomCase(random, i % 2 == 1);
            written += CheckWarp(w, mode, 100 * mode + i, &softened);
            if (HasFailure())
                ADD_FAILURE() << "kernel " << mode << " case " << i << (w.rotation ? " rotation " : " shear ") << w.p0
                              << " " << w.p1 << " " << w.p2 << " " << w.p3;
        }
        EXPECT_GT(written, 5000) << "the cases should draw";
        EXPECT_GT(softened, 150) << "the cases should soften";
    }
}

// A span end that misses a pixel centre by rounding only (1e-14) keeps the
// pixel; one that misses it by 1e-12 does not. A quad around the whole
// destination rectangle fills it. A 1080p frame turned about its centre
// sums its positions along rows of 1920 pixels and down 1080 rows.
TEST_P(Warp, SpanEndsCoveredRectanglesAndLongSums) {
    auto columns = [](double xShift) {
        WarpCase w = {{4, 3}, {0, 0, 4, 3}, {12, 5}, {0, 0, 12, 5}, 0, 0, false, 0.0, 0.0, xShift, 1.0};
        return CheckWarp(w, InterpLinear, 70) / 3;
    };
    EXPECT_EQ(columns(5.0), 4);
    EXPECT_EQ(columns(5.00000000000001), 4) << "first column 5, not 6";
    EXPECT_EQ(columns(4.99999999999999), 4) << "last column 8, not 7";
    EXPECT_EQ(columns(5.000000000001), 3);
    EXPECT_EQ(columns(4.999999999999), 3);

    WarpCase around = {{40, 40}, {0, 0, 40, 40}, {30, 30}, {15, 15, 10, 10}, 4, 0, true, 45.0, 20.0, 20.0, 0.0};
    EXPECT_EQ(CheckWarp(around, InterpLinear, 80), 100);
    WarpCase frame = {{1920, 1080}, {0, 0, 1920, 1080}, {1920, 1080}, {0, 0, 1920, 1080}, 0, 0, true,
                      60.0,         960.0,              540.0,        0.0};
    EXPECT_GT(CheckWarp(frame, InterpLinear, 90), 1000000);
}

// A quarter turn by whole shifts moves whole pixels: every pixel of the
// source rectangle (cut back to the image) goes where the turn takes it,
// three bytes, if it lands inside the destination rectangle.
PrimStatus ExpectedTurn(const WarpCase& t, ImageUnderTest& src, ImageUnderTest& dst) {
    const warpref::Coeffs m = warpref::RotationCoeffs(t.p0, t.p1, t.p2);
    bool any = false;
    for (int y = t.srcRoi.y; y < std::min(t.srcRoi.y + t.srcRoi.height, t.srcSize.height); ++y)
        for (int x = t.srcRoi.x; x < std::min(t.srcRoi.x + t.srcRoi.width, t.srcSize.width); ++x) {
            const int X = int(m.c00 * x + m.c01 * y + m.c02), Y = int(m.c10 * x + m.c11 * y + m.c12);
            if (!InRect(t.dstRoi, X, Y)) continue;
            for (int c = 0; c < 3; ++c) dst.at(X, Y, c) = src.at(x, y, c);
            any = true;
        }
    return any ? PrimOk : PrimNoOverlapWrn;
}

// Random rectangles of awkward sizes, blocks of 4x4 and their remainders,
// strips of 16 columns, centres whole or half-whole so that the shifts are
// whole, angles beyond a full turn and below zero. The interpolation word
// plays no part.
TEST_P(Warp, QuarterTurnsMoveColourBytesOnly) {
    std::mt19937 random(77);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    const double angles[] = {90, 180, 270, 450, -90, -180, 630, -450, 990};
    int drawn = 0;
    for (int i = 0; i < 300; ++i) {
        WarpCase t;
        t.srcSize = {pick(1, 75), pick(1, 67)};
        t.srcRoi = {pick(0, t.srcSize.width / 3), pick(0, t.srcSize.height / 3), pick(1, 80), pick(1, 80)};
        t.dstSize = {pick(1, 77), pick(1, 71)};
        t.dstRoi = {pick(0, t.dstSize.width / 4), pick(0, t.dstSize.height / 4), 0, 0};
        t.dstRoi.width = pick((t.dstSize.width - t.dstRoi.x + 1) / 2, t.dstSize.width - t.dstRoi.x);
        t.dstRoi.height = pick((t.dstSize.height - t.dstRoi.y + 1) / 2, t.dstSize.height - t.dstRoi.y);
        const double half = (i / 9) % 2 == 0 ? 0.0 : 0.5;
        t.rotation = true, t.p0 = angles[i % 9];
        t.p1 = pick(0, t.srcSize.width) + half, t.p2 = pick(0, t.srcSize.height) + half;

        ImageUnderTest src(t.srcSize.width, t.srcSize.height, pick(0, 9), pick(0, 3), 1000 + i);
        ImageUnderTest dst(t.dstSize.width, t.dstSize.height, pick(0, 9), pick(0, 3), 2000 + i);
        ImageUnderTest expected = dst;
        const PrimStatus status = ExpectedTurn(t, src, expected);
        ASSERT_EQ(RunWarp(t, src, dst, i % 3 == 0 ? 12345 : 0x80000002), status) << "case " << i;
        ASSERT_EQ(dst.bytes, expected.bytes) << "case " << i << " angle " << t.p0;
        drawn += status == PrimOk;
    }
    EXPECT_GT(drawn, 90);
}

// The quarter turns' exact path tests pointers, sizes and rectangles, the
// source origin, then whether the turned box misses; no step.
TEST_P(Warp, QuarterTurnRefusalsInTheirOrder) {
    ImageUnderTest src(6, 4, 0, 0, 5), dst(6, 4, 0, 0, 6);
    const auto before = dst.bytes;
    const PrimRect all = {0, 0, 6, 4};
    auto turn = [&](const uint8_t* s, PrimSize size, PrimRect sr, uint8_t* d, PrimRect dr, double xc, double yc) {
        return primiRotateCenter_8u_AC4R(s, size, 0, sr, d, -7, dr, 90.0, xc, yc, 77);
    };
    EXPECT_EQ(turn(nullptr, {0, 0}, all, dst.data(), all, 2, 2), PrimNullPtrErr);
    EXPECT_EQ(turn(src.data(), {0, 4}, all, nullptr, all, 2, 2), PrimNullPtrErr);
    EXPECT_EQ(turn(src.data(), {6, 0}, {9, 9, 1, 1}, dst.data(), all, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {0, -1, 6, 4}, dst.data(), all, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {0, 0, 0, 4}, dst.data(), all, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {6, 0, 1, 1}, dst.data(), {-1, 0, 6, 4}, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {6, 0, 1, 1}, dst.data(), {0, 0, 6, 0}, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {6, 0, 1, 1}, dst.data(), all, 2, 2), PrimNoOverlapWrn);
    EXPECT_EQ(turn(src.data(), {6, 4}, {0, 4, 1, 1}, dst.data(), all, 2, 2), PrimNoOverlapWrn);
    EXPECT_EQ(turn(src.data(), {6, 4}, all, dst.data(), all, 40, 2), PrimNoOverlapWrn);
    EXPECT_EQ(dst.bytes, before);
}

// The shear tests its steps first, the rotation never; nothing is written
// on any refusal.
TEST_P(Warp, RefusalsInTheirOrder) {
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
    EXPECT_EQ(dst.bytes, before);

    // The rotation tests no step: a step of 0 reads the first row over and over.
    EXPECT_EQ(primiRotateCenter_8u_AC4R(src.data(), size, 0, all, dst.data(), dst.step, all, 30.0, 4.0, 3.0, 7),
              PrimInterpolationErr);
    EXPECT_EQ(dst.bytes, before);
    EXPECT_EQ(primiRotateCenter_8u_AC4R(src.data(), size, 0, all, dst.data(), dst.step, all, 0.0, 4.0, 3.0, 1),
              PrimOk);
    for (int32_t y = 0; y < 6; ++y)
        for (int32_t x = 0; x < 8; ++x) EXPECT_EQ(dst.at(x, y, 1), src.at(x, 0, 1));
    EXPECT_EQ(shear(src.data(), size, 32, all, dst.data(), 32, all, 0.5, 0.5, 2 | InterpSmoothEdge), PrimOk);
}

// A near-singular determinant is judged relative to c00 c11. A turn by NaN
// degrees or a shift to infinity draws nothing, nor does a quad that ends
// at x = 7.4, short of the rectangle's first column.
TEST_P(Warp, SingularAndUndrawableTransforms) {
    ImageUnderTest src(8, 6, 0, 0, 50), dst(20, 20, 0, 0, 51);
    const auto before = dst.bytes;
    auto shear = [&](double xs, double ys, double xShift, PrimRect dstRoi) {
        return primiShear_8u_AC4R(src.data(), src.size, src.step, {0, 0, 8, 6}, dst.data(), dst.step, dstRoi, xs, ys,
                                  xShift, 0.0, kSmoothLinear);
    };
    EXPECT_EQ(shear(2.0, 0.5, 0.0, {0, 0, 8, 6}), PrimCoeffErr);
    EXPECT_EQ(shear(2.0, 0.5 + 1e-12, 0.0, {0, 0, 8, 6}), PrimCoeffErr);
    EXPECT_EQ(shear(0.0, 0.0, INFINITY, {0, 0, 20, 20}), PrimNoResultWrn);
    EXPECT_EQ(shear(0.0, 0.0, 0.4, {8, 0, 12, 20}), PrimNoResultWrn);
    EXPECT_EQ(primiRotateCenter_8u_AC4R(src.data(), src.size, src.step, {0, 0, 8, 6}, dst.data(), dst.step,
                                        {0, 0, 20, 20}, std::nan(""), 3.0, 3.0, kSmoothLinear),
              PrimNoResultWrn);
    EXPECT_EQ(dst.bytes, before);
    EXPECT_NE(shear(2.0, 0.5 + 1e-9, 0.0, {0, 0, 8, 6}), PrimCoeffErr);
    EXPECT_EQ(shear(-1.0, 1.0, 0.0, {0, 0, 8, 6}), PrimOk) << "p = 1, q = -1";
}

// The warp's helpers: the shifts of a rotation need both outputs; a
// rectangle with a negative origin or no area is a size error, and one that
// the transform flattens, or one column wide, gives a degenerate quad.
TEST_P(Warp, HelpersRefuseBadArguments) {
    auto shift = KV_BUILD(primiGetRotateShift, GetParam());
    double x;
    EXPECT_EQ(shift(1.0, 1.0, 30.0, &x, nullptr), PrimNullPtrErr);
    EXPECT_EQ(shift(1.0, 1.0, 30.0, nullptr, &x), PrimNullPtrErr);

    auto quadOf = KV_BUILD(primiGetAffineQuad, GetParam());
    const double identity[2][3] = {{1, 0, 0}, {0, 1, 0}}, flat[2][3] = {{1, 2, 0}, {2, 4, 0}};
    double quad[4][2];
    for (PrimRect r : {PrimRect{-1, 0, 4, 4}, PrimRect{0, -1, 4, 4}, PrimRect{0, 0, 0, 4}, PrimRect{0, 0, 4, 0}})
        EXPECT_EQ(quadOf(r, quad, identity), PrimSizeErr);
    EXPECT_EQ(quadOf({0, 0, 4, 4}, quad, flat), PrimCoeffErr);
    EXPECT_EQ(quadOf({0, 0, 1, 4}, quad, identity), PrimCoeffErr);
    EXPECT_EQ(quadOf({0, 0, 2, 2}, quad, identity), PrimOk);
}

KV_ALL_JUMP_INDICES(Warp);

}  // namespace
