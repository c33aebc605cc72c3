// The export attributes of the compilers. Symbols without VEL_API are hidden inside the shared library.
#ifndef VEL_EXPORT_H_
#define VEL_EXPORT_H_

#if defined(_WIN32)
#if defined(VEL_BUILDING_LIBRARY)
#define VEL_API __declspec(dllexport)
#else
#define VEL_API __declspec(dllimport)
#endif
#else
/// Exports a C++ class or function from the library.
#define VEL_API __attribute__((visibility("default")))
#endif

#if defined(_WIN32)
#define VEL_LOCAL
#else
/// Hides an internal member of an exported class.
#define VEL_LOCAL __attribute__((visibility("hidden")))
#endif

#if defined(__cplusplus)
/// Declares a plain function: exported under its own, undecorated name, with types that a C program knows.
#define VEL_C_API extern "C" VEL_API
/// Declares the underlying type of an enumeration that C programs also see.
#define VEL_ENUM_TYPE(type) : type
#if !defined(VEL_PLAIN_FUNCTIONS_ONLY)
/// Defined if the C++ classes are declared. A C++ program whose ABI differs from the library's defines
/// VEL_PLAIN_FUNCTIONS_ONLY, or includes vel_c.h first, and gets the plain functions only.
#define VEL_HAS_CLASSES 1
#endif
#else
#define VEL_C_API VEL_API
#define VEL_ENUM_TYPE(type)
#include <stdbool.h>
#endif

#endif
