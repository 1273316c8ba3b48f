// The catalog of effects, the nine exported functions a host calls, and the
// routines that write the catalog out as files.
#include <cstdio>
#include <cstring>

#include "effects/Box.h"
#include "effects/Brightness.h"
#include "effects/BrightnessAndContrastAndSaturation.h"
#include "effects/Canny.h"
#include "effects/ColorAverage.h"
#include "effects/ColorEmphase.h"
#include "effects/ColorMask.h"
#include "effects/Contrast.h"
#include "effects/EdgeDetect.h"
#include "effects/Dilate.h"
#include "effects/Effect_Base.h"
#include "effects/Emboss.h"
#include "effects/Erode.h"
#include "effects/FilmColor.h"
#include "effects/FilmMono.h"
#include "effects/Gamma.h"
#include "effects/Gray.h"
#include "effects/Median.h"
#include "effects/Guess.h"
#include "effects/Linear.h"
#include "effects/Lowpass.h"
#include "effects/MaxFilter.h"
#include "effects/MinFilter.h"
#include "effects/OldFilm.h"
#include "effects/Rand.h"
#include "effects/Remap.h"
#include "effects/Saturation.h"
#include "effects/Wiener.h"
#include "effects/Mirror.h"
#include "effects/Rotate.h"
#include "effects/Shear.h"

namespace {

struct EffectListEntry {
    const char* name;
    int32_t id;
    int32_t type;
    Effect_Base* (*creator)();
    EffectArgs* preset;
};

// The presets that turn a shared class into one row's effect. Only the rows
// whose bit is set in kPresetRows receive theirs.
EffectArgs V_Mirror_default = {{1}};
EffectArgs VH_Mirror_default = {{2}};
EffectArgs st_Rotate_90 = {{90}};
EffectArgs st_Rotate_180 = {{180}};
EffectArgs st_Rotate_270 = {{270}};
EffectArgs Explode_default = {{0, 6}};
EffectArgs Faceted_default = {{1, 3, 16}};
EffectArgs Eye_default = {{2, 70}};
EffectArgs Whirl_default = {{3, 50}};
EffectArgs Shear_default = {{-10, -10}};
EffectArgs Rand_default = {{0, 0, 8}};
EffectArgs MaxFilter_default = {{3}};
EffectArgs Median_default = {{7}};
EffectArgs Wiener_default = {{3, 5, 5, 5}};
EffectArgs ColorMask_R_default = {{1060}};
EffectArgs ColorMask_G_default = {{1061}};
EffectArgs ColorMask_B_default = {{1062}};
EffectArgs ColorMask_Y_default = {{1063}};
EffectArgs ColorMask_P_default = {{1064}};
EffectArgs ColorMask_U_default = {{1065}};
EffectArgs ColorMask_O_default = {{1066}};

// Bit r set: row r's preset goes through SetArgs at creation.
constexpr uint64_t kPresetRows = 0x7F7FC760000ull;

// A row whose class is not built yet has no creator and creates nothing.
const EffectListEntry EffectList[] = {
    {"Box", 1001, 6, Box::CreateInstance, nullptr},
    {"Canny", 1002, 6, Canny::CreateInstance, nullptr},
    {"Min Filter", 1003, 6, MinFilter::CreateInstance, nullptr},
    {"Dilate", 1006, 6, Dilate::CreateInstance, nullptr},
    {"Erode", 1007, 6, Erode::CreateInstance, nullptr},
    {"Edge Detect", 1008, 6, EdgeDetect::CreateInstance, nullptr},
    {"Film Mono", 1010, 6, FilmMono::CreateInstance, nullptr},
    {"Guess", 1011, 6, Guess::CreateInstance, nullptr},
    {"Linear", 1012, 6, Linear::CreateInstance, nullptr},
    {"Emboss", 1034, 6, Emboss::CreateInstance, nullptr},
    {"Old Film", 1035, 6, OldFilm::CreateInstance, nullptr},
    {"Gray", 1036, 6, Gray::CreateInstance, nullptr},
    {"Color Average", 1005, 0, ColorAverage::CreateInstance, nullptr},
    {"Color Emphase", 1004, 0, ColorEmphase::CreateInstance, nullptr},
    {"Brightness", 1013, 0, Brightness::CreateInstance, nullptr},
    {"Gamma", 1009, 0, Gamma::CreateInstance, nullptr},
    {"Mirror Vertical", 1015, 0, Mirror::CreateInstance, nullptr},
    {"Mirror Horizontal", 1014, 0, Mirror::CreateInstance, &V_Mirror_default},
    {"Mirror Both", 1016, 0, Mirror::CreateInstance, &VH_Mirror_default},
    {"Rotate 60", 1017, 0, Rotate::CreateInstance, nullptr},
    {"Rotate 90", 1018, 0, Rotate::CreateInstance, &st_Rotate_90},
    {"Rotate 180", 1019, 0, Rotate::CreateInstance, &st_Rotate_180},
    {"Rotate 270", 1020, 0, Rotate::CreateInstance, &st_Rotate_270},
    {"Contrast", 1031, 0, Contrast::CreateInstance, nullptr},
    {"Saturation", 1033, 0, Saturation::CreateInstance, nullptr},
    {"BrightnessAndContrastAndSaturation", 1040, 0, BrightnessAndContrastAndSaturation::CreateInstance, nullptr},
    {"Explode", 1050, 6, CRemap::CreateInstance, &Explode_default},
    {"Faceted", 1051, 6, CRemap::CreateInstance, &Faceted_default},
    {"Eye", 1052, 6, CRemap::CreateInstance, &Eye_default},
    {"Whirl", 1053, 6, CRemap::CreateInstance, &Whirl_default},
    {"Shear", 1054, 6, CShear::CreateInstance, &Shear_default},
    {"Rand", 1055, 6, CRand::CreateInstance, &Rand_default},
    {"Max Filter", 1056, 6, CMaxFilter::CreateInstance, &MaxFilter_default},
    {"Median", 1057, 6, CMedian::CreateInstance, &Median_default},
    {"Wiener", 1058, 6, CWiener::CreateInstance, &Wiener_default},
    {"Film Color", 1059, 6, CFilmColor::CreateInstance, nullptr},
    {"Red", 1060, 6, CColorMask::CreateInstance, &ColorMask_R_default},
    {"Green", 1061, 6, CColorMask::CreateInstance, &ColorMask_G_default},
    {"Blue", 1062, 6, CColorMask::CreateInstance, &ColorMask_B_default},
    {"Yellow", 1063, 6, CColorMask::CreateInstance, &ColorMask_Y_default},
    {"Pink", 1064, 6, CColorMask::CreateInstance, &ColorMask_P_default},
    {"Purple", 1065, 6, CColorMask::CreateInstance, &ColorMask_U_default},
    {"Old Picture", 1066, 6, CColorMask::CreateInstance, &ColorMask_O_default},
    {"De-noise", 1067, 0, CLowpass::CreateInstance, nullptr},
};

// The count is fixed, not computed from the table.
const int32_t icount = 44;
static_assert(sizeof(EffectList) / sizeof(EffectList[0]) == 44, "the catalog has 44 rows");

// The first row with the id, or null.
const EffectListEntry* FindRow(int32_t id) {
    for (int32_t i = 0; i < icount; ++i)
        if (EffectList[i].id == id) return &EffectList[i];
    return nullptr;
}

}  // namespace

extern "C" {

KV_API int32_t Kelvarine_AllEffectCount(void) { return icount; }

KV_API int32_t Kelvarine_EffectID(int32_t index) {
    if (index < 0 || index >= icount) return -1;
    return EffectList[index].id;
}

KV_API Effect_Base* Kelvarine_NewInstance(int32_t id) {
    const EffectListEntry* row = FindRow(id);
    if (row == nullptr || row->creator == nullptr) return nullptr;
    Effect_Base* instance = row->creator();
    if ((kPresetRows >> (row - EffectList)) & 1u) instance->SetArgs(row->preset);
    return instance;
}

KV_API void Kelvarine_Destory(Effect_Base* instance) { delete instance; }

KV_API int32_t Kelvarine_EffectType(int32_t id) {
    const EffectListEntry* row = FindRow(id);
    return row == nullptr ? -1 : row->type;
}

KV_API const char* Kelvarine_EffectName(int32_t id) {
    const EffectListEntry* row = FindRow(id);
    return row == nullptr ? nullptr : row->name;
}

KV_API int32_t Kelvarine_SetEffectArgs(Effect_Base* instance, EffectArgs* args) {
    if (instance == nullptr) return -1;
    return instance->SetArgs(args);
}

KV_API int32_t Kelvarine_GetEffectArgs(Effect_Base* instance, EffectArgs* args) {
    if (instance == nullptr) return -1;
    return instance->GetArgs(args);
}

KV_API int32_t Kelvarine_Proc(Effect_Base* instance, unsigned char* frame, int32_t width, int32_t height) {
    if (instance == nullptr) return -1;
    return instance->Proc(frame, width, height);
}

}  // extern "C"

// ---- Catalog files ----
// The paths are literal Windows-style names; on this system they name files of
// that odd name in the current directory. A failed fopen is not tested.

namespace {

void WriteCatalogXml(const char* itemFormat) {
    FILE* file = fopen("c:\\Effect.xml", "w");
    fputs("<Group>\n", file);
    for (int32_t i = 0; i < icount; ++i) {
        const EffectListEntry& row = EffectList[i];
        fprintf(file, itemFormat, row.id, row.name, row.type, i, row.name);
    }
    fputs("</Group>\n", file);
    fclose(file);
}

}  // namespace

KV_API void getSubtitleXML_for_Win() {
    WriteCatalogXml("<item id=\"%d\" name=\"%s\" type=\"%d\" sort=\"%d\" icon=\"%s.png\" />\n");
}

KV_API void getSubtitleXML_for_Mac() {
    WriteCatalogXml("<item id=\"%d\" title=\"%s\" type=\"%d\" sort=\"%d\" image=\"%s.png\" />\n");
}

// Runs every effect, with its row's preset, on a copy of the frame and leaves
// one empty file per effect: the processed pictures are not written anywhere.
KV_API void CreateEffectThumbnail(unsigned char* frame, int32_t width, int32_t height) {
    size_t bytes = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
    unsigned char* copy = new unsigned char[bytes];
    for (int32_t i = 0; i < icount; ++i) {
        char path[1024];
        memset(copy, 0, bytes);
        memset(path, 0, sizeof path);
        memcpy(copy, frame, bytes);
        int32_t id = Kelvarine_EffectID(i);
        Effect_Base* instance = Kelvarine_NewInstance(id);
        Kelvarine_Proc(instance, copy, width, height);
        sprintf(path, "D:\\thumbnail\\%d.bmp", id);
        fclose(fopen(path, "wb"));
        if (instance != nullptr) Kelvarine_Destory(instance);
    }
    delete[] copy;
}
