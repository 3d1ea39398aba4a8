// Stream output and input.
//
// Input takes what the stream's buffer holds directly, under one sentry. A byte leaves the stream
// only once it cannot be lost any more: it is in the string, or memory for it is at hand.
#include <algorithm>
#include <cctype>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <new>
#include <ostream>
#include <streambuf>
#include <utility>

#include "capacity.h"
#include "miroxgcl/gcl_string.h"

namespace {

// Input grows a string by as many bytes at a time.
constexpr unsigned int chunk_size = 32;

constexpr int end_of_input = std::char_traits<char>::eof();

// No locale counts printable ASCII as whitespace; the rest it is asked for.
bool is_space(unsigned char c) { return (c <= ' ' || c > '~') && std::isspace(c) != 0; }

char const* find_space(char const* p, char const* end) {
  while (p != end && !is_space(static_cast<unsigned char>(*p))) ++p;
  return p;
}

// As `is >> std::ws`, which looks up the stream's facet anew each time, where a sentry has it at
// hand. What a stream does that throws, or flushes another, depends on the order of its steps.
void skip_space(std::istream& is) {
  if (is.exceptions() != std::ios_base::goodbit || is.tie() != nullptr) {
    is >> std::ws;
    return;
  }
  std::istream::sentry const skipped(is, false);
  if (is.bad()) is.clear(std::ios_base::badbit);  // std::ws says no more of a buffer that threw
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
//
// Bytes that do not make a whole append yet are held here. Before the first of them leaves the
// stream there is room for all: in the string's own body, or in a spare one.
class GCL_String::Input {
 public:
  explicit Input(GCL_String& s) : m_string(s), m_spare(std::move(s)) {}

  // Takes a text of one byte at least up to `end`, and that too, where nothing is to be built for
  // it or waited for: the stream holds all of it, and the body that the string has is the one that
  // it would get.
  static bool take_in_place(std::istream& is, GCL_String& s, char end) {
    if (!is.good() || is.tie() != nullptr || !s.may_change_in_place(0)) return false;
    std::streambuf& buffer = *is.rdbuf();
    char const* const begin = GetArea::begin(buffer);
    std::size_t const held = GetArea::size(buffer);
    if (held == 0) return false;
    auto const* const found = static_cast<char const*>(std::memchr(begin, end, held));
    if (found == nullptr || found == begin) return false;
    auto const length = static_cast<unsigned int>(found - begin);
    GCL_StringRep::CapacityForecast forecast(nullptr);
    add_chunks(forecast, length);
    if (forecast.capacity != s.body()->m_capacity) return false;
    std::memmove(s.body()->m_buffer, begin, length);
    s.body()->set_length(length);
    GetArea::skip(buffer, length + 1);
    return true;
  }

  // Forecasts the appends that make up `n` bytes.
  static void add_chunks(GCL_StringRep::CapacityForecast& forecast, unsigned int n) {
    forecast.add_appends(chunk_size, n / chunk_size);
    if (n % chunk_size != 0) forecast.add_appends(n % chunk_size, 1);
  }

  // Takes characters up to one that `find_end(begin, end)` finds, and that one too if `takes_end`.
  // What was taken is in the string, even when memory ends or the stream throws.
  template <class FindEnd>
  void read(std::istream& is, bool takes_end, FindEnd find_end) {
    std::istream::sentry const ready(is, true);
    if (!ready) return;
    bool found = false;
    try {
      found = gather(is, takes_end, find_end);
    } catch (...) {
      flush();
      throw;
    }
    flush();
    if (found) return;
    is.setstate(is.bad() ? std::ios_base::failbit : std::ios_base::eofbit | std::ios_base::failbit);
  }

 private:
  // Whether the end was found; otherwise the input has ended, or gone bad.
  template <class FindEnd>
  bool gather(std::istream& is, bool takes_end, FindEnd find_end) {
    std::streambuf& buffer = *is.rdbuf();
    for (;;) {
      int const next = GetArea::size(buffer) == 0 ? ask(is, &std::streambuf::sgetc) : 0;
      if (next == end_of_input) return false;
      bool const found = GetArea::size(buffer) != 0
                             ? take_held(buffer, find_end)
                             : take_single(is, static_cast<char>(next), find_end);
      if (!found) continue;
      if (!takes_end) return true;
      if (GetArea::size(buffer) != 0) {
        GetArea::skip(buffer, 1);
      } else {
        ask(is, &std::streambuf::sbumpc);
      }
      return true;
    }
  }

  // Takes what the buffer holds, up to the end that is sought. Whether it was found.
  template <class FindEnd>
  bool take_held(std::streambuf& buffer, FindEnd find_end) {
    char const* const begin = GetArea::begin(buffer);
    std::size_t const held = GetArea::size(buffer);
    auto const length = static_cast<unsigned int>(find_end(begin, begin + held) - begin);
    bool const found = length != held;
    if (found && m_used == 0) {  // the rest of the text, or all of it
      m_string.append_in_chunks(begin, length, m_spare);
      GetArea::skip(buffer, length);
    } else {
      take(buffer, length, found);
    }
    return found;
  }

  // The same for `c`, the next character of a buffer that holds none.
  template <class FindEnd>
  bool take_single(std::istream& is, char c, FindEnd find_end) {
    if (find_end(&c, &c + 1) == &c) return true;
    hold(&c, 1);
    ask(is, &std::streambuf::sbumpc);
    return false;
  }

  // A character from the stream's buffer. When the buffer throws, the stream has gone bad, and the
  // exception goes on only where the stream throws for that, as from the standard library's own
  // input.
  static int ask(std::istream& is, int (std::streambuf::*get)()) {
    try {
      return (is.rdbuf()->*get)();
    } catch (...) {
      try {
        is.setstate(std::ios_base::badbit);
      } catch (std::ios_base::failure const&) {  // the buffer's own goes on instead
      }
      if ((is.exceptions() & std::ios_base::badbit) != 0) throw;
      return end_of_input;
    }
  }

  // Takes the next `n` bytes that the buffer holds; `is_last` says that no more will come.
  void take(std::streambuf& buffer, unsigned int n, bool is_last) {
    unsigned int const missing = m_used == 0 ? 0 : std::min(n, chunk_size - m_used);
    hold(GetArea::begin(buffer), missing);
    GetArea::skip(buffer, missing);
    n -= missing;
    unsigned int const rest = is_last ? 0 : n % chunk_size;
    m_string.append_in_chunks(GetArea::begin(buffer), n - rest, m_spare);
    GetArea::skip(buffer, n - rest);
    hold(GetArea::begin(buffer), rest);
    GetArea::skip(buffer, rest);
  }

  // Holds `n` bytes more, at most to the end of the chunk, which is then appended.
  void hold(char const* data, unsigned int n) {
    if (n == 0) return;
    if (m_used == 0) stand_by();
    GCL_StringRep::checked_length(std::uint64_t{m_string.length()} + m_used + n);
    std::memcpy(m_chunk + m_used, data, n);
    m_used += n;
    if (m_used == chunk_size) flush();
  }

  // Makes sure that flush() cannot fail: a whole chunk fits, or a body for it is at hand.
  void stand_by() {
    unsigned int const most = std::min(m_string.length() + chunk_size, GCL_StringRep::max_length);
    if (!m_string.may_change_in_place(most)) m_next = GCL_String::with_body(most, m_spare);
  }

  // Appends what is held. A whole chunk takes the spare body; fewer bytes may need a
  // smaller one, and take that body only when there is no memory for their own.
  void flush() noexcept {
    if (m_used == 0) return;
    unsigned int const n = std::exchange(m_used, 0u);
    if (n == chunk_size && m_next.body() != nullptr) m_spare = std::move(m_next);
    try {
      m_string.append_in_chunks(m_chunk, n, m_spare);
    } catch (std::bad_alloc const&) {
      m_next.append(m_string).append(m_chunk, n);
      m_string = std::move(m_next);
    }
  }

  GCL_String& m_string;
  GCL_String m_spare;
  GCL_String m_next;
  char m_chunk[chunk_size];
  unsigned int m_used = 0;
};

// An empty string with the body that an edit gets which needs room for `reserve` bytes: that of
// `spare`, when it is as large and nobody else's, else a new one.
GCL_String GCL_String::with_body(unsigned int reserve, GCL_String& spare) {
  GCL_String result(std::move(spare));
  bool const fits = result.may_change_in_place(0) &&
                    result.body()->m_capacity == GCL_StringRep::capacity_for(reserve);
  if (!fits) result.set_rep(GCL_StringRep::make(0, reserve, nullptr));
  result.body()->set_length(0);
  return result;
}

// As append(data, chunk_size) as often as a whole chunk is left, then append of the rest, but
// building one body at most, or taking that of `spare`.
void GCL_String::append_in_chunks(char const* data, unsigned int n, GCL_String& spare) {
  if (n == 0) return;
  unsigned int const old_length = length();
  unsigned int const new_length = GCL_StringRep::checked_length(std::uint64_t{old_length} + n);
  GCL_StringRep::CapacityForecast forecast(body());
  Input::add_chunks(forecast, n);
  if (forecast.needs_new_body()) {
    GCL_String fresh = with_body(forecast.reserve, spare);
    if (old_length != 0) std::memcpy(fresh.body()->m_buffer, bytes(), old_length);
    swap(fresh);
  }
  std::memcpy(body()->m_buffer + old_length, data, n);
  body()->set_length(new_length);
}

std::ostream& operator<<(std::ostream& os, GCL_String const& s) {
  return s.body() != nullptr ? os.write(s.c_str(), static_cast<std::streamsize>(s.length())) : os;
}

void PrintTo(GCL_String const& s, std::ostream* os) { *os << '"' << s << '"'; }

std::istream& getline(std::istream& is, GCL_String& s, char delim) {
  if (GCL_String::Input::take_in_place(is, s, delim)) return is;
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
  if (is.good() && (is.flags() & std::ios_base::skipws) != 0) skip_space(is);
  if (is.good()) {
    input.read(is, false, find_space);
  } else if (!is.fail()) {
    is.setstate(std::ios_base::failbit);
  }
  if (is.eof() && s.length() != 0) is.clear();
  return is;
}
