/// @file
/// LX_TStack<T>: the interface of a last-in, first-out stack; the iterator over it; and
/// LX_TUnboundedStack<T,M>, the stack made of a linked list.
///
///     LX_TUnboundedStack<GCL_String> s;
///     s.Push("a"); s.Push("b");                // Top() is "b"; ItemAt(0) is "b", ItemAt(1) is "a"
///     for (LX_TStackActiveIterator<GCL_String> i(s); !i.IsDone(); i.Next()) use(*i.CurrentItem());
#ifndef MIROXGCL_LX_STACK_H
#define MIROXGCL_LX_STACK_H

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <utility>

#include "miroxgcl/lx_collection.h"
#include "miroxgcl/lx_unbounded.h"

/// The interface of a stack. Index 0 is the top. Truth values are int, 1 and 0.
/// @ingroup collections
template <class T>
class MIROXGCL_API LX_TStack {
 public:
  /// An empty stack.
  LX_TStack() = default;
  LX_TStack(LX_TStack const&) = default;
  virtual ~LX_TStack() = default;

  /// Gives this stack the items of `other`, whatever its class, in order. `other` is locked while
  /// it is read; it may belong to one of this stack's own items. When copying an item throws, this
  /// stack is left empty.
  virtual LX_TStack& operator=(LX_TStack const& other);

  /// 1 when both hold the same number of items, equal in order.
  /// @{
  virtual int operator==(LX_TStack const& other) const;
  int operator!=(LX_TStack const& other) const { return !(*this == other); }
  /// @}

  virtual void Clear() = 0;                ///< Removes every item, as Purge() does.
  virtual void Push(T const& item) = 0;    ///< Puts `item` on top.
  virtual void Pop() = 0;                  ///< Removes the top. REQUIRES: not empty.
  virtual unsigned int Depth() const = 0;  ///< The number of items, as Cardinality().
  virtual int IsEmpty() const = 0;         ///< 1 when there is no item.

  /// The item on top. REQUIRES: not empty.
  /// @{
  virtual T const& Top() const = 0;
  virtual T& Top() = 0;
  /// @}

  virtual void Purge() = 0;                           ///< Removes every item.
  virtual void Add(T const& item) = 0;                ///< Puts `item` at the bottom.
  virtual unsigned int Cardinality() const = 0;       ///< The number of items.
  virtual T const& ItemAt(unsigned int i) const = 0;  ///< The item at `i`. REQUIRES: i < Depth().

  /// Hooks that assignment from this stack and comparison with it call; here they do nothing.
  /// @{
  virtual void Lock();
  virtual void Unlock();
  /// @}

  /// For range-for and the standard algorithms: from the top, not for writing. What is looked up
  /// next to the last look-up takes constant time, what is farther a walk: the iterators step in
  /// constant time, but jump in linear time.
  /// @{
  T const& operator[](unsigned int i) const { return ItemAt(i); }
  using value_type = T;
  using const_iterator = LX_TIndexIterator<LX_TStack const, T const>;
  using iterator = const_iterator;
  const_iterator begin() const { return {*this, 0}; }
  const_iterator end() const { return {*this, Depth()}; }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }
  std::reverse_iterator<const_iterator> rbegin() const {
    return std::reverse_iterator<const_iterator>(end());
  }
  std::reverse_iterator<const_iterator> rend() const {
    return std::reverse_iterator<const_iterator>(begin());
  }
  /// @}

  /// The standard library's names for Depth, IsEmpty, Push, Pop and Top.
  /// @{
  using size_type = unsigned int;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = T const&;
  unsigned int size() const { return Depth(); }
  [[nodiscard]] bool empty() const { return Depth() == 0; }
  void push(T const& item) { Push(item); }
  void pop() { Pop(); }
  T& top() { return Top(); }
  T const& top() const { return Top(); }
  /// @}
};

/// Walks a stack from its top, asking it anew at every call. A plain value, for one thread at a
/// time; the stack must outlive it.
/// @ingroup collections
template <class T>
class MIROXGCL_API LX_TStackActiveIterator {
 public:
  /// At the first item; done when there is none.
  explicit LX_TStackActiveIterator(LX_TStack<T> const& stack) : m_stack(stack) { Reset(); }

  /// Starts again from the first item.
  void Reset() { m_index = LX_FirstIndex(m_stack.Cardinality()); }

  /// 1 when there is no current item.
  int IsDone() const { return m_index < 0 || LX_IsBeyond(m_index, m_stack.Cardinality()); }

  /// Moves on; 1 when there is a current item then.
  int Next() {
    ++m_index;
    return !IsDone();
  }

  /// The current item, null when done.
  /// @{
  T const* CurrentItem() const {
    return IsDone() ? nullptr : &m_stack.ItemAt(static_cast<unsigned int>(m_index));
  }
  T* CurrentItem() {
    return const_cast<T*>(static_cast<LX_TStackActiveIterator const&>(*this).CurrentItem());
  }
  /// @}

 private:
  LX_TStack<T> const& m_stack;
  int m_index;  // -1: the stack was empty at the start
};

/// The stack made of a list, whose first item is the top. As safe as the standard library's values,
/// where the items, M and the locks of a derived class are.
/// @ingroup collections
template <class T, class M = LX_CUnmanaged>
class MIROXGCL_API LX_TUnboundedStack : public LX_TStack<T> {
 public:
  /// An empty stack. Allocates nothing.
  LX_TUnboundedStack() = default;
  /// The items from the top to the bottom.
  /// @{
  LX_TUnboundedStack(std::initializer_list<T> items) : m_unbounded(items) {}
  LX_TUnboundedStack(LX_TUnboundedStack const& other) = default;
  LX_TUnboundedStack(LX_TUnboundedStack&& other) noexcept
      : LX_TStack<T>(), m_unbounded(std::move(other.m_unbounded)) {}
  ~LX_TUnboundedStack() override = default;
  /// @}

  LX_TUnboundedStack& operator=(LX_TStack<T> const& other) override {
    LX_TStack<T>::operator=(other);
    return *this;
  }
  int operator==(LX_TStack<T> const& other) const override {
    return LX_TStack<T>::operator==(other);
  }
  using LX_TStack<T>::operator!=;

  void Clear() override { m_unbounded.Clear(); }
  void Push(T const& item) override { m_unbounded.Insert(item); }
  void Pop() override { m_unbounded.Remove(0); }
  unsigned int Depth() const override { return m_unbounded.Length(); }
  int IsEmpty() const override { return m_unbounded.Length() == 0; }
  T const& Top() const override { return m_unbounded.First(); }
  T& Top() override { return m_unbounded.First(); }
  void Purge() override { m_unbounded.Clear(); }
  void Add(T const& item) override { m_unbounded.Append(item); }
  unsigned int Cardinality() const override { return m_unbounded.Length(); }
  T const& ItemAt(unsigned int i) const override { return m_unbounded.ItemAt(i); }

  /// Copies the list, without locks.
  /// @{
  virtual LX_TUnboundedStack& operator=(LX_TUnboundedStack const& other) {
    m_unbounded = other.m_unbounded;
    return *this;
  }
  LX_TUnboundedStack& operator=(LX_TUnboundedStack&& other) noexcept {
    m_unbounded = std::move(other.m_unbounded);
    return *this;
  }
  LX_TUnboundedStack& operator=(std::initializer_list<T> items) {
    m_unbounded = items;
    return *this;
  }
  virtual int operator==(LX_TUnboundedStack const& other) const {
    return m_unbounded == other.m_unbounded;
  }
  int operator!=(LX_TUnboundedStack const& other) const { return !(*this == other); }
  /// @}
#if __cplusplus > 201703L
  /// C++20 also tries comparisons with their sides exchanged; these leave it no choice. (A stack
  /// of one's own class that overrides operator== compares with this one as an LX_TStack<T>.)
  /// @{
  template <class N>
  int operator==(LX_TUnboundedStack<T, N> const& other) const {
    return *this == static_cast<LX_TStack<T> const&>(other);
  }
  friend int operator==(LX_TStack<T> const& a, LX_TUnboundedStack const& b) {
    return a.operator==(b);
  }
  /// @}
#endif

  /// Allocate through M.
  /// @{
  static void* operator new(std::size_t n) { return M::AllocateBlock(n); }
  static void operator delete(void* p, std::size_t n) { M::ReleaseBlock(p, n); }
  /// @}

 private:
  LX_TUnbounded<T, M> m_unbounded;
};

/// @cond IMPLEMENTATION
// --- Implementation. The locks are those of the argument, constant as it is.

// Where this stack has items, one of them may own the other, which is copied, and unlocked, before
// these go.
template <class T>
LX_TStack<T>& LX_TStack<T>::operator=(LX_TStack const& other) {
  if (&other == this) return *this;
  LX_TPurgeGuard<LX_TStack> guard(*this);
  std::optional<LX_TLockScope<LX_TStack>> lock(std::in_place, const_cast<LX_TStack&>(other));
  LX_TStackActiveIterator<T> i(other);
  if (LX_MayOwn<T>() && !IsEmpty()) {
    auto const copies = LX_CopyItems<T>(i);
    lock.reset();
    Purge();
    for (T const& item : copies) Add(item);
  } else {
    Purge();
    while (T const* const item = i.CurrentItem()) Add(*item), i.Next();
  }
  guard.Complete();
  return *this;
}

template <class T>
int LX_TStack<T>::operator==(LX_TStack const& other) const {
  if (&other == this) return 1;
  LX_TLockScope<LX_TStack> const lock(const_cast<LX_TStack&>(other));
  if (Cardinality() != other.Cardinality()) return 0;
  LX_TStackActiveIterator<T> i(*this);
  LX_TStackActiveIterator<T> j(other);
  for (;; i.Next(), j.Next()) {
    T const* const ours = i.CurrentItem();
    T const* const theirs = j.CurrentItem();
    if (ours == nullptr || theirs == nullptr) return 1;
    if (!LX_AreEqual(*ours, *theirs)) return 0;
  }
}

template <class T>
void LX_TStack<T>::Lock() {}

template <class T>
void LX_TStack<T>::Unlock() {}

/// @endcond

#endif
