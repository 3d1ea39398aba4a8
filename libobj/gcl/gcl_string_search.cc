// Search. The string utility matches whole characters; positions stay here.
#include <algorithm>
#include <cstring>
#include <new>
#include <string_view>

#include "miroxgcl/gcl_string.h"
#include "miroxplat/strutl.h"

namespace {

unsigned char to_byte(char c) { return static_cast<unsigned char>(c); }

// The length of the character at `p`, at least 1; `n` bytes are left of its text.
unsigned int step_at(char const* p, unsigned int n) { return std::max(1u, strutl_mblen(p, n)); }

// The bytes of a set, among which the first bytes of characters are looked up.
class first_bytes {
 public:
  explicit first_bytes(std::string_view set) {
    for (char const c : set) m_holds[to_byte(c)] = true;
  }
  bool holds(char c) const { return m_holds[to_byte(c)]; }

  // The first character from `pos` on whose first byte is not held, or `end`. Nearly all characters
  // are one byte long; the service is asked for those that may be longer.
  unsigned int skip_held(char const* text, unsigned int pos, unsigned int end) const {
    while (pos < end && holds(text[pos])) {
      pos += to_byte(text[pos]) < 0x80 ? 1 : step_at(text + pos, end - pos);
    }
    return pos;
  }

 private:
  bool m_holds[256] = {};
};

// The string utility's answer, or npos.
unsigned int find_text(char const* text, unsigned int pos, char const* pattern) {
  unsigned int index = 0;
  return strutl_find_str(text, pos, pattern, &index) != 0 ? index : GCL_String::npos;
}

// The last match not after `last`: `find_from(p)` answers the first match at or after p. It goes
// forward from one match to the next, so that it never lands inside a character.
template <class FindFrom>
unsigned int find_backward(GCL_String const& s, unsigned int last, FindFrom find_from) {
  char const* const text = s.c_str();
  unsigned int const length = s.length();
  unsigned int found = GCL_String::npos;
  for (unsigned int from = 0; from < length;) {
    unsigned int const i = find_from(from);
    if (i == GCL_String::npos || i > last) break;
    found = i;
    from = i + step_at(text + i, length - i);
  }
  return found;
}

// The first byte not after `last` that a backward search over a set may answer, or npos.
unsigned int clamp_last(unsigned int last, unsigned int length) {
  if (length == 0) return GCL_String::npos;
  if (last == GCL_String::npos) return length - 1;
  return last < length ? last : GCL_String::npos;
}

}  // namespace

gcl_text::Sought::Sought(std::string_view s) : m_text(m_copy), m_length(narrow(s.size())) {
  char* copy = m_copy;
  if (s.size() >= sizeof m_copy)
    m_text = copy = static_cast<char*>(m_heap = ::operator new(s.size() + 1));
  if (!s.empty()) std::memcpy(copy, s.data(), s.size());
  copy[s.size()] = '\0';
}

unsigned int GCL_String::find(gcl_text::Sought const& s, unsigned int pos) const {
  if (pos >= length() || s.length() > length() - pos) return npos;
  if (s.length() == 0) return pos;
  return find_text(c_str(), pos, s.text());
}

unsigned int GCL_String::rfind(gcl_text::Sought const& s, unsigned int last) const {
  if (length() == 0) return npos;
  if (s.length() == 0) return last;
  char const* const text = c_str();
  return find_backward(*this, last,
                       [&](unsigned int from) { return find_text(text, from, s.text()); });
}

unsigned int GCL_String::find_first_of(gcl_text::Sought const& set, unsigned int pos) const {
  if (pos >= length()) return npos;
  unsigned int index = 0;
  unsigned int index_in_set = 0;
  bool const found = strutl_find_char_from(c_str(), pos, set.text(), &index, &index_in_set) != 0;
  return found ? index : npos;
}

unsigned int GCL_String::find_last_of(gcl_text::Sought const& set, unsigned int last) const {
  last = clamp_last(last, length());
  if (last == npos) return npos;
  return find_backward(*this, last, [&](unsigned int from) { return find_first_of(set, from); });
}

unsigned int GCL_String::first_outside(std::string_view set, unsigned int pos) const {
  unsigned int const found = first_bytes(set).skip_held(c_str(), pos, length());
  return found < length() ? found : npos;
}

unsigned int GCL_String::last_outside(std::string_view set, unsigned int last) const {
  last = clamp_last(last, length());
  if (last == npos) return npos;
  first_bytes const members(set);
  char const* const text = c_str();
  return find_backward(*this, last, [&, end = length()](unsigned int from) {
    unsigned int const found = members.skip_held(text, from, end);
    return found < end ? found : npos;
  });
}

unsigned int GCL_String::find(GCL_String const& s, unsigned int pos) const {
  return find(gcl_text::Sought(s.c_str(), s.length()), pos);
}

unsigned int GCL_String::rfind(GCL_String const& s, unsigned int last) const {
  return rfind(gcl_text::Sought(s.c_str(), s.length()), last);
}

unsigned int GCL_String::find_first_of(GCL_String const& set, unsigned int pos) const {
  return find_first_of(gcl_text::Sought(set.c_str(), set.length()), pos);
}

unsigned int GCL_String::find_last_of(GCL_String const& set, unsigned int last) const {
  return find_last_of(gcl_text::Sought(set.c_str(), set.length()), last);
}

unsigned int GCL_String::find_first_not_of(GCL_String const& set, unsigned int pos) const {
  return first_outside(set, pos);
}

unsigned int GCL_String::find_last_not_of(GCL_String const& set, unsigned int last) const {
  return last_outside(set, last);
}
