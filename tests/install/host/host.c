/* A host built against the installed library: counts the catalog and turns
 * two pixels gray. */
#include <kelvarine.h>
#include <stdio.h>

int main(void) {
    unsigned char frame[8] = {30, 60, 90, 255, 0, 0, 255, 128}; /* blue, green, red, fourth byte */
    Effect_Base* gray = Kelvarine_NewInstance(1036);
    if (!gray || Kelvarine_Proc(gray, frame, 2, 1) != 0) return 1;
    Kelvarine_Destory(gray);
    printf("%d effects; gray %d %d %d %d, %d %d %d %d\n", Kelvarine_AllEffectCount(), frame[0], frame[1], frame[2],
           frame[3], frame[4], frame[5], frame[6], frame[7]);
    return 0;
}
