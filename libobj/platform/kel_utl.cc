#include "miroxplat/kel_utl.h"

#include <cmath>

namespace {

constexpr double seconds_per_day = 86400.0;
constexpr unsigned int longest_duration = 4294967294u;

}  // namespace

unsigned int kel_utl_days_to_duration(double days) {
  double const seconds = days * seconds_per_day;
  if (!(seconds > 0)) return 0;  // NaN too
  if (seconds >= longest_duration) return longest_duration;
  return static_cast<unsigned int>(std::llround(seconds));
}

double kel_utl_duration_to_days(unsigned int duration) { return duration / seconds_per_day; }
