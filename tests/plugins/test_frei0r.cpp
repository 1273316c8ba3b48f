// The frei0r plugins as Debian's ffmpeg runs them: every plugin's output on a
// generated clip, compared with the library's own output on the same frames.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "include/kelvarine.h"
#include "test_support.h"

#ifndef KV_FFMPEG_ENVIRONMENT
#define KV_FFMPEG_ENVIRONMENT ""
#endif

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr int kFrames = 3;
constexpr size_t kFrameBytes = size_t{kWidth} * kHeight * 4;

using Bytes = std::vector<uint8_t>;

Bytes ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// "Mirror Both" is served by mirror_both.so.
std::string PluginName(int32_t id) {
    std::string name = Kelvarine_EffectName(id);
    for (char& c : name) c = c == ' ' ? '_' : static_cast<char>(std::tolower(c));
    return name;
}

class Frei0rPlugins : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        directory_ = new kvtest::ScratchDirectory();
        const std::string generate =
            "ffmpeg -nostdin -v error -y -f lavfi -i testsrc2=size=" + std::to_string(kWidth) +
            "x" + std::to_string(kHeight) + ":rate=5 -frames:v " + std::to_string(kFrames) +
            " -pix_fmt bgra -f rawvideo input.raw";
        ASSERT_EQ(std::system(generate.c_str()), 0) << generate;
        input_ = new Bytes(ReadBytes("input.raw"));
        ASSERT_EQ(input_->size(), kFrameBytes * kFrames);
    }
    static void TearDownTestSuite() {
        delete input_;
        delete directory_;
        input_ = nullptr;
        directory_ = nullptr;
    }
    void SetUp() override {
        ASSERT_NE(input_, nullptr);
    }

    // The input frames through ffmpeg's frei0r filter with the given plugin.
    static Bytes ThroughFfmpeg(int32_t id, const std::string& params = "") {
        std::string filter = "format=bgra,frei0r=filter_name=" + PluginName(id);
        if (!params.empty()) filter += ":filter_params=" + params;
        const std::string command = KV_FFMPEG_ENVIRONMENT "FREI0R_PATH=" KV_FREI0R_BUILD_DIR
                                    " ffmpeg -nostdin -v error -y -f rawvideo -pix_fmt bgra -s " +
                                    std::to_string(kWidth) + "x" + std::to_string(kHeight) +
                                    " -i input.raw -vf '" + filter +
                                    "' -f rawvideo -pix_fmt bgra output.raw";
        std::remove("output.raw");
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return ReadBytes("output.raw");
    }

    // The input frames through one library instance, as the plugin runs them.
    static Bytes ThroughLibrary(int32_t id, const EffectArgs* args = nullptr) {
        Effect_Base* effect = Kelvarine_NewInstance(id);
        if (args) Kelvarine_SetEffectArgs(effect, const_cast<EffectArgs*>(args));
        Bytes frames = *input_;
        for (int f = 0; f < kFrames; ++f)
            Kelvarine_Proc(effect, frames.data() + f * kFrameBytes, kWidth, kHeight);
        Kelvarine_Destory(effect);
        return frames;
    }

    static kvtest::ScratchDirectory* directory_;
    static Bytes* input_;
};

kvtest::ScratchDirectory* Frei0rPlugins::directory_ = nullptr;
Bytes* Frei0rPlugins::input_ = nullptr;

constexpr int32_t kExplode = 1050;
constexpr int32_t kRand = 1055;

TEST_F(Frei0rPlugins, EveryRepeatableEffectGivesTheLibrarysBytes) {
    for (int32_t index = 0; index < Kelvarine_AllEffectCount(); ++index) {
        const int32_t id = Kelvarine_EffectID(index);
        if (id == kExplode || id == kRand) continue;
        SCOPED_TRACE(PluginName(id));
        const Bytes filtered = ThroughFfmpeg(id);
        ASSERT_EQ(filtered.size(), input_->size());
        const Bytes expected = ThroughLibrary(id);
        for (int f = 0; f < kFrames; ++f) {
            const auto begin = f * kFrameBytes;
            EXPECT_TRUE(std::equal(expected.begin() + begin, expected.begin() + begin + kFrameBytes,
                                   filtered.begin() + begin))
                << "frame " << f;
        }
    }
}

TEST_F(Frei0rPlugins, ExplodeTakesEachPixelFromItsBox) {
    const Bytes out = ThroughFfmpeg(kExplode);
    ASSERT_EQ(out.size(), input_->size());
    const int radius = 6;  // the catalog's scatter radius
    const Bytes& in = *input_;
    for (int f = 0; f < kFrames; ++f) {
        const size_t frame = f * kFrameBytes;
        int misses = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const uint8_t* pixel = &out[frame + (static_cast<size_t>(y) * kWidth + x) * 4];
                bool found = false;
                for (int sy = std::max(y - radius, 0); !found && sy <= std::min(y + radius, kHeight - 1); ++sy)
                    for (int sx = std::max(x - radius, 0); !found && sx <= std::min(x + radius, kWidth - 1); ++sx)
                        found = std::equal(pixel, pixel + 3, &in[frame + (static_cast<size_t>(sy) * kWidth + sx) * 4]);
                misses += !found || pixel[3] != 255;
            }
        }
        EXPECT_EQ(misses, 0) << "frame " << f;
    }
    EXPECT_NE(out, in);
}

TEST_F(Frei0rPlugins, RandAddsModerateNoiseAndKeepsTheFourthByte) {
    const Bytes out = ThroughFfmpeg(kRand);
    ASSERT_EQ(out.size(), input_->size());
    const Bytes& in = *input_;
    const int limit = 8 * 6;  // six deviations of the catalog's noise
    size_t changed = 0, far = 0, fourth = 0;
    for (size_t i = 0; i < in.size(); ++i) {
        if (i % 4 == 3) {
            fourth += out[i] != in[i];
            continue;
        }
        changed += out[i] != in[i];
        far += std::abs(out[i] - in[i]) > limit;
    }
    EXPECT_EQ(fourth, 0u);
    EXPECT_EQ(far, 0u);
    EXPECT_GT(changed, in.size() / 4);  // most colour bytes move
}

TEST_F(Frei0rPlugins, ParametersMapOntoTheirWords) {
    constexpr int32_t kBrightness = 1013, kFaceted = 1051;
    struct Case {
        int32_t id;
        const char* params;
        EffectArgs args;
    };
    const Case cases[] = {
        {kBrightness, "0.6", {{51}}},     // -255 + 0.6 x 510
        {kBrightness, "0", {{-255}}},
        {kFaceted, "0|0.5", {{1, 1, 9}}},  // turns 1..3, tile side 2..16
        {kFaceted, "0.5", {{1, 2, 16}}},   // the tile side keeps the catalog's 16
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(PluginName(c.id) + " " + c.params);
        EXPECT_EQ(ThroughFfmpeg(c.id, c.params), ThroughLibrary(c.id, &c.args));
    }
}

}  // namespace
