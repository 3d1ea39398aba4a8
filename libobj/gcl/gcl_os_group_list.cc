#include "miroxgcl/gcl_os_group_list.h"

GCL_OSGroupList::~GCL_OSGroupList() = default;

GCL_OSGroupList& GCL_OSGroupList::operator=(LX_TCollection<GCL_OSGroup> const& other) {
  Base::operator=(other);
  return *this;
}

GCL_OSGroupList& GCL_OSGroupList::operator=(Base const& other) {
  Base::operator=(other);
  return *this;
}

GCL_OSGroupList& GCL_OSGroupList::operator=(GCL_OSGroupList const& other) {
  Base::operator=(static_cast<Base const&>(other));
  return *this;
}
