// Testing the mirror, rotate, shear and remap effects: their words, their
// frames against a reference, and their refusals.
#ifndef KV_TESTS_EFFECTS_GEOMETRY_EFFECT_SUPPORT_H
#define KV_TESTS_EFFECTS_GEOMETRY_EFFECT_SUPPORT_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "kelvarine.h"
#include "test_support.h"

namespace kvgeo {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<int32_t>;

// The first count words GetArgs reports, after SetArgs with the words given;
// the word after them must stay as it was.
inline Words WordsOf(Effect_Base* effect, size_t count, const Words& set = {}) {
    EffectArgs args = {{9, 9, 9, 9, 9, 9}};
    if (!set.empty()) {
        EffectArgs given = {};
        std::copy(set.begin(), set.end(), given.word);
        EXPECT_EQ(effect->SetArgs(&given), 0);
    }
    EXPECT_EQ(effect->GetArgs(&args), 0);
    EXPECT_EQ(args.word[count], 9) << "only " << count << " words are written";
    return Words(args.word, args.word + count);
}

// Proc on random frames of the sizes, one after another, must give what
// reference makes of each.
inline void ExpectFrames(Effect_Base* effect, const std::vector<std::pair<int, int>>& sizes, uint32_t seed,
                         const std::function<Bytes(const Bytes&, int, int)>& reference) {
    for (const auto& size : sizes) {
        const int w = size.first, h = size.second;
        Bytes frame = kvtest::RandomBytes(size_t(w) * h * 4, seed + 7 * w + h);
        const Bytes expected = reference(frame, w, h);
        ASSERT_EQ(Kelvarine_Proc(effect, frame.data(), w, h), 0);
        EXPECT_EQ(frame, expected) << "at " << w << "x" << h;
    }
}

// Proc refuses a null frame of 2x1, then a frame of width x height, without
// touching it; the log ends with the two complaints.
inline void ExpectRefusals(int32_t id, int32_t width, int32_t height, const std::string& logEnd) {
    auto child = kvtest::RunInChild([&] {
        unsigned char pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        Effect_Base* effect = Kelvarine_NewInstance(id);
        const bool refused = Kelvarine_Proc(effect, nullptr, 2, 1) == -1 &&
                             Kelvarine_Proc(effect, pixels, width, height) == -1;
        Kelvarine_Destory(effect);
        _exit(refused && pixels[0] == 1 && pixels[4] == 5 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    const std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), logEnd.size());
    EXPECT_EQ(log.substr(log.size() - logEnd.size()), logEnd);
}

}  // namespace kvgeo

#endif
