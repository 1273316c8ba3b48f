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

/* Sobel border pipeline and Canny edge detector */
PRIM_ENTRY(PrimStatus, primiFilterSobelHorizGetBufferSize_8u16s_C1R,
           (PrimSize roiSize, int32_t mask, int32_t* bufferSize))
PRIM_ENTRY(PrimStatus, primiFilterSobelNegVertGetBufferSize_8u16s_C1R,
           (PrimSize roiSize, int32_t mask, int32_t* bufferSize))
PRIM_ENTRY(PrimStatus, primiFilterSobelHorizBorder_8u16s_C1R,
           (const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, PrimSize roiSize, int32_t mask,
            int32_t borderType, uint8_t borderValue, uint8_t* buffer))
PRIM_ENTRY(PrimStatus, primiFilterSobelNegVertBorder_8u16s_C1R,
           (const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, PrimSize roiSize, int32_t mask,
            int32_t borderType, uint8_t borderValue, uint8_t* buffer))
PRIM_ENTRY(PrimStatus, primiCannyGetSize, (PrimSize roiSize, int32_t* bufferSize))
PRIM_ENTRY(PrimStatus, primiCanny_16s8u_C1R,
           (const int16_t* srcDx, int32_t srcDxStep, const int16_t* srcDy, int32_t srcDyStep, uint8_t* dst,
            int32_t dstStep, PrimSize roiSize, float lowThresh, float highThresh, uint8_t* buffer))

/* Median filters */
PRIM_ENTRY(PrimStatus, primiFilterMedian_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, PrimSize mask,
            PrimPoint anchor))
PRIM_ENTRY(PrimStatus, primiFilterMedianHoriz_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, int32_t mask))
PRIM_ENTRY(PrimStatus, primiFilterMedianVert_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, int32_t mask))
PRIM_ENTRY(PrimStatus, primiFilterMedianCross_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, int32_t mask))
PRIM_ENTRY(PrimStatus, primiFilterMedianColor_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, int32_t mask))

/* Wiener filter */
PRIM_ENTRY(PrimStatus, primiFilterWienerGetBufferSize,
           (PrimSize roiSize, PrimSize maskSize, int32_t channels, int32_t* bufferSize))
PRIM_ENTRY(PrimStatus, primiFilterWiener_8u_AC4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize, PrimSize maskSize,
            PrimPoint anchor, float* noise, uint8_t* buffer))

/* Geometry: remap */
PRIM_ENTRY(PrimStatus, primiRemap_8u_AC4R,
           (const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, const float* xMap,
            int32_t xMapStep, const float* yMap, int32_t yMapStep, uint8_t* dst, int32_t dstStep,
            PrimSize dstRoiSize, int32_t interpolation))

/* Linear filters: box, convolution and the fixed kernels */
PRIM_ENTRY(PrimStatus, primiFilterBox_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize,
            PrimSize maskSize, PrimPoint anchor))
PRIM_ENTRY(PrimStatus, primiFilter_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize,
            const int32_t* pKernel, PrimSize kernelSize, PrimPoint anchor, int32_t divisor))
PRIM_ENTRY(PrimStatus, primiFilterPrewittVert_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize))
PRIM_ENTRY(PrimStatus, primiFilterPrewittHoriz_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize))
PRIM_ENTRY(PrimStatus, primiFilterSobelVert_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize))
PRIM_ENTRY(PrimStatus, primiFilterSobelHoriz_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize))
PRIM_ENTRY(PrimStatus, primiFilterRobertsUp_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize))
PRIM_ENTRY(PrimStatus, primiFilterRobertsDown_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize))
PRIM_ENTRY(PrimStatus, primiFilterLaplace_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize, int32_t mask))
PRIM_ENTRY(PrimStatus, primiFilterGauss_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize, int32_t mask))
PRIM_ENTRY(PrimStatus, primiFilterHipass_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize, int32_t mask))
PRIM_ENTRY(PrimStatus, primiFilterLowpass_8u_AC4R,
           (const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, PrimSize roiSize, int32_t mask))

/* Min and max filters */
PRIM_ENTRY(PrimStatus, primiFilterMinGetBufferSize_8u_C4R, (int32_t roiWidth, PrimSize maskSize, int32_t* bufferSize))
PRIM_ENTRY(PrimStatus, primiFilterMaxGetBufferSize_8u_C4R, (int32_t roiWidth, PrimSize maskSize, int32_t* bufferSize))
PRIM_ENTRY(PrimStatus, primiFilterMinBorderReplicate_8u_C4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize, PrimSize maskSize,
            PrimPoint anchor, uint8_t* buffer))
PRIM_ENTRY(PrimStatus, primiFilterMaxBorderReplicate_8u_C4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize, PrimSize maskSize,
            PrimPoint anchor, uint8_t* buffer))

/* Morphology */
PRIM_ENTRY(PrimStatus, primiMorphologyInitAlloc_8u_C4R,
           (int32_t roiWidth, const uint8_t* mask, PrimSize maskSize, PrimPoint anchor, MorphologyState** state))
PRIM_ENTRY(PrimStatus, primiMorphologyFree, (MorphologyState* state))
PRIM_ENTRY(PrimStatus, primiDilateBorderReplicate_8u_C4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize, int32_t borderType,
            MorphologyState* state))
PRIM_ENTRY(PrimStatus, primiErodeBorderReplicate_8u_C4R,
           (const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize, int32_t borderType,
            MorphologyState* state))

/* Affine warps */
PRIM_ENTRY(PrimStatus, primiRotateCenter_8u_AC4R,
           (const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst, int32_t dstStep,
            PrimRect dstRoi, double angle, double xCenter, double yCenter, int32_t interpolation))
PRIM_ENTRY(PrimStatus, primiShear_8u_AC4R,
           (const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst, int32_t dstStep,
            PrimRect dstRoi, double xShear, double yShear, double xShift, double yShift, int32_t interpolation))
