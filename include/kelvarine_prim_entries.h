/* The dispatched primitive entries, one row each: result, name, parameters.
 *
 * This list is the only place an entry is named. It is included with
 * PRIM_ENTRY defined by its reader: the public header declares the stubs,
 * the dispatch unit emits each stub and its four-slot <name>_arraddr table,
 * and every build declares its own prefixed functions. No include guard:
 * each reader includes it once with its own PRIM_ENTRY.
 */

/* Memory */
PRIM_ENTRY(uint8_t*, primsMalloc_8u, (int32_t length))
PRIM_ENTRY(void, primsFree, (void* ptr))
PRIM_ENTRY(int16_t*, primiMalloc_16s_C1, (int32_t width, int32_t height, int32_t* step))

/* Colour twist, gamma and gray */
PRIM_ENTRY(PrimStatus, primiColorTwist32f_8u_AC4IR, (uint8_t* image, int32_t step, PrimSize size, const float twist[3][4]))
PRIM_ENTRY(PrimStatus, primiGammaFwd_8u_AC4IR, (uint8_t* image, int32_t step, PrimSize size))
PRIM_ENTRY(PrimStatus, primiGammaInv_8u_AC4IR, (uint8_t* image, int32_t step, PrimSize size))
PRIM_ENTRY(PrimStatus, primiRGBToGray_8u_AC4C1R,
           (const uint8_t* source, int32_t sourceStep, uint8_t* destination, int32_t destinationStep, PrimSize size))

/* Noise and dither */
PRIM_ENTRY(PrimStatus, primiAddRandGauss_Direct_8u_AC4IR,
           (uint8_t* image, int32_t step, PrimSize size, uint8_t mean, uint8_t deviation, uint32_t* seed))
PRIM_ENTRY(PrimStatus, primiReduceBits_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, int32_t noise,
            int32_t dither, int32_t levels))

/* Constant arithmetic */
PRIM_ENTRY(PrimStatus, primiAddC_8u_AC4IRSfs,
           (const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size, int32_t scaleFactor))
PRIM_ENTRY(PrimStatus, primiSubC_8u_AC4IRSfs,
           (const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size, int32_t scaleFactor))

/* Borders, mirror and fills */
PRIM_ENTRY(PrimStatus, primiCopyReplicateBorder_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, PrimSize srcSize, uint8_t* dst, int32_t dstStep,
            PrimSize dstSize, int32_t top, int32_t left))
PRIM_ENTRY(PrimStatus, primiMirror_8u_AC4IR, (uint8_t* image, int32_t step, PrimSize size, int32_t axis))

/* Affine warps */
PRIM_ENTRY(PrimStatus, primiRotateCenter_8u_AC4R,
           (const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst, int32_t dstStep,
            PrimRect dstRoi, double angle, double xCenter, double yCenter, int32_t interpolation))
PRIM_ENTRY(PrimStatus, primiShear_8u_AC4R,
           (const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst, int32_t dstStep,
            PrimRect dstRoi, double xShear, double yShear, double xShift, double yShift, int32_t interpolation))
