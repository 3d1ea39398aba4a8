// What printing a body needs stands above the body's own floor, and so in a source of its own.
#include <ostream>

#include "miroxgcl/gcl_handle_base.h"

std::ostream& GCL_Body::insert(std::ostream& os) const {
  std::ios_base::fmtflags const flags = os.setf(std::ios_base::dec, std::ios_base::basefield);
  os << "Reference Count: " << reference_count() << '\n';
  os.flags(flags);
  return os;
}

std::ostream& operator<<(std::ostream& os, GCL_Body const& body) { return body.insert(os); }

std::ostream& operator<<(std::ostream& os, GCL_HandleBase const& handle) {
  return handle.m_body != nullptr ? os << *handle.m_body : os;
}
