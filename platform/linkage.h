#pragma once

/// @file
/// How a name leaves a shared library on this system.  Users meet it as `TARN_EXPORT` and `TARN_HIDDEN` of
/// core/export.h.

#if defined(_WIN32)
#if defined(TARN_SHARED_BUILD)
#define TARN_LINKAGE __declspec(dllexport)
#elif defined(TARN_SHARED)
#define TARN_LINKAGE __declspec(dllimport)
#else
#define TARN_LINKAGE
#endif
#define TARN_NO_LINKAGE
#else
#define TARN_LINKAGE __attribute__((visibility("default")))
#define TARN_NO_LINKAGE __attribute__((visibility("hidden")))
#endif
