/// @file
/// GCL_StringList: the library's list of strings, the type in which messages are handed out.
#ifndef MIROXGCL_GCL_STRING_LIST_H
#define MIROXGCL_GCL_STRING_LIST_H

#include <initializer_list>

#include "miroxgcl/drl_list_base.h"
#include "miroxgcl/gcl_string.h"

extern template class DRL_ListBase<GCL_String>;
extern template class DRL_ListBaseActiveIterator<GCL_String>;

/// A list of strings, held by value: DRL_ListBase's operations (Append, Insert, Remove, Replace,
/// ItemAt, Location, Length; range-for walks in order), under the library's own name.
///
/// As safe as the standard library's values.
/// @ingroup strings
class MIROXGCL_API GCL_StringList : public DRL_ListBase<GCL_String> {
 public:
  /// An empty list that grows by `chunk_size` strings; 0, the default, means 32.
  /// @{
  GCL_StringList() = default;
  explicit GCL_StringList(int chunk_size) : DRL_ListBase<GCL_String>(chunk_size) {}
  /// @}
  /// The strings of a braced list, in order.
  GCL_StringList(std::initializer_list<GCL_String> items) : DRL_ListBase<GCL_String>(items) {}

  /// Takes the strings; the chunk size stays.
  GCL_StringList& operator=(std::initializer_list<GCL_String> items) {
    DRL_ListBase<GCL_String>::operator=(items);
    return *this;
  }

  /// An empty list for all to share; nothing is ever put in it. It is built when the library is
  /// loaded, before the static objects of what links with the library, and goes after them: their
  /// constructors and destructors may use it.
  static GCL_StringList nil;
};

#endif
