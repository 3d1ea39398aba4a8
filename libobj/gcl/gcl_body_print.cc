// What printing a body needs lies above the body's own floor, and so in a source of its own.
#include <ostream>
#include <string>

#include "miroxgcl/gcl_handle_base.h"
#include "miroxgcl/gcl_indent.h"

// Decimal and ungrouped whatever the stream is set to.
std::ostream& GCL_Body::insert(std::ostream& os) const {
  std::string const line = "Reference Count: " + std::to_string(reference_count()) + '\n';
  GCL_Indent(nullptr).insert(os);
  return os.write(line.data(), static_cast<std::streamsize>(line.size()));
}

std::ostream& operator<<(std::ostream& os, GCL_Body const& body) { return body.insert(os); }

std::ostream& operator<<(std::ostream& os, GCL_HandleBase const& handle) {
  return handle.m_body != nullptr ? os << *handle.m_body : os;
}
