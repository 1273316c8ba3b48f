// Copying images and vectors: primiCopy_8u_AC4R, primiCopy_8u_C4R,
// primsCopy_8u.
#include "primitives/frame/build.h"
#include "primitives/frame/cpu.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

constexpr size_t kCopyStreamingFrom = 524288;
constexpr size_t kImageStreamingAbove = 1048576;

// A large copy streams when this is the native vendor and the copy is at
// least half of one core's share of the largest cache that the processor
// names.
bool CopyStreams(size_t bytes) {
    if (bytes < kCopyStreamingFrom) return false;
    int32_t cache = ownGetTableCacheSize();
    if (cache <= 0) return false;
    size_t share = static_cast<size_t>(cache) / static_cast<size_t>(prim_get_cores_on_die());
    return bytes >= share / 2;
}

void ownsCopy_8u(const uint8_t* src, uint8_t* dst, size_t bytes) {
    bool streaming = CopyStreams(bytes);
    owniCopy_8u_C1_M7(src, dst, bytes, streaming);
    if (streaming) StoreFence();
}

// Rows of width * 4 bytes; a single run when both images are unbroken.
void CopyRows(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, bool allBytes,
              bool streaming) {
    size_t rowBytes = static_cast<size_t>(size.width) * 4;
    if (srcStep == dstStep && static_cast<int64_t>(srcStep) == static_cast<int64_t>(rowBytes)) {
        rowBytes *= static_cast<size_t>(size.height);
        size.height = 1;
    }
    for (int32_t y = 0; y < size.height; ++y) {
        const uint8_t* from = src + static_cast<ptrdiff_t>(y) * srcStep;
        uint8_t* to = dst + static_cast<ptrdiff_t>(y) * dstStep;
        if (allBytes) {
            owniCopy_8u_C1_M7(from, to, rowBytes, streaming);
        } else {
            owniCopy8u_AC4_M7(from, to, rowBytes);
        }
    }
    if (streaming) StoreFence();
}

PrimStatus CheckImages(const uint8_t* src, const uint8_t* dst, PrimSize size) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiCopy_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                               PrimSize size) {
    PrimStatus status = CheckImages(src, dst, size);
    if (status != PrimOk) return status;
    CopyRows(src, srcStep, dst, dstStep, size, false, false);
    return PrimOk;
}

// The choice of streaming stores is made once, on the image's size.
extern "C" PrimStatus PRIM(primiCopy_8u_C4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                              PrimSize size) {
    PrimStatus status = CheckImages(src, dst, size);
    if (status != PrimOk) return status;
    size_t imageBytes = static_cast<size_t>(size.width) * 4 * static_cast<size_t>(size.height);
    CopyRows(src, srcStep, dst, dstStep, size, true, imageBytes > kImageStreamingAbove);
    return PrimOk;
}

extern "C" PrimStatus PRIM(primsCopy_8u)(const uint8_t* src, uint8_t* dst, int32_t length) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (length < 1) return PrimSizeErr;
    ownsCopy_8u(src, dst, static_cast<size_t>(length));
    return PrimOk;
}
