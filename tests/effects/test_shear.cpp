// The "Shear" effect: its words, its picture over opaque black, and the
// buffer size it keeps in statics shared by every instance.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

TEST(ShearEffect, PresetAndClampedPercentages) {
    Effect_Base* shear = Kelvarine_NewInstance(1054);
    ASSERT_NE(shear, nullptr);
    EffectArgs args = {{9, 9, 9, 9, 9, 9}};
    EXPECT_EQ(shear->GetArgs(&args), 0);
    EXPECT_EQ(args.word[0], -10);
    EXPECT_EQ(args.word[1], -10);
    EXPECT_EQ(args.word[2], 9) << "only words 0 and 1 are written";
    EffectArgs wild = {{80, -80}};
    EXPECT_EQ(shear->SetArgs(&wild), 0);
    shear->GetArgs(&args);
    EXPECT_EQ(args.word[0], 50);
    EXPECT_EQ(args.word[1], -50);
    Kelvarine_Destory(shear);
}

// The shear of the whole frame into opaque black, with the shifts
// -height * yShear / 2 and -width * xShear / 2, bilinear with softened
// edges; all four bytes of the result replace the frame.
Bytes Sheared(const Bytes& frame, int w, int h, double xShear, double yShear) {
    Bytes buffer(frame.size());
    for (size_t i = 0; i < buffer.size(); ++i) buffer[i] = i % 4 == 3 ? 255 : 0;
    const PrimRect whole = {0, 0, w, h};
    primiShear_8u_AC4R(frame.data(), {w, h}, 4 * w, whole, buffer.data(), 4 * w, whole, xShear, yShear,
                       -h * yShear * 0.5, -w * xShear * 0.5, InterpLinear | InterpSmoothEdge);
    return buffer;
}

TEST(ShearEffect, ShearsOverOpaqueBlack) {
    const int sizes[][2] = {{2, 2}, {5, 3}, {17, 9}, {40, 31}, {64, 48}};
    const int32_t shears[][2] = {{-10, -10}, {50, 50}, {-50, 20}, {0, 0}, {33, -7}};
    Effect_Base* shear = Kelvarine_NewInstance(1054);
    for (const auto& s : shears) {
        EffectArgs args = {{s[0], s[1]}};
        shear->SetArgs(&args);
        for (const auto& size : sizes) {
            const int w = size[0], h = size[1];
            Bytes frame = kvtest::RandomBytes(w * h * 4, 3 * w + h);
            const Bytes expected = Sheared(frame, w, h, s[0] / 100.0, s[1] / 100.0);
            ASSERT_EQ(Kelvarine_Proc(shear, frame.data(), w, h), 0);
            EXPECT_EQ(frame, expected) << s[0] << "," << s[1] << " at " << w << "x" << h;
            for (size_t i = 3; i < frame.size(); i += 4) ASSERT_EQ(frame[i], 255);
        }
    }
    Kelvarine_Destory(shear);
}

// The shifts pair each size with the other axis's shear: 50% along x alone
// moves the picture up by a quarter of the width and leaves it sheared in x
// about the top edge, so the frame's lower rows are black.
TEST(ShearEffect, UnequalShearsLeaveTheCentre) {
    Effect_Base* shear = Kelvarine_NewInstance(1054);
    EffectArgs args = {{50, 0}};
    shear->SetArgs(&args);
    const int w = 8, h = 4;
    Bytes frame = kvtest::RandomBytes(w * h * 4, 12);
    const Bytes before = frame;
    Kelvarine_Proc(shear, frame.data(), w, h);
    for (int x = 1; x < w; ++x)
        for (int c = 0; c < 3; ++c) EXPECT_EQ(frame[x * 4 + c], before[(2 * w + x - 1) * 4 + c]) << "row 2 moved up";
    for (int i = 2 * w * 4; i < w * h * 4; ++i) EXPECT_EQ(frame[i], i % 4 == 3 ? 255 : 0) << "byte " << i;
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
