#include "miroxgcl/gcl_debug.h"

#include <algorithm>
#include <climits>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>

#include "gcl_environment.h"

// Constant-initialised: another file's initialiser may run before this file's statics.
GCL_Debug* GCL_Debug::m_debug_ptr = nullptr;
std::uint16_t GCL_Debug::_DebugInit::m_init_cnt = 0;

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Reads the digits at `p`, steps past them and answers their number, at most INT_MAX.
int read_number(char const*& p) {
  int number = 0;
  for (; is_digit(*p); ++p) {
    int const digit = *p - '0';
    number = number > (INT_MAX - digit) / 10 ? INT_MAX : number * 10 + digit;
  }
  return number;
}

// Steps past `mark` if it stands at `p`.
bool skip(char const*& p, char mark) {
  if (*p != mark) return false;
  ++p;
  return true;
}

void write(std::ostream& stream, std::string_view text) {
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::ostream* open_stream() {
  char const* const file = gcl_environment("MIROX_GCL_DEBUG_FILE");
  return file != nullptr ? new std::ofstream(file, std::ios_base::trunc) : &std::cerr;
}

}  // namespace

GCL_Debug::GCL_Debug(char const* levels)
    : m_levels{}, m_stream(open_stream()), m_depth(0), m_trace_count(0) {
  if (char const* const text = gcl_environment("MIROX_GCL_DEBUG")) set_levels(text);
  if (levels != nullptr) set_levels(levels);
}

GCL_Debug::~GCL_Debug() {
  if (m_stream != &std::cerr) delete m_stream;
}

int GCL_Debug::set_levels(char const* levels) {
  char const* p = levels;
  do {
    int const first = read_number(p);
    int const last = skip(p, '-') ? read_number(p) : first;
    int const level = skip(p, '.') ? read_number(p) : 1;
    for (int area = std::min<int>(first, last_area); area <= std::min<int>(last, last_area);
         ++area) {
      m_levels[area] = level;
    }
  } while (*p++ != '\0');
  return 0;
}

void GCL_Debug::output(std::basic_ostringstream<char>& message) { write_line({message.str()}); }

// Unformatted throughout: neither a width nor a locale of the stream changes a line.
void GCL_Debug::write_line(std::initializer_list<std::string_view> pieces) {
  write(*m_stream, "....DEBUG: ");
  for (int i = 1; i < m_depth; ++i) write(*m_stream, "  ");
  for (std::string_view const piece : pieces) write(*m_stream, piece);
  write(*m_stream, "\n");
}

GCL_Debug::_DebugInit::_DebugInit() {
  if (++m_init_cnt == 1) m_debug_ptr = new GCL_Debug(nullptr);
}

GCL_Debug::_DebugInit::~_DebugInit() {
  if (--m_init_cnt == 0) {
    delete m_debug_ptr;
    m_debug_ptr = nullptr;
  }
}
