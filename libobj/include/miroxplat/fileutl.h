/// @file
/// The file utility: file names, taken apart and put into other forms.
///
/// All functions return 0 on success. A size counts the terminating NUL. A result of more than 1023
/// bytes, or more than its buffer holds, is a failure: nothing is cut short. On failure the result
/// buffers are empty texts, and nothing is printed. Empty and null names fail.
/// @ingroup services
#ifndef MIROXPLAT_FILEUTL_H
#define MIROXPLAT_FILEUTL_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The absolute form: the current directory put in front of a relative name, then the parts "." and
/// "..", and empty parts, resolved by the text alone, links not followed. Fails when the current
/// directory is gone.
/// @ingroup services
MIROXPLAT_API int fileutl_abspn(char const* path, char* out, int size);

/// Splits into what dirname(1) and basename(1) print. Note that each size comes before its buffer.
/// @ingroup services
MIROXPLAT_API int fileutl_strip_leaf(char const* path, int dir_size, char* dir, int leaf_size,
                                     char* leaf);

/// What fileutl_path_locate returns. Nothing but FILEUTL_OK is a success.
/// @ingroup services
enum {
  FILEUTL_OK = 0,
  FILEUTL_NO_NAME = 1,        ///< the path is null or empty
  FILEUTL_NO_FILE = 2,        ///< no such file, or a folder on the way to it cannot be searched
  FILEUTL_NO_ATTRIBUTES = 3,  ///< the system does not tell what the file is on
  FILEUTL_NO_ROOM = 4         ///< a result has more than 1023 bytes, or more than its buffer holds
};

/// Where an existing file is, links followed: the source of the mounted file system that holds it
/// (what `df` shows), the mount point, and the path from there on, which has no leading slash and
/// is empty for the mount point itself. The source is "-" where the system does not name it, as to
/// a process whose root was changed.
/// @ingroup services
MIROXPLAT_API int fileutl_path_locate(char const* path, char* source, int source_size, char* mount,
                                      int mount_size, char* below, int below_size);

#ifdef __cplusplus
}
#endif

#endif
