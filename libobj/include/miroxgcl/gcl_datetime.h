/// @file
/// GCL_DateTime: a point in time, read and written in the product's standard layouts, in local
/// time.
#ifndef MIROXGCL_GCL_DATETIME_H
#define MIROXGCL_GCL_DATETIME_H

#include "miroxgcl/gcl_status.h"
#include "miroxgcl/gcl_string.h"
#include "miroxplat/lx_time.h"

/// A point in time: a plain value, copied as a `long`.
///
/// Seconds since 1970-01-01 00:00 UTC in a `long`: on 32 bit up to January 2038. 0 means no
/// time and has the empty text in every layout.
///
/// As safe as the standard library's values.
/// @ingroup times
class MIROXGCL_API GCL_DateTime : public LX_CTime {
 public:
  /// What a text that leaves the day, the year or its century open means: the latest such time not
  /// after now, or the earliest not before now.
  enum TimeFrame : int { past = 0, future = 1 };

  /// No time.
  GCL_DateTime() noexcept : LX_CTime(0) {}
  /// The given time, in seconds since 1970 UTC.
  explicit GCL_DateTime(long time) noexcept : LX_CTime(time) {}

  /// Reads `text`: one of the layouts below, `now`, `today`, `yesterday`, `tomorrow`, or seconds as
  /// `@1234`. Sets the status to ok, or to 1001 when the text is none of these or names a day
  /// that does not exist or a time that `long` cannot hold; the object is then no time, unless the
  /// product's own date service has written another. Of a time that comes twice when the clock is
  /// put back, a text that leaves nothing open means the earlier; one that is skipped when the
  /// clock is put forward moves forward by the gap.
  GCL_DateTime(GCL_Status& status, GCL_String const& text, TimeFrame frame);

  GCL_String token_date() const;             ///< 2026-11-22
  GCL_String token_short_date_time() const;  ///< 2026-11-22.14:05
  GCL_String token_date_time() const;        ///< 2026-11-22.14:05:09
  GCL_String ls_date_time() const;           ///< as `ls -l`: Nov 22 14:05, or Nov 22  2026
  GCL_String short_time() const;             ///< 14:05
  GCL_String short_date() const;             ///< 11/22/26
  GCL_String short_date_time() const;        ///< 11/22/26 14:05
  GCL_String long_date_time() const;         ///< Sunday, November 22, 2026 14:05:09

  /// Compares the times themselves.
  /// @{
  friend bool operator==(GCL_DateTime const& a, GCL_DateTime const& b) noexcept {
    return a.time() == b.time();
  }
  friend bool operator!=(GCL_DateTime const& a, GCL_DateTime const& b) noexcept {
    return !(a == b);
  }
  friend bool operator<(GCL_DateTime const& a, GCL_DateTime const& b) noexcept {
    return a.time() < b.time();
  }
  friend bool operator>(GCL_DateTime const& a, GCL_DateTime const& b) noexcept { return b < a; }
  friend bool operator<=(GCL_DateTime const& a, GCL_DateTime const& b) noexcept { return !(b < a); }
  friend bool operator>=(GCL_DateTime const& a, GCL_DateTime const& b) noexcept { return !(a < b); }
  /// @}

 private:
  MIROXGCL_LOCAL GCL_String format(char const* (*layout)(long)) const;
};

#endif
