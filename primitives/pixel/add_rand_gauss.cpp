// Gaussian noise added in place to the three colour bytes of each pixel.
#include <cmath>

#include "primitives/pixel/rand_generator.h"

namespace PRIM_BUILD {
namespace {

// Normal samples by the polar method, a pair at a time, handed out one by one:
// the second of a pair waits for the next request, across pixels and rows.
class GaussianSamples {
public:
    GaussianSamples(uint32_t seed, uint8_t mean, uint8_t deviation)
        : generator_(SeededRandGenerator(seed)), mean_(mean), deviation_(deviation) {}

    double Next() {
        if (hasSpare_) {
            hasSpare_ = false;
            return spare_;
        }
        const double k = 4.656612873077e-10;
        double u1, u2, s;
        do {
            u1 = NextRandom(generator_) * k;
            u2 = NextRandom(generator_) * k;
            s = u2 * u2 + u1 * u1;
        } while (s >= 1.0 || s == 0.0);
        double f = std::sqrt(std::log(s) * -2.0 / s);
        spare_ = u2 * deviation_ * f + mean_;
        hasSpare_ = true;
        return u1 * deviation_ * f + mean_;
    }

    // The newest sequence word: all that a following call starts from.
    uint32_t NextSeed() const { return generator_.x1; }

private:
    PrimRandGenerator generator_;
    double mean_;
    double deviation_;
    double spare_ = 0.0;
    bool hasSpare_ = false;
};

// A sample moves the byte by its value truncated toward zero, within 0..255.
inline uint8_t AddSample(uint8_t byte, double sample) {
    int32_t value = byte + static_cast<int32_t>(sample);
    return static_cast<uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value));
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiAddRandGauss_Direct_8u_AC4IR)(uint8_t* image, int32_t step, PrimSize size,
                                                              uint8_t mean, uint8_t deviation, uint32_t* seed) {
    if (image == nullptr || seed == nullptr) return PrimNullPtrErr;
    if (size.height < 1 || size.width < 1) return PrimSizeErr;
    if (step < 1) return PrimStepErr;
    PRIM_BUILD::GaussianSamples samples(*seed, mean, deviation);
    for (int32_t y = 0; y < size.height; ++y) {
        uint8_t* pixel = image + static_cast<ptrdiff_t>(y) * step;
        for (int32_t x = 0; x < size.width; ++x, pixel += 4) {
            pixel[0] = PRIM_BUILD::AddSample(pixel[0], samples.Next());
            pixel[1] = PRIM_BUILD::AddSample(pixel[1], samples.Next());
            pixel[2] = PRIM_BUILD::AddSample(pixel[2], samples.Next());
        }
    }
    *seed = samples.NextSeed();
    return PrimOk;
}
