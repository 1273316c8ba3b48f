#include "effects/Rand.h"

#include <sys/timeb.h>

#include "kelvarine_prims.h"

Effect_Base* CRand::CreateInstance() { return new CRand; }

// The seed is the clock's whole seconds at the first Proc of any instance,
// and then runs on through every call of every instance. The clock is read
// on each call all the same.
int32_t CRand::Proc(unsigned char* frame, int32_t width, int32_t height) {
    timeb now;
    // ftime is deprecated in glibc, but its whole seconds are this effect's seed.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    ftime(&now);
#pragma GCC diagnostic pop
    static uint32_t iSeed = static_cast<uint32_t>(now.time);
    PrimSize size = {width, height};
    primiAddRandGauss_Direct_8u_AC4IR(frame, static_cast<int32_t>(static_cast<uint32_t>(width) * 4u), size,
                                      static_cast<uint8_t>(mean), static_cast<uint8_t>(deviation), &iSeed);
    return 0;
}

int32_t CRand::SetArgs(EffectArgs* args) {
    direct = args->word[0] != 0;
    mean = ClampWord(args->word[1], 0, 255);
    deviation = ClampWord(args->word[2], 0, 255);
    return 0;
}

int32_t CRand::GetArgs(EffectArgs* args) {
    args->word[0] = direct ? 1 : 0;
    args->word[1] = mean;
    args->word[2] = deviation;
    return 0;
}
