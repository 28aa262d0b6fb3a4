// Symbol visibility of the shared library. The engine is compiled with hidden
// visibility; only what carries XVKFC_EXPORT is part of libxvkfcEngineTAVO.so.
#ifndef XVKFC_PLATFORM_EXPORT_H_
#define XVKFC_PLATFORM_EXPORT_H_

#if defined(__GNUC__) || defined(__clang__)
#define XVKFC_EXPORT __attribute__((visibility("default")))
#else
#define XVKFC_EXPORT
#endif

#endif  // XVKFC_PLATFORM_EXPORT_H_
