// The Canny detector against the plain reference on random gradients, the
// few cases they do not reach, the buffer size and the checks.
#include <random>
#include <vector>

#include "edges_reference.h"
#include "jump_index.h"

namespace {

constexpr uint8_t kUntouched = 0x5A;

// Two gradient images sharing one row stride.
struct Gradients {
    Gradients(PrimSize size, int32_t padding)
        : size(size), stride(size.width + padding), dx(size_t(stride) * size.height), dy(dx.size()) {}
    void Set(int32_t x, int32_t y, int32_t gx, int32_t gy) {
        dx[size_t(y) * stride + x] = int16_t(gx), dy[size_t(y) * stride + x] = int16_t(gy);
    }

    PrimSize size;
    int32_t stride;
    std::vector<int16_t> dx, dy;
};

// The region's edges, row after row, from a work buffer of the reported
// size; the padding after each row must stay.
std::vector<uint8_t> RunCanny(const Gradients& g, float low, float high) {
    int32_t bytes = 0;
    EXPECT_EQ(primiCannyGetSize(g.size, &bytes), PrimOk);
    std::vector<uint8_t> work(size_t(bytes) + 1), edges;
    const int32_t step = g.size.width + 3;
    std::vector<uint8_t> dst(size_t(step) * g.size.height, kUntouched);
    EXPECT_EQ(primiCanny_16s8u_C1R(g.dx.data(), 2 * g.stride, g.dy.data(), 2 * g.stride, dst.data(), step, g.size, low,
                                   high, work.data() + 1),
              PrimOk);
    for (auto row = dst.begin(); row != dst.end(); row += step) {
        edges.insert(edges.end(), row, row + g.size.width);
        EXPECT_EQ(std::vector<uint8_t>(row + g.size.width, row + step), std::vector<uint8_t>(3, kUntouched));
    }
    return edges;
}

void ExpectReference(const Gradients& g, float low, float high) {
    ASSERT_EQ(RunCanny(g, low, high), kvtest::CannyReference(g.dx.data(), g.dy.data(), g.stride, g.size, low, high))
        << g.size.width << "x" << g.size.height << " thresholds " << low << ", " << high;
}

class Canny : public EveryJumpIndex {};

const PrimSize kSizes[] = {{1, 1}, {1, 9},  {9, 1},   {2, 2},   {3, 5},   {4, 4},  {5, 3},   {7, 8},  {8, 7},
                           {9, 9}, {12, 5}, {15, 16}, {16, 15}, {17, 13}, {31, 9}, {33, 40}, {64, 3}, {45, 45}};

// A narrow range gives many equal magnitudes, so ties in every direction and
// thresholds equal to magnitudes; wider ranges give directions near the
// tangent bounds.
TEST_P(Canny, EqualsTheReferenceOnRandomGradients) {
    std::mt19937 generator(7);
    for (const PrimSize& size : kSizes)
        for (int32_t range : {3, 40, 600, 32768}) {
            Gradients g(size, 5);
            std::uniform_int_distribution<int32_t> value(-range, range - 1);
            for (auto& v : g.dx) v = int16_t(value(generator));
            for (auto& v : g.dy) v = int16_t(value(generator));
            const float scale = float(range) / 3.0f;
            ExpectReference(g, scale * 0.5f, scale * 1.25f);
            ExpectReference(g, 0.0f, scale * 0.5f + 0.25f);
            ExpectReference(g, scale, scale);
        }
}

// Two gradients of -32768 make 65535 in the eight-wide columns of a row and
// 65536 in its tail; only the tail is above a threshold between the two.
TEST_P(Canny, WideColumnsSaturateTheirMagnitudes) {
    Gradients g({9, 1}, 0);
    for (int32_t x = 0; x < 9; ++x) g.Set(x, 0, -32768, -32768);
    EXPECT_EQ(RunCanny(g, 65535.5f, 65535.5f), (std::vector<uint8_t>{0, 0, 0, 0, 0, 0, 0, 0, 255}));
}

// dx 3771, dy 9104: |dx| tan 67.5 is 9104 exactly in single precision and
// 9103.999 in double rounded to single. So the gradient is diagonal in the
// four-wide columns and vertical in the tail of a row, where the stronger
// pixel below suppresses it. Otherwise it is a candidate joined to that seed.
TEST_P(Canny, DirectionTestsOfTheWideColumnsAndOfTheTailDiffer) {
    for (int32_t x : {3, 4}) {
        Gradients g({5, 3}, 0);
        g.Set(x, 1, 3771, 9104);
        g.Set(x, 2, 0, 20000);
        auto edges = RunCanny(g, 100.0f, 15000.0f);
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
        for (auto& v : g.dx) v = int16_t(value(generator));
        for (auto& v : g.dy) v = int16_t(value(generator));
        ExpectReference(g, 20.0f, 60.0f);
    }
}

TEST_P(Canny, ChecksArgumentsInOrderAndWritesNothingOnError) {
    int32_t bytes = -1;
    EXPECT_EQ(primiCannyGetSize({0, 0}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiCannyGetSize({3, 0}, &bytes), PrimSizeErr);
    EXPECT_EQ(bytes, -1);

    std::vector<int16_t> dx(64, 9), dy(64, 9);
    std::vector<uint8_t> dst(64, kUntouched), work(4096, 0xEE);
    auto call = [&](const int16_t* x, int32_t xStep, int32_t yStep, int32_t dstStep, PrimSize size, float low,
                    float high, uint8_t* buffer) {
        return primiCanny_16s8u_C1R(x, xStep, dy.data(), yStep, dst.data(), dstStep, size, low, high, buffer);
    };
    const PrimSize size = {4, 4};
    EXPECT_EQ(call(dx.data(), 8, 8, 4, {0, 4}, 1, 2, nullptr), PrimNullPtrErr);
    EXPECT_EQ(call(nullptr, 8, 8, 4, size, 1, 2, work.data()), PrimNullPtrErr);
    EXPECT_EQ(call(dx.data(), 1, 1, 1, {4, 0}, -1, 2, work.data()), PrimSizeErr);
    EXPECT_EQ(call(dx.data(), 7, 8, 4, size, -1, 2, work.data()), PrimStepErr) << "odd and too small";
    EXPECT_EQ(call(dx.data(), 8, 8, 3, size, 1, 2, work.data()), PrimStepErr);
    EXPECT_EQ(call(dx.data(), 8, 11, 4, size, 3, 2, work.data()), PrimStepNotEvenErr);
    EXPECT_EQ(call(dx.data(), 8, 8, 4, size, -0.5f, 2, work.data()), PrimBadArgErr);
    EXPECT_EQ(call(dx.data(), 8, 8, 4, size, 3, 2, work.data()), PrimBadArgErr);
    EXPECT_EQ(dst, std::vector<uint8_t>(64, kUntouched));
    EXPECT_EQ(work, std::vector<uint8_t>(4096, 0xEE));
    // Equal thresholds are accepted, and the region is cleared first.
    EXPECT_EQ(call(dx.data(), 8, 8, 4, size, 100, 100, work.data()), PrimOk);
    EXPECT_EQ(std::vector<uint8_t>(dst.begin(), dst.begin() + 16), std::vector<uint8_t>(16, 0));
}

KV_ALL_JUMP_INDICES(Canny);

}  // namespace
