/// @file
/// Strings as arguments of the {fmt} library (version 9 and later), with the options of its own
/// strings: `fmt::format("{:>10}", s)`. The program includes and links {fmt} itself.
#ifndef MIROXGCL_GCL_FMT_H
#define MIROXGCL_GCL_FMT_H

#include <fmt/format.h>

#include <string_view>
#include <type_traits>

#include "miroxgcl/gcl_string.h"

/// @cond

// Formats a string, or a pathname, as a std::string_view.
template <class String>
struct fmt::formatter<String, char, std::enable_if_t<std::is_base_of_v<GCL_String, String>>>
    : fmt::formatter<std::string_view, char> {
  template <class Context>
  auto format(GCL_String const& s, Context& context) const {
    return fmt::formatter<std::string_view, char>::format(std::string_view(s), context);
  }
};

/// @endcond

#endif
