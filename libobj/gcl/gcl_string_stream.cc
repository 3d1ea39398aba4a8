// Stream output and input.
//
// Input takes what the stream's buffer holds directly, under one sentry; the stream's own calls
// fill the buffer, for the flags and for whatever the stream may throw.
#include <algorithm>
#include <cctype>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>
#include <streambuf>
#include <utility>

#include "miroxgcl/gcl_string.h"

namespace {

// Input grows a string by as many bytes at a time.
constexpr unsigned int chunk_size = 32;

constexpr int end_of_input = std::char_traits<char>::eof();

// No locale counts printable ASCII as whitespace; the rest it is asked for.
bool is_space(unsigned char c) { return (c <= ' ' || c > '~') && std::isspace(c) != 0; }

// The end of input fails a read, also where the stream throws for the end alone.
void fail_at_end(std::istream& is) {
  if (!is.eof()) return;
  try {
    is.setstate(std::ios_base::failbit);
  } catch (std::ios_base::failure const&) {  // the first is on its way
  }
}

// What a stream's buffer holds, without asking its source for more.
class GetArea : private std::streambuf {
 public:
  static char const* begin(std::streambuf const& buffer) { return (buffer.*&GetArea::gptr)(); }
  static std::size_t size(std::streambuf const& buffer) {
    std::ptrdiff_t const n = (buffer.*&GetArea::egptr)() - begin(buffer);
    return static_cast<std::size_t>(std::min<std::ptrdiff_t>(n, INT_MAX - 1));
  }
  static void skip(std::streambuf& buffer, unsigned int n) {
    (buffer.*&GetArea::gbump)(static_cast<int>(n));
  }
};

}  // namespace

// A string in the making, which grows by appends of 32 bytes and of what is left at the end. The
// body that the string had is kept to be used again: one line is often as long as the last.
class GCL_String::Input {
 public:
  explicit Input(GCL_String& s) : m_string(s), m_spare(std::move(s)) {}

  // Takes characters up to one that `find_end(begin, end)` finds, and that one too if `takes_end`.
  // What was read is in the string, even when the stream throws.
  template <class FindEnd>
  void read(std::istream& is, bool takes_end, FindEnd find_end) {
    try {
      gather(is, takes_end, find_end);
    } catch (...) {
      flush();
      fail_at_end(is);
      throw;
    }
    flush();
  }

 private:
  template <class FindEnd>
  void gather(std::istream& is, bool takes_end, FindEnd find_end) {
    std::istream::sentry const ready(is, true);
    if (!ready) return;
    std::streambuf& buffer = *is.rdbuf();
    for (bool found = false; !found;) {
      int const next = GetArea::size(buffer) == 0 ? is.peek() : 0;
      if (next == end_of_input) return is.setstate(std::ios_base::failbit);
      char const single = static_cast<char>(next);
      bool const is_unbuffered = GetArea::size(buffer) == 0;
      char const* const begin = is_unbuffered ? &single : GetArea::begin(buffer);
      std::size_t const held = is_unbuffered ? 1 : GetArea::size(buffer);
      char const* const end = find_end(begin, begin + held);
      auto const length = static_cast<unsigned int>(end - begin);
      found = length != held;
      add(begin, length, found);
      unsigned int const taken = length + (found && takes_end ? 1 : 0);
      if (!is_unbuffered) {
        GetArea::skip(buffer, taken);
      } else if (taken != 0) {
        is.get();
      }
    }
  }

  // Adds bytes; `is_last` says that no more will come.
  void add(char const* data, unsigned int n, bool is_last) {
    if (is_last && m_used == 0) return m_string.append_in_chunks(data, n, m_spare);
    unsigned int const missing = m_used == 0 ? 0 : std::min(n, chunk_size - m_used);
    hold(data, missing);
    if (n == missing) return;
    flush();
    unsigned int const rest = (n - missing) % chunk_size;
    m_string.append_in_chunks(data + missing, n - missing - rest, m_spare);
    hold(data + (n - rest), rest);
  }

  void hold(char const* data, unsigned int n) {
    std::memcpy(m_chunk + m_used, data, n);
    m_used += n;
  }

  void flush() {
    if (m_used == 0) return;
    m_string.append(m_chunk, m_used);
    m_used = 0;
  }

  GCL_String& m_string;
  GCL_String m_spare;
  char m_chunk[chunk_size];
  unsigned int m_used = 0;
};

// As append(data, chunk_size) as often as a whole chunk is left, then append of the rest, but
// building one body at most, or taking that of `spare` when it is as large and nobody else's.
void GCL_String::append_in_chunks(char const* data, unsigned int n, GCL_String& spare) {
  if (n == 0) return;
  if (std::uint64_t{length()} + n > GCL_StringRep::max_length) GCL_StringRep::refuse_length();
  GCL_StringRep::Growth growth(body());
  growth.add(chunk_size, n / chunk_size);
  unsigned int const rest = n % chunk_size;
  if (rest != 0) growth.add(rest, 1);
  unsigned int const old_length = length();
  if (growth.reserve != 0) {
    GCL_String fresh(std::move(spare));
    bool const fits = fresh.may_change_in_place(0) && fresh.body()->m_capacity == growth.capacity;
    if (!fits) fresh.set_rep(GCL_StringRep::make(0, growth.reserve, nullptr));
    std::memcpy(fresh.body()->m_buffer, c_str(), old_length);
    *this = std::move(fresh);
  }
  std::memcpy(body()->m_buffer + old_length, data, n);
  body()->m_length = old_length + n;
}

std::ostream& operator<<(std::ostream& os, GCL_String const& s) {
  return s.body() != nullptr ? os.write(s.c_str(), static_cast<std::streamsize>(s.length())) : os;
}

std::istream& getline(std::istream& is, GCL_String& s, char delim) {
  GCL_String::Input input(s);
  if (is.good()) {
    input.read(is, true, [delim](char const* begin, char const* end) {
      auto const* const p = std::memchr(begin, delim, static_cast<std::size_t>(end - begin));
      return p != nullptr ? static_cast<char const*>(p) : end;
    });
  } else if (!is.fail()) {
    is.setstate(std::ios_base::failbit);
  }
  if (is.eof() && s.length() != 0) is.clear();
  return is;
}

std::istream& operator>>(std::istream& is, GCL_String& s) {
  GCL_String::Input input(s);
  if (is.good() && (is.flags() & std::ios_base::skipws) != 0) is >> std::ws;
  if (is.good()) {
    input.read(is, false, [](char const* begin, char const* end) {
      return std::find_if(begin, end, is_space);
    });
  } else if (!is.fail()) {
    is.setstate(std::ios_base::failbit);
  }
  if (is.eof() && s.length() != 0) is.clear();
  return is;
}
