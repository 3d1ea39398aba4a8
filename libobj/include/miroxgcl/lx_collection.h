/// @file
/// LX_TCollection<T>: the interface of every indexed, ordered collection, and the iterator over it.
///
/// Indices count from 0 and are unsigned; truth values are int, 1 and 0. Items are held by value; a
/// reference that a collection hands out stays valid until the next operation that changes it.
///
///     for (LX_TCollectionActiveIterator<int> i(list); !i.IsDone(); i.Next()) use(*i.CurrentItem());
#ifndef MIROXGCL_LX_COLLECTION_H
#define MIROXGCL_LX_COLLECTION_H

#include <deque>
#include <iterator>
#include <type_traits>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/lx_item.h"
#include "miroxgcl/lx_iterator.h"

/// The interface of an indexed collection. T supplies default construction, copying, assignment and
/// operator==.
/// @ingroup collections
template <class T>
class MIROXGCL_API LX_TCollection {
 public:
  /// An empty collection.
  LX_TCollection() = default;
  LX_TCollection(LX_TCollection const&) = default;
  virtual ~LX_TCollection() = default;

  /// Gives this collection the items of `other`, whatever its class, in order; `other` may belong
  /// to one of this collection's own items. When copying an item throws, this collection is left
  /// empty.
  virtual LX_TCollection& operator=(LX_TCollection const& other);

  /// 1 when both hold the same number of items, equal in order.
  /// @{
  virtual int operator==(LX_TCollection const& other) const;
  int operator!=(LX_TCollection const& other) const { return !(*this == other); }
  /// @}

  /// The item at `i`; ItemAt() is the same for reading. REQUIRES: i < Length().
  /// @{
  virtual T const& operator[](unsigned int i) const = 0;
  virtual T& operator[](unsigned int i) = 0;
  /// @}

  virtual void Clear() = 0;                                ///< Removes every item, as Purge() does.
  virtual void Insert(T const& item) = 0;                  ///< Puts `item` before the first.
  virtual void Insert(T const& item, unsigned int i) = 0;  ///< Puts `item` before the one at `i`.
  virtual void Append(T const& item) = 0;                  ///< Puts `item` after the last.
  virtual void Append(T const& item, unsigned int i) = 0;  ///< Puts `item` after the one at `i`.
  virtual void Remove(unsigned int i) = 0;                 ///< Removes the item at `i`.
  virtual void Replace(unsigned int i, T const& item) = 0;  ///< Assigns to the item at `i`.
  virtual unsigned int Length() const = 0;                  ///< The number of items.
  virtual int IsEmpty() const = 0;                          ///< 1 when there is no item.

  /// The first and the last item. REQUIRES: not empty.
  /// @{
  virtual T const& First() const = 0;
  virtual T& First() = 0;
  virtual T const& Last() const = 0;
  virtual T& Last() = 0;
  /// @}

  virtual int Location(T const& item) const = 0;  ///< The index of the first equal item, or -1.

  /// Other names for Clear(), Append(), Length() and operator[].
  /// @{
  virtual void Purge() = 0;
  virtual void Add(T const& item) = 0;
  virtual unsigned int Cardinality() const = 0;
  virtual T const& ItemAt(unsigned int i) const = 0;
  /// @}

  /// Hooks around assignment to this collection and comparison of it; here they do nothing.
  /// @{
  virtual void Lock() const;
  virtual void Unlock() const;
  /// @}

  /// For range-for and the standard algorithms.
  /// @{
  using value_type = T;
  using iterator = LX_TIndexIterator<LX_TCollection, T>;
  using const_iterator = LX_TIndexIterator<LX_TCollection const, T const>;
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

 protected:
  /// Assignment, with `prepare(n)` called once this collection is empty and before `n` items come.
  template <class Prepare>
  void Assign(LX_TCollection const& other, Prepare prepare);
};

/// Walks a collection through its virtual interface, asking it anew at every call, so that it sees
/// what changes meanwhile. A plain value, for one thread at a time; the collection
/// must outlive it.
/// @ingroup collections
template <class T>
class MIROXGCL_API LX_TCollectionActiveIterator {
 public:
  /// At the first item; done when there is none.
  explicit LX_TCollectionActiveIterator(LX_TCollection<T> const& c) : m_collection(c) { Reset(); }

  /// Starts again from the first item.
  void Reset() { m_index = LX_FirstIndex(m_collection.Cardinality()); }

  /// 1 when there is no current item.
  int IsDone() const { return m_index < 0 || LX_IsBeyond(m_index, m_collection.Cardinality()); }

  /// Moves on; 1 when there is a current item then.
  int Next() {
    ++m_index;
    return !IsDone();
  }

  /// The current item, null when done.
  /// @{
  T const* CurrentItem() const {
    return IsDone() ? nullptr : &m_collection.ItemAt(static_cast<unsigned int>(m_index));
  }
  T* CurrentItem() {
    return const_cast<T*>(static_cast<LX_TCollectionActiveIterator const&>(*this).CurrentItem());
  }
  /// @}

 private:
  LX_TCollection<T> const& m_collection;
  int m_index;  // -1: the collection was empty at the start
};

/// @cond IMPLEMENTATION
// --- Implementation.

// Holds a container's lock for a scope, through its own Lock and Unlock.
template <class Lockable>
class LX_TLockScope {
 public:
  explicit LX_TLockScope(Lockable& lockable) : m_lockable(lockable) { m_lockable.Lock(); }
  LX_TLockScope(LX_TLockScope const&) = delete;
  LX_TLockScope& operator=(LX_TLockScope const&) = delete;
  ~LX_TLockScope() { m_lockable.Unlock(); }

 private:
  Lockable& m_lockable;
};

// Empties a container at the end of its scope, unless told that its new content is complete.
template <class Container>
class LX_TPurgeGuard {
 public:
  explicit LX_TPurgeGuard(Container& container) : m_container(&container) {}
  LX_TPurgeGuard(LX_TPurgeGuard const&) = delete;
  LX_TPurgeGuard& operator=(LX_TPurgeGuard const&) = delete;
  ~LX_TPurgeGuard() {
    if (m_container != nullptr) m_container->Purge();
  }
  void Complete() { m_container = nullptr; }

 private:
  Container* m_container;
};

// Copies of the items from an active iterator's place on.
template <class T, class Iterator>
std::deque<T> LX_CopyItems([[maybe_unused]] Iterator i) {
  std::deque<T> copies;
  if constexpr (LX_IsCopyConstructible<T>()) {
    while (T const* const item = i.CurrentItem()) copies.push_back(*item), i.Next();
  }
  return copies;
}

template <class T>
LX_TCollection<T>& LX_TCollection<T>::operator=(LX_TCollection const& other) {
  if (&other != this) Assign(other, [](unsigned int) {});
  return *this;
}

// Where this collection has items, one of them may own the other: its items are copied before these
// go.
template <class T>
template <class Prepare>
void LX_TCollection<T>::Assign(LX_TCollection const& other, Prepare prepare) {
  LX_TLockScope<LX_TCollection const> const lock(*this);
  LX_TPurgeGuard<LX_TCollection> guard(*this);
  unsigned int const count = other.Cardinality();
  LX_TCollectionActiveIterator<T> i(other);
  if (LX_MayOwn<T>() && Cardinality() != 0) {
    auto const copies = LX_CopyItems<T>(i);
    Purge();
    prepare(count);
    for (T const& item : copies) Add(item);
  } else {
    Purge();
    prepare(count);
    while (T const* const item = i.CurrentItem()) Add(*item), i.Next();
  }
  guard.Complete();
}

template <class T>
int LX_TCollection<T>::operator==(LX_TCollection const& other) const {
  if (&other == this) return 1;
  LX_TLockScope<LX_TCollection const> const lock(*this);
  if (Cardinality() != other.Cardinality()) return 0;
  LX_TCollectionActiveIterator<T> i(*this);
  LX_TCollectionActiveIterator<T> j(other);
  for (;; i.Next(), j.Next()) {
    T const* const ours = i.CurrentItem();
    T const* const theirs = j.CurrentItem();
    if (ours == nullptr || theirs == nullptr) return 1;
    if (!LX_AreEqual(*ours, *theirs)) return 0;
  }
}

template <class T>
void LX_TCollection<T>::Lock() const {}

template <class T>
void LX_TCollection<T>::Unlock() const {}

/// @endcond

#endif
