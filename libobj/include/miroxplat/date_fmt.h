/// @file
/// The date service: local times as text, and text read back. Times are seconds since 1970-01-01
/// UTC.
///
/// Names are English whatever the locale. A change of TZ takes effect at the next call. A formatted
/// text is in memory of the calling thread and is valid until that thread calls the same function
/// again; the main thread's outlive every static object. Nothing is printed.
/// @ingroup services
#ifndef MIROXPLAT_DATE_FMT_H
#define MIROXPLAT_DATE_FMT_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

MIROXPLAT_API char const* date_fmt_token_date(long t);             ///< 2026-11-22
MIROXPLAT_API char const* date_fmt_token_short_date_time(long t);  ///< 2026-11-22.14:05
MIROXPLAT_API char const* date_fmt_token_date_time(long t);        ///< 2026-11-22.14:05:09
MIROXPLAT_API char const* date_fmt_short_time(long t);             ///< 14:05
MIROXPLAT_API char const* date_fmt_short_date(long t);             ///< 11/22/26
MIROXPLAT_API char const* date_fmt_short_date_time(long t);        ///< 11/22/26 14:05
MIROXPLAT_API char const* date_fmt_long_date_time(long t);  ///< Sunday, November 22, 2026 14:05:09

/// What `ls -l` prints: "Nov 22 14:05" in the last half year, else "Nov 22  2026".
/// @ingroup services
MIROXPLAT_API char const* date_fmt_ls_date_time(long t);

/// Reads a text in one of the eight layouts, or `now`, `today`, `yesterday`, `tomorrow`, or seconds
/// since 1970 as `@1234`. 0 on success; non-zero, with `*t` left alone, for anything else: days
/// that the calendar does not have, a weekday that is not the date's, blanks or text around it,
/// times outside `long`. What was read before has no influence.
///
/// A date, a year or the century of a year that the text leaves open makes it the latest such time
/// not after now for `frame` 0, the earliest not before now otherwise. Of a time that comes twice,
/// because the clock was put back, such a text means the one that the frame prefers, any other text
/// the earlier one. A time that was skipped, because the clock was put forward, moves forward by
/// the gap. A day that was skipped is refused; `yesterday` and `tomorrow` are then the day beyond
/// it. A date without a time is its midnight, or the day's first moment when midnight was skipped.
/// The second 60 is read where the zone counts leap seconds.
/// @ingroup services
MIROXPLAT_API int date_str_to_time2(char const* text, int frame, long* t);

#ifdef __cplusplus
}
#endif

#endif
