/// @file
/// GCL_OSGroupList: a collection of groups of the operating system.
#ifndef MIROXGCL_GCL_OS_GROUP_LIST_H
#define MIROXGCL_GCL_OS_GROUP_LIST_H

#include <initializer_list>

#include "miroxgcl/gcl_os_group.h"
#include "miroxgcl/lx_dynamic.h"

extern template class LX_TCollection<GCL_OSGroup>;
extern template class LX_TCollectionActiveIterator<GCL_OSGroup>;
extern template class LX_TDynamic<GCL_OSGroup, LX_CUnmanaged>;
extern template class LX_TDynamicCollection<GCL_OSGroup, LX_CUnmanaged>;

/// A list of groups, held by value: LX_TDynamicCollection's operations (Append, Insert, Remove,
/// Replace, ItemAt, Location, Length; range-for walks in order), under the library's own name.
///
/// As safe as the standard library's values.
/// @ingroup identity
class MIROXGCL_API GCL_OSGroupList : public LX_TDynamicCollection<GCL_OSGroup, LX_CUnmanaged> {
 public:
  /// The collection it is made of.
  using Base = LX_TDynamicCollection<GCL_OSGroup, LX_CUnmanaged>;

  /// An empty list that grows by `chunk_size` items; 0, the default, means 32.
  /// @{
  GCL_OSGroupList() = default;
  explicit GCL_OSGroupList(int chunk_size) : Base(static_cast<unsigned int>(chunk_size)) {}
  /// @}
  /// The items of a braced list, in order.
  GCL_OSGroupList(std::initializer_list<GCL_OSGroup> items) : Base(items) {}
  GCL_OSGroupList(GCL_OSGroupList const& other) = default;
  GCL_OSGroupList(GCL_OSGroupList&& other) noexcept = default;
  ~GCL_OSGroupList() override;

  /// Take the items, from whatever collection; this list keeps its own chunk size.
  /// @{
  GCL_OSGroupList& operator=(LX_TCollection<GCL_OSGroup> const& other) override;
  GCL_OSGroupList& operator=(Base const& other) override;
  virtual GCL_OSGroupList& operator=(GCL_OSGroupList const& other);
  GCL_OSGroupList& operator=(GCL_OSGroupList&& other) noexcept = default;
  GCL_OSGroupList& operator=(std::initializer_list<GCL_OSGroup> items) {
    Base::operator=(items);
    return *this;
  }
  /// @}
};

#endif
