/// @file
/// GCL_TimePeriod: a begin, an end and a duration, side by side.
#ifndef MIROXGCL_GCL_TIME_PERIOD_H
#define MIROXGCL_GCL_TIME_PERIOD_H

#include <cstdint>
#include <type_traits>

#include "miroxgcl/gcl_datetime.h"

/// Three values of a period.
///
/// The three are set independently: none follows from the others, and none is checked against them.
/// A duration is in the duration service's unit, seconds; it can also be set and read as days.
/// 4294967295 is a marker, not a duration; as days it is 4294967296, exactly.
///
/// As safe as the standard library's values.
/// @ingroup times
class MIROXGCL_API GCL_TimePeriod {
  template <class N>
  using IfOther =
      std::enable_if_t<std::is_arithmetic_v<N> && !std::is_same_v<N, bool> &&
                           !std::is_same_v<N, unsigned int> && !std::is_same_v<N, float>,
                       int>;

 public:
  /// No begin, no end, and the marker.
  /// @{
  GCL_TimePeriod() noexcept : m_duration(marker) {}
  GCL_TimePeriod(GCL_DateTime const& begin, GCL_DateTime const& end, unsigned int duration) noexcept
      : m_begin(begin), m_end(end), m_duration(duration) {}
  GCL_TimePeriod(GCL_DateTime const& begin, GCL_DateTime const& end, float days)
      : m_begin(begin), m_end(end), m_duration(from_days(days)) {}
  /// @}
  /// A duration of another type: an integer is in seconds, a floating-point number in days.
  template <class N, IfOther<N> = 0>
  GCL_TimePeriod(GCL_DateTime const& begin, GCL_DateTime const& end, N duration)
      : GCL_TimePeriod(begin, end, as_duration(duration)) {}

  /// The begin and the end, and their replacement.
  /// @{
  GCL_DateTime const& begin() const noexcept { return m_begin; }
  GCL_DateTime const& end() const noexcept { return m_end; }
  void set_begin(GCL_DateTime const& begin) noexcept { m_begin = begin; }
  void set_end(GCL_DateTime const& end) noexcept { m_end = end; }
  /// @}

  /// The duration in seconds, and its replacement.
  /// @{
  unsigned int duration() const noexcept { return m_duration; }
  void set_duration(unsigned int duration) noexcept { m_duration = duration; }
  /// @}

  /// The duration in days, rounded to a float; set from days, rounded to the nearest second and
  /// kept within 0 to 4294967294, 0 for what is not a number.
  /// @{
  void duration(float& days) const;
  void set_duration(float days) { m_duration = from_days(days); }
  /// @}

  /// Sets the duration from a number of another type: an integer is in seconds and kept within 0 to
  /// 4294967295, a floating-point number in days.
  template <class N, IfOther<N> = 0>
  void set_duration(N duration) {
    set_duration(as_duration(duration));
  }

  /// Two periods are equal when all three are. They are ordered by begin, then end, then duration.
  /// @{
  friend bool operator==(GCL_TimePeriod const& a, GCL_TimePeriod const& b) noexcept {
    return a.m_begin == b.m_begin && a.m_end == b.m_end && a.m_duration == b.m_duration;
  }
  friend bool operator!=(GCL_TimePeriod const& a, GCL_TimePeriod const& b) noexcept {
    return !(a == b);
  }
  friend bool operator<(GCL_TimePeriod const& a, GCL_TimePeriod const& b) noexcept {
    if (a.m_begin != b.m_begin) return a.m_begin < b.m_begin;
    return a.m_end != b.m_end ? a.m_end < b.m_end : a.m_duration < b.m_duration;
  }
  /// @}

 private:
  static constexpr std::uint32_t marker = 4294967295u;
  static constexpr float marker_days = 4294967296.0f;
  static std::uint32_t from_days(float days);
  template <class N>
  static auto as_duration(N duration) noexcept {
    if constexpr (std::is_floating_point_v<N>) {
      return static_cast<float>(duration);
    } else {
      return duration > N{0} ? gcl_text::narrow(duration) : 0u;
    }
  }

  GCL_DateTime m_begin;
  GCL_DateTime m_end;
  std::uint32_t m_duration;
};

#endif
