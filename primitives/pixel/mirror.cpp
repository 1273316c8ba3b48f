// Flipping an image in place: primiMirror_8u_AC4IR. Only the colour bytes
// move; the fourth byte of every position stays where it is.
#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

constexpr int32_t kFlipTopBottom = 0;
constexpr int32_t kFlipLeftRight = 1;
constexpr int32_t kFlipBoth = 2;

inline void SwapColour(uint8_t* a, uint8_t* b) {
    for (int c = 0; c < 3; ++c) {
        uint8_t t = a[c];
        a[c] = b[c];
        b[c] = t;
    }
}

// Pixel j of a changes colours with pixel j of b, for count pixels.
void owniExchange_8u_AC4(uint8_t* a, uint8_t* b, size_t count) {
    const __m128i mask = Broadcast(kColourMask);
    size_t j = 0;
    for (; j + 4 <= count; j += 4) {
        __m128i x = LoadUnaligned(a + 4 * j);
        __m128i y = LoadUnaligned(b + 4 * j);
        StoreUnaligned(a + 4 * j, Merge(y, x, mask));
        StoreUnaligned(b + 4 * j, Merge(x, y, mask));
    }
    for (; j < count; ++j) SwapColour(a + 4 * j, b + 4 * j);
}

// Pixel j from left changes colours with pixel j counted backwards from
// rightEnd, for count pixels. Within one row (count at most half the width)
// this mirrors the row; across two rows it mirrors one onto the other.
void owniFlip_8u_AC4(uint8_t* left, uint8_t* rightEnd, size_t count) {
    const __m128i mask = Broadcast(kColourMask);
    size_t j = 0;
    for (; j + 4 <= count; j += 4) {
        uint8_t* l = left + 4 * j;
        uint8_t* r = rightEnd - 4 * (j + 4);
        __m128i x = LoadUnaligned(l);
        __m128i y = LoadUnaligned(r);
        StoreUnaligned(l, Merge(ReversePixels(y), x, mask));
        StoreUnaligned(r, Merge(ReversePixels(x), y, mask));
    }
    for (; j < count; ++j) SwapColour(left + 4 * j, rightEnd - 4 * (j + 1));
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

// A flipped axis needs at least two pixels: a one-row image cannot be
// flipped top to bottom, and says so.
extern "C" PrimStatus PRIM(primiMirror_8u_AC4IR)(uint8_t* image, int32_t step, PrimSize size, int32_t axis) {
    if (image == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    if (axis != kFlipTopBottom && axis != kFlipLeftRight && axis != kFlipBoth) return PrimMirrorAxisErr;
    if (axis != kFlipLeftRight && size.height < 2) return PrimSizeErr;
    if (axis != kFlipTopBottom && size.width < 2) return PrimSizeErr;

    size_t width = static_cast<size_t>(size.width);
    auto row = [&](int32_t y) { return image + static_cast<ptrdiff_t>(y) * step; };
    int32_t last = size.height - 1;
    switch (axis) {
        case kFlipTopBottom:
            for (int32_t y = 0; y < last - y; ++y) owniExchange_8u_AC4(row(y), row(last - y), width);
            break;
        case kFlipLeftRight:
            for (int32_t y = 0; y <= last; ++y) owniFlip_8u_AC4(row(y), row(y) + 4 * width, width / 2);
            break;
        default:
            for (int32_t y = 0; y < last - y; ++y) owniFlip_8u_AC4(row(y), row(last - y) + 4 * width, width);
            if (size.height % 2 == 1) owniFlip_8u_AC4(row(last / 2), row(last / 2) + 4 * width, width / 2);
            break;
    }
    return PrimOk;
}
