/// @file
/// The library's identification line: component, version and date of the build, as in
///
///     libmiroxgcl                       1.0.0.0 (Sun Nov 22 14:05:09 2026)
/// @ingroup resources
#ifndef MIROXGCL_TBS_VERSION_ID_H
#define MIROXGCL_TBS_VERSION_ID_H

#include "miroxgcl/gcl_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// Writes the line with its line feed and a NUL to `buffer`, which must have room for it (128 bytes
/// are enough); returns its length in bytes.
MIROXGCL_API int libmiroxgcl_sprintf_verid(char* buffer);

/// Prints the line through the message service, as information; returns what the service returns.
MIROXGCL_API int libmiroxgcl_print_verid(void);

#ifdef __cplusplus
}
#endif

#endif
