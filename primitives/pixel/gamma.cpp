// primiGammaFwd_8u_AC4IR and primiGammaInv_8u_AC4IR: the video gamma curve
// and its inverse as in-place byte lookups on the three colour bytes.
//
// Each table is computed once, at its first use, from its curve: entry x is
// 255 * f(x / 255) in double precision, rounded half to even. The first use
// may come from a caller in any rounding mode, so the table is computed in
// round-to-nearest: the linear segment has exact ties (forward 1 and 3 are
// 4.5 and 13.5) that a directed mode would move.
#include <cmath>
#include <cstring>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {
namespace {

struct GammaTable {
    uint8_t entry[256];

    explicit GammaTable(double (*curve)(double)) {
        uint32_t callerWord = prim_set_rc_ssx(0);
        for (int x = 0; x < 256; ++x) entry[x] = roundHalfToEven(255.0 * curve(x / 255.0));
        prim_set_cw_ssx(callerWord);
    }

    static uint8_t roundHalfToEven(double value) {
        double whole = std::floor(value);
        double fraction = value - whole;
        if (fraction > 0.5 || (fraction == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1.0;
        return static_cast<uint8_t>(whole);
    }
};

double forwardCurve(double v) { return v < 0.018 ? 4.5 * v : 1.099 * std::pow(v, 0.45) - 0.099; }

double inverseCurve(double v) { return v < 0.081 ? v / 4.5 : std::pow((v + 0.099) / 1.099, 1.0 / 0.45); }

const GammaTable& forwardTable() {
    static const GammaTable table(forwardCurve);
    return table;
}

const GammaTable& inverseTable() {
    static const GammaTable table(inverseCurve);
    return table;
}

// Each pixel is one word: its three colour bytes go through the table and
// the fourth byte is written back as it was.
void ownGammaLookup_8u_AC4IR(uint8_t* image, int32_t step, PrimSize size, const uint8_t* table) {
    for (int32_t y = 0; y < size.height; ++y) {
        uint8_t* row = image + static_cast<ptrdiff_t>(y) * step;
        for (int32_t x = 0; x < size.width; ++x) {
            uint32_t pixel;
            memcpy(&pixel, row + 4 * x, 4);
            pixel = (pixel & 0xFF000000u) | table[pixel & 0xFF] | uint32_t(table[(pixel >> 8) & 0xFF]) << 8 |
                    uint32_t(table[(pixel >> 16) & 0xFF]) << 16;
            memcpy(row + 4 * x, &pixel, 4);
        }
    }
}

PrimStatus gammaEntry(uint8_t* image, int32_t step, PrimSize size, const GammaTable& (*table)()) {
    if (image == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    if (step < 1) return PrimStepErr;
    ownGammaLookup_8u_AC4IR(image, step, size, table().entry);
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiGammaFwd_8u_AC4IR)(uint8_t* image, int32_t step, PrimSize size) {
    return PRIM_BUILD::gammaEntry(image, step, size, PRIM_BUILD::forwardTable);
}

extern "C" PrimStatus PRIM(primiGammaInv_8u_AC4IR)(uint8_t* image, int32_t step, PrimSize size) {
    return PRIM_BUILD::gammaEntry(image, step, size, PRIM_BUILD::inverseTable);
}
