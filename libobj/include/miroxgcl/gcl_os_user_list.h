/// @file
/// GCL_OSUserList: a collection of users of the operating system.
#ifndef MIROXGCL_GCL_OS_USER_LIST_H
#define MIROXGCL_GCL_OS_USER_LIST_H

#include <initializer_list>

#include "miroxgcl/gcl_os_user.h"
#include "miroxgcl/lx_dynamic.h"

extern template class LX_TCollection<GCL_OSUser>;
extern template class LX_TCollectionActiveIterator<GCL_OSUser>;
extern template class LX_TDynamic<GCL_OSUser, LX_CUnmanaged>;
extern template class LX_TDynamicCollection<GCL_OSUser, LX_CUnmanaged>;

/// A list of users, held by value: LX_TDynamicCollection's operations (Append, Insert, Remove,
/// Replace, ItemAt, Location, Length; range-for walks in order), under the library's own name.
///
/// As safe as the standard library's values.
/// @ingroup identity
class MIROXGCL_API GCL_OSUserList : public LX_TDynamicCollection<GCL_OSUser, LX_CUnmanaged> {
 public:
  /// The collection it is made of.
  using Base = LX_TDynamicCollection<GCL_OSUser, LX_CUnmanaged>;

  /// An empty list that grows by `chunk_size` items; 0, the default, means 32.
  /// @{
  GCL_OSUserList() = default;
  explicit GCL_OSUserList(int chunk_size) : Base(static_cast<unsigned int>(chunk_size)) {}
  /// @}
  /// The items of a braced list, in order.
  GCL_OSUserList(std::initializer_list<GCL_OSUser> items) : Base(items) {}
  GCL_OSUserList(GCL_OSUserList const& other) = default;
  GCL_OSUserList(GCL_OSUserList&& other) noexcept = default;
  ~GCL_OSUserList() override;

  /// Take the items, from whatever collection; this list keeps its own chunk size.
  /// @{
  GCL_OSUserList& operator=(LX_TCollection<GCL_OSUser> const& other) override;
  GCL_OSUserList& operator=(Base const& other) override;
  virtual GCL_OSUserList& operator=(GCL_OSUserList const& other);
  GCL_OSUserList& operator=(GCL_OSUserList&& other) noexcept = default;
  GCL_OSUserList& operator=(std::initializer_list<GCL_OSUser> items) {
    Base::operator=(items);
    return *this;
  }
  /// @}

  /// An empty list for all to share; nothing is ever put in it. It is built when the library is
  /// loaded, before the static objects of what links with the library, and goes after them: their
  /// constructors and destructors may use it.
  static GCL_OSUserList nil;
};

#endif
