#include "miroxplat/lx_exception.h"

char const* const LX_kInvalidIndex = "The index lies outside the collection.";
char const* const LX_kEmpty = "The collection is empty.";
char const* const LX_kNull = "The pointer is null.";
char const* const LX_kNotEmpty = "The collection is not empty.";

char const* LX_XException::what() const noexcept { return m_reason; }
