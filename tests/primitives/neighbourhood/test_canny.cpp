// The Canny detector: magnitudes, suppression with its tie rule and
// hysteresis against a plain reference, on random and on structured
// gradients; the thresholds' edges; the buffer size; the argument checks.
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "edges_reference.h"
#include "jump_index.h"
#include "test_support.h"

namespace {

constexpr uint8_t kUntouched = 0x5A;

// Two gradient images sharing one row stride, and a destination whose rows
// carry padding that must stay as it was.
struct Gradients {
    Gradients(PrimSize size, int32_t padding) : size(size), stride(size.width + padding) {
        dx.assign(size_t(stride) * size.height, 0);
        dy.assign(size_t(stride) * size.height, 0);
    }
    int16_t& Dx(int32_t x, int32_t y) { return dx[size_t(y) * stride + x]; }
    int16_t& Dy(int32_t x, int32_t y) { return dy[size_t(y) * stride + x]; }

    PrimSize size;
    int32_t stride;
    std::vector<int16_t> dx, dy;
};

struct Outcome {
    PrimStatus status;
    std::vector<uint8_t> edges;  // the region, row after row
    int32_t touched;             // padding bytes that changed
};

Outcome RunCanny(const Gradients& g, float low, float high, int32_t dstPadding = 3) {
    int32_t bytes = 0;
    EXPECT_EQ(primiCannyGetSize(g.size, &bytes), PrimOk);
    std::vector<uint8_t> work(size_t(bytes) + 1);
    const int32_t dstStep = g.size.width + dstPadding;
    std::vector<uint8_t> dst(size_t(dstStep) * g.size.height, kUntouched);
    Outcome outcome;
    outcome.status = primiCanny_16s8u_C1R(g.dx.data(), 2 * g.stride, g.dy.data(), 2 * g.stride, dst.data(), dstStep,
                                          g.size, low, high, work.data() + 1);
    outcome.touched = 0;
    for (int32_t y = 0; y < g.size.height; ++y) {
        const uint8_t* row = &dst[size_t(y) * dstStep];
        outcome.edges.insert(outcome.edges.end(), row, row + g.size.width);
        for (int32_t x = g.size.width; x < dstStep; ++x) outcome.touched += row[x] != kUntouched;
    }
    return outcome;
}

void ExpectReference(const Gradients& g, float low, float high, const char* what) {
    Outcome outcome = RunCanny(g, low, high);
    ASSERT_EQ(outcome.status, PrimOk);
    ASSERT_EQ(outcome.edges, kvtest::CannyReference(g.dx.data(), g.dy.data(), g.stride, g.size, low, high))
        << what << " " << g.size.width << "x" << g.size.height << " thresholds " << low << ", " << high;
    ASSERT_EQ(outcome.touched, 0) << what;
}

class Canny : public EveryJumpIndex {};

const PrimSize kSizes[] = {{1, 1}, {1, 9},  {9, 1},   {2, 2},   {3, 5},   {4, 4},  {5, 3},   {7, 8},  {8, 7},
                           {9, 9}, {12, 5}, {15, 16}, {16, 15}, {17, 13}, {31, 9}, {33, 40}, {64, 3}, {45, 45}};

TEST_P(Canny, EqualsTheReferenceOnRandomGradients) {
    std::mt19937 generator(7);
    // A narrow range gives many equal magnitudes; the full range reaches
    // the saturation of the wide sums.
    const int32_t ranges[] = {3, 40, 600, 32768};
    for (const PrimSize& size : kSizes)
        for (int32_t range : ranges) {
            Gradients g(size, 5);
            std::uniform_int_distribution<int32_t> value(-range, range - 1);
            for (auto& v : g.dx) v = static_cast<int16_t>(value(generator));
            for (auto& v : g.dy) v = static_cast<int16_t>(value(generator));
            const float scale = float(range) / 3.0f;
            ExpectReference(g, scale * 0.5f, scale * 1.25f, "random");
            ExpectReference(g, 0.0f, scale * 0.5f + 0.25f, "random");
            ExpectReference(g, scale, scale, "random, equal thresholds");
        }
}

// Steps, ramps and plateaus in every orientation: ties between neighbours
// everywhere, and direction ratios that sit on the tangent bounds.
TEST_P(Canny, EqualsTheReferenceOnStructuredGradients) {
    auto shape = [](int32_t kind, int32_t x, int32_t y, int16_t* dx, int16_t* dy) {
        switch (kind) {
            case 0:
                *dx = 100, *dy = 0;
                break;  // plateau, horizontal gradient
            case 1:
                *dx = 0, *dy = 100;
                break;  // plateau, vertical gradient
            case 2:
                *dx = 70, *dy = 70;
                break;  // plateau, diagonal
            case 3:
                *dx = -70, *dy = 70;
                break;  // plateau, anti-diagonal
            case 4:
                *dx = static_cast<int16_t>(x % 5 == 2 ? 300 : 40), *dy = 12;
                break;  // vertical lines
            case 5:
                *dx = static_cast<int16_t>(10 * x), *dy = static_cast<int16_t>(10 * y);
                break;  // ramps
            case 6:
                *dx = static_cast<int16_t>(5 * (x + y)), *dy = static_cast<int16_t>(12 * (x + y));
                break;  // tan 67.5
            case 7:
                *dx = static_cast<int16_t>(12 * (x + y)), *dy = static_cast<int16_t>(5 * (x + y));
                break;  // tan 22.5
            default:
                *dx = static_cast<int16_t>((x / 3) * 50 - 200), *dy = static_cast<int16_t>((y / 2) % 3 * 40);
                break;
        }
    };
    for (const PrimSize& size : kSizes)
        for (int32_t kind = 0; kind <= 8; ++kind) {
            Gradients g(size, 2);
            for (int32_t y = 0; y < size.height; ++y)
                for (int32_t x = 0; x < size.width; ++x) shape(kind, x, y, &g.Dx(x, y), &g.Dy(x, y));
            ExpectReference(g, 30.0f, 150.0f, "structured");
            ExpectReference(g, 140.0f, 140.0f, "structured, equal thresholds");
        }
}

TEST_P(Canny, BreaksTiesByDirection) {
    // Two vertically adjacent pixels of one magnitude with a vertical
    // gradient: the upper one survives (equal to the one below), the lower
    // one does not (not above the one above).
    Gradients pair({8, 4}, 0);
    pair.Dy(3, 1) = pair.Dy(3, 2) = 50;
    EXPECT_EQ(RunCanny(pair, 10, 20).edges[1 * 8 + 3], 255);
    EXPECT_EQ(RunCanny(pair, 10, 20).edges[2 * 8 + 3], 0);
    // Along a diagonal neither survives.
    Gradients diagonal({8, 4}, 0);
    diagonal.Dx(3, 1) = diagonal.Dy(3, 1) = diagonal.Dx(4, 2) = diagonal.Dy(4, 2) = 50;
    EXPECT_EQ(RunCanny(diagonal, 10, 20).edges, std::vector<uint8_t>(32, 0));
    // A horizontal ridge with a vertical gradient is kept whole.
    Gradients ridge({11, 3}, 0);
    for (int32_t x = 0; x < 11; ++x) ridge.Dy(x, 1) = 90;
    std::vector<uint8_t> expected(33, 0);
    for (int32_t x = 0; x < 11; ++x) expected[11 + x] = 255;
    EXPECT_EQ(RunCanny(ridge, 10, 20).edges, expected);
}

TEST_P(Canny, ThresholdsAreStrict) {
    Gradients g({5, 1}, 0);
    const int16_t dx[5] = {0, 30, 0, 40, 0};
    for (int32_t x = 0; x < 5; ++x) g.Dx(x, 0) = dx[x];
    // 30 equal to low is no candidate; 40 equal to high is no seed.
    EXPECT_EQ(RunCanny(g, 30.0f, 40.0f).edges, std::vector<uint8_t>(5, 0));
    // A candidate that touches no edge pixel stays out.
    EXPECT_EQ(RunCanny(g, 29.5f, 39.5f).edges, (std::vector<uint8_t>{0, 0, 0, 255, 0}));
    EXPECT_EQ(RunCanny(g, 29.5f, 29.5f).edges, (std::vector<uint8_t>{0, 255, 0, 255, 0}));
    // A threshold of 0 keeps no zero magnitudes; all zero gives all zero.
    Gradients zero({6, 3}, 1);
    EXPECT_EQ(RunCanny(zero, 0.0f, 0.0f).edges, std::vector<uint8_t>(18, 0));
    EXPECT_EQ(RunCanny(g, 0.0f, 1e30f).edges, std::vector<uint8_t>(5, 0));
}

// Two gradients of -32768 make 65535 in the eight-wide columns of a row and
// 65536 in its tail; only the tail is above a threshold between the two.
TEST_P(Canny, WideColumnsSaturateTheirMagnitudes) {
    Gradients g({9, 1}, 0);
    for (int32_t x = 0; x < 9; ++x) g.Dx(x, 0) = g.Dy(x, 0) = -32768;
    std::vector<uint8_t> expected(9, 0);
    expected[8] = 255;
    EXPECT_EQ(RunCanny(g, 65535.5f, 65535.5f).edges, expected);
}

// dx 3771, dy 9104: |dx| tan 67.5 is 9104 exactly in single precision and
// 9103.999 in double rounded to single. So the gradient is diagonal in the
// four-wide columns and vertical in the tail of a row, where the stronger
// pixel below suppresses it. Otherwise it is a candidate joined to that seed.
TEST_P(Canny, DirectionTestsOfTheWideColumnsAndOfTheTailDiffer) {
    for (int32_t x : {3, 4}) {
        Gradients g({5, 3}, 0);
        g.Dx(x, 1) = 3771;
        g.Dy(x, 1) = 9104;
        g.Dy(x, 2) = 20000;
        auto edges = RunCanny(g, 100.0f, 15000.0f).edges;
        EXPECT_EQ(edges[2 * 5 + x], 255);
        EXPECT_EQ(edges[1 * 5 + x], x < 4 ? 255 : 0) << "column " << x;
    }
}

TEST_P(Canny, TakesTheWideStackFromWidthOrHeight65533) {
    int32_t bytes = 0;
    ASSERT_EQ(primiCannyGetSize({65532, 1}, &bytes), PrimOk);
    EXPECT_EQ(bytes, 65534 * 3 * 5 + 16 * 65532 + 160);
    ASSERT_EQ(primiCannyGetSize({65533, 1}, &bytes), PrimOk);
    EXPECT_EQ(bytes, 65535 * 3 * 9 + 16 * 65533 + 160);
    ASSERT_EQ(primiCannyGetSize({2, 65533}, &bytes), PrimOk);
    EXPECT_EQ(bytes, 4 * 65535 * 9 + 16 * 2 + 160);
    std::mt19937 generator(11);
    std::uniform_int_distribution<int32_t> value(-60, 59);
    for (PrimSize size : {PrimSize{65533, 3}, PrimSize{3, 65533}, PrimSize{65532, 2}}) {
        Gradients g(size, 1);
        for (auto& v : g.dx) v = static_cast<int16_t>(value(generator));
        for (auto& v : g.dy) v = static_cast<int16_t>(value(generator));
        ExpectReference(g, 20.0f, 60.0f, "wide");
    }
}

TEST_P(Canny, ChecksArgumentsInOrderAndWritesNothingOnError) {
    int32_t bytes = -1;
    EXPECT_EQ(primiCannyGetSize({0, 0}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiCannyGetSize({3, 0}, &bytes), PrimSizeErr);
    EXPECT_EQ(bytes, -1);

    std::vector<int16_t> dx(64, 9), dy(64, 9);
    std::vector<uint8_t> dst(64, kUntouched), work(4096, 0xEE);
    auto call = [&](const int16_t* x, int32_t xStep, int32_t yStep, uint8_t* out, int32_t dstStep, PrimSize size,
                    float low, float high, uint8_t* buffer) {
        return primiCanny_16s8u_C1R(x, xStep, dy.data(), yStep, out, dstStep, size, low, high, buffer);
    };
    const PrimSize size = {4, 4};
    EXPECT_EQ(call(dx.data(), 8, 8, dst.data(), 4, {0, 4}, 1, 2, nullptr), PrimNullPtrErr);
    EXPECT_EQ(call(nullptr, 8, 8, dst.data(), 4, size, 1, 2, work.data()), PrimNullPtrErr);
    EXPECT_EQ(call(dx.data(), 8, 8, nullptr, 4, size, 1, 2, work.data()), PrimNullPtrErr);
    EXPECT_EQ(call(dx.data(), 1, 1, dst.data(), 1, {4, 0}, -1, 2, work.data()), PrimSizeErr);
    EXPECT_EQ(call(dx.data(), 7, 8, dst.data(), 4, size, -1, 2, work.data()), PrimStepErr) << "odd and too small";
    EXPECT_EQ(call(dx.data(), 8, 6, dst.data(), 4, size, 1, 2, work.data()), PrimStepErr);
    EXPECT_EQ(call(dx.data(), 8, 8, dst.data(), 3, size, 1, 2, work.data()), PrimStepErr);
    EXPECT_EQ(call(dx.data(), 9, 8, dst.data(), 4, size, -1, 2, work.data()), PrimStepNotEvenErr);
    EXPECT_EQ(call(dx.data(), 8, 11, dst.data(), 4, size, 3, 2, work.data()), PrimStepNotEvenErr);
    EXPECT_EQ(call(dx.data(), 8, 8, dst.data(), 4, size, -0.5f, 2, work.data()), PrimBadArgErr);
    EXPECT_EQ(call(dx.data(), 8, 8, dst.data(), 4, size, 3, 2, work.data()), PrimBadArgErr);
    EXPECT_EQ(dst, std::vector<uint8_t>(64, kUntouched));
    EXPECT_EQ(work, std::vector<uint8_t>(4096, 0xEE));
    // Equal thresholds are accepted, and the region is cleared first.
    EXPECT_EQ(call(dx.data(), 8, 8, dst.data(), 4, size, 100, 100, work.data()), PrimOk);
    EXPECT_EQ(std::vector<uint8_t>(dst.begin(), dst.begin() + 16), std::vector<uint8_t>(16, 0));
}

KV_ALL_JUMP_INDICES(Canny);

}  // namespace
