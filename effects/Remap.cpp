#include "effects/Remap.h"

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "effects/PixelWords.h"
#include "kelvarine_prims.h"

namespace {

// The frame size of the most recent map build by any instance.
int32_t OldWidth = 0;
int32_t OldHeight = 0;

// The draws of "Explode" continue one sequence through the whole process,
// from build to build and instance to instance; nothing reseeds them. They
// come from a generator state of their own, started as random() starts in a
// fresh process, so that the host's own random() and rand() stay untouched.
class ExplodeDraws {
public:
    ExplodeDraws() { initstate_r(1, state_, sizeof state_, &data_); }
    int32_t Next() {
        int32_t draw;
        random_r(&data_, &draw);
        return draw;
    }

private:
    char state_[128] = {};
    random_data data_ = {};
};

// lo + (draw mod (hi - lo)): from lo up to hi - 1, hi itself never. An empty
// range divides by zero, which stops the process with an arithmetic trap.
int32_t Rand(int32_t lo, int32_t hi) {
    static ExplodeDraws draws;
    int32_t span = hi - lo;
    int64_t draw = draws.Next();
    if (span == 0) {
        std::raise(SIGFPE);
        return lo;
    }
    return static_cast<int32_t>(lo + draw % static_cast<int64_t>(span));
}

}  // namespace

Effect_Base* CRemap::CreateInstance() { return new CRemap; }

CRemap::~CRemap() {
    if (xMap != nullptr) free(xMap);
    xMap = nullptr;
    if (yMap != nullptr) free(yMap);
    yMap = nullptr;
    if (dstBuf != nullptr) primsFree(dstBuf);
    dstBuf = nullptr;
}

int32_t CRemap::Proc(unsigned char* frame, int32_t frameWidth, int32_t frameHeight) {
    width = frameWidth;
    height = frameHeight;
    Remap_Proc(frame, frameWidth, frameHeight);
    return 0;
}

// The mode is kept as given; only the known modes take parameters.
int32_t CRemap::SetArgs(EffectArgs* args) {
    mode = args->word[0];
    switch (static_cast<uint32_t>(mode)) {
        case 0:
            param1 = ClampWord(args->word[1], 1, 30);
            break;
        case 1:
            param1 = ClampWord(args->word[1], 1, 3);
            param2 = ClampWord(args->word[2], 2, 16);
            break;
        case 2:
            param1 = ClampWord(args->word[1], 0, 100);
            break;
        case 3:
            param1 = ClampWord(args->word[1], 0, 100);
            param2 = ClampWord(args->word[2], 0, 10);
            break;
        default:
            break;
    }
    return 0;
}

// Word 2 reports the first parameter again; the second is never read back.
int32_t CRemap::GetArgs(EffectArgs* args) {
    args->word[0] = mode;
    args->word[1] = param1;
    args->word[2] = param1;
    return 0;
}

void CRemap::OnParameterChanged() { CalculateMap(); }

// The maps are rebuilt only when the shared size differs from the frame's
// (or this instance has no buffer yet). Each frame then becomes opaque black
// where the maps point outside it, and the remapped frame elsewhere, with the
// fourth byte at 255 in every pixel.
void CRemap::Remap_Proc(unsigned char* frame, int32_t w, int32_t h) {
    static PrimSize Size;
    static int32_t Step;
    static PrimRect srcRoi;
    static int32_t MapStep;

    int32_t n = PixelCount(w, h);
    int32_t rowBytes = static_cast<int32_t>(static_cast<uint32_t>(w) * 4u);
    if (dstBuf == nullptr || OldWidth != w || OldHeight != h) {
        if (xMap != nullptr) free(xMap);
        if (yMap != nullptr) free(yMap);
        size_t mapBytes = static_cast<size_t>(static_cast<int64_t>(n)) * 4;
        xMap = static_cast<float*>(malloc(mapBytes));
        yMap = static_cast<float*>(malloc(mapBytes));
        OldWidth = w;
        OldHeight = h;
        CalculateMap();
        if (dstBuf != nullptr) primsFree(dstBuf);
        dstBuf = nullptr;
        Size = {w, h};
        Step = rowBytes;
        srcRoi = {0, 0, w, h};
        dstBuf = static_cast<unsigned char*>(primMalloc(static_cast<int32_t>(static_cast<uint32_t>(n) * 4u)));
        MapStep = rowBytes;
    }
    FullBack(dstBuf, w, h);
    primiRemap_8u_AC4R(frame, Size, Step, srcRoi, xMap, MapStep, yMap, MapStep, dstBuf, Step, Size, InterpLinear);
    if (n > 0) memcpy(frame, dstBuf, static_cast<size_t>(n) * 4);
}

void CRemap::CalculateMap() {
    if (mode == 1) {
        SetFacetedData(xMap, false);
        SetFacetedData(yMap, true);
        return;
    }
    void (CRemap::*generator)(int32_t, int32_t, float*, float*) = nullptr;
    switch (mode) {
        case 0:
            generator = &CRemap::GetExplodeMap;
            break;
        case 2:
            generator = &CRemap::GetEyeMap;
            break;
        case 3:
            generator = &CRemap::GetWhirlMap;
            break;
        default:
            break;
    }
    if (width <= 0 || height <= 0) return;
    // A mode without a generator has no map to build: the process stops.
    if (generator == nullptr) std::abort();
    // Pixel by pixel, row by row, the x position before the y position: the
    // order of Explode's draws.
    for (int32_t y = 0; y < height; ++y) {
        size_t row = static_cast<size_t>(y) * static_cast<size_t>(width);
        for (int32_t x = 0; x < width; ++x) (this->*generator)(x, y, xMap + row + x, yMap + row + x);
    }
}

// Each coordinate drawn at random from a box of radius param1 around the
// pixel, cut at the frame's first and last column or row. Since the last
// value of a range is never drawn, the last column and row are never shown.
void CRemap::GetExplodeMap(int32_t x, int32_t y, float* sourceX, float* sourceY) {
    int32_t p = param1;
    *sourceX = static_cast<float>(Rand(x - p > 0 ? x - p : 0, x + p < width ? x + p : width - 1));
    *sourceY = static_cast<float>(Rand(y - p > 0 ? y - p : 0, y + p < height ? y + p : height - 1));
}

// Square tiles of side param2, each turned by param1 quarter turns (0 none,
// 1 and 3 opposite senses, anything else as 3). The strips right of and
// below the whole tiles stay where they are.
void CRemap::SetFacetedData(float* map, bool wantY) {
    const int32_t side = param2, far = side - 1;
    const int32_t fullWidth = width - width % side, fullHeight = height - height % side;
    for (int32_t y = 0; y < height; ++y) {
        float* row = map + static_cast<size_t>(y) * static_cast<size_t>(width);
        int32_t x = 0;
        if (y < fullHeight) {
            const int32_t j = y % side, by = y - j;
            for (int32_t bx = 0; bx < fullWidth; bx += side)
                for (int32_t i = 0; i < side; ++i, ++x) {
                    int32_t sx, sy;  // the source inside the tile
                    switch (param1) {
                        case 0:
                            sx = i, sy = j;
                            break;
                        case 1:
                            sx = far - j, sy = i;
                            break;
                        case 2:
                            sx = far - i, sy = far - j;
                            break;
                        default:
                            sx = j, sy = far - i;
                            break;
                    }
                    row[x] = static_cast<float>(wantY ? by + sy : bx + sx);
                }
        }
        for (; x < width; ++x) row[x] = static_cast<float>(wantY ? y : x);
    }
}

// The picture bent over a spherical cap of height param1 percent of the
// circle's radius R: a point at distance r takes its sample at distance
// R asin(r / S) / asin(R / S), S the sphere's radius. Outside the circle the
// picture stays put.
void CRemap::GetEyeMap(int32_t x, int32_t y, float* sourceX, float* sourceY) {
    double cx = width * 0.5, cy = height * 0.5;
    double R = cx < cy ? cx : cy;
    double p = param1 == 0 ? 1.0 : param1;
    double h = (p * R) / 100.0;
    double S = ((h * h + R * R) / h) * 0.5;
    double a0 = asin(R / S);
    double dx = x - cx, dy = y - cy;
    double r = sqrt(dx * dx + dy * dy);
    if (!(r < R)) {
        *sourceX = static_cast<float>(x);
        *sourceY = static_cast<float>(y);
    } else if (r == 0.0) {
        *sourceX = static_cast<float>(cx);
        *sourceY = static_cast<float>(cy);
    } else {
        double t = ((asin(r / S) * (1.0 / a0)) * R) / r;
        *sourceX = static_cast<float>(cx + dx * t);
        *sourceY = static_cast<float>(cy + dy * t);
    }
}

// A spiral: the sample turns by an angle growing with the distance r from
// the centre, param1 / 3600 radians a pixel, and is drawn towards the centre
// by 1 + angle * param2.
void CRemap::GetWhirlMap(int32_t x, int32_t y, float* sourceX, float* sourceY) {
    double cx = width * 0.5, cy = height * 0.5;
    double dx = x - cx, dy = y - cy;
    double r = sqrt(dx * dx + dy * dy);
    double a = (param1 / 3600.0) * r;
    double s = sin(a), c = cos(a);
    double k = ClampWord(param2, 0, 10);
    double d = a * k + 1.0;
    double u = dy / d, v = dx / d;
    *sourceX = static_cast<float>(v * c - u * s + cx);
    *sourceY = static_cast<float>(v * s + u * c + cy);
}
