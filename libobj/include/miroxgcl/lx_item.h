//// @file
/// What the containers ask of their items, each in one place, so that an item that cannot do it is
/// refused in one line.
#ifndef MIROXGCL_LX_ITEM_H
#define MIROXGCL_LX_ITEM_H

#include <type_traits>
#include <utility>

/// @cond IMPLEMENTATION

template <class T, class = void>
struct LX_TIsEqualityComparable : std::false_type {};
template <class T>
struct LX_TIsEqualityComparable<T, std::void_t<decltype(static_cast<bool>(
                                       std::declval<T const&>() == std::declval<T const&>()))>>
    : std::true_type {};

template <class T>
constexpr bool LX_IsCopyConstructible() {
  static_assert(
      std::is_copy_constructible_v<T>,
      "The containers copy their items, and this item cannot be copied: hold a pointer, or "
      "a std::shared_ptr, instead.");
  return std::is_copy_constructible_v<T>;
}
template <class T>
constexpr bool LX_IsCopyAssignable() {
  static_assert(std::is_copy_assignable_v<T>,
                "The containers assign items to items, and this item cannot be assigned: hold a "
                "pointer, or a std::shared_ptr, instead.");
  return std::is_copy_assignable_v<T>;
}
template <class T>
constexpr bool LX_IsDefaultConstructible() {
  static_assert(
      std::is_default_constructible_v<T>,
      "An array's free slots hold default items, and this item has no default constructor: "
      "use a LX_TUnbounded, which has no free slots.");
  return std::is_default_constructible_v<T>;
}
template <class T>
constexpr bool LX_IsComparable() {
  static_assert(LX_TIsEqualityComparable<T>::value,
                "The containers compare their items, and this item has no operator==.");
  return LX_TIsEqualityComparable<T>::value;
}

// Whether an item may own another, or what an argument refers to.
template <class T>
constexpr bool LX_MayOwn() {
  return !std::is_trivially_copyable_v<T>;
}

template <class T>
bool LX_AreEqual([[maybe_unused]] T const& a, [[maybe_unused]] T const& b) {
  if constexpr (LX_IsComparable<T>()) return static_cast<bool>(a == b);
  return false;
}

template <class T>
void LX_AssignItem([[maybe_unused]] T& to, [[maybe_unused]] T const& from) {
  if constexpr (LX_IsCopyAssignable<T>()) to = from;
}

// Gives `to` the value of `from`, which may belong to it.
template <class T>
void LX_ReplaceItem([[maybe_unused]] T& to, [[maybe_unused]] T const& from) {
  if constexpr (std::is_trivially_copyable_v<T>) {
    LX_AssignItem(to, from);
  } else if constexpr (LX_IsCopyConstructible<T>()) {
    T copy(from);
    if constexpr (std::is_nothrow_move_assignable_v<T>) {
      to = std::move(copy);
    } else {
      LX_AssignItem(to, static_cast<T const&>(copy));
    }
  }
}

/// @endcond

#endif
