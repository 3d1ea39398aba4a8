// The one place that tests a container's precondition.
#ifndef MIROXGCL_LX_PRECONDITION_H
#define MIROXGCL_LX_PRECONDITION_H

#include "miroxplat/lx_exception.h"

// States at the start of an operation what its caller must see to. As built, the description is
// made and dropped and `condition` is not evaluated, all of which compiles to nothing. With
// MIROXGCL_CHECK_PRECONDITIONS the description is thrown when the condition is false.
#ifdef MIROXGCL_CHECK_PRECONDITIONS
#define LX_REQUIRE(condition, kind, location, reason)              \
  do {                                                             \
    LX_XException const description((kind), (location), (reason)); \
    if (!(condition)) throw description;                           \
  } while (false)
#else
#define LX_REQUIRE(condition, kind, location, reason)              \
  do {                                                             \
    LX_XException const description((kind), (location), (reason)); \
    static_cast<void>(description);                                \
  } while (false)
#endif

#endif
