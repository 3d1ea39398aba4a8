/// @file
/// Marks what libmiroxgcl exports. Every public header includes this one.
#ifndef MIROXGCL_GCL_CONFIG_H
#define MIROXGCL_GCL_CONFIG_H

#if defined(__cplusplus) && __cplusplus < 201703L
#error "miroxgcl needs C++17: compile with -std=c++17 or a later standard"
#endif

/// Marks what the library exports.
#define MIROXGCL_API __attribute__((visibility("default")))

/// A helper within an exported class that only the library's own sources call.
#define MIROXGCL_LOCAL __attribute__((visibility("hidden")))

#endif
