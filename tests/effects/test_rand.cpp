// The "Rand" effect: parameters, and Gaussian noise from one running seed
// that the clock starts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <vector>

#include "kelvarine.h"
#include "noise_reference.h"
#include "test_support.h"

namespace {

// The catalog preset, then words clamped to 0..1, 0..255 and 0..255; words
// the class does not use stay.
TEST(RandEffect, CatalogPresetAndClampedWords) {
    Effect_Base* rand = Kelvarine_NewInstance(1055);
    ASSERT_NE(rand, nullptr);
    auto read = [rand] {
        EffectArgs args = {{9, 9, 9, 9, 9, 9}};
        EXPECT_EQ(Kelvarine_GetEffectArgs(rand, &args), 0);
        return std::vector<int32_t>(args.word, args.word + 4);
    };
    EXPECT_EQ(read(), (std::vector<int32_t>{0, 0, 8, 9}));
    EffectArgs wild = {{7, 300, -5}}, other = {{0, -1, 256}};
    EXPECT_EQ(rand->SetArgs(&wild), 0);
    EXPECT_EQ(read(), (std::vector<int32_t>{1, 255, 0, 9}));
    rand->SetArgs(&other);
    EXPECT_EQ(read(), (std::vector<int32_t>{0, 0, 255, 9}));
    Kelvarine_Destory(rand);
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
        long before = static_cast<long>(std::time(nullptr));
        if (proc(noisy, frame.data(), width, height) != 0) _exit(1);
        long after = static_cast<long>(std::time(nullptr));
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
