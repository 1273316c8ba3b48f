/* Build-internal primitives, one row each: result, name, parameters.
 *
 * Each build has its own copy of these (m7_name, u8_name, y8_name), called by
 * that build's own code; they have no stub and are not exported. The list is
 * included with PRIM_INTERNAL defined by its reader: the builds declare their
 * prefixed functions from it, and the tests reach every build's copy. No
 * include guard: each reader includes it once with its own PRIM_INTERNAL.
 */

/* Gamma and gray */
PRIM_INTERNAL(void, myRGBToGray_8u_C3C1R,
              (const uint8_t* source, int32_t sourceStep, uint8_t* destination, int32_t destinationStep,
               PrimSize size, const float* weights, int32_t elementCount))
