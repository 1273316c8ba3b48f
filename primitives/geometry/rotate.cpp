// primiRotateCenter_8u_AC4R: rotation about a centre, counter-clockwise on
// the screen for a positive angle.
#include <cmath>

#include "primitives/geometry/quarter_turn.h"
#include "primitives/geometry/warp_affine.h"

namespace PRIM_BUILD {
namespace {

// A quarter turn whose shifts are whole numbers moves whole pixels and takes
// the exact path; any other rotation, angle 0 included, is a warp. Quarter
// turns keep their exact coefficients there too.
PrimStatus ownpi_Rotate(const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst,
                        int32_t dstStep, PrimRect dstRoi, double angle, double xShift, double yShift,
                        int32_t interpolation) {
    const double a = ownpi_NormaliseAngle(angle);
    const bool quarter = a == 90.0 || a == 180.0 || a == 270.0;
    if (quarter && floor(xShift) == xShift && floor(yShift) == yShift)
        return ownpi_RotateQuarter(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, a, xShift, yShift);

    double c00, c01, c10, c11;
    if (a == 90.0) {
        c00 = 0.0, c01 = 1.0, c10 = -1.0, c11 = 0.0;
    } else if (a == 180.0) {
        c00 = -1.0, c01 = 0.0, c10 = 0.0, c11 = -1.0;
    } else if (a == 270.0) {
        c00 = 0.0, c01 = -1.0, c10 = 1.0, c11 = 0.0;
    } else {
        const double r = a / 180.0 * 3.141592653589793;
        c00 = cos(r), c01 = sin(r), c10 = 0.0 - sin(r), c11 = cos(r);
    }
    const double coeffs[2][3] = {{c00, c01, xShift}, {c10, c11, yShift}};
    return ownpi_WarpAffine(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, coeffs, interpolation);
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

// No test of its own, and no step is tested on this road.
extern "C" PrimStatus PRIM(primiRotateCenter_8u_AC4R)(const uint8_t* src, PrimSize srcSize, int32_t srcStep,
                                                       PrimRect srcRoi, uint8_t* dst, int32_t dstStep,
                                                       PrimRect dstRoi, double angle, double xCenter, double yCenter,
                                                       int32_t interpolation) {
    double xShift = 0.0, yShift = 0.0;
    PRIM(primiGetRotateShift)(xCenter, yCenter, angle, &xShift, &yShift);
    return ownpi_Rotate(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, angle, xShift, yShift, interpolation);
}
