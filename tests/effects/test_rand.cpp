// The "Rand" effect: parameters, and Gaussian noise from one running seed
// that the clock starts.
#include <gtest/gtest.h>
#include <sys/timeb.h>
#include <unistd.h>

#include <vector>

#include "kelvarine.h"
#include "noise_reference.h"
#include "test_support.h"

namespace {

TEST(RandEffect, CatalogPresetAndClampedWords) {
    Effect_Base* rand = Kelvarine_NewInstance(1055);
    ASSERT_NE(rand, nullptr);
    EffectArgs args = {{9, 9, 9, 9, 9, 9}};
    EXPECT_EQ(Kelvarine_GetEffectArgs(rand, &args), 0);
    EXPECT_EQ(args.word[0], 0);
    EXPECT_EQ(args.word[1], 0);
    EXPECT_EQ(args.word[2], 8);
    EXPECT_EQ(args.word[3], 9) << "words the class does not use stay";

    EffectArgs wild = {{7, 300, -5}};
    EXPECT_EQ(rand->SetArgs(&wild), 0);
    rand->GetArgs(&args);
    EXPECT_EQ(args.word[0], 1);
    EXPECT_EQ(args.word[1], 255);
    EXPECT_EQ(args.word[2], 0);

    EffectArgs other = {{0, -1, 256}};
    rand->SetArgs(&other);
    rand->GetArgs(&args);
    EXPECT_EQ(args.word[0], 0);
    EXPECT_EQ(args.word[1], 0);
    EXPECT_EQ(args.word[2], 255);
    Kelvarine_Destory(rand);
}

long ClockSeconds() {
    timeb now;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    ftime(&now);
#pragma GCC diagnostic pop
    return static_cast<long>(now.time);
}

// The first Proc seeds from the clock; every later call of any instance
// continues the same sequence, a call without noise included. The child's
// exit code names the first check that failed.
TEST(RandEffect, InstancesShareOneRunningSeedFromTheClock) {
    auto child = kvtest::RunInChild([] {
        kvtest::FreshLibrary library;
        if (library.handle == nullptr) _exit(10);
        auto newInstance = library.Get<decltype(Kelvarine_NewInstance)>("Kelvarine_NewInstance");
        auto setArgs = library.Get<decltype(Kelvarine_SetEffectArgs)>("Kelvarine_SetEffectArgs");
        auto proc = library.Get<decltype(Kelvarine_Proc)>("Kelvarine_Proc");
        auto destroy = library.Get<decltype(Kelvarine_Destory)>("Kelvarine_Destory");

        const int32_t width = 13, height = 7;
        const std::vector<uint8_t> original = kvtest::RandomBytes(width * height * 4, 8);
        Effect_Base* noisy = newInstance(1055);
        Effect_Base* silent = newInstance(1055);
        EffectArgs noise = {{0, 3, 20}};
        EffectArgs none = {{0, 0, 0}};
        setArgs(noisy, &noise);
        setArgs(silent, &none);

        std::vector<uint8_t> frame = original;
        long before = ClockSeconds();
        if (proc(noisy, frame.data(), width, height) != 0) _exit(1);
        long after = ClockSeconds();
        uint32_t seed = 0;
        bool found = false;
        for (long second = before; second <= after && !found; ++second) {
            std::vector<uint8_t> expected = original;
            uint32_t next = kvtest::ReferenceAddGauss(expected.data(), width * 4, width, height, 3, 20,
                                                      static_cast<uint32_t>(second));
            if (expected == frame) found = true, seed = next;
        }
        if (!found) _exit(2);

        // No noise leaves the frame, but the seed moves on all the same.
        frame = original;
        if (proc(silent, frame.data(), width, height) != 0 || frame != original) _exit(3);
        std::vector<uint8_t> scratch = original;
        seed = kvtest::ReferenceAddGauss(scratch.data(), width * 4, width, height, 0, 0, seed);

        // A refused frame moves nothing, and Proc still returns 0.
        if (proc(noisy, nullptr, width, height) != 0 || proc(noisy, frame.data(), 0, height) != 0) _exit(4);

        std::vector<uint8_t> expected = original;
        kvtest::ReferenceAddGauss(expected.data(), width * 4, width, height, 3, 20, seed);
        if (proc(noisy, frame.data(), width, height) != 0 || frame != expected) _exit(5);
        destroy(noisy);
        destroy(silent);
        _exit(0);
    });
    EXPECT_EQ(child.exitCode, 0) << child.standardError;
}

}  // namespace
