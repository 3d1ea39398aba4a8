// The file utility: file names, taken apart and put into other forms.
//
// All functions return 0 on success. A size counts the terminating NUL. A result of more than 1023
// bytes, or more than its buffer holds, is a failure: nothing is cut short. On failure the result
// buffers are empty texts, and nothing is printed. Empty and null names fail.
#ifndef MIROXPLAT_FILEUTL_H
#define MIROXPLAT_FILEUTL_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

// The absolute form: the current directory put in front of a relative name, then `.`, `..` and
// empty parts resolved by the text alone, links not followed. Fails when the current directory is
// gone.
MIROXPLAT_API int fileutl_abspn(char const* path, char* out, int size);

// Splits into what dirname(1) and basename(1) print. Note that the sizes stand before the buffers.
MIROXPLAT_API int fileutl_strip_leaf(char const* path, int dir_size, char* dir, int leaf_size,
                                     char* leaf);

// Where an existing file is, links followed: the source of the mounted file system that holds it
// (what `df` shows), the mount point, and the path from there on, which has no leading slash and
// is empty for the mount point itself.
MIROXPLAT_API int fileutl_path_locate(char const* path, char* source, int source_size, char* mount,
                                      int mount_size, char* below, int below_size);

#ifdef __cplusplus
}
#endif

#endif
