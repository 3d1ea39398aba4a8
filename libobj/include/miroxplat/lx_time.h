/// @file
/// The container library's time class.
/// @ingroup services
#ifndef MIROXPLAT_LX_TIME_H
#define MIROXPLAT_LX_TIME_H

/// A point in time in seconds since 1970-01-01 00:00 UTC, as wide as `long`; 0 means no time.
/// A plain value, meant to be derived from; it has no virtual operation.
/// @ingroup services
class LX_CTime {
 public:
  /// No time.
  LX_CTime() noexcept = default;
  /// The given time.
  explicit LX_CTime(long time) noexcept : m_time(time) {}

  /// The time, and its replacement.
  /// @{
  long time() const noexcept { return m_time; }
  void setTime(long time) noexcept { m_time = time; }
  /// @}

 protected:
  long m_time = 0;  ///< seconds since 1970 UTC
};

static_assert(sizeof(LX_CTime) == sizeof(long));

#endif
