// The morphology state: a mask analysed once into one of four kinds, with
// what each kind's method needs, in one block from primMalloc.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_MORPHOLOGY_STATE_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_MORPHOLOGY_STATE_H

#include <stdint.h>

// How a mask is worked.
enum MorphologyMaskKind {
    MaskArbitrary = 0,  // element by element
    MaskRectangle = 1,  // the separable min and max filters
    MaskEllipse = 2,    // one run per row around the anchor: row passes shared by rows of equal width
    MaskEmpty = 3,      // nothing selected: a copy
};

// The runs of an elliptical mask. Rows count from the first selected row;
// widths are distinct and fall.
struct MorphologyEllipse {
    int32_t width;   // from the leftmost run's start to the rightmost run's end
    int32_t height;  // from the first selected row to the last
    int32_t anchorX;
    int32_t anchorY;
    int32_t rowCount;  // rows with a run
    int32_t runCount;  // distinct run widths
    int32_t* rowIndex;   // each run row's index
    int32_t* rowRun;     // each run row's index into the distinct widths
    int32_t* runWidth;   // the distinct widths
    int32_t* runAnchor;  // each distinct width's anchor offset inside its run
};

struct MorphologyState {
    uint8_t* maskData;     // the caller's mask, copied
    uint8_t* erodeTable;   // arbitrary masks: 16 bytes an element, zero where selected, all ones elsewhere
    uint8_t* dilateTable;  // arbitrary masks: 16 bytes an element, all ones where selected, zero elsewhere
    uint8_t* workBuffer;   // scratch of the calls
    MorphologyEllipse* ellipse;
    int32_t maskWidth;  // of the rectangle or the ellipse's span; of the mask otherwise
    int32_t maskHeight;
    int32_t anchorX;  // relative to maskWidth x maskHeight; may lie outside a rectangle
    int32_t anchorY;
    int32_t rightReach;   // arbitrary masks: maskWidth - anchorX - 1
    int32_t bottomReach;  // arbitrary masks: maskHeight - anchorY - 1
    int32_t workStep;     // arbitrary masks: row step of the scratch image
    int32_t totalSize;    // bytes of the block
    int32_t dataType;     // 1: 8-bit unsigned
    int32_t channels;
    int32_t maxWidth;  // the widest region the state serves
    int32_t reserved;
    int32_t maskKind;  // a MorphologyMaskKind
};

#endif
