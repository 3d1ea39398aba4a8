/// @file
/// LX_TIndexIterator: the iterators that begin() and end() of the containers answer.
///
///     for (GCL_String& s : list) s.append('!');
///     bool const found = std::find(list.begin(), list.end(), "x") != list.end();
#ifndef MIROXGCL_LX_ITERATOR_H
#define MIROXGCL_LX_ITERATOR_H

#include <cstddef>
#include <iterator>
#include <type_traits>

/// A container and an index. It reaches the items through the container's own operations, and so
/// stays valid through every change of it, while its index is at most the length. After Remove(i)
/// an iterator at i is at the item that followed: a loop that removes steps only where it does not.
/// Container is constant for a constant iterator. Steps cost nothing, a look-up what operator[]
/// costs.
/// @ingroup collections
template <class Container, class Item>
class LX_TIndexIterator {
 public:
  /// What the standard algorithms ask of a random-access iterator. No index is checked.
  /// @{
  using iterator_category = std::random_access_iterator_tag;
  using value_type = std::remove_const_t<Item>;
  using difference_type = std::ptrdiff_t;
  using pointer = Item*;
  using reference = Item&;

  LX_TIndexIterator() = default;
  LX_TIndexIterator(Container& container, unsigned int index)
      : m_container(&container), m_index(static_cast<difference_type>(index)) {}
  // A constant iterator at the same place as one for writing.
  template <class Other, class = std::enable_if_t<std::is_same_v<Other const, Container>>>
  LX_TIndexIterator(LX_TIndexIterator<Other, value_type> const& other)  // NOLINT(google-explicit-*)
      : m_container(other.m_container), m_index(other.m_index) {}

  reference operator*() const { return LookUp(*m_container, m_index, 0); }
  pointer operator->() const { return &**this; }
  reference operator[](difference_type n) const { return *(*this + n); }

  LX_TIndexIterator& operator+=(difference_type n) {
    m_index += n;
    return *this;
  }
  LX_TIndexIterator& operator-=(difference_type n) { return *this += -n; }
  LX_TIndexIterator& operator++() { return *this += 1; }
  LX_TIndexIterator& operator--() { return *this -= 1; }
  LX_TIndexIterator operator++(int) {
    LX_TIndexIterator const before = *this;
    ++*this;
    return before;
  }
  LX_TIndexIterator operator--(int) {
    LX_TIndexIterator const before = *this;
    --*this;
    return before;
  }

  friend LX_TIndexIterator operator+(LX_TIndexIterator i, difference_type n) { return i += n; }
  friend LX_TIndexIterator operator+(difference_type n, LX_TIndexIterator i) { return i += n; }
  friend LX_TIndexIterator operator-(LX_TIndexIterator i, difference_type n) { return i -= n; }
  friend difference_type operator-(LX_TIndexIterator const& a, LX_TIndexIterator const& b) {
    return a.m_index - b.m_index;
  }
  friend bool operator==(LX_TIndexIterator const& a, LX_TIndexIterator const& b) {
    return a.m_index == b.m_index;
  }
  friend bool operator!=(LX_TIndexIterator const& a, LX_TIndexIterator const& b) {
    return !(a == b);
  }
  friend bool operator<(LX_TIndexIterator const& a, LX_TIndexIterator const& b) {
    return a.m_index < b.m_index;
  }
  friend bool operator>(LX_TIndexIterator const& a, LX_TIndexIterator const& b) { return b < a; }
  friend bool operator<=(LX_TIndexIterator const& a, LX_TIndexIterator const& b) {
    return !(b < a);
  }
  friend bool operator>=(LX_TIndexIterator const& a, LX_TIndexIterator const& b) {
    return !(a < b);
  }

  /// @}

 private:
  template <class, class>
  friend class LX_TIndexIterator;

  // Through the container's AtIndex(), where it has one that is faster than operator[].
  template <class C>
  static auto LookUp(C& container, difference_type i, int) -> decltype(container.AtIndex(i)) {
    return container.AtIndex(i);
  }
  template <class C>
  static reference LookUp(C& container, difference_type i, long) {
    return container[static_cast<unsigned int>(i)];
  }

  Container* m_container = nullptr;
  difference_type m_index = 0;
};

/// What the three active iterators say of their index, which is -1 where nothing was found at the
/// start.
/// @{
constexpr int LX_FirstIndex(unsigned int length) noexcept { return length != 0 ? 0 : -1; }
constexpr bool LX_IsBeyond(int index, unsigned int length) noexcept {
  return index < 0 || static_cast<unsigned int>(index) >= length;
}
/// @}

#endif
