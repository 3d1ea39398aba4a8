/// @file
/// Administrative handles, each of which represents one acquisition of a name.
///
/// A handle's value is never given twice while the process lives, and never 0; one name may be held
/// by many handles. Any thread may call.
/// @ingroup services
#ifndef MIROXPLAT_ADM_H
#define MIROXPLAT_ADM_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The number of an acquisition; 0 is none's.
/// @ingroup services
typedef unsigned int adm_handle_t;

/// The limits.
/// @ingroup services
enum {
  ADM_MAX_NAME_LENGTH = 255,  ///< bytes
  ADM_MAX_HANDLES = 4096      ///< held at the same time
};

/// What adm_get_handle returns.
/// @ingroup services
enum {
  ADM_OK = 0,
  ADM_EMPTY_NAME = 1,
  ADM_LONG_NAME = 2,
  ADM_TABLE_FULL = 3,
  ADM_NO_PLACE = 4,     ///< a null `handle`
  ADM_NUMBERS_USED = 5  ///< the process has had every value that there is
};

/// Acquires a handle on `name`, to be freed with adm_free_handle. On failure prints an error, sets
/// `*handle` to 0 and returns one of the codes above.
/// @ingroup services
MIROXPLAT_API int adm_get_handle(char const* name, adm_handle_t* handle);

/// Frees the handle and sets `*handle` to 0. A value that is no handle's (any more) frees nothing.
/// @ingroup services
MIROXPLAT_API void adm_free_handle(adm_handle_t* handle);

#ifdef __cplusplus
}
#endif

#endif
