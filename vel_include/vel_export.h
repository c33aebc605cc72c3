// The compilers' export words, in one place. Everything without VEL_API is
// hidden inside the shared library.
#ifndef VEL_EXPORT_H_
#define VEL_EXPORT_H_

#if defined(_WIN32)
#if defined(VEL_BUILDING_LIBRARY)
#define VEL_API __declspec(dllexport)
#else
#define VEL_API __declspec(dllimport)
#endif
#else
#define VEL_API __attribute__((visibility("default")))
#endif

/// VEL_LOCAL hides what belongs to an exported class and is none of its users' business.
#if defined(_WIN32)
#define VEL_LOCAL
#else
#define VEL_LOCAL __attribute__((visibility("hidden")))
#endif

/// VEL_C_API marks a plain function: exported under its own, undecorated name
/// and declared with types that a C program knows.
/// VEL_HAS_CLASSES tells whether the C++ classes are declared. A C++ program whose
/// ABI differs from the library's defines VEL_PLAIN_FUNCTIONS_ONLY, or includes
/// vel_c.h first, and sees the plain functions alone.
#if defined(__cplusplus)
#define VEL_C_API extern "C" VEL_API
#if !defined(VEL_PLAIN_FUNCTIONS_ONLY)
#define VEL_HAS_CLASSES 1
#endif
#else
#define VEL_C_API VEL_API
#include <stdbool.h>
#endif

#endif
