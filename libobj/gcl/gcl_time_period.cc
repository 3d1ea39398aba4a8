#include "miroxgcl/gcl_time_period.h"

#include "miroxplat/kel_utl.h"

// The comparison is exact: the floats next to the marker's days are days like others.
std::uint32_t GCL_TimePeriod::from_days(float days) {
  return days == marker_days ? marker : kel_utl_days_to_duration(static_cast<double>(days));
}

void GCL_TimePeriod::duration(float& days) const {
  days =
      m_duration == marker ? marker_days : static_cast<float>(kel_utl_duration_to_days(m_duration));
}
