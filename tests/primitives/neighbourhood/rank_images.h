// What the rank and morphology tests share: where two images first differ.
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_RANK_IMAGES_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_RANK_IMAGES_H

#include <sstream>
#include <string>
#include <vector>

#include "primitives/pixel/image_under_test.h"

namespace kvtest {

// Empty when the buffers are equal; else the first differing byte, as a
// pixel of the image when it lies in one.
inline std::string FirstDifference(const ImageUnderTest& got, const ImageUnderTest& expected) {
    for (size_t i = 0; i < got.bytes.size(); ++i) {
        if (got.bytes[i] == expected.bytes[i]) continue;
        std::ostringstream text;
        const long at = long(i) - got.start;
        text << "byte " << at << " (row " << at / got.step << ", column byte " << at % got.step << "): got "
             << int(got.bytes[i]) << ", expected " << int(expected.bytes[i]);
        return text.str();
    }
    return "";
}

}  // namespace kvtest

#endif
