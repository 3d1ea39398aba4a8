/// @file
/// Storage areas: blocks of memory that are known by a number.
///
/// A number is never given twice while the process lives, and never 0. Any thread may call.
/// @ingroup services
#ifndef MIROXPLAT_STG_H
#define MIROXPLAT_STG_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The number of an area; 0 is none's.
/// @ingroup services
typedef unsigned int stg_area_t;

/// Creates an area of at least `n` bytes, which lives until it is deleted. Prints an error and
/// returns 0 when there is no memory for it.
/// @ingroup services
MIROXPLAT_API stg_area_t stg_create_area(unsigned int n);

/// Deletes the area and sets `*area` to 0. A number that is no area's (any more) deletes nothing.
/// @ingroup services
MIROXPLAT_API void stg_delete_area(stg_area_t* area);

#ifdef __cplusplus
}
#endif

#endif
