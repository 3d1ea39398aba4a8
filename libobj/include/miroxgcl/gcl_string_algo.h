// What programs do with whole texts: trim, split, join, look at their ends.
#ifndef MIROXGCL_GCL_STRING_ALGO_H
#define MIROXGCL_GCL_STRING_ALGO_H

#include <string_view>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/gcl_string.h"
#include "miroxgcl/gcl_string_list.h"

inline bool starts_with(GCL_String const& s, std::string_view prefix) noexcept {
  return std::string_view(s).substr(0, prefix.size()) == prefix;
}

inline bool ends_with(GCL_String const& s, std::string_view suffix) noexcept {
  std::string_view const text = s;
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// The text without the bytes of `blanks` at both ends; shares the body when there are none. The
// default is the whitespace of the C locale.
inline GCL_String trim(GCL_String const& s, std::string_view blanks = " \t\n\v\f\r") {
  std::string_view const text = s;
  std::size_t const first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return GCL_String();
  std::size_t const last = text.find_last_not_of(blanks);
  if (last - first + 1 == text.size()) return s;
  return GCL_String(text.substr(first, last - first + 1));
}

// The pieces between the places where `separator` stands, empty ones too: one more than there are
// such places. An empty separator stands nowhere.
inline GCL_StringList split(GCL_String const& s, std::string_view separator) {
  GCL_StringList pieces(32);
  unsigned int room = 32;
  std::string_view rest = s;
  while (!separator.empty()) {
    std::size_t const at = rest.find(separator);
    if (at == std::string_view::npos) break;
    if (pieces.Length() == room) pieces.Preallocate(room *= 2);  // growth by chunks is quadratic
    pieces.Append(GCL_String(rest.substr(0, at)));
    rest.remove_prefix(at + separator.size());
  }
  pieces.Append(GCL_String(rest));
  return pieces;
}

// The items one after the other, `separator` between them; split() takes the result apart again
// when no item holds the separator. The empty list gives the empty text.
inline GCL_String join(GCL_StringList const& items, GCL_String const& separator) {
  GCL_String text;
  for (GCL_String const& item : items) {
    if (&item != &items.First()) text.append(separator);
    text.append(item);
  }
  return text;
}

#endif
