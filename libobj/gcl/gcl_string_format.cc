// Line endings and style characters.
//
// What a conversion leaves is defined by single edits: each carriage return taken out by remove(),
// each line feed given its carriage return by replace(). The growth rule makes the body that such a
// series of edits ends with plain arithmetic; so it is planned first, at most one body is built,
// and the text is converted in one pass.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

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

// Without carriage returns. `dest` may be `begin`. Both answer where the copy ends.
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

// Without carriage returns but for one before each line feed. `dest` stands elsewhere.
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

// Gives each of the `count` line feeds before `end` its carriage return, in place: the text moves
// up from behind into the `count` bytes of room after it.
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

// Converts up to the first NUL; what stands behind it stays as it is.
GCL_String& GCL_String::convert_line_ends(bool to_pc) {
  char const* const text = c_str();
  char const* const end = text + std::strlen(text);
  unsigned int const feeds = to_pc ? count(text, end, '\n') : 0;
  unsigned int const returns = count(text, end, '\r');
  if (feeds == 0 && returns == 0) return *this;

  std::uint64_t const newlen = std::uint64_t{length()} - returns + feeds;
  if (newlen > GCL_StringRep::max_length) GCL_StringRep::refuse_length();
  if (newlen == 0) return set_rep(nullptr), *this;

  GCL_StringRep* const rep = body();
  GCL_StringRep::Growth growth(rep);
  if (returns != 0) {
    auto const first = static_cast<unsigned int>(std::strchr(text, '\r') - text);
    growth.unshare(std::max(length() - 1, first + 1));
    growth.length -= returns;
  }
  growth.add(1, feeds);

  auto const behind = static_cast<std::size_t>(text + length() - end);
  if (growth.reserve != 0) {
    auto* const fresh = GCL_StringRep::make(0, growth.reserve, nullptr);
    char* const middle = (to_pc ? put_with_cr_lf : put_without_cr)(fresh->m_buffer, text, end);
    std::memcpy(middle, end, behind);
    set_rep(fresh);
  } else {
    char* const middle = put_without_cr(rep->m_buffer, text, end);
    std::memmove(middle + feeds, end, behind);
    spread_line_feeds(middle, feeds);
  }
  body()->m_length = static_cast<unsigned int>(newlen);
  return *this;
}

// The new body is as roomy as for a text one byte longer, and is taken even when nothing was
// stripped.
GCL_String& GCL_String::remove_formatting() {
  GCL_String stripped;
  auto* const rep = GCL_StringRep::make(length() + 1, 1, nullptr);
  stripped.set_rep(rep);
  imsg_strip_style_chars(rep->m_buffer, c_str());
  rep->m_length = static_cast<unsigned int>(std::strlen(rep->m_buffer));
  return *this = std::move(stripped);
}
