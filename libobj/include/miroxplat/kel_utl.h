/// @file
/// The duration service: durations are whole seconds, a day has 86,400 of them.
///
/// 4294967295 is not a duration but a marker of the callers'; no conversion gives it.
/// @ingroup services
#ifndef MIROXPLAT_KEL_UTL_H
#define MIROXPLAT_KEL_UTL_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

/// The duration nearest to `days`, at most 4294967294. Negative days, and what is not a number, are
/// 0.
/// @ingroup services
MIROXPLAT_API unsigned int kel_utl_days_to_duration(double days);

/// The days of a duration; kel_utl_days_to_duration gives the same duration back.
/// @ingroup services
MIROXPLAT_API double kel_utl_duration_to_days(unsigned int duration);

#ifdef __cplusplus
}
#endif

#endif
