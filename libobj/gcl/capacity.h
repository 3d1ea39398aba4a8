// The growth rule, and the forecast of what it gives, for the sources that edit strings. Here they
// can be part of the loops that ask them.
#ifndef MIROXGCL_GCL_CAPACITY_H
#define MIROXGCL_GCL_CAPACITY_H

#include <algorithm>

#include "miroxgcl/gcl_string_rep.h"

inline unsigned int GCL_StringRep::capacity_for(unsigned int n) {
  unsigned int const grown = n <= 63 ? 2 * n : n <= 255 ? n + n / 2 : n + n / 4;
  unsigned int const at_least = grown < 8 ? 8 : grown;
  return at_least < n ? n : at_least;  // the sum wrapped
}

// Checks the length first: near 2^32 the room for its terminator would wrap to 0.
inline unsigned int GCL_StringRep::capacity_of(unsigned int length, unsigned int reserve) {
  return capacity_for(reserve > length ? reserve : checked_length(length) + 1);
}

inline GCL_StringRep::CapacityForecast::CapacityForecast(GCL_StringRep const* rep)
    : length(rep != nullptr ? rep->m_length : 0),
      capacity(rep != nullptr && rep->reference_count() <= 1 ? rep->m_capacity : 0),
      reserve(0) {}

inline void GCL_StringRep::CapacityForecast::add_shortening(unsigned int room) {
  if (capacity != 0) return;
  reserve = room;
  capacity = capacity_for(room);
}

inline void GCL_StringRep::CapacityForecast::add_appends(unsigned int step, unsigned int count) {
  while (count != 0) {
    unsigned int const room = length < capacity ? capacity - 1 - length : 0;
    unsigned int const fit = room < step ? 0 : count == 1 ? 1 : std::min(count, room / step);
    length += fit * step;
    count -= fit;
    if (count == 0) return;
    length += step;
    --count;
    reserve = length;
    capacity = capacity_for(length);
  }
}

#endif
