// Marks the classes that the shared library makes visible; everything else stays inside. On Windows a program that
// links the static library defines NVXPROFILE_STATIC, as the CMake target does for it.
#pragma once

#if defined(_WIN32) && defined(NVXPROFILE_BUILDING)
#define NVX_EXPORT __declspec(dllexport)
#elif defined(_WIN32) && defined(NVXPROFILE_STATIC)
#define NVX_EXPORT
#elif defined(_WIN32)
#define NVX_EXPORT __declspec(dllimport)
#elif defined(__GNUC__)
#define NVX_EXPORT __attribute__((visibility("default")))
#else
#define NVX_EXPORT
#endif
