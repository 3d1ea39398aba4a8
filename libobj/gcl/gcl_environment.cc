#include "gcl_environment.h"

#include <cstdlib>

char const* gcl_environment(char const* name) noexcept { return ::secure_getenv(name); }

bool gcl_environment_is_set(char const* name) noexcept {
  char const* const value = gcl_environment(name);
  return value != nullptr && *value != '\0';
}
