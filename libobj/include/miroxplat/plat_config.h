/// @file
/// What all service headers share: every one includes this one.
#ifndef MIROXPLAT_PLAT_CONFIG_H
#define MIROXPLAT_PLAT_CONFIG_H

#if defined(__cplusplus) && __cplusplus < 201703L
#error "miroxgcl needs C++17: compile with -std=c++17 or a later standard"
#endif

/// Marks what libmiroxplat exports.
#define MIROXPLAT_API __attribute__((visibility("default")))

/// Lets the compiler check a call like printf's: which parameter is the format, which the first
/// that it describes.
#ifdef __GNUC__
#define MIROXPLAT_PRINTF(format, first) __attribute__((__format__(__printf__, format, first)))
#else
#define MIROXPLAT_PRINTF(format, first)
#endif

#endif
