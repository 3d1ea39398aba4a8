/// @file
/// What programs do with whole texts: trim, split, join, look at their ends.
///
/// Each takes a GCL_String first, or a list of them; for literals it is not even considered, so
/// that it gets in the way of no function of the same name that a program has itself.
#ifndef MIROXGCL_GCL_STRING_ALGO_H
#define MIROXGCL_GCL_STRING_ALGO_H

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/gcl_string.h"
#include "miroxgcl/gcl_string_list.h"

/// @cond
template <class T>
using GCL_IfString = std::enable_if_t<std::is_base_of_v<GCL_String, T>, int>;
template <class T>
using GCL_IfStringList = std::enable_if_t<std::is_base_of_v<DRL_ListBase<GCL_String>, T>, int>;
/// @endcond

/// Whether `s` begins with `prefix`.
/// @ingroup strings
template <class String, GCL_IfString<String> = 0>
bool starts_with(String const& s, std::string_view prefix) noexcept {
  return s.starts_with(prefix);
}

/// Whether `s` ends with `suffix`.
/// @ingroup strings
template <class String, GCL_IfString<String> = 0>
bool ends_with(String const& s, std::string_view suffix) noexcept {
  return s.ends_with(suffix);
}

/// The text without the bytes of `blanks` at both ends; shares the body when there are none. The
/// default is the whitespace of the C locale.
/// @ingroup strings
template <class String, GCL_IfString<String> = 0>
GCL_String trim(String const& s, std::string_view blanks = " \t\n\v\f\r") {
  std::string_view const text = s;
  std::size_t const first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return GCL_String();
  std::size_t const last = text.find_last_not_of(blanks);
  if (last - first + 1 == text.size()) return s;
  return GCL_String(text.substr(first, last - first + 1));
}

/// The pieces between the occurrences of `separator`, empty ones too: one more than it occurs. An
/// empty separator never matches. Linear.
/// @ingroup strings
template <class String, GCL_IfString<String> = 0>
GCL_StringList split(String const& s, std::string_view separator) {
  GCL_StringList pieces(32);
  unsigned int room = 32;
  std::string_view rest = s;
  while (!separator.empty()) {
    std::size_t const at = rest.find(separator);
    if (at == std::string_view::npos) break;
    LX_DoubleWhenFull(pieces, room);
    pieces.Append(GCL_String(rest.substr(0, at)));
    rest.remove_prefix(at + separator.size());
  }
  pieces.Append(GCL_String(rest));
  return pieces;
}

/// The items one after the other, `separator` between them; split() takes the result apart again
/// when no item holds the separator. The empty list gives the empty text.
/// @ingroup strings
template <class List, GCL_IfStringList<List> = 0>
GCL_String join(List const& items, std::string_view separator) {
  std::uint64_t length = 0;
  for (GCL_String const& item : items) length += item.length() + separator.size();
  if (length == 0) return GCL_String();
  GCL_String text;
  text.reserve(length - separator.size());
  bool is_first = true;
  for (GCL_String const& item : items) {
    if (!is_first) text.append(separator);
    is_first = false;
    text.append(item);
  }
  return text;
}

#endif
