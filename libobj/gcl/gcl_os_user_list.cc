#include "miroxgcl/gcl_os_user_list.h"

GCL_OSUserList GCL_OSUserList::nil(32);

GCL_OSUserList::~GCL_OSUserList() = default;

GCL_OSUserList& GCL_OSUserList::operator=(LX_TCollection<GCL_OSUser> const& other) {
  Base::operator=(other);
  return *this;
}

GCL_OSUserList& GCL_OSUserList::operator=(Base const& other) {
  Base::operator=(other);
  return *this;
}

GCL_OSUserList& GCL_OSUserList::operator=(GCL_OSUserList const& other) {
  Base::operator=(static_cast<Base const&>(other));
  return *this;
}
