// The container library's time class.
#ifndef MIROXPLAT_LX_TIME_H
#define MIROXPLAT_LX_TIME_H

// A point in time in seconds since 1970-01-01 00:00 UTC, as wide as `long`; 0 stands for no time.
// A plain value, meant to be derived from; it has no virtual operation.
class LX_CTime {
 public:
  LX_CTime() noexcept = default;
  explicit LX_CTime(long time) noexcept : m_time(time) {}

  long time() const noexcept { return m_time; }
  void setTime(long time) noexcept { m_time = time; }  // NOLINT(readability-identifier-naming)

 protected:
  long m_time = 0;
};

static_assert(sizeof(LX_CTime) == sizeof(long));

#endif
