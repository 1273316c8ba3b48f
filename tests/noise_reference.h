// Plain references of the random generator and of Gaussian noise, written
// from their definitions, for the primitive and the effect tests.
#ifndef KV_TESTS_NOISE_REFERENCE_H
#define KV_TESTS_NOISE_REFERENCE_H

#include <cmath>
#include <cstdint>

namespace kvtest {

struct ReferenceGenerator {
    uint32_t c = 0x436CBAE9u;
    uint32_t x1, x2, x3;
    uint32_t b = 0xFFFFFFFFu;

    explicit ReferenceGenerator(uint32_t seed)
        : x1(seed), x2(seed * 69069u + 1013904243u), x3(x2 * 69069u + 1013904243u) {}

    int32_t Next() {
        uint32_t t = x2 - x3 + b;
        uint32_t w = t;
        b = 0;
        if (static_cast<int32_t>(t) < 0) {
            b = 0xFFFFFFFFu;
            w = t - 18u;
        }
        c = c * 69069u + 1013904243u;
        x3 = x2;
        x2 = x1;
        x1 = w;
        return static_cast<int32_t>(w + c);
    }
};

// Adds Gaussian noise to the colour bytes of an image as the library draws
// it: polar pairs, samples in row, pixel, channel order, truncated toward
// zero, bytes held to 0..255. Returns the seed for the next call.
inline uint32_t ReferenceAddGauss(uint8_t* image, int32_t step, int32_t width, int32_t height, uint8_t mean,
                                  uint8_t deviation, uint32_t seed) {
    ReferenceGenerator generator(seed);
    double spare = 0;
    bool haveSpare = false;
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            for (int32_t channel = 0; channel < 3; ++channel) {
                double z;
                if (haveSpare) {
                    z = spare;
                    haveSpare = false;
                } else {
                    double u1, u2, s;
                    do {
                        u1 = generator.Next() * 4.656612873077e-10;
                        u2 = generator.Next() * 4.656612873077e-10;
                        s = u2 * u2 + u1 * u1;
                    } while (s >= 1.0 || s == 0.0);
                    double f = std::sqrt(std::log(s) * -2.0 / s);
                    z = u1 * deviation * f + mean;
                    spare = u2 * deviation * f + mean;
                    haveSpare = true;
                }
                uint8_t& byte = image[y * step + 4 * x + channel];
                int value = byte + static_cast<int>(std::trunc(z));
                byte = static_cast<uint8_t>(value < 0 ? 0 : (value > 255 ? 255 : value));
            }
        }
    }
    return generator.x1;
}

}  // namespace kvtest

#endif
