/* A host written in C: the public headers must compile as C and be usable. */
#include <stddef.h>

#include "kelvarine_prims.h"

int kv_c_host_runs_gray(void) {
    unsigned char pixel[4] = {10, 20, 40, 9};
    Effect_Base* gray = Kelvarine_NewInstance(1036);
    EffectArgs args = {{0}};
    PrimSize size = {1, 1};
    int ok = gray != NULL && Kelvarine_GetEffectArgs(gray, &args) == 0 &&
             Kelvarine_Proc(gray, pixel, size.width, size.height) == 0 && pixel[0] == 23 && pixel[3] == 9;
    Kelvarine_Destory(gray);
    return ok;
}
