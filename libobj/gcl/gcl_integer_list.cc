#include "miroxgcl/gcl_integer_list.h"

GCL_IntegerList::~GCL_IntegerList() = default;

GCL_IntegerList& GCL_IntegerList::operator=(GCL_IntegerList const& other) {
  Base::operator=(static_cast<Base const&>(other));
  return *this;
}
