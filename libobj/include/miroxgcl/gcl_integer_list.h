/// @file
/// GCL_IntegerList: a collection of int; and the collections of untyped pointers.
#ifndef MIROXGCL_GCL_INTEGER_LIST_H
#define MIROXGCL_GCL_INTEGER_LIST_H

#include <initializer_list>

#include "miroxgcl/lx_dynamic.h"

extern template class LX_TCollection<int>;
extern template class LX_TCollectionActiveIterator<int>;
extern template class LX_TDynamic<int, LX_CUnmanaged>;
extern template class LX_TDynamicCollection<int, LX_CUnmanaged>;

// Pointers are stored; what they point at is not owned.
extern template class LX_TCollection<void*>;
extern template class LX_TCollectionActiveIterator<void*>;
extern template class LX_TDynamic<void*, LX_CUnmanaged>;
extern template class LX_TDynamicCollection<void*, LX_CUnmanaged>;

/// An integer list, held by value: LX_TDynamicCollection's operations (Append, Insert, Remove,
/// Replace, ItemAt, Location, Length; range-for walks in order), under the library's own name.
///
/// As safe as the standard library's values.
/// @ingroup collections
class MIROXGCL_API GCL_IntegerList : public LX_TDynamicCollection<int, LX_CUnmanaged> {
 public:
  /// The collection it is made of.
  using Base = LX_TDynamicCollection<int, LX_CUnmanaged>;

  /// An empty list that grows by `chunk_size` items; 0, the default, means 32.
  /// @{
  GCL_IntegerList() = default;
  explicit GCL_IntegerList(int chunk_size) : Base(static_cast<unsigned int>(chunk_size)) {}
  /// @}
  /// The items of a braced list, in order.
  GCL_IntegerList(std::initializer_list<int> items) : Base(items) {}
  GCL_IntegerList(GCL_IntegerList const& other) = default;
  GCL_IntegerList(GCL_IntegerList&& other) noexcept = default;
  ~GCL_IntegerList() override;

  /// Take the items; this list keeps its own chunk size.
  /// @{
  GCL_IntegerList& operator=(GCL_IntegerList const& other);
  GCL_IntegerList& operator=(GCL_IntegerList&& other) noexcept = default;
  GCL_IntegerList& operator=(std::initializer_list<int> items) {
    Base::operator=(items);
    return *this;
  }
  using Base::operator=;
  /// @}
};

#endif
