/// @file
/// What callers may pass where a string's operations take a text, a character or a number.
///
/// A text is a `char const*`, which ends at its first NUL and may be null (the empty text), or a
/// std::string_view or std::string, which is taken whole. A character is a `char` or an `unsigned
/// char`: numbers are no characters, and to pass one is an error that the compiler reports.
#ifndef MIROXGCL_GCL_TEXT_ARGUMENTS_H
#define MIROXGCL_GCL_TEXT_ARGUMENTS_H

#include <climits>
#include <cstddef>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>

#include "miroxgcl/gcl_config.h"

/// @cond IMPLEMENTATION

namespace gcl_text {

template <class Traits, class Allocator>
std::true_type is_view(std::basic_string<char, Traits, Allocator> const*);
template <class Traits>
std::true_type is_view(std::basic_string_view<char, Traits> const*);
std::false_type is_view(void const volatile*);

// std::string, std::string_view and classes derived from them.
template <class T>
using IsView = decltype(is_view(static_cast<T const*>(nullptr)));

template <class T>
constexpr bool is_character_v = std::is_same_v<T, char> || std::is_same_v<T, unsigned char>;

template <class T>
constexpr bool is_array_v = std::is_convertible_v<T const&, char const*> &&
                            (std::is_pointer_v<T> || std::is_array_v<T>);

template <class T>
constexpr bool is_number_v = (std::is_arithmetic_v<T> || std::is_enum_v<T>)&&!is_character_v<T>;

template <class N>
constexpr bool is_wide_v = std::is_integral_v<N> && sizeof(N) > sizeof(unsigned int);

template <class T>
using IfView = std::enable_if_t<IsView<T>::value, int>;
template <class T>
using IfText = std::enable_if_t<IsView<T>::value || is_array_v<T>, int>;
template <class T>
using IfSought = std::enable_if_t<IsView<T>::value || is_array_v<T> || is_character_v<T>, int>;
template <class T>
using IfNumber = std::enable_if_t<is_number_v<T>, int>;
template <class T, class Result>
using IfNumberThen = std::enable_if_t<is_number_v<T>, Result>;
// What a sum takes besides strings, `char const*` and `char`.
template <class T>
using IfSummand = std::enable_if_t<IsView<T>::value || std::is_same_v<T, unsigned char>, int>;
template <class Byte>
using IfByte = std::enable_if_t<is_character_v<Byte>, int>;
template <class Byte>
using IfUnsigned = std::enable_if_t<std::is_same_v<Byte, unsigned char>, int>;

// One of the numbers is wider than 32 bits, and what comes with them is no number.
template <class Source, class... N>
using IfWide = std::enable_if_t<
    !is_number_v<Source> && (std::is_integral_v<N> && ...) && (is_wide_v<N> || ...), int>;

template <class Iterator>
using IfIterator = std::enable_if_t<
    std::is_convertible_v<typename std::iterator_traits<Iterator>::reference, char>, int>;

// A count or position of any integer type as 32 bits have it. What they cannot hold becomes the
// largest number, which is beyond every text, instead of losing its upper bits.
template <class N>
constexpr unsigned int narrow(N n) noexcept {
  if constexpr (std::is_same_v<N, unsigned int>) {
    return n;
  } else {
    static_assert(std::is_integral_v<N>, "a count or a position is an integer");
    bool const fits = n >= N{0} && static_cast<std::make_unsigned_t<N>>(n) <= UINT_MAX;
    return fits ? static_cast<unsigned int>(n) : UINT_MAX;
  }
}

inline std::string_view view(char const* s) noexcept { return s != nullptr ? s : ""; }
inline std::string_view view(unsigned char const* s) noexcept {
  return view(reinterpret_cast<char const*>(s));
}
inline std::string_view view(char const& c) noexcept { return {&c, 1}; }
inline std::string_view view(unsigned char const& c) noexcept {
  return {reinterpret_cast<char const*>(&c), 1};
}
template <class T, IfView<T> = 0>
std::string_view view(T const& s) noexcept {
  return {s.data(), s.size()};
}

// What a search looks for: a null-terminated text and its length. A search that uses the string
// utility sees it up to its first NUL. Only a view is copied, to the heap when it is long.
class MIROXGCL_API Sought {
 public:
  explicit Sought(char const* s) noexcept : Sought(s != nullptr ? s : "", view(s).size()) {}
  explicit Sought(char c) noexcept : m_text(m_copy), m_length(1) {
    m_copy[0] = c, m_copy[1] = '\0';
  }
  explicit Sought(unsigned char c) noexcept : Sought(static_cast<char>(c)) {}
  template <class Traits, class Allocator>
  explicit Sought(std::basic_string<char, Traits, Allocator> const& s) noexcept
      : Sought(s.c_str(), s.size()) {}
  // Throws std::bad_alloc.
  explicit Sought(std::string_view s);
  Sought(Sought const&) = delete;
  Sought& operator=(Sought const&) = delete;
  ~Sought() {
    if (m_heap != nullptr) ::operator delete(m_heap);
  }

  char const* text() const noexcept { return m_text; }
  unsigned int length() const noexcept { return m_length; }

  // A null-terminated text of that length.
  Sought(char const* s, std::size_t length) noexcept : m_text(s), m_length(narrow(length)) {}

 private:
  char const* m_text;
  unsigned int m_length;
  void* m_heap = nullptr;
  char m_copy[64];
};

}  // namespace gcl_text

/// @endcond

#endif
