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

/* Uniform random vectors. The state records are opaque outside their source. */
struct PrimRandUniformState_16s;
struct PrimRandUniformState_32f;
PRIM_INTERNAL(PrimStatus, primsRandUniformInitAlloc_16s,
              (PrimRandUniformState_16s** state, int16_t low, int16_t high, uint32_t seed))
PRIM_INTERNAL(PrimStatus, primsRandUniformInitAlloc_32f,
              (PrimRandUniformState_32f** state, float low, float high, uint32_t seed))
PRIM_INTERNAL(PrimStatus, primsRandUniform_16s, (int16_t* output, int32_t length, PrimRandUniformState_16s* state))
PRIM_INTERNAL(PrimStatus, primsRandUniform_32f, (float* output, int32_t length, PrimRandUniformState_32f* state))
PRIM_INTERNAL(PrimStatus, primsRandUniformFree_16s, (PrimRandUniformState_16s* state))
PRIM_INTERNAL(PrimStatus, primsRandUniformFree_32f, (PrimRandUniformState_32f* state))

/* Borders, mirror and fills */
PRIM_INTERNAL(PrimStatus, primiCopyReplicateBorder_8u_C4R,
              (const uint8_t* src, int32_t srcStep, PrimSize srcSize, uint8_t* dst, int32_t dstStep,
               PrimSize dstSize, int32_t top, int32_t left))
PRIM_INTERNAL(PrimStatus, primiCopyReplicateBorder_8u_C4IR,
              (uint8_t* image, int32_t step, PrimSize innerSize, PrimSize outerSize, int32_t top, int32_t left))
PRIM_INTERNAL(PrimStatus, primiCopy_8u_AC4R,
              (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size))
PRIM_INTERNAL(PrimStatus, primiCopy_8u_C4R,
              (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size))
PRIM_INTERNAL(PrimStatus, primiSet_8u_AC4R, (const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size))
PRIM_INTERNAL(PrimStatus, primiSet_8u_C1R, (uint8_t value, uint8_t* image, int32_t step, PrimSize size))
PRIM_INTERNAL(PrimStatus, primsCopy_8u, (const uint8_t* src, uint8_t* dst, int32_t length))
PRIM_INTERNAL(PrimStatus, primsZero_8u, (uint8_t* vector, int32_t length))
PRIM_INTERNAL(PrimStatus, primsZero_16s, (int16_t* vector, int32_t length))
PRIM_INTERNAL(PrimStatus, primsSet_32f, (float value, float* vector, int32_t length))
PRIM_INTERNAL(PrimStatus, primsMaxEvery_8u_I, (const uint8_t* src, uint8_t* srcDst, int32_t length))
PRIM_INTERNAL(PrimStatus, primsMinEvery_8u_I, (const uint8_t* src, uint8_t* srcDst, int32_t length))

/* Constant arithmetic */
PRIM_INTERNAL(PrimStatus, primiSub_8u_AC4RSfs,
              (const uint8_t* src1, int32_t src1Step, const uint8_t* src2, int32_t src2Step, uint8_t* dst,
               int32_t dstStep, PrimSize size, int32_t scaleFactor))

/* Sobel border pipeline: the scratch of its row and column stages */
PRIM_INTERNAL(PrimStatus, primiFilterRowBorderPipelineGetBufferSize_8u16s_C1R,
              (PrimSize roiSize, int32_t kernelSize, int32_t* bufferSize))
PRIM_INTERNAL(PrimStatus, primiFilterColumnPipelineGetBufferSize_16s_C1R,
              (PrimSize roiSize, int32_t kernelSize, int32_t* bufferSize))

/* Wiener filter: channel sums and means of a float image */
PRIM_INTERNAL(PrimStatus, primiSum_32f_AC4R,
              (const float* image, int32_t step, PrimSize size, double sum[3], int32_t hint))
PRIM_INTERNAL(PrimStatus, primiMean_32f_AC4R,
              (const float* image, int32_t step, PrimSize size, double mean[3], int32_t hint))

/* Affine warps */
PRIM_INTERNAL(PrimStatus, primiGetRotateShift,
              (double xCenter, double yCenter, double angle, double* xShift, double* yShift))
PRIM_INTERNAL(PrimStatus, primiGetAffineQuad, (PrimRect srcRoi, double quad[4][2], const double coeffs[2][3]))
