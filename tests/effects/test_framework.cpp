#include <gtest/gtest.h>

#include <vector>

#include "effects/Effect_Base.h"
#include "effects/Gray.h"
#include "test_support.h"

namespace {

std::vector<uint8_t> GrayReference(std::vector<uint8_t> frame) {
    for (size_t i = 0; i < frame.size(); i += 4) {
        uint8_t mean = static_cast<uint8_t>((frame[i] + frame[i + 1] + frame[i + 2]) / 3);
        frame[i] = frame[i + 1] = frame[i + 2] = mean;
    }
    return frame;
}

TEST(GrayEffect, EqualsTheTruncatedMeanOnRandomFrames) {
    const int sizes[][2] = {{1, 1}, {3, 5}, {17, 9}, {131, 7}, {640, 3}};
    for (const auto& size : sizes) {
        auto frame = kvtest::RandomBytes(size[0] * size[1] * 4, size[0]);
        auto expected = GrayReference(frame);
        Effect_Base* gray = Gray::CreateInstance();
        EXPECT_EQ(gray->Proc(frame.data(), size[0], size[1]), 0);
        EXPECT_EQ(frame, expected) << size[0] << "x" << size[1];
        delete gray;
    }
}

TEST(GuardedProc, RefusesNullFrameAndEmptySizesWithoutTouchingTheFrame) {
    // Each refusal writes one log message; run it where the log may be made.
    auto child = kvtest::RunInChild([] {
        Effect_Base* gray = Gray::CreateInstance();
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool ok = gray->Proc(nullptr, 4, 4) == -1 && gray->Proc(pixel, 0, 1) == -1 &&
                  gray->Proc(pixel, 1, -3) == -1 && pixel[0] == 1 && pixel[1] == 2 && pixel[2] == 3;
        delete gray;
        _exit(ok ? 0 : 1);
    });
    EXPECT_EQ(child.exitCode, 0);
}

TEST(FullBack, FillsOpaqueBlackAndNothingForEmptySizes) {
    std::vector<uint8_t> buffer(4 * 7 + 4, 0x55);
    FullBack(buffer.data(), 7, 1);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(buffer[4 * i], 0);
        EXPECT_EQ(buffer[4 * i + 1], 0);
        EXPECT_EQ(buffer[4 * i + 2], 0);
        EXPECT_EQ(buffer[4 * i + 3], 0xFF);
    }
    EXPECT_EQ(buffer[28], 0x55) << "nothing past width * height";

    std::vector<uint8_t> none(16, 0x55);
    FullBack(none.data(), 0, 4);
    FullBack(none.data(), -2, 2);
    EXPECT_EQ(none, std::vector<uint8_t>(16, 0x55));
}

}  // namespace
