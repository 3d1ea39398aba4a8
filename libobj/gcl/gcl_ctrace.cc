#include "miroxgcl/gcl_ctrace.h"

#include <cstdio>

namespace {

struct numbered {
  explicit numbered(std::int32_t trace_id) {
    std::snprintf(text, sizeof text, "[%4d] ", static_cast<int>(trace_id));
  }
  char text[32];
};

// A name as it is shown.
std::string_view shown(char const* name) { return name != nullptr ? name : "?"; }

}  // namespace

void GCL_Ctrace::enter(char const* class_name, char const* function_name, std::int32_t trace_id) {
  GCL_Debug& debug = *GCL_Debug::m_debug_ptr;
  ++debug.depth();
  debug.write_line({">>", numbered(trace_id).text, shown(class_name), "::", shown(function_name)});
}

void GCL_Ctrace::leave(char const* class_name, char const* function_name, std::int32_t trace_id) {
  GCL_Debug& debug = *GCL_Debug::m_debug_ptr;
  debug.write_line({"<<", numbered(trace_id).text, shown(class_name), "::", shown(function_name)});
  --debug.depth();
}

void GCL_Ctrace::output(std::basic_ostringstream<char>& message) {
  GCL_Debug::m_debug_ptr->write_line(
      {"         ", shown(m_class_name), "::", shown(m_function_name), ", ", message.str()});
}
