/// @file
/// The one place that tests a container's precondition.
/// @ingroup collections
#ifndef MIROXGCL_LX_PRECONDITION_H
#define MIROXGCL_LX_PRECONDITION_H

#include "miroxplat/lx_exception.h"

/// States at the start of an operation what its caller must see to, and what describes a violation.
/// As built, that is all: nothing is evaluated, and it costs nothing. With
/// MIROXGCL_CHECK_PRECONDITIONS the description is thrown when the condition is false.
#ifdef MIROXGCL_CHECK_PRECONDITIONS
#define LX_REQUIRE(condition, kind, location, reason)                    \
  do {                                                                   \
    if (!(condition)) throw LX_XException((kind), (location), (reason)); \
  } while (false)
#else
#define LX_REQUIRE(condition, kind, location, reason) \
  static_cast<void>(sizeof(LX_XException((kind), (location), (reason))))  // NOLINT: nothing thrown
#endif

#endif
