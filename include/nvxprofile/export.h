// Marks the classes that the shared library makes visible; everything else is built with hidden visibility.
#pragma once

#if defined(__GNUC__)
#define NVX_EXPORT __attribute__((visibility("default")))
#else
#define NVX_EXPORT
#endif
