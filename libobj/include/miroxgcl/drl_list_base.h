/// @file
/// DRL_ListBase<T>: a list of handles with value semantics, and the iterator over it.
///
/// T is a handle class with no field beyond GCL_HandleBase's. All such lists share one collection
/// class: items are stored as GCL_HandleBase and used as T in place. A copy of a list shares the
/// bodies of its items, not its slots; items compare as handles do.
#ifndef MIROXGCL_DRL_LIST_BASE_H
#define MIROXGCL_DRL_LIST_BASE_H

#include <initializer_list>
#include <iterator>
#include <memory>
#include <utility>

#include "miroxgcl/gcl_handle_base.h"
#include "miroxgcl/gcl_threads.h"
#include "miroxgcl/lx_dynamic.h"

extern template class LX_TCollection<GCL_HandleBase>;
extern template class LX_TCollectionActiveIterator<GCL_HandleBase>;
extern template class LX_TDynamic<GCL_HandleBase, LX_CUnmanaged>;
extern template class LX_TDynamicCollection<GCL_HandleBase, LX_CUnmanaged>;

/// A list of handles, to derive from.
///
/// Conventions, costs and preconditions are those of LX_TDynamic. A list that was moved from is
/// empty and makes itself a new collection when it is next used: of several readers, whichever
/// comes first makes it.
///
/// As safe as the standard library's values.
/// @ingroup strings
template <class T>
class MIROXGCL_API DRL_ListBase {
 public:
  /// The collection of handles that holds the items.
  using Collection = LX_TDynamicCollection<GCL_HandleBase, LX_CUnmanaged>;

  /// An empty list that grows by `chunk_size` items; 0, and the default, grow as if by 32.
  /// @{
  DRL_ListBase() : DRL_ListBase(0) {}
  explicit DRL_ListBase(int chunk_size)
      : m_collection(new Collection(static_cast<unsigned int>(chunk_size))) {}
  /// @}
  /// Copies the other's chunk size and items.
  DRL_ListBase(DRL_ListBase const& other) : m_collection(new Collection(other.Items())) {}
  /// Takes the collection and leaves the other list empty.
  DRL_ListBase(DRL_ListBase&& other) noexcept = default;
  /// Takes the other's chunk size and items. One of this list's items may own the other list.
  /// @{
  DRL_ListBase& operator=(DRL_ListBase const& other) {
    if (&other != this) m_collection.reset(new Collection(other.Items()));
    return *this;
  }
  DRL_ListBase& operator=(DRL_ListBase&& other) noexcept {
    std::unique_ptr<Collection> taken = std::move(other.m_collection);
    m_collection.swap(taken);
    return *this;
  }
  /// @}
  ~DRL_ListBase() = default;

  /// The items of a braced list, in order.
  DRL_ListBase(std::initializer_list<T> items) : DRL_ListBase(0) {
    Preallocate(static_cast<unsigned int>(items.size()));
    for (T const& item : items) Append(item);
  }

  /// Takes the items; the chunk size stays.
  DRL_ListBase& operator=(std::initializer_list<T> items) {
    Collection fresh(ChunkSize());
    fresh.Preallocate(static_cast<unsigned int>(items.size()));
    for (T const& item : items) fresh.Append(item);
    Items() = std::move(fresh);
    return *this;
  }

  /// Compares the items in order, as handles.
  /// @{
  int operator==(DRL_ListBase const& other) const {
    LX_TCollection<GCL_HandleBase> const& items = Items();
    return items == static_cast<LX_TCollection<GCL_HandleBase> const&>(other.Items());
  }
  int operator!=(DRL_ListBase const& other) const { return !(*this == other); }
  /// @}

  /// The item at `i`. REQUIRES: i < Length().
  /// @{
  T const& operator[](unsigned int i) const { return AsT(Items()[i]); }
  T& operator[](unsigned int i) { return AsT(Items()[i]); }
  T const& ItemAt(unsigned int i) const { return AsT(Items()[i]); }
  /// @}

  /// The first and the last item. REQUIRES: Length() > 0.
  /// @{
  T const& First() const { return AsT(Items().First()); }
  T& First() { return AsT(Items().First()); }
  T const& Last() const { return AsT(Items().Last()); }
  T& Last() { return AsT(Items().Last()); }
  /// @}

  /// @name Changes
  /// As LX_TDynamic's: an index counts from 0, an item may be one of the list's own.
  /// @{

  /// Puts `item` before the first item, or before the item at `i`.
  /// @{
  void Insert(T const& item) { Items().Insert(item); }
  void Insert(T const& item, unsigned int i) { Items().Insert(item, i); }
  /// @}
  /// Puts `item` after the last item, or after the item at `i`; Add() is Append().
  /// @{
  void Append(T const& item) { Items().Append(item); }
  void Append(T const& item, unsigned int i) { Items().Append(item, i); }
  void Add(T const& item) { Items().Append(item); }
  /// @}
  /// Removes the item at `i`. REQUIRES: i < Length().
  void Remove(unsigned int i) { Items().Remove(i); }
  /// Assigns to the item at `i`. REQUIRES: i < Length().
  void Replace(unsigned int i, T const& item) { Items().Replace(i, item); }
  /// Remove every item and release the storage.
  /// @{
  void Clear() { Items().Clear(); }
  void Purge() { Items().Clear(); }
  /// @}
  /// @}

  /// The number of items.
  /// @{
  unsigned int Length() const { return Items().Length(); }
  unsigned int Cardinality() const { return Items().Length(); }
  /// @}
  /// 1 when there is no item.
  int IsEmpty() const { return Items().IsEmpty(); }
  /// The index of the first equal item, or -1.
  int Location(T const& item) const { return Items().Location(item); }

  /// As LX_TDynamic's.
  /// @{
  void SetChunkSize(unsigned int c) { Items().SetChunkSize(c); }
  void Preallocate(unsigned int n) { Items().Preallocate(n); }
  unsigned int ChunkSize() const { return Items().ChunkSize(); }
  /// @}

  /// For range-for and the standard algorithms.
  /// @{
  using value_type = T;
  using iterator = LX_TIndexIterator<DRL_ListBase, T>;
  using const_iterator = LX_TIndexIterator<DRL_ListBase const, T const>;
  T& AtIndex(std::ptrdiff_t i) { return AsT(Items().AtIndex(i)); }
  T const& AtIndex(std::ptrdiff_t i) const { return AsT(Items().AtIndex(i)); }
  iterator begin() { return {*this, 0}; }
  iterator end() { return {*this, Length()}; }
  const_iterator begin() const { return {*this, 0}; }
  const_iterator end() const { return {*this, Length()}; }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }
  std::reverse_iterator<iterator> rbegin() { return std::reverse_iterator<iterator>(end()); }
  std::reverse_iterator<iterator> rend() { return std::reverse_iterator<iterator>(begin()); }
  std::reverse_iterator<const_iterator> rbegin() const {
    return std::reverse_iterator<const_iterator>(end());
  }
  std::reverse_iterator<const_iterator> rend() const {
    return std::reverse_iterator<const_iterator>(begin());
  }
  /// @}

  /// The standard library's names for Length, IsEmpty, Append, First, Last and Clear.
  /// @{
  using size_type = unsigned int;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = T const&;
  unsigned int size() const { return Length(); }
  [[nodiscard]] bool empty() const { return Length() == 0; }
  void push_back(T const& item) { Append(item); }
  T& front() { return First(); }
  T const& front() const { return First(); }
  T& back() { return Last(); }
  T const& back() const { return Last(); }
  void clear() { Clear(); }
  /// @}

 private:
  static_assert(sizeof(T) == sizeof(GCL_HandleBase), "a handle with no field of its own");

  Collection& Items() const { return gcl_threads::made_once(m_collection); }
  static T& AsT(GCL_HandleBase& item) { return static_cast<T&>(item); }

  mutable std::unique_ptr<Collection> m_collection;  // null only after a move
};

/// Walks a list, asking it anew at every call. A plain value, for one thread at a time; the list
/// must outlive it.
/// @ingroup strings
template <class T>
class MIROXGCL_API DRL_ListBaseActiveIterator {
 public:
  /// At the first item; done when there is none.
  explicit DRL_ListBaseActiveIterator(DRL_ListBase<T> const& list) : m_list(list) { Reset(); }

  /// Starts again from the first item.
  void Reset() { m_index = LX_FirstIndex(m_list.Length()); }

  /// 1 when there is no current item.
  int IsDone() const { return m_index < 0 || LX_IsBeyond(m_index, m_list.Length()); }

  /// Moves on; 1 when there is a current item then.
  int Next() {
    ++m_index;
    return !IsDone();
  }

  /// The current item, null when done.
  /// @{
  T const* CurrentItem() const {
    return IsDone() ? nullptr : &m_list[static_cast<unsigned int>(m_index)];
  }
  T* CurrentItem() {
    return const_cast<T*>(static_cast<DRL_ListBaseActiveIterator const&>(*this).CurrentItem());
  }
  /// @}

 private:
  DRL_ListBase<T> const& m_list;
  int m_index;  // -1: the list was empty at the start
};

#endif
