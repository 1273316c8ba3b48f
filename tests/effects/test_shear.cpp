// The "Shear" effect: its words, its picture over opaque black, and the
// buffer size it keeps in statics shared by every instance.
#include <cstdlib>

#include "geometry_effect_support.h"
#include "kelvarine_prims.h"

namespace {

using kvgeo::Bytes;
using kvgeo::Words;

// The shear of the whole frame into opaque black, with the shifts
// -height * yShear / 2 and -width * xShear / 2 (each size paired with the
// other axis's shear), bilinear with softened edges; all four bytes of the
// result replace the frame.
Bytes Sheared(const Bytes& frame, int w, int h, double xShear, double yShear) {
    Bytes buffer(frame.size());
    for (size_t i = 0; i < buffer.size(); ++i) buffer[i] = i % 4 == 3 ? 255 : 0;
    const PrimRect whole = {0, 0, w, h};
    primiShear_8u_AC4R(frame.data(), {w, h}, 4 * w, whole, buffer.data(), 4 * w, whole, xShear, yShear,
                       -h * yShear * 0.5, -w * xShear * 0.5, InterpLinear | InterpSmoothEdge);
    return buffer;
}

// The preset and percentages held to -50..50, on frames of awkward sizes
// taken one after another by the same instance.
TEST(ShearEffect, ShearsOverOpaqueBlack) {
    Effect_Base* shear = Kelvarine_NewInstance(1054);
    ASSERT_NE(shear, nullptr);
    EXPECT_EQ(kvgeo::WordsOf(shear, 2), (Words{-10, -10}));
    const int32_t settings[][4] = {{-10, -10, -10, -10}, {80, 50, 50, 50}, {-50, 20, -50, 20}, {0, 0, 0, 0},
                                   {33, -80, 33, -50}};
    for (const auto& s : settings) {
        EXPECT_EQ(kvgeo::WordsOf(shear, 2, {s[0], s[1]}), (Words{s[2], s[3]})) << s[0] << "," << s[1];
        const double xShear = s[2] / 100.0, yShear = s[3] / 100.0;
        kvgeo::ExpectFrames(shear, {{2, 2}, {5, 3}, {17, 9}, {40, 31}, {64, 48}}, 3,
                            [&](const Bytes& frame, int w, int h) { return Sheared(frame, w, h, xShear, yShear); });
    }
    Kelvarine_Destory(shear);
}

size_t gBufferBytes = 0;
int gBufferMallocs = 0;
void* CountingMalloc(size_t n) {
    gBufferMallocs += n == gBufferBytes + 40;
    return std::malloc(n);
}

int BufferMallocs(Effect_Base* shear, Bytes& frame, int w, int h) {
    gBufferBytes = size_t(w) * h * 4;
    gBufferMallocs = 0;
    shear->Proc(frame.data(), w, h);
    return gBufferMallocs;
}

// The size of the last allocation by any instance decides: an instance
// whose frame has that size keeps its own buffer, whatever it was made for;
// two instances alternating between sizes make each other allocate again.
// Each run still shears correctly while its buffer is large enough.
TEST(ShearEffect, InstancesShareTheRecordedSize) {
    i_malloc = CountingMalloc;
    Effect_Base* a = Kelvarine_NewInstance(1054);
    Effect_Base* b = Kelvarine_NewInstance(1054);
    Bytes large = kvtest::RandomBytes(21 * 13 * 4, 1), small = kvtest::RandomBytes(11 * 6 * 4, 2);
    const Bytes smallBefore = small;
    EXPECT_EQ(BufferMallocs(a, large, 21, 13), 1);
    EXPECT_EQ(BufferMallocs(a, large, 21, 13), 0);
    EXPECT_EQ(BufferMallocs(b, small, 11, 6), 1);
    small = smallBefore;
    EXPECT_EQ(BufferMallocs(a, small, 11, 6), 0) << "a's larger buffer serves the recorded size";
    EXPECT_EQ(small, Sheared(smallBefore, 11, 6, -0.1, -0.1));
    EXPECT_EQ(BufferMallocs(a, large, 21, 13), 1);
    EXPECT_EQ(BufferMallocs(b, small, 11, 6), 1);
    EXPECT_EQ(BufferMallocs(a, large, 21, 13), 1);
    Kelvarine_Destory(a);
    Kelvarine_Destory(b);
    i_malloc = std::malloc;
}

}  // namespace
