#include "miroxgcl/gcl_ctrace.h"

#include <cstdio>

void GCL_Ctrace::enter() {
  ++GCL_Debug::m_debug_ptr->m_depth;
  write_mark(">>");
}

void GCL_Ctrace::leave() {
  write_mark("<<");
  --GCL_Debug::m_debug_ptr->m_depth;
}

void GCL_Ctrace::write_mark(char const* mark) {
  char number[32];
  std::snprintf(number, sizeof number, "[%4d] ", static_cast<int>(m_trace_id));
  GCL_Debug::m_debug_ptr->write_line({mark, number, m_class_name, "::", m_function_name});
}

void GCL_Ctrace::output(std::basic_ostringstream<char>& message) {
  GCL_Debug::m_debug_ptr->write_line(
      {"         ", m_class_name, "::", m_function_name, ", ", message.str()});
}
