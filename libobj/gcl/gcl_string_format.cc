// Line endings and style characters.
//
// A conversion leaves what single edits would leave: remove() of each carriage return, replace() of
// each line feed. The capacity after such a series of edits is forecast first, so that at most one
// body is built and the text is converted in one pass.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "capacity.h"
#include "miroxgcl/gcl_string.h"
#include "miroxplat/imsg.h"

namespace {

GCL_String const s_lf_cr("\n\r");
GCL_String const s_cr_lf("\r\n");

// Counts by blocks of a fixed size, which compilers turn into wide steps.
unsigned int count(char const* begin, char const* end, char c) {
  constexpr int block = 128;
  unsigned int total = 0;
  for (; end - begin >= block; begin += block) {
    unsigned char in_block = 0;
    for (int i = 0; i != block; ++i) {
      in_block = static_cast<unsigned char>(in_block + (begin[i] == c));
    }
    total += in_block;
  }
  return total + static_cast<unsigned int>(std::count(begin, end, c));
}

// The first `c`, or the end.
char const* find(char const* begin, char const* end, char c) {
  auto const* const p = std::memchr(begin, c, static_cast<std::size_t>(end - begin));
  return p != nullptr ? static_cast<char const*>(p) : end;
}

// Copies the text without carriage returns to `dest`, which may be `begin`. Returns where the copy
// ends, as put_with_cr_lf does.
char* put_without_cr(char* dest, char const* begin, char const* end) {
  while (begin != end) {
    char const* const stop = find(begin, end, '\r');
    auto const run = static_cast<std::size_t>(stop - begin);
    if (dest != begin) std::memmove(dest, begin, run);
    dest += run;
    begin = stop != end ? stop + 1 : end;
  }
  return dest;
}

// Copies the text without carriage returns but for one before each line feed. `dest` does not
// overlap the text.
char* put_with_cr_lf(char* dest, char const* begin, char const* end) {
  while (begin != end) {
    char const* const stop = find(begin, end, '\n');
    dest = put_without_cr(dest, begin, stop);
    if (stop == end) break;
    *dest++ = '\r';
    *dest++ = '\n';
    begin = stop + 1;
  }
  return dest;
}

// Gives each of the `count` line feeds before `end` its carriage return, in place: the text is
// moved from its end on into the `count` bytes of room after it.
void spread_line_feeds(char* end, unsigned int count) {
  for (char* dest = end + count; dest != end;) {
    *--dest = *--end;
    if (*dest == '\n') *--dest = '\r';
  }
}

}  // namespace

bool GCL_String::is_pc_mode() const { return find(s_lf_cr) != npos || find(s_cr_lf) != npos; }

GCL_String& GCL_String::from_pc_mode() { return convert_line_ends(false); }

GCL_String& GCL_String::to_pc_mode() { return convert_line_ends(true); }

// What a conversion removes and adds, in the text up to its first NUL.
struct GCL_String::LineEnds {
  LineEnds(GCL_String const& s, bool to_pc)
      : text(s.c_str()),
        end(text + std::strlen(text)),
        added(to_pc ? count(text, end, '\n') : 0),
        removed(count(text, end, '\r')) {}

  bool is_unchanged() const { return added == 0 && removed == 0; }

  char const* text;
  char const* end;
  unsigned int added;    // carriage returns before line feeds
  unsigned int removed;  // carriage returns
};

GCL_String& GCL_String::convert_line_ends(bool to_pc) {
  LineEnds const change(*this, to_pc);
  if (change.is_unchanged()) return *this;
  unsigned int const newlen =
      GCL_StringRep::checked_length(std::uint64_t{length()} - change.removed + change.added);
  if (newlen == 0) return set_rep(nullptr), *this;

  GCL_StringRep::CapacityForecast forecast(body());
  if (change.removed != 0) {
    auto const first = static_cast<unsigned int>(std::strchr(change.text, '\r') - change.text);
    forecast.add_shortening(std::max(length() - 1, first + 1));
    forecast.length -= change.removed;
  }
  forecast.add_appends(1, change.added);
  apply(change, forecast.reserve);
  body()->set_length(newlen);
  return *this;
}

// Puts the converted text into a new body with room for `reserve` bytes, or in place where that is
// 0. What follows the first NUL is moved as it is.
void GCL_String::apply(LineEnds const& change, unsigned int reserve) {
  auto const behind = static_cast<std::size_t>(change.text + length() - change.end);
  if (reserve != 0) {
    auto* const fresh = GCL_StringRep::make(0, reserve, nullptr);
    auto* const put = change.added != 0 ? put_with_cr_lf : put_without_cr;
    char* const middle = put(fresh->m_buffer, change.text, change.end);
    std::memcpy(middle, change.end, behind);
    set_rep(fresh);
  } else {
    char* const middle = put_without_cr(body()->m_buffer, change.text, change.end);
    std::memmove(middle + change.added, change.end, behind);
    spread_line_feeds(middle, change.added);
  }
}

// The new body has the capacity of a text one byte longer, and replaces the old one even when
// nothing was stripped.
GCL_String& GCL_String::remove_formatting() {
  GCL_String stripped;
  auto* const rep = GCL_StringRep::make(length() + 1, 1, nullptr);
  stripped.set_rep(rep);
  imsg_strip_style_chars(rep->m_buffer, c_str());
  rep->set_length(static_cast<unsigned int>(std::strlen(rep->m_buffer)));
  return *this = std::move(stripped);
}
