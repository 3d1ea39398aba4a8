/// @file
/// LX_TUnbounded<T,M>: a doubly linked list that remembers the position looked up last, so that
/// walking it by index costs one step an item.
///
/// Indices count from 0; truth values are int, 1 and 0. References to items stay valid until the
/// item is removed.
///
/// As safe as the standard library's values: any number of threads may read one list. Of those that
/// look up by index at the same time, one has the remembered position, the others walk.
///
/// Invariants:
/// 1. m_head and m_tail are null exactly when m_size is 0.
/// 2. From m_head, m_next leads over m_size nodes to m_tail, and m_previous back.
/// 3. m_cache, where not null, is the node at index m_cache_index; else m_cache_index is 0.
#ifndef MIROXGCL_LX_UNBOUNDED_H
#define MIROXGCL_LX_UNBOUNDED_H

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <new>
#include <type_traits>
#include <utility>

#include "miroxgcl/gcl_config.h"
#include "miroxgcl/gcl_threads.h"
#include "miroxgcl/lx_item.h"
#include "miroxgcl/lx_precondition.h"
#include "miroxgcl/lx_unmanaged.h"

/// One node of a list. Building it links it in between its neighbours; destroying it does not touch
/// them.
/// @ingroup collections
template <class T, class M = LX_CUnmanaged>
class MIROXGCL_API LX_TNode {
 public:
  /// A copy of `item`, linked in between two nodes, each of which may be null.
  LX_TNode(T const& item, LX_TNode* previous, LX_TNode* next)
      : m_item(item), m_previous(previous), m_next(next) {
    if (previous != nullptr) previous->m_next = this;
    if (next != nullptr) next->m_previous = this;
  }
  LX_TNode(LX_TNode const&) = delete;
  LX_TNode& operator=(LX_TNode const&) = delete;

  /// Allocate through M.
  /// @{
  static void* operator new(std::size_t n) { return LX_AllocateFor<LX_TNode, M>(n); }
  static void operator delete(void* p, std::size_t n) { LX_ReleaseFor<LX_TNode, M>(p, n); }
  static void* operator new(std::size_t n, std::align_val_t) { return operator new(n); }
  static void operator delete(void* p, std::size_t n, std::align_val_t) { operator delete(p, n); }
  /// @}

  T m_item;              ///< the item
  LX_TNode* m_previous;  ///< null in the first node
  LX_TNode* m_next;      ///< null in the last
};

/// When copying an item or M throws, the list keeps its value. Insert and Append without index,
/// First, Last and Length take constant time; the operations with an index take one look-up:
/// constant at the remembered position and next to it, else a walk from the head.
/// @ingroup collections
template <class T, class M = LX_CUnmanaged>
class MIROXGCL_API LX_TUnbounded {
 public:
  /// An empty list. Allocates nothing.
  LX_TUnbounded() noexcept = default;
  /// The items of a braced list, in order.
  LX_TUnbounded(std::initializer_list<T> items) : LX_TUnbounded() {
    for (T const& item : items) Append(item);
  }
  LX_TUnbounded(LX_TUnbounded const& other) : LX_TUnbounded() { *this = other; }
  LX_TUnbounded(LX_TUnbounded&& other) noexcept { Steal(other); }
  ~LX_TUnbounded() { Clear(); }

  LX_TUnbounded& operator=(LX_TUnbounded const& other);
  /// Takes the other's nodes and leaves it empty.
  /// @{
  LX_TUnbounded& operator=(LX_TUnbounded&& other) noexcept {
    if (&other != this) {
      LX_TUnbounded taken(std::move(other));  // one of this list's items may own the other list
      Clear();
      Steal(taken);
    }
    return *this;
  }
  LX_TUnbounded& operator=(std::initializer_list<T> items) { return *this = LX_TUnbounded(items); }
  /// @}

  /// 1 when both hold the same number of items, equal in order.
  /// @{
  int operator==(LX_TUnbounded const& other) const;
  int operator!=(LX_TUnbounded const& other) const { return !(*this == other); }
  /// @}

  /// The number of items.
  unsigned int Length() const { return m_size; }

  /// REQUIRES: Length() > 0.
  /// @{
  T const& First() const {
    RequireItems("LX_TUnbounded<>::First()");
    return m_head->m_item;
  }
  T& First() {
    RequireItems("LX_TUnbounded<>::First()");
    return m_head->m_item;
  }
  T const& Last() const {
    RequireItems("LX_TUnbounded::Last");
    return m_tail->m_item;
  }
  T& Last() {
    RequireItems("LX_TUnbounded::Last");
    return m_tail->m_item;
  }
  /// @}

  /// REQUIRES: i < Length().
  /// @{
  T const& ItemAt(unsigned int i) const {
    RequireIndex(i, "LX_TUnbounded::ItemAt");
    return LookUp(i)->m_item;
  }
  T& ItemAt(unsigned int i) {
    RequireIndex(i, "LX_TUnbounded::ItemAt");
    return LookUp(i)->m_item;
  }
  T const& operator[](unsigned int i) const {
    RequireIndex(i, "LX_TUnbounded<>::operator[]");
    return LookUp(i)->m_item;
  }
  T& operator[](unsigned int i) {
    RequireIndex(i, "LX_TUnbounded<>::operator[]");
    return LookUp(i)->m_item;
  }
  /// @}

  /// Destroys every item, from the first on.
  void Clear() noexcept;

  /// Put `item` first or last. It may be one of this list's own, here and below.
  /// @{
  void Insert(T const& item);
  void Append(T const& item);
  /// @}

  /// Put `item` before or after the item at `i`; in an empty list, `i` does not matter, and
  /// Append(item, Length()) puts it last.
  /// REQUIRES: i < Length() for Insert, i <= Length() for Append, or an empty list.
  /// @{
  void Insert(T const& item, unsigned int i);
  void Append(T const& item, unsigned int i);
  /// @}

  /// REQUIRES: i < Length(). In a list of one item, `i` does not matter.
  void Remove(unsigned int i);

  /// REQUIRES: i < Length().
  void Replace(unsigned int i, T const& item);

  /// The first index at or after `start` whose item equals `item`, or -1; for a `start` of 0 the
  /// remembered position, when its item is equal. REQUIRES: start <= Length().
  int Location(T const& item, unsigned int start) const;

  /// For range-for and the standard algorithms: from the first node to the last. An iterator stays
  /// valid until its item is removed, so that a loop steps on before it removes; it does not move
  /// the remembered position.
  /// @{
  template <class Item>
  class NodeIterator;
  /// For range-for and the standard algorithms.
  /// @{
  using value_type = T;
  using iterator = NodeIterator<T>;
  using const_iterator = NodeIterator<T const>;
  iterator begin() { return iterator(*this, m_head); }
  iterator end() { return iterator(*this, nullptr); }
  const_iterator begin() const { return const_iterator(*this, m_head); }
  const_iterator end() const { return const_iterator(*this, nullptr); }
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
  /// @}

  /// The standard library's names for Length, Append, Insert, First, Last and Clear.
  /// @{
  using size_type = unsigned int;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = T const&;
  unsigned int size() const { return m_size; }
  [[nodiscard]] bool empty() const { return m_size == 0; }
  void push_back(T const& item) { Append(item); }
  void push_front(T const& item) { Insert(item); }
  T& front() { return First(); }
  T const& front() const { return First(); }
  T& back() { return Last(); }
  T const& back() const { return Last(); }
  void clear() noexcept { Clear(); }
  /// @}

  /// Allocate through M.
  /// @{
  static void* operator new(std::size_t n) { return M::AllocateBlock(n); }
  static void operator delete(void* p, std::size_t n) { M::ReleaseBlock(p, n); }
  /// @}

 private:
  using Node = LX_TNode<T, M>;

  void RequireItems([[maybe_unused]] char const* operation) const {
    LX_REQUIRE(m_size != 0, "Underflow", operation, LX_kEmpty);
  }
  void RequireIndex([[maybe_unused]] unsigned int i, [[maybe_unused]] char const* operation) const {
    LX_REQUIRE(i < m_size, "Range_Error", operation, LX_kInvalidIndex);
  }
  Node* LookUp(unsigned int i) const;
  Node* LookUpBeside(Node* cache, unsigned int i) const;
  Node* Walk(unsigned int i) const;
  // While there are threads, the remembered position belongs to whoever takes it, until Remember()
  // gives it back; others find it taken.
  static Node* Taken() { return reinterpret_cast<Node*>(1); }
  Node* TakeCache() const {
    if (gcl_threads::is_single()) return m_cache;
    return __atomic_exchange_n(&m_cache, Taken(), __ATOMIC_ACQUIRE);
  }
  Node* Remember(Node* node, unsigned int i) const {
    m_cache_index = i;
    __atomic_store_n(&m_cache, node, __ATOMIC_RELEASE);
    return node;
  }
  void Link(T const& item, Node* previous, Node* next, unsigned int i);
  void Steal(LX_TUnbounded& other) noexcept;

  Node* m_head = nullptr;
  Node* m_tail = nullptr;
  unsigned int m_size = 0;
  mutable Node* m_cache = nullptr;         // the node looked up last
  mutable unsigned int m_cache_index = 0;  // its index
};

/// @cond IMPLEMENTATION
// --- Implementation.

template <class T, class M>
template <class Item>
class LX_TUnbounded<T, M>::NodeIterator {
 public:
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using pointer = Item*;
  using reference = Item&;

  NodeIterator() = default;
  // At a node of `list`, or with null at its end.
  NodeIterator(LX_TUnbounded const& list, Node* node) : m_list(&list), m_node(node) {}
  // A constant iterator at the same place as one for writing.
  template <class Other, class = std::enable_if_t<std::is_same_v<Other const, Item>>>
  NodeIterator(NodeIterator<Other> const& other)  // NOLINT(google-explicit-*)
      : m_list(other.m_list), m_node(other.m_node) {}

  reference operator*() const { return m_node->m_item; }
  pointer operator->() const { return &m_node->m_item; }
  NodeIterator& operator++() {
    m_node = m_node->m_next;
    return *this;
  }
  NodeIterator operator++(int) {
    NodeIterator const before = *this;
    ++*this;
    return before;
  }
  NodeIterator& operator--() {
    m_node = m_node != nullptr ? m_node->m_previous : m_list->m_tail;
    return *this;
  }
  NodeIterator operator--(int) {
    NodeIterator const before = *this;
    --*this;
    return before;
  }

  friend bool operator==(NodeIterator const& a, NodeIterator const& b) {
    return a.m_node == b.m_node;
  }
  friend bool operator!=(NodeIterator const& a, NodeIterator const& b) {
    return a.m_node != b.m_node;
  }

 private:
  template <class>
  friend class NodeIterator;

  LX_TUnbounded const* m_list = nullptr;
  Node* m_node = nullptr;
};

template <class T, class M>
void LX_TUnbounded<T, M>::Steal(LX_TUnbounded& other) noexcept {
  m_head = std::exchange(other.m_head, nullptr);
  m_tail = std::exchange(other.m_tail, nullptr);
  m_size = std::exchange(other.m_size, 0u);
  m_cache = std::exchange(other.m_cache, nullptr);
  m_cache_index = std::exchange(other.m_cache_index, 0u);
}

// From the last item to the first, each put before the others, which leaves nothing remembered.
template <class T, class M>
LX_TUnbounded<T, M>& LX_TUnbounded<T, M>::operator=(LX_TUnbounded const& other) {
  if (&other == this) return *this;
  LX_TUnbounded copy;
  for (Node* node = other.m_tail; node != nullptr; node = node->m_previous) {
    copy.Insert(node->m_item);
  }
  copy.Remember(nullptr, 0);
  return *this = std::move(copy);
}

template <class T, class M>
int LX_TUnbounded<T, M>::operator==(LX_TUnbounded const& other) const {
  if (&other == this) return 1;
  if (m_size != other.m_size) return 0;
  Node const* theirs = other.m_head;
  for (Node const* ours = m_head; ours != nullptr; ours = ours->m_next, theirs = theirs->m_next) {
    if (!LX_AreEqual(ours->m_item, theirs->m_item)) return 0;
  }
  return 1;
}

template <class T, class M>
LX_TNode<T, M>* LX_TUnbounded<T, M>::Walk(unsigned int i) const {
  Node* node = m_head;
  for (unsigned int k = 0; k < i; ++k) node = node->m_next;
  return node;
}

// Who finds the remembered position taken walks, and remembers nothing.
template <class T, class M>
LX_TNode<T, M>* LX_TUnbounded<T, M>::LookUp(unsigned int i) const {
  Node* const cache = TakeCache();
  if (cache == Taken()) return Walk(i);
  return Remember(cache != nullptr ? LookUpBeside(cache, i) : Walk(i), i);
}

// The node at `i`, one step from the remembered one where that is enough.
template <class T, class M>
LX_TNode<T, M>* LX_TUnbounded<T, M>::LookUpBeside(Node* cache, unsigned int i) const {
  if (i == m_cache_index) return cache;
  if (i == m_cache_index + 1) return cache->m_next;
  if (i + 1 == m_cache_index) return cache->m_previous;
  return Walk(i);
}

// A new node between two others, which becomes the one at index `i` and is remembered.
template <class T, class M>
void LX_TUnbounded<T, M>::Link([[maybe_unused]] T const& item, Node* previous, Node* next,
                               unsigned int i) {
  if constexpr (LX_IsCopyConstructible<T>()) {
    Node* const node = new Node(item, previous, next);
    if (previous == nullptr) m_head = node;
    if (next == nullptr) m_tail = node;
    ++m_size;
    Remember(node, i);
  }
}

template <class T, class M>
void LX_TUnbounded<T, M>::Clear() noexcept {
  while (m_head != nullptr) delete std::exchange(m_head, m_head->m_next);
  m_tail = nullptr;
  m_size = 0;
  Remember(nullptr, 0);
}

template <class T, class M>
void LX_TUnbounded<T, M>::Insert(T const& item) {
  Link(item, nullptr, m_head, 0);
}

template <class T, class M>
void LX_TUnbounded<T, M>::Append(T const& item) {
  Link(item, m_tail, nullptr, m_size);
}

template <class T, class M>
void LX_TUnbounded<T, M>::Insert(T const& item, unsigned int i) {
  LX_REQUIRE(m_size == 0 || i < m_size, "Range_Error", "LX_TUnbounded::Insert", LX_kInvalidIndex);
  if (m_size == 0 || i == 0) return Insert(item);
  Node* const next = LookUp(i);
  Link(item, next->m_previous, next, i);
}

template <class T, class M>
void LX_TUnbounded<T, M>::Append(T const& item, unsigned int i) {
  LX_REQUIRE(m_size == 0 || i <= m_size, "Range_Error", "LX_TUnbounded::Append", LX_kInvalidIndex);
  if (m_size == 0 || i == m_size) return Append(item);
  Node* const previous = LookUp(i);
  Link(item, previous, previous->m_next, i + 1);
}

template <class T, class M>
void LX_TUnbounded<T, M>::Remove(unsigned int i) {
  LX_REQUIRE(m_size != 0, "Underflow", "LX_TUnbounded::Remove", LX_kEmpty);
  LX_REQUIRE(i < m_size, "Range_Error", "LX_TUnbounded::Remove", LX_kInvalidIndex);
  if (m_size == 1) return Clear();
  Node* const node = LookUp(i);
  Node* const previous = node->m_previous;
  Node* const next = node->m_next;
  (previous != nullptr ? previous->m_next : m_head) = next;
  (next != nullptr ? next->m_previous : m_tail) = previous;
  --m_size;
  if (next != nullptr) {
    Remember(next, i);
  } else {
    Remember(previous, i - 1);
  }
  delete node;
}

template <class T, class M>
void LX_TUnbounded<T, M>::Replace(unsigned int i, T const& item) {
  LX_REQUIRE(i < m_size, "Range_Error", "LX_TUnbounded::Replace", LX_kInvalidIndex);
  bool const is_cached = m_cache != nullptr && i == m_cache_index;
  LX_ReplaceItem(Remember(is_cached ? m_cache : Walk(i), i)->m_item, item);
}

template <class T, class M>
int LX_TUnbounded<T, M>::Location(T const& item, unsigned int start) const {
  LX_REQUIRE(start <= m_size, "Range_Error", "LX_TUnbounded::Location", LX_kInvalidIndex);
  if (start == 0) {
    Node* const cache = TakeCache();
    unsigned int const index = cache != Taken() ? m_cache_index : 0;
    if (cache != Taken()) Remember(cache, index);
    if (cache != nullptr && cache != Taken() && LX_AreEqual(cache->m_item, item)) {
      return static_cast<int>(index);
    }
  }
  if (start >= m_size) return -1;
  unsigned int i = start;
  for (Node* node = Walk(start); node != nullptr; node = node->m_next, ++i) {
    if (LX_AreEqual(node->m_item, item)) {
      if (TakeCache() != Taken()) Remember(node, i);
      return static_cast<int>(i);
    }
  }
  return -1;
}

/// @endcond

#endif
