#include "miroxplat/lx_exception.h"

#include <cstdio>

char const* const LX_kInvalidIndex = "The index lies outside the collection.";
char const* const LX_kEmpty = "The collection is empty.";
char const* const LX_kNull = "The pointer is null.";
char const* const LX_kNotEmpty = "It must not be 0.";

LX_XException::LX_XException(char const* kind, char const* location, char const* reason) noexcept
    : m_kind(kind), m_location(location), m_reason(reason), m_what() {
  std::snprintf(m_what, sizeof m_what, "%s: %s", location, reason);
}

char const* LX_XException::what() const noexcept { return m_what; }
