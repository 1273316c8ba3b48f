// primiGetRotateShift: the translation that keeps the centre of a rotation
// in place.
#include <cmath>

#include "primitives/geometry/warp_affine.h"

using namespace PRIM_BUILD;

// The quarter turns use no trigonometry, so that an integer centre gives
// integer shifts and the rotation can take its exact path.
extern "C" PrimStatus PRIM(primiGetRotateShift)(double xCenter, double yCenter, double angle, double* xShift,
                                                 double* yShift) {
    if (xShift == nullptr || yShift == nullptr) return PrimNullPtrErr;
    const double a = ownpi_NormaliseAngle(angle);
    if (a == 0.0) {
        *xShift = 0.0;
        *yShift = 0.0;
    } else if (a == 90.0) {
        *xShift = 0.0 - (yCenter - xCenter);
        *yShift = yCenter + xCenter;
    } else if (a == 180.0) {
        *xShift = xCenter + xCenter;
        *yShift = yCenter + yCenter;
    } else if (a == 270.0) {
        *xShift = xCenter + yCenter;
        *yShift = yCenter - xCenter;
    } else {
        const double r = a / 180.0 * 3.141592653589793;
        *xShift = xCenter - xCenter * cos(r) - yCenter * sin(r);
        *yShift = yCenter - cos(r) * yCenter + xCenter * sin(r);
    }
    return PrimOk;
}
