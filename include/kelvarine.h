/* Kelvarine: effects for still images and video frames.
 *
 * A host lists the catalog, creates an instance of an effect by id, sets its
 * parameters and hands it frames of 4 bytes a pixel (blue, green, red, a
 * fourth byte), rows without a gap. The effect changes the frame in place.
 */
#ifndef KELVARINE_H
#define KELVARINE_H

#include <stdint.h>

#if defined(_WIN32)
#define KV_API
#else
#define KV_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
class Effect_Base;
#else
typedef struct Effect_Base Effect_Base;
#endif

/* The parameter record: six signed words whose meaning depends on the effect. */
typedef struct EffectArgs {
    int32_t word[6];
} EffectArgs;

KV_API int32_t Kelvarine_AllEffectCount(void);
KV_API int32_t Kelvarine_EffectID(int32_t index);
KV_API Effect_Base* Kelvarine_NewInstance(int32_t id);
KV_API void Kelvarine_Destory(Effect_Base* instance);
KV_API int32_t Kelvarine_EffectType(int32_t id);
KV_API const char* Kelvarine_EffectName(int32_t id);
KV_API int32_t Kelvarine_SetEffectArgs(Effect_Base* instance, EffectArgs* args);
KV_API int32_t Kelvarine_GetEffectArgs(Effect_Base* instance, EffectArgs* args);
KV_API int32_t Kelvarine_Proc(Effect_Base* instance, unsigned char* frame, int32_t width,
                              int32_t height);

#ifdef __cplusplus
} /* extern "C" */

/* Every effect is an Effect_Base; C++ hosts may hold the classes directly. */
class Effect_Base {
public:
    virtual ~Effect_Base() {}
    virtual int32_t Proc(unsigned char* frame, int32_t width, int32_t height) = 0;
    virtual int32_t SetArgs(EffectArgs* args) = 0;
    virtual int32_t GetArgs(EffectArgs* args) = 0;
};

/* The diagnostic log, "/tmp/Kelvarine.log", created at the first message. */
KV_API void WriteLog(const char* format, ...);
KV_API void WriteLog1(int32_t level, const char* format, ...);
KV_API void WriteLog2(const char* file, int32_t line, int32_t level, const char* format, ...);
KV_API int32_t GetLogFileHandle();
KV_API void SetLogHandle(int32_t handle);

/* Catalog files: "c:\Effect.xml" in the current directory, and one empty
 * "D:\thumbnail\<id>.bmp" per effect. */
KV_API void getSubtitleXML_for_Win();
KV_API void getSubtitleXML_for_Mac();
KV_API void CreateEffectThumbnail(unsigned char* frame, int32_t width, int32_t height);
#endif

#endif /* KELVARINE_H */
