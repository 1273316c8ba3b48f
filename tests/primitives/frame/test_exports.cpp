// The shared library exports its interface and nothing else.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

namespace {

std::set<std::string> DynamicSymbols(const std::string& library) {
    std::set<std::string> names;
    std::string command = "nm -D --defined-only '" + library + "'";
    FILE* pipe = popen(command.c_str(), "r");
    char line[1024];
    while (pipe && fgets(line, sizeof line, pipe)) {
        char address[64], kind[8], name[900];
        if (sscanf(line, "%63s %7s %899s", address, kind, name) == 3) names.insert(name);
    }
    if (pipe) pclose(pipe);
    return names;
}

std::set<std::string> InterfaceSymbols() {
    std::set<std::string> names = {
        // The host interface.
        "Kelvarine_AllEffectCount", "Kelvarine_EffectID", "Kelvarine_NewInstance", "Kelvarine_Destory",
        "Kelvarine_EffectType", "Kelvarine_EffectName", "Kelvarine_SetEffectArgs",
        "Kelvarine_GetEffectArgs", "Kelvarine_Proc",
        // The log and the catalog files, C++ functions.
        "_Z8WriteLogPKcz", "_Z9WriteLog1iPKcz", "_Z9WriteLog2PKciiS0_z", "_Z16GetLogFileHandlev",
        "_Z12SetLogHandlei", "_Z22getSubtitleXML_for_Winv", "_Z22getSubtitleXML_for_Macv",
        "_Z21CreateEffectThumbnailPhii",
        // Memory.
        "primMalloc", "primFree", "i_malloc", "i_calloc", "i_realloc", "i_free",
        // Dispatch and the processor.
        "primJumpIndex", "primJumpIndexLP", "i_version", "i_min_version", "primInit", "primStaticInit",
        "primInitCpu", "primStaticInitCpu", "primGetCpuFeatures", "primGetEnabledCpuFeatures",
        "primSetCpuFeaturesMask", "primGetMaxCacheSizeB", "prim_has_cpuid", "prim_max_cpuid_input",
        "prim_is_native_vendor", "prim_has_rdtsc", "prim_is_mmx_extension", "prim_is_sse_extension",
        "prim_is_sse2_extension", "prim_is_sse3_extension", "prim_is_ssse3_extension",
        "prim_is_sse41_extension", "prim_is_sse42_extension", "prim_is_movbe", "prim_is_htt_extension",
        "prim_is_x64_extension", "prim_is_avx_extension", "prim_get_cores_on_die", "prim_get_cpu_counter",
        "prim_get_cpu_ident",
        // Floating-point control.
        "ps_get_ssx", "ps_set_ssx", "prim_set_rc_ssx", "prim_set_cw_ssx", "prim_clear_ssx",
        "prim_tst_daz_ssx", "ps_get_cw_fpu", "ps_get_sw_fpu", "ps_clear_fpu", "ps_set_cw_fpu",
        "prim_set_rcpc_fpu", "prim_set_cw_fpu", "prim_control87", "prim_status87", "prim_clear87",
        "prim_isnan", "prim_finite",
    };
#define PRIM_ENTRY(result, name, params) \
    names.insert(#name);                 \
    names.insert(#name "_arraddr");
#include "kelvarine_prim_entries.h"
#undef PRIM_ENTRY
    return names;
}

// The effect classes, each of which exports its CreateInstance.
const std::set<std::string> kEffectClasses = {
    "Box", "Canny", "MinFilter", "CMaxFilter", "Dilate", "Erode", "CMedian", "CWiener",
    "Linear", "Guess", "EdgeDetect", "FilmMono", "OldFilm", "Gray", "Gamma", "Brightness",
    "Contrast", "Saturation", "BrightnessAndContrastAndSaturation", "Emboss", "ColorEmphase",
    "ColorAverage", "CFilmColor", "CColorMask", "CRand", "CReduceBits", "CLowpass", "Mirror",
    "Rotate", "CShear", "CRemap"};

// The class of a mangled Class::CreateInstance(), or empty.
std::string CreatorClass(const std::string& symbol) {
    const std::string head = "_ZN", tail = "14CreateInstanceEv";
    if (symbol.rfind(head, 0) != 0 || symbol.size() <= head.size() + tail.size() ||
        symbol.compare(symbol.size() - tail.size(), tail.size(), tail) != 0)
        return "";
    size_t length = 0, at = head.size();
    while (at < symbol.size() && isdigit(static_cast<unsigned char>(symbol[at]))) length = 10 * length + (symbol[at++] - '0');
    if (at + length + tail.size() != symbol.size()) return "";
    return symbol.substr(at, length);
}

TEST(Exports, DynamicSymbolTableHoldsExactlyTheInterface) {
    std::set<std::string> exported = DynamicSymbols(KV_SHARED_LIBRARY);
    ASSERT_FALSE(exported.empty());
    std::set<std::string> expected = InterfaceSymbols();
    for (const std::string& name : exported) {
        if (name.rfind("__odr_asan", 0) == 0) continue;  // added by AddressSanitizer builds
        std::string effectClass = CreatorClass(name);
        if (!effectClass.empty()) {
            EXPECT_TRUE(kEffectClasses.count(effectClass)) << "unexpected class " << effectClass;
            continue;
        }
        EXPECT_TRUE(expected.count(name)) << "exported but not part of the interface: " << name;
    }
    for (const std::string& name : expected) EXPECT_TRUE(exported.count(name)) << "missing: " << name;
    EXPECT_TRUE(exported.count("_ZN4Gray14CreateInstanceEv"));
}

extern "C" int kv_c_host_runs_gray(void);

TEST(Exports, HeadersServeACHost) { EXPECT_TRUE(kv_c_host_runs_gray()); }

}  // namespace
