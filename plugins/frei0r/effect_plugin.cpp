// A frei0r filter over one catalog effect. This one source is built once per
// effect, with the effect's id given as KV_EFFECT_ID.
//
// Each frei0r instance owns one library instance, created by id so that the
// catalog's preset applies. The effect's parameter words appear as frei0r
// doubles in 0..1, mapped linearly onto each word's range.
#include <climits>
#include <cmath>
#include <cstring>

#include "include/kelvarine.h"

extern "C" {
#include <frei0r.h>
}

#ifndef KV_EFFECT_ID
#error "KV_EFFECT_ID must name the catalog effect of this plugin"
#endif

namespace {

constexpr int kFromInstance = INT_MIN;

// One parameter word of an effect and the range a frei0r value maps onto.
struct WordParameter {
    const char* name;
    const char* explanation;
    int word;
    int low;
    int high;
    // What the word starts at when the instance cannot report it.
    int start = kFromInstance;
};

struct ParameterList {
    const WordParameter* items;
    int count;
};

template <int N>
constexpr ParameterList List(const WordParameter (&items)[N]) {
    return {items, N};
}

// The words each class reads, by catalog id.
ParameterList ParametersOf(int id) {
    static const WordParameter maskEdge1[] = {{"mask edge", "side of the square neighbourhood", 0, 1, 10}};
    static const WordParameter maskEdge2[] = {{"mask edge", "side of the square neighbourhood", 0, 2, 10}};
    static const WordParameter canny[] = {
        {"low threshold", "gradient below which no edge starts", 0, 0, 100},
        {"high threshold", "gradient above which an edge is sure", 1, 0, 100}};
    static const WordParameter wiener[] = {
        {"mask edge", "side of the square neighbourhood", 0, 3, 10},
        {"blue noise", "noise level of the blue channel", 1, 0, 9},
        {"green noise", "noise level of the green channel", 2, 0, 9},
        {"red noise", "noise level of the red channel", 3, 0, 9}};
    static const WordParameter linear[] = {{"centre weight", "weight of the centre tap", 0, 1, 10}};
    static const WordParameter guess[] = {{"kernel choice", "which of the two kernels", 0, 0, 1}};
    static const WordParameter edgeDetect[] = {{"filter choice", "which fixed filter", 0, 0, 6}};
    static const WordParameter gamma[] = {{"repetitions", "gamma steps, negative for the inverse", 0, -10, 10}};
    static const WordParameter brightness[] = {{"amount", "added to each colour", 0, -255, 255}};
    static const WordParameter amount200[] = {{"amount", "strength of the adjustment", 0, -200, 200}};
    static const WordParameter emboss[] = {{"bias", "added to the relief", 0, -200, 200}};
    static const WordParameter combined[] = {
        {"brightness", "brightness adjustment", 0, -200, 200},
        {"contrast", "contrast adjustment", 1, -200, 200},
        {"saturation", "saturation adjustment", 2, -200, 200}};
    static const WordParameter repetitions[] = {{"repetitions", "how often the step runs", 0, 1, 16}};
    static const WordParameter rand[] = {
        {"mean", "mean of the added noise", 1, 0, 255},
        {"deviation", "standard deviation of the added noise", 2, 0, 255}};
    static const WordParameter mirror[] = {{"flip code", "0 top to bottom, 1 left to right, 2 both", 0, 0, 2}};
    static const WordParameter rotate[] = {{"angle", "rotation in whole degrees", 0, 0, 360}};
    static const WordParameter shear[] = {
        {"shear x", "horizontal shear in hundredths", 0, -50, 50},
        {"shear y", "vertical shear in hundredths", 1, -50, 50}};
    // The map warps report word 1 again in word 2, so the words kept in
    // word 2 start at the catalog's values given here.
    static const WordParameter explode[] = {{"scatter radius", "pixels a sample may come from", 1, 1, 30}};
    static const WordParameter faceted[] = {
        {"quarter turns", "turns of each tile", 1, 1, 3},
        {"tile side", "tile side in pixels", 2, 2, 16, 16}};
    static const WordParameter eye[] = {{"bulge height", "height of the bulge in percent", 1, 0, 100}};
    static const WordParameter whirl[] = {
        {"twist rate", "twist per pixel from the centre", 1, 0, 100},
        {"shrink factor", "pull toward the centre", 2, 0, 10, 0}};

    switch (id) {
        case 1001: case 1057: return List(maskEdge1);
        case 1003: case 1006: case 1007: case 1056: return List(maskEdge2);
        case 1002: return List(canny);
        case 1058: return List(wiener);
        case 1012: return List(linear);
        case 1011: return List(guess);
        case 1008: return List(edgeDetect);
        case 1009: return List(gamma);
        case 1013: return List(brightness);
        case 1031: case 1033: return List(amount200);
        case 1034: return List(emboss);
        case 1040: return List(combined);
        case 1004: case 1005: return List(repetitions);
        case 1055: return List(rand);
        case 1014: case 1015: case 1016: return List(mirror);
        case 1017: case 1018: case 1019: case 1020: return List(rotate);
        case 1054: return List(shear);
        case 1050: return List(explode);
        case 1051: return List(faceted);
        case 1052: return List(eye);
        case 1053: return List(whirl);
        default: return {nullptr, 0};
    }
}

const ParameterList kParameters = ParametersOf(KV_EFFECT_ID);

struct PluginInstance {
    Effect_Base* effect;
    EffectArgs args;
    bool argsChanged;
    unsigned width;
    unsigned height;
};

const WordParameter* ParameterAt(int index) {
    return index >= 0 && index < kParameters.count ? &kParameters.items[index] : nullptr;
}

}  // namespace

extern "C" {

int f0r_init() { return 1; }

void f0r_deinit() {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    info->name = Kelvarine_EffectName(KV_EFFECT_ID);
    info->author = "Kelvarine";
    info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
    info->color_model = F0R_COLOR_MODEL_BGRA8888;
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->major_version = 1;
    info->minor_version = 0;
    info->num_params = kParameters.count;
    info->explanation = "Kelvarine image effect";
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
    const WordParameter* parameter = ParameterAt(index);
    if (!parameter) return;
    info->name = parameter->name;
    info->type = F0R_PARAM_DOUBLE;
    info->explanation = parameter->explanation;
}

f0r_instance_t f0r_construct(unsigned width, unsigned height) {
    Effect_Base* effect = Kelvarine_NewInstance(KV_EFFECT_ID);
    if (!effect) return nullptr;
    auto* instance = new PluginInstance{effect, {}, false, width, height};
    Kelvarine_GetEffectArgs(effect, &instance->args);
    for (int i = 0; i < kParameters.count; ++i) {
        const WordParameter& parameter = kParameters.items[i];
        if (parameter.start != kFromInstance) instance->args.word[parameter.word] = parameter.start;
    }
    return instance;
}

void f0r_destruct(f0r_instance_t handle) {
    auto* instance = static_cast<PluginInstance*>(handle);
    Kelvarine_Destory(instance->effect);
    delete instance;
}

void f0r_set_param_value(f0r_instance_t handle, f0r_param_t param, int index) {
    const WordParameter* parameter = ParameterAt(index);
    if (!parameter || !param) return;
    double value = *static_cast<const f0r_param_double*>(param);
    if (!(value >= 0.0)) value = 0.0;  // also catches NaN
    if (value > 1.0) value = 1.0;
    const int word =
        parameter->low + static_cast<int>(std::lround(value * (parameter->high - parameter->low)));
    auto* instance = static_cast<PluginInstance*>(handle);
    if (instance->args.word[parameter->word] == word) return;
    instance->args.word[parameter->word] = word;
    instance->argsChanged = true;
}

void f0r_get_param_value(f0r_instance_t handle, f0r_param_t param, int index) {
    const WordParameter* parameter = ParameterAt(index);
    if (!parameter || !param) return;
    const auto* instance = static_cast<const PluginInstance*>(handle);
    double value = static_cast<double>(instance->args.word[parameter->word] - parameter->low) /
                   (parameter->high - parameter->low);
    *static_cast<f0r_param_double*>(param) = value < 0.0 ? 0.0 : value > 1.0 ? 1.0 : value;
}

void f0r_update(f0r_instance_t handle, double, const uint32_t* inframe, uint32_t* outframe) {
    auto* instance = static_cast<PluginInstance*>(handle);
    if (instance->argsChanged) {
        // Some effects read their words only when they build their maps or
        // buffers; a fresh instance makes every change show at once.
        Kelvarine_Destory(instance->effect);
        instance->effect = Kelvarine_NewInstance(KV_EFFECT_ID);
        Kelvarine_SetEffectArgs(instance->effect, &instance->args);
        instance->argsChanged = false;
    }
    std::memcpy(outframe, inframe, size_t{instance->width} * instance->height * 4);
    Kelvarine_Proc(instance->effect, reinterpret_cast<unsigned char*>(outframe),
                   static_cast<int32_t>(instance->width), static_cast<int32_t>(instance->height));
}

}  // extern "C"
