// The build supplies MIROXGCL_VERSION and MIROXGCL_BUILD_DATE for this source.
#include "miroxgcl/tbs_version_id.h"

#include "miroxplat/imsg.h"

namespace {

constexpr char format[] = "%-*s %s (%s)\n";
constexpr char component[] = "libmiroxgcl";
constexpr int component_width = 33;

}  // namespace

int libmiroxgcl_sprintf_verid(char* buffer) {
  return imsg_sprintf(buffer, format, -1, component_width, component, MIROXGCL_VERSION,
                      MIROXGCL_BUILD_DATE);
}

int libmiroxgcl_print_verid(void) {
  return imsg_print(IMSG_INFORMATION, format, -1, component_width, component, MIROXGCL_VERSION,
                    MIROXGCL_BUILD_DATE);
}
