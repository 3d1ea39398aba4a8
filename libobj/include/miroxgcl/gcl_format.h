/// @file
/// Strings as arguments of std::format, where the standard library has it (C++20), with the options
/// of its own strings: `std::format("{:>10}", s)`. Elsewhere this header is empty.
#ifndef MIROXGCL_GCL_FORMAT_H
#define MIROXGCL_GCL_FORMAT_H

#include "miroxgcl/gcl_string.h"

#if __cplusplus >= 202002L && __has_include(<format>)
#include <format>
#endif

#ifdef __cpp_lib_format

/// Formats a string as a std::string_view.
template <>
struct std::formatter<GCL_String> : std::formatter<std::string_view> {
  template <class Context>
  auto format(GCL_String const& s, Context& context) const {
    return std::formatter<std::string_view>::format(std::string_view(s), context);
  }
};

#endif

#endif
