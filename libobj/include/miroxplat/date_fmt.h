// The date service: local times as text, and text read back. Times are seconds since 1970-01-01
// UTC.
//
// Names are English whatever the locale. A change of TZ takes effect at the next call. A formatted
// text stands in memory of its function until the next call of that function; a time whose year the
// calendar cannot hold formats as the empty text. Nothing is printed.
#ifndef MIROXPLAT_DATE_FMT_H
#define MIROXPLAT_DATE_FMT_H

#include "miroxplat/plat_config.h"

#ifdef __cplusplus
extern "C" {
#endif

MIROXPLAT_API char const* date_fmt_token_date(long t);             // 2026-11-22
MIROXPLAT_API char const* date_fmt_token_short_date_time(long t);  // 2026-11-22.14:05
MIROXPLAT_API char const* date_fmt_token_date_time(long t);        // 2026-11-22.14:05:09
MIROXPLAT_API char const* date_fmt_short_time(long t);             // 14:05
MIROXPLAT_API char const* date_fmt_short_date(long t);             // 11/22/26
MIROXPLAT_API char const* date_fmt_short_date_time(long t);        // 11/22/26 14:05
MIROXPLAT_API char const* date_fmt_long_date_time(long t);  // Sunday, November 22, 2026 14:05:09

// What `ls -l` prints: "Nov 22 14:05" in the last half year, else "Nov 22  2026".
MIROXPLAT_API char const* date_fmt_ls_date_time(long t);

// Reads a text in one of the eight layouts, or `now`, `today`, `yesterday`, `tomorrow`, or seconds
// since 1970 as `@1234`. 0 on success; non-zero, with `*t` left alone, for anything else: days that
// the calendar does not have, a weekday that is not the date's, blanks or text around it, times
// outside `long`.
//
// A year or date that the text leaves open makes it the latest such time not after now for `frame`
// 0, the earliest not before now otherwise. A date without a time is its midnight. Years of two
// digits are 1969 to 2068. A time that the change to daylight saving skips is moved by the hour;
// one that comes twice is either of the two.
MIROXPLAT_API int date_str_to_time2(char const* text, int frame, long* t);

#ifdef __cplusplus
}
#endif

#endif
