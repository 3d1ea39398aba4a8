#include "miroxgcl/gcl_debug.h"

#include <algorithm>
#include <climits>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>

#include "debug_file.h"
#include "gcl_environment.h"
#include "gcl_output.h"

// Constant-initialised: another file's initialiser may run before this file's statics.
GCL_Debug* GCL_Debug::m_debug_ptr = nullptr;
std::uint16_t GCL_Debug::_DebugInit::m_init_cnt = 0;

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Reads the digits at `p`, steps past them and returns their number, at most INT_MAX.
int read_number(char const*& p) {
  int number = 0;
  for (; is_digit(*p); ++p) {
    int const digit = *p - '0';
    number = number > (INT_MAX - digit) / 10 ? INT_MAX : number * 10 + digit;
  }
  return number;
}

// Steps past `mark` if it is next.
bool skip(char const*& p, char mark) {
  if (*p != mark) return false;
  ++p;
  return true;
}

std::ostream* open_stream() {
  char const* const file = gcl_environment("MIROX_GCL_DEBUG_FILE");
  return file != nullptr ? new debug_file(file) : &std::cerr;
}

char* put(char* dest, std::string_view text) { return std::copy(text.begin(), text.end(), dest); }

// What a thread has of its own; its address tells which thread it is.
__thread std::int32_t s_own_depth __attribute__((tls_model("initial-exec"))) = 0;
std::int32_t const* s_first_thread = nullptr;

}  // namespace

std::int32_t& GCL_Debug::depth() noexcept {
  return gcl_threads::is_single() || s_first_thread == &s_own_depth ? m_depth : s_own_depth;
}

GCL_Debug::GCL_Debug(char const* levels)
    : m_levels{}, m_stream(open_stream()), m_depth(0), m_trace_count(0) {
  s_first_thread = &s_own_depth;
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

// The line is built whole and written at once, so that no other process's line comes between.
// Neither a width nor a locale of the stream changes it. Without memory for a long line, it is
// lost.
void GCL_Debug::write_line(std::initializer_list<std::string_view> pieces) noexcept {
  constexpr std::string_view prefix = "....DEBUG: ";
  auto const indentation = static_cast<std::size_t>(std::max(depth() - 1, 0)) * 2;
  std::size_t size = prefix.size() + indentation + 1;
  for (std::string_view const piece : pieces) size += piece.size();

  char usual[512];
  std::unique_ptr<char[]> const longer(size > sizeof usual ? new (std::nothrow) char[size]
                                                           : nullptr);
  char* const line = size > sizeof usual ? longer.get() : usual;
  if (line == nullptr) return;
  char* p = std::fill_n(put(line, prefix), indentation, ' ');
  for (std::string_view const piece : pieces) p = put(p, piece);
  *p = '\n';
  gcl_write_diagnostic(*m_stream, {line, size});
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
