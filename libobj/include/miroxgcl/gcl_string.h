/// @file
/// GCL_String: a run of bytes that is copied by sharing and written by copying.
///
///     GCL_String a("one");        // a body of its own, count 1
///     GCL_String b(a);            // shares it, count 2: no byte was copied
///     b.append("two");            // b takes a body of its own first; a is still "one"
///     b.append('!');              // b is the only holder and has room: written in place
///
/// Lengths and positions count bytes; NUL is a byte like any other, except where an operation takes
/// a null-terminated array. Searches step over whole UTF-8 characters.
#ifndef MIROXGCL_GCL_STRING_H
#define MIROXGCL_GCL_STRING_H

#include <cstring>
#include <functional>
#include <iosfwd>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#if __cplusplus >= 202002L
#include <compare>
#endif

#include "miroxgcl/gcl_handle.h"
#include "miroxgcl/gcl_string_rep.h"
#include "miroxgcl/gcl_text_arguments.h"
#include "miroxgcl/lx_precondition.h"

extern template class MIROXGCL_API GCL_Handle<GCL_StringRep>;

/// A string value, one pointer wide.
///
/// The empty text may be held as no body, as the body that all default-constructed strings share,
/// or as a body of length 0; every operation treats the three alike.
///
/// A body is changed in place only while one handle holds it. An edit that finds it shared or too
/// small builds the new body completely, then moves this handle to it. So no other string sees a
/// change, and a string keeps its value when memory ends: such an edit throws std::bad_alloc, or
/// std::bad_array_new_length when the result would be longer than npos - 1 bytes.
///
/// An argument may be the string itself or point into its text, the terminating NUL included; it is
/// used as if copied first. See gcl_text_arguments.h for what texts, characters and numbers are.
///
/// As safe as the standard library's values: any number of threads may read one string, and
/// different strings may be used in any way in different threads, also when they share a body.
/// reserve() counts as an edit.
/// @ingroup strings
class MIROXGCL_API GCL_String : public GCL_Handle<GCL_StringRep> {
 public:
  /// As a count: all of the source. As the result of a search: nothing found.
  static constexpr unsigned int npos = 0x7FFFFFFFu;

  /// @name Construction
  /// @{

  /// The empty string. Allocates nothing.
  GCL_String() noexcept : GCL_Handle(GCL_StringRep::null_instance()) {}
  /// Shares the body: constant time.
  GCL_String(GCL_String const&) noexcept = default;
  /// Takes the body and leaves the other string without one, which is empty.
  GCL_String(GCL_String&&) noexcept = default;
  /// The first `n` bytes of `s`; shares the body of `s` when `n` is npos. REQUIRES: n is npos or
  /// at most s.length(), here and wherever a string is a source.
  GCL_String(GCL_String const& s, unsigned int n);
  /// The first `n` bytes of the array `s`, NUL too, or the bytes before its first NUL when `n` is
  /// npos.
  GCL_String(char const* s, unsigned int n = npos);  // NOLINT(google-explicit-constructor)
  /// The same for an array of `unsigned char`.
  GCL_String(unsigned char const* s, unsigned int n = npos);  // NOLINT(google-explicit-constructor)
  /// The bytes of a view or of a std::string, NUL too.
  explicit GCL_String(std::string_view s);
  /// `count` times the byte `c`; npos is a count like any other, and too large.
  explicit GCL_String(char c, unsigned int count = 1);
  /// The same for an `unsigned char`.
  explicit GCL_String(unsigned char c, unsigned int count = 1);
  /// The same with a count of 64 bits: one that 32 bits cannot hold is too large.
  template <class Source, class N, gcl_text::IfWide<Source, N> = 0>
  GCL_String(Source const& source, N n) : GCL_String(source, gcl_text::narrow(n)) {}
  /// The characters from `first` to `last`.
  template <class Iterator, gcl_text::IfIterator<Iterator> = 0>
  GCL_String(Iterator first, Iterator last) {
    append(first, last);
  }
  template <class N, gcl_text::IfNumber<N> = 0>
  explicit GCL_String(N,  ///< a number is no character: GCL_String('x', 3)
                      unsigned int = 1) = delete;
  ~GCL_String() = default;

  /// @}
  /// @name Assignment
  /// @{

  /// Shares the other's body: constant time, never throws.
  GCL_String& operator=(GCL_String const&) noexcept = default;
  /// Takes the other's body.
  GCL_String& operator=(GCL_String&&) noexcept = default;
  using GCL_Handle<GCL_StringRep>::operator=;
  /// Copies a text, as assign() does.
  template <class Text, gcl_text::IfText<Text> = 0>
  GCL_String& operator=(Text const& s) {
    return assign(s);
  }
  /// Makes the string one character.
  template <class Byte, gcl_text::IfByte<Byte> = 0, class = void>
  GCL_String& operator=(Byte c) {
    return assign(&c, 1);
  }
  template <class N, gcl_text::IfNumber<N> = 0, class = void, class = void>
  GCL_String& operator=(N) = delete;  ///< a number is no character and no text

  /// Copies the first `n` bytes of `s`, in place when the body is unshared and has room. Unlike
  /// operator=, never shares.
  GCL_String& assign(GCL_String const& s, unsigned int n = npos);
  /// Copies an array's bytes, as construction would.
  template <class Byte, class N = unsigned int, gcl_text::IfByte<Byte> = 0>
  GCL_String& assign(Byte const* s, N n = npos) {
    return assign_array(reinterpret_cast<char const*>(s), gcl_text::narrow(n));
  }
  /// Copies a view or a std::string.
  template <class View, gcl_text::IfView<View> = 0>
  GCL_String& assign(View const& s) {
    return assign_array(s.data(), count_of(s));
  }
  /// Makes the string `count` times the byte `c`, in a body of its own.
  GCL_String& assign(char c, unsigned int count = 1);
  /// The same with a count of 64 bits.
  template <class Source, class N, gcl_text::IfWide<Source, N> = 0>
  GCL_String& assign(Source const& source, N n) {
    return assign(source, gcl_text::narrow(n));
  }
  /// Copies the characters from `first` to `last`, which may be this string's own.
  template <class Iterator, gcl_text::IfIterator<Iterator> = 0>
  GCL_String& assign(Iterator first, Iterator last) {
    return *this = GCL_String(first, last);
  }
  template <class N, gcl_text::IfNumber<N> = 0>
  GCL_String& assign(N, unsigned int = 1) = delete;  ///< a number is no character: assign('x', 3)

  /// @}
  /// @name Access
  /// Pointers, iterators and references stay valid until the string is next changed or released.
  /// @{

  /// The number of bytes.
  unsigned int length() const noexcept { return body() != nullptr ? body()->m_length : 0; }
  /// The number of bytes.
  unsigned int size() const noexcept { return length(); }
  /// Whether there is no byte.
  [[nodiscard]] bool empty() const noexcept { return length() == 0; }
  /// How many bytes the body has room for, shared or not; 0 without body.
  unsigned int capacity() const noexcept { return body() != nullptr ? body()->m_capacity - 1 : 0; }

  /// The text, null-terminated. Bytes behind a NUL within the text are there, but not for strlen().
  char const* c_str() const noexcept {
    GCL_StringRep const* const rep = body();
    if (rep == nullptr) return m_empty_text;
    char* const end = rep->m_buffer + rep->m_length;
    if (*end != '\0') *end = '\0';
    return rep->m_buffer;
  }
  /// The same as c_str().
  char const* get_str() const noexcept { return c_str(); }
  /// The same as c_str().
  char const* data() const noexcept { return c_str(); }
  /// The text, as std::string_view.
  operator std::string_view() const noexcept {  // NOLINT(google-explicit-constructor)
    return {begin(), length()};
  }
  /// A copy of the text, as std::string.
  std::string str() const { return {begin(), length()}; }
  /// A copy of the text, as std::string.
  explicit operator std::string() const { return str(); }

  /// The byte at `pos`, NUL at the end. REQUIRES: pos <= length().
  char get_at(unsigned int pos) const {
    require_position(pos, "GCL_String::get_at");
    return c_str()[pos];
  }
  /// The byte at `pos`, for reading; put_at() writes. REQUIRES: pos <= length().
  char const& operator[](unsigned int pos) const {
    require_position(pos, "GCL_String::operator[]");
    return c_str()[pos];
  }
  /// The byte at `pos`. Throws std::out_of_range when `pos` is not below length(), as std::string's
  /// does; no other operation throws for a position.
  char const& at(std::size_t pos) const {
    if (pos >= length()) throw_out_of_range();
    return bytes()[pos];
  }
  /// The first byte. REQUIRES: not empty.
  char const& front() const { return (*this)[0]; }
  /// The last byte. REQUIRES: not empty.
  char const& back() const { return (*this)[length() - 1]; }

  using value_type = char;
  using size_type = unsigned int;
  using difference_type = std::ptrdiff_t;
  using const_reference = char const&;
  using reference = const_reference;
  using const_iterator = char const*;
  using iterator = const_iterator;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;
  using reverse_iterator = const_reverse_iterator;
  /// The bytes in order, for reading.
  const_iterator begin() const noexcept { return body() != nullptr ? bytes() : m_empty_text; }
  const_iterator end() const noexcept { return begin() + length(); }
  const_iterator cbegin() const noexcept { return begin(); }
  const_iterator cend() const noexcept { return end(); }
  /// The bytes from the last to the first.
  const_reverse_iterator rbegin() const noexcept { return const_reverse_iterator(end()); }
  const_reverse_iterator rend() const noexcept { return const_reverse_iterator(begin()); }
  const_reverse_iterator crbegin() const noexcept { return rbegin(); }
  const_reverse_iterator crend() const noexcept { return rend(); }

  /// Copies at most `n` bytes from `pos` on to `dest`, without a terminator, and returns how many.
  /// REQUIRES: pos <= length().
  unsigned int copy(char* dest, unsigned int n = npos, unsigned int pos = 0) const;
  /// The same with numbers of 64 bits.
  template <class N, class P = unsigned int, gcl_text::IfWide<char*, N, P> = 0>
  unsigned int copy(char* dest, N n, P pos = 0) const {
    return copy(dest, gcl_text::narrow(n), gcl_text::narrow(pos));
  }

  /// At most `n` bytes from `pos` on, as a string of its own. REQUIRES: pos <= length().
  [[nodiscard]] GCL_String substr(unsigned int pos = 0, unsigned int n = npos) const;
  /// The same with numbers of 64 bits.
  template <class P, class N = unsigned int, gcl_text::IfWide<char*, P, N> = 0>
  [[nodiscard]] GCL_String substr(P pos, N n = npos) const {
    return substr(gcl_text::narrow(pos), gcl_text::narrow(n));
  }

  /// @}
  /// @name Editing
  /// Each returns the string. Counts that reach beyond the end of this string mean up to its end;
  /// those of a source must not exceed it. REQUIRES: positions are at most length().
  /// @{

  /// Adds the first `n` bytes of `s` at the end.
  GCL_String& append(GCL_String const& s, unsigned int n = npos);
  /// Adds an array's bytes.
  GCL_String& append(char const* s, unsigned int n = npos);
  /// The same for an array of `unsigned char`.
  template <class Byte, class N = unsigned int, gcl_text::IfUnsigned<Byte> = 0>
  GCL_String& append(Byte const* s, N n = npos) {
    return append(reinterpret_cast<char const*>(s), gcl_text::narrow(n));
  }
  /// Adds a view or a std::string.
  template <class View, gcl_text::IfView<View> = 0>
  GCL_String& append(View const& s) {
    return append(s.data(), count_of(s));
  }
  /// Adds `count` times the byte `c`.
  GCL_String& append(char c, unsigned int count = 1) {
    unsigned int const length = this->length();
    if (count != 1 || !may_change_in_place(length + 1)) return append_slow_path(c, count);
    char* const end = body()->m_buffer + length;
    end[0] = c;
    end[1] = '\0';
    body()->m_length = length + 1;
    return *this;
  }
  /// The same for an `unsigned char`.
  template <class Byte, gcl_text::IfUnsigned<Byte> = 0>
  GCL_String& append(Byte c, unsigned int count = 1) {
    return append(static_cast<char>(c), count);
  }
  /// The same with a count of 64 bits.
  template <class Source, class N, gcl_text::IfWide<Source, N> = 0>
  GCL_String& append(Source const& source, N n) {
    return append(source, gcl_text::narrow(n));
  }
  /// Adds the characters from `first` to `last`.
  template <class Iterator, gcl_text::IfIterator<Iterator> = 0>
  GCL_String& append(Iterator first, Iterator last) {
    if constexpr (std::is_convertible_v<Iterator, char const*>) {
      return append(first, gcl_text::narrow(last - first));
    } else {
      return append(std::string(first, last));
    }
  }
  template <class N, gcl_text::IfNumber<N> = 0>
  GCL_String& append(N, unsigned int = 1) = delete;  ///< a number is no character: append('x', 3)

  /// Adds a text or a character.
  GCL_String& operator+=(GCL_String const& s) { return append(s); }
  GCL_String& operator+=(char const* s) { return append(s); }
  GCL_String& operator+=(char c) { return append(c); }
  template <class Other,
            std::enable_if_t<gcl_text::IsView<Other>::value || std::is_same_v<Other, unsigned char>,
                             int> = 0>
  GCL_String& operator+=(Other const& s) {
    return append(s);
  }
  template <class N, gcl_text::IfNumber<N> = 0>
  GCL_String& operator+=(N) = delete;  ///< a number is no character
  /// Adds a byte.
  void push_back(char c) { append(c); }
  template <class N, gcl_text::IfNumber<N> = 0>
  void push_back(N) = delete;  ///< a number is no character
  /// Takes the last byte out. REQUIRES: not empty.
  void pop_back() { remove(length() - 1); }

  /// Puts the first `n` bytes of `s` before the byte at `pos`.
  GCL_String& insert(unsigned int pos, GCL_String const& s, unsigned int n = npos);
  /// Puts an array's bytes there.
  template <class P, class Byte, class N = unsigned int, gcl_text::IfByte<Byte> = 0>
  GCL_String& insert(P pos, Byte const* s, N n = npos) {
    return insert_array(gcl_text::narrow(pos), reinterpret_cast<char const*>(s),
                        gcl_text::narrow(n));
  }
  /// Puts a view or a std::string there.
  template <class P, class View, gcl_text::IfView<View> = 0>
  GCL_String& insert(P pos, View const& s) {
    return insert_array(gcl_text::narrow(pos), s.data(), count_of(s));
  }
  /// The same with numbers of 64 bits.
  template <class P, class N = unsigned int, gcl_text::IfWide<GCL_String, P, N> = 0>
  GCL_String& insert(P pos, GCL_String const& s, N n = npos) {
    return insert(gcl_text::narrow(pos), s, gcl_text::narrow(n));
  }
  template <class P, class N, class Other = unsigned int, gcl_text::IfNumber<N> = 0>
  GCL_String& insert(P, N,  ///< a number is no text: insert(pos, GCL_String('x', 3))
                     Other = npos) = delete;

  /// Puts the first `slen` bytes of `s` in the place of the `n` bytes at `pos`.
  GCL_String& replace(unsigned int pos, unsigned int n, GCL_String const& s,
                      unsigned int slen = npos);
  /// Puts an array's bytes there.
  template <class P, class N, class Byte, class M = unsigned int, gcl_text::IfByte<Byte> = 0>
  GCL_String& replace(P pos, N n, Byte const* s, M slen = npos) {
    return replace_array(gcl_text::narrow(pos), gcl_text::narrow(n),
                         reinterpret_cast<char const*>(s), gcl_text::narrow(slen));
  }
  /// Puts a view or a std::string there.
  template <class P, class N, class View, gcl_text::IfView<View> = 0>
  GCL_String& replace(P pos, N n, View const& s) {
    return replace_array(gcl_text::narrow(pos), gcl_text::narrow(n), s.data(), count_of(s));
  }
  /// The same with numbers of 64 bits.
  template <class P, class N, class M = unsigned int, gcl_text::IfWide<GCL_String, P, N, M> = 0>
  GCL_String& replace(P pos, N n, GCL_String const& s, M slen = npos) {
    return replace(gcl_text::narrow(pos), gcl_text::narrow(n), s, gcl_text::narrow(slen));
  }
  template <class P, class M, class N, class Other = unsigned int, gcl_text::IfNumber<N> = 0>
  GCL_String& replace(P, M, N,  ///< a number is no text: replace(pos, n, GCL_String('x', 3))
                      Other = npos) = delete;

  /// Takes `n` bytes at `pos` out. When nothing is left, the string has no body.
  GCL_String& remove(unsigned int pos, unsigned int n = npos);
  /// The same with numbers of 64 bits.
  template <class P, class N = unsigned int, gcl_text::IfWide<char*, P, N> = 0>
  GCL_String& remove(P pos, N n = npos) {
    return remove(gcl_text::narrow(pos), gcl_text::narrow(n));
  }
  /// The same as remove().
  template <class P = unsigned int, class N = unsigned int>
  GCL_String& erase(P pos = 0, N n = npos) {
    return remove(gcl_text::narrow(pos), gcl_text::narrow(n));
  }
  /// Makes the string empty, without body.
  void clear() noexcept { set_rep(nullptr); }

  /// Takes `n` bytes at `pos` out and hands them to `out`. When `out` is this string, it ends as
  /// the piece.
  GCL_String& get_remove(GCL_String& out, unsigned int pos, unsigned int n = npos);
  /// The same with numbers of 64 bits.
  template <class P, class N = unsigned int, gcl_text::IfWide<char*, P, N> = 0>
  GCL_String& get_remove(GCL_String& out, P pos, N n = npos) {
    return get_remove(out, gcl_text::narrow(pos), gcl_text::narrow(n));
  }

  /// Sets the byte at `pos`; at the end, appends it.
  GCL_String& put_at(unsigned int pos, char c) {
    require_position(pos, "GCL_String::put_at");
    if (pos == length() || body()->reference_count() > 1) return put_at_slow_path(pos, c);
    body()->m_buffer[pos] = c;
    return *this;
  }
  template <class N, gcl_text::IfNumber<N> = 0>
  GCL_String& put_at(unsigned int, N) = delete;  ///< a number is no character

  /// Cuts the text to `n` bytes, or adds as many `c` as are missing.
  template <class N>
  void resize(N n, char c = '\0') {
    unsigned int const length = gcl_text::narrow(n);
    length < size() ? remove(length) : append(c, length - size());
  }

  /// Moves the text to a new, unshared body with room for `n` bytes by the growth rule, in every
  /// case; with `n` 0 and no text, to no body. The value stays, but this counts as an edit.
  GCL_String const& reserve(unsigned int n) const;
  /// The same with a number of 64 bits; refuses what no text could fill.
  template <class N, gcl_text::IfWide<char*, N> = 0>
  GCL_String const& reserve(N n) const {
    return reserve(GCL_StringRep::checked_length(static_cast<std::uint64_t>(n)));
  }

  /// Exchanges two texts: constant time.
  void swap(GCL_String& other) noexcept { std::swap(m_body, other.m_body); }
  friend void swap(GCL_String& a, GCL_String& b) noexcept { a.swap(b); }

  /// The two texts one after the other, in one body with room by the growth rule.
  static GCL_String concatenate(std::string_view a, std::string_view b);

  /// @}
  /// @name Line ends and formatting
  /// They work on the text up to the first NUL, in one pass. What is shared or has room is as after
  /// the single edits that a conversion is made of. Each returns the string.
  /// @{

  /// Whether a line feed and a carriage return are adjacent anywhere.
  [[nodiscard]] bool is_pc_mode() const;
  /// Removes every carriage return.
  GCL_String& from_pc_mode();
  /// Removes every carriage return, then puts one before each line feed.
  GCL_String& to_pc_mode();
  /// Removes the message service's style sequences, in a new body in every case.
  GCL_String& remove_formatting();

  /// @}
  /// @name Search
  /// The result is a byte position, or npos. What is sought is seen up to its first NUL, the text
  /// from where the search begins up to the next; whole characters match. Besides a string, a text
  /// or a character may be sought; a view of more than 63 bytes is copied to the heap first.
  /// @{

  /// The first occurrence of `s` at or after `pos`. An empty `s` occurs at every byte.
  [[nodiscard]] unsigned int find(GCL_String const& s, unsigned int pos = 0) const;
  template <class Text, class P = unsigned int, gcl_text::IfSought<Text> = 0>
  [[nodiscard]] unsigned int find(Text const& s, P pos = 0) const {
    return find(gcl_text::Sought(s), gcl_text::narrow(pos));
  }
  /// The last occurrence of `s` not after `last`, overlapping ones included. For an empty `s` in a
  /// text: `last` itself. It goes forward from one occurrence to the next: its cost is that of
  /// reading the text up to `last`, and the length of `s` for each occurrence.
  [[nodiscard]] unsigned int rfind(GCL_String const& s, unsigned int last = npos) const;
  template <class Text, class P = unsigned int, gcl_text::IfSought<Text> = 0>
  [[nodiscard]] unsigned int rfind(Text const& s, P last = npos) const {
    return rfind(gcl_text::Sought(s), gcl_text::narrow(last));
  }
  /// The first character at or after `pos` that is among those of `set`.
  [[nodiscard]] unsigned int find_first_of(GCL_String const& set, unsigned int pos = 0) const;
  template <class Text, class P = unsigned int, gcl_text::IfSought<Text> = 0>
  [[nodiscard]] unsigned int find_first_of(Text const& set, P pos = 0) const {
    return find_first_of(gcl_text::Sought(set), gcl_text::narrow(pos));
  }
  /// The first character at or after `pos` whose first byte is not among those of `set`. It looks
  /// at all bytes of both, NUL too.
  [[nodiscard]] unsigned int find_first_not_of(GCL_String const& set, unsigned int pos = 0) const;
  template <class Text, class P = unsigned int, gcl_text::IfSought<Text> = 0>
  [[nodiscard]] unsigned int find_first_not_of(Text const& set, P pos = 0) const {
    return first_outside(gcl_text::view(set), gcl_text::narrow(pos));
  }
  /// The last character not after `last` that is among those of `set`; npos means the last byte. It
  /// goes forward from one match to the next and reads the set for each.
  [[nodiscard]] unsigned int find_last_of(GCL_String const& set, unsigned int last = npos) const;
  template <class Text, class P = unsigned int, gcl_text::IfSought<Text> = 0>
  [[nodiscard]] unsigned int find_last_of(Text const& set, P last = npos) const {
    return find_last_of(gcl_text::Sought(set), gcl_text::narrow(last));
  }
  /// The last character not after `last` whose first byte is not among those of `set`; npos means
  /// the last byte. Linear.
  [[nodiscard]] unsigned int find_last_not_of(GCL_String const& set,
                                              unsigned int last = npos) const;
  template <class Text, class P = unsigned int, gcl_text::IfSought<Text> = 0>
  [[nodiscard]] unsigned int find_last_not_of(Text const& set, P last = npos) const {
    return last_outside(gcl_text::view(set), gcl_text::narrow(last));
  }
  /// Any of the six searches of a string, with a position of 64 bits.
  template <class P, gcl_text::IfWide<char*, P> = 0>
  [[nodiscard]] unsigned int find(GCL_String const& s, P pos) const {
    return find(s, gcl_text::narrow(pos));
  }
  template <class P, gcl_text::IfWide<char*, P> = 0>
  [[nodiscard]] unsigned int rfind(GCL_String const& s, P last) const {
    return rfind(s, gcl_text::narrow(last));
  }
  template <class P, gcl_text::IfWide<char*, P> = 0>
  [[nodiscard]] unsigned int find_first_of(GCL_String const& set, P pos) const {
    return find_first_of(set, gcl_text::narrow(pos));
  }
  template <class P, gcl_text::IfWide<char*, P> = 0>
  [[nodiscard]] unsigned int find_first_not_of(GCL_String const& set, P pos) const {
    return find_first_not_of(set, gcl_text::narrow(pos));
  }
  template <class P, gcl_text::IfWide<char*, P> = 0>
  [[nodiscard]] unsigned int find_last_of(GCL_String const& set, P last) const {
    return find_last_of(set, gcl_text::narrow(last));
  }
  template <class P, gcl_text::IfWide<char*, P> = 0>
  [[nodiscard]] unsigned int find_last_not_of(GCL_String const& set, P last) const {
    return find_last_not_of(set, gcl_text::narrow(last));
  }
  template <class N, class P = unsigned int, gcl_text::IfNumber<N> = 0>
  unsigned int find(N, P = 0) const = delete;  ///< a number is no text
  template <class N, class P = unsigned int, gcl_text::IfNumber<N> = 0>
  unsigned int rfind(N, P = 0) const = delete;  ///< a number is no text
  template <class N, class P = unsigned int, gcl_text::IfNumber<N> = 0>
  unsigned int find_first_of(N, P = 0) const = delete;  ///< a number is no text
  template <class N, class P = unsigned int, gcl_text::IfNumber<N> = 0>
  unsigned int find_first_not_of(N, P = 0) const = delete;  ///< a number is no text
  template <class N, class P = unsigned int, gcl_text::IfNumber<N> = 0>
  unsigned int find_last_of(N, P = 0) const = delete;  ///< a number is no text
  template <class N, class P = unsigned int, gcl_text::IfNumber<N> = 0>
  unsigned int find_last_not_of(N, P = 0) const = delete;  ///< a number is no text

  /// Whether the text begins with `s`, compared byte by byte, NUL too.
  template <class Text>
  [[nodiscard]] bool starts_with(Text const& s) const noexcept {
    std::string_view const prefix = gcl_text::view(s);
    return std::string_view(*this).substr(0, prefix.size()) == prefix;
  }
  /// Whether the text ends with `s`.
  template <class Text>
  [[nodiscard]] bool ends_with(Text const& s) const noexcept {
    std::string_view const suffix = gcl_text::view(s);
    return size() >= suffix.size() &&
           std::string_view(end() - suffix.size(), suffix.size()) == suffix;
  }
  /// Whether find() finds `s`.
  template <class Text>
  [[nodiscard]] bool contains(Text const& s) const {
    return find(s) != npos;
  }

  /// @}
  /// @name Comparison and hashes
  /// @{

  /// -1, 0 or 1 as this text comes before, equals or comes after `s`, byte by byte, each 0 to 255;
  /// a text comes before any longer one that begins with it.
  [[nodiscard]] int compare(GCL_String const& s) const noexcept { return order(*this, s); }
  template <class Text, gcl_text::IfText<Text> = 0>
  [[nodiscard]] int compare(Text const& s) const noexcept {
    return order(*this, gcl_text::view(s));
  }

  /// The body's hash(); 0 for the empty text. std::hash is another.
  [[nodiscard]] unsigned int hash() const { return body() != nullptr ? body()->hash() : 0; }
  /// The body's hash_fold_case(); 0 for the empty text. Throws std::bad_alloc.
  [[nodiscard]] unsigned int hash_fold_case() const {
    return body() != nullptr ? body()->hash_fold_case() : 0;
  }

  /// @}
  /// @name Operators on a string and a text
  /// Found only where one operand is a string. A text is used where it lies; a null `char const*`
  /// is the empty text.
  /// @{

  template <class View, gcl_text::IfView<View> = 0>
  friend bool operator==(GCL_String const& a, View const& b) noexcept {
    return std::string_view(a) == gcl_text::view(b);
  }
  template <class View, gcl_text::IfView<View> = 0>
  friend bool operator==(View const& a, GCL_String const& b) noexcept {
    return gcl_text::view(a) == std::string_view(b);
  }
  template <class View, gcl_text::IfView<View> = 0>
  friend bool operator!=(GCL_String const& a, View const& b) noexcept {
    return !(a == b);
  }
  template <class View, gcl_text::IfView<View> = 0>
  friend bool operator!=(View const& a, GCL_String const& b) noexcept {
    return !(a == b);
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator<(GCL_String const& a, Text const& b) noexcept {
    return a.compare(b) < 0;
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator<(Text const& a, GCL_String const& b) noexcept {
    return b.compare(a) > 0;
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator>(GCL_String const& a, Text const& b) noexcept {
    return b < a;
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator>(Text const& a, GCL_String const& b) noexcept {
    return b < a;
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator<=(GCL_String const& a, Text const& b) noexcept {
    return !(b < a);
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator<=(Text const& a, GCL_String const& b) noexcept {
    return !(b < a);
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator>=(GCL_String const& a, Text const& b) noexcept {
    return !(a < b);
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend bool operator>=(Text const& a, GCL_String const& b) noexcept {
    return !(a < b);
  }
  template <class N>
  friend gcl_text::IfNumberThen<N, bool> operator==(  ///< a number is no text
      GCL_String const&, N) = delete;
  template <class N>
  friend gcl_text::IfNumberThen<N, bool> operator==(  ///< a number is no text
      N, GCL_String const&) = delete;
  template <class N>
  friend gcl_text::IfNumberThen<N, bool> operator!=(  ///< a number is no text
      GCL_String const&, N) = delete;
  template <class N>
  friend gcl_text::IfNumberThen<N, bool> operator!=(  ///< a number is no text
      N, GCL_String const&) = delete;

  /// With a document of nlohmann's json, which converts from a string and to one: as documents.
  template <class Json, class = typename Json::string_t>
  friend bool operator==(Json const& a, GCL_String const& b) {
    return a == Json(b);
  }
  template <class Json, class = typename Json::string_t>
  friend bool operator==(GCL_String const& a, Json const& b) {
    return Json(a) == b;
  }
  template <class Json, class = typename Json::string_t>
  friend bool operator!=(Json const& a, GCL_String const& b) {
    return !(a == b);
  }
  template <class Json, class = typename Json::string_t>
  friend bool operator!=(GCL_String const& a, Json const& b) {
    return !(a == b);
  }

#if defined(__cpp_lib_three_way_comparison)
  friend std::strong_ordering operator<=>(GCL_String const& a, GCL_String const& b) noexcept {
    return a.compare(b) <=> 0;
  }
  template <class Text, gcl_text::IfText<Text> = 0>
  friend std::strong_ordering operator<=>(GCL_String const& a, Text const& b) noexcept {
    return a.compare(b) <=> 0;
  }
#endif
  template <class Other, gcl_text::IfSummand<Other> = 0>
  friend GCL_String operator+(GCL_String&& a, Other const& b) {
    return std::move(a.append(b));
  }
  template <class Other, gcl_text::IfSummand<Other> = 0>
  friend GCL_String operator+(GCL_String const& a, Other const& b) {
    return GCL_String::concatenate(a, gcl_text::view(b));
  }
  template <class Text, gcl_text::IfSought<Text> = 0>
  friend GCL_String operator+(Text const& a, GCL_String const& b) {
    return GCL_String::concatenate(gcl_text::view(a), b);
  }
  template <class N>
  friend gcl_text::IfNumberThen<N, GCL_String> operator+(  ///< a number is no character
      GCL_String const&, N) = delete;
  template <class N>
  friend gcl_text::IfNumberThen<N, GCL_String> operator+(  ///< a number is no character
      N, GCL_String const&) = delete;

  /// @}

 private:
  friend MIROXGCL_API std::istream& operator>>(std::istream& is, GCL_String& s);
  friend MIROXGCL_API std::istream& getline(std::istream& is, GCL_String& s, char delim);
  class MIROXGCL_LOCAL Input;

  MIROXGCL_LOCAL static GCL_StringRep* copy_of(char const* s, unsigned int n);
  MIROXGCL_LOCAL GCL_String& do_replace(unsigned int pos, unsigned int n, char const* src,
                                        unsigned int srclen);
  MIROXGCL_LOCAL GCL_String& assign_bytes(char const* s, unsigned int n);
  MIROXGCL_LOCAL GCL_String& append_bytes(char const* s, unsigned int n);
  struct MIROXGCL_LOCAL LineEnds;
  MIROXGCL_LOCAL GCL_String& convert_line_ends(bool to_pc);
  MIROXGCL_LOCAL void apply(LineEnds const& change, unsigned int reserve);
  MIROXGCL_LOCAL void append_in_chunks(char const* data, unsigned int n, GCL_String& spare);
  MIROXGCL_LOCAL static GCL_String with_body(unsigned int reserve, GCL_String& spare);

  // What the templates above come down to.
  GCL_String& assign_array(char const* s, unsigned int n);
  GCL_String& insert_array(unsigned int pos, char const* s, unsigned int n);
  GCL_String& replace_array(unsigned int pos, unsigned int n, char const* s, unsigned int slen);
  GCL_String& append_slow_path(char c, unsigned int count);
  GCL_String& put_at_slow_path(unsigned int pos, char c);
  [[noreturn]] static void throw_out_of_range();
  unsigned int find(gcl_text::Sought const& s, unsigned int pos) const;
  unsigned int rfind(gcl_text::Sought const& s, unsigned int last) const;
  unsigned int find_first_of(gcl_text::Sought const& set, unsigned int pos) const;
  unsigned int find_last_of(gcl_text::Sought const& set, unsigned int last) const;
  unsigned int first_outside(std::string_view set, unsigned int pos) const;
  unsigned int last_outside(std::string_view set, unsigned int last) const;

  // The count of a view's bytes; never npos, which is the length of no text.
  template <class View>
  static unsigned int count_of(View const& s) {
    return GCL_StringRep::checked_length(s.size());
  }

  static int order(std::string_view a, std::string_view b) noexcept {
    std::size_t const n = a.size() < b.size() ? a.size() : b.size();
    int const first_difference = n != 0 ? std::memcmp(a.data(), b.data(), n) : 0;
    if (first_difference != 0) return first_difference < 0 ? -1 : 1;
    return (a.size() > b.size()) - (a.size() < b.size());
  }

  // The text of every string without body, the same wherever an accessor was inlined.
  static char const m_empty_text[1];

  MIROXGCL_LOCAL void require_position([[maybe_unused]] unsigned int pos,
                                       [[maybe_unused]] char const* operation) const {
    LX_REQUIRE(pos <= length(), "Range_Error", operation, LX_kInvalidIndex);
  }

  // A sole holder may change the body, if `newlen` bytes and the terminator fit, and a string may
  // be as long.
  bool may_change_in_place(unsigned int newlen) const noexcept {
    return body() != nullptr && body()->reference_count() <= 1 && newlen < body()->m_capacity &&
           newlen <= GCL_StringRep::max_length;
  }
  char const* bytes() const noexcept { return body()->m_buffer; }

  friend bool operator==(GCL_String const& a, GCL_String const& b) noexcept;
};

static_assert(sizeof(GCL_String) == sizeof(void*), "a string is one pointer");

/// Arrays move strings as the pointers they are.
template <>
struct LX_TIsTriviallyRelocatable<GCL_String> : std::true_type {};

/// @name Operators on strings
/// Those on a string and a text are found only with a string, in its class.
/// @{

MIROXGCL_API inline bool operator==(GCL_String const& a, GCL_String const& b) noexcept {
  unsigned int const n = a.length();
  return n == b.length() && (n == 0 || std::memcmp(a.bytes(), b.bytes(), n) == 0);
}
MIROXGCL_API inline bool operator!=(GCL_String const& a, GCL_String const& b) noexcept {
  return !(a == b);
}
MIROXGCL_API inline bool operator<(GCL_String const& a, GCL_String const& b) noexcept {
  return a.compare(b) < 0;
}
MIROXGCL_API inline bool operator>(GCL_String const& a, GCL_String const& b) noexcept {
  return b < a;
}
MIROXGCL_API inline bool operator<=(GCL_String const& a, GCL_String const& b) noexcept {
  return !(b < a);
}
MIROXGCL_API inline bool operator>=(GCL_String const& a, GCL_String const& b) noexcept {
  return !(a < b);
}

MIROXGCL_API inline bool operator==(GCL_String const& a, char const* b) noexcept {
  return std::string_view(a) == gcl_text::view(b);
}
MIROXGCL_API inline bool operator==(char const* a, GCL_String const& b) noexcept { return b == a; }
MIROXGCL_API inline bool operator!=(GCL_String const& a, char const* b) noexcept {
  return !(a == b);
}
MIROXGCL_API inline bool operator!=(char const* a, GCL_String const& b) noexcept {
  return !(b == a);
}

/// A temporary on the left takes the right side's bytes and becomes the result: a chain of sums
/// builds one string.
MIROXGCL_API inline GCL_String operator+(GCL_String&& a, GCL_String const& b) {
  return std::move(a.append(b));
}
MIROXGCL_API inline GCL_String operator+(GCL_String&& a, char const* b) {
  return std::move(a.append(b));
}
MIROXGCL_API inline GCL_String operator+(GCL_String&& a, char b) { return std::move(a.append(b)); }
MIROXGCL_API inline GCL_String operator+(GCL_String const& a, GCL_String const& b) {
  return b.empty() ? a : GCL_String::concatenate(a, b);
}
MIROXGCL_API inline GCL_String operator+(GCL_String const& a, char const* b) {
  return GCL_String::concatenate(a, gcl_text::view(b));
}
MIROXGCL_API inline GCL_String operator+(GCL_String const& a, char b) {
  return GCL_String::concatenate(a, gcl_text::view(b));
}

/// @}

/// Writes exactly the bytes of `s`, NUL too; width and fill of the stream play no part.
MIROXGCL_API std::ostream& operator<<(std::ostream& os, GCL_String const& s);

/// Reads a line without its delimiter, which is taken from the stream. The length has no limit, and
/// the string grows by 32 bytes at a time.
///
/// The stream stays good when anything was read, also when the input ended there; otherwise it
/// fails and `s` is empty. An empty line is a success. When the stream throws, or memory ends, what
/// was taken from the stream is in `s`.
MIROXGCL_API std::istream& getline(std::istream& is, GCL_String& s, char delim = '\n');

/// Reads a word, which ends before a whitespace character; before it, whitespace is skipped as the
/// stream's flags say. For all else, see getline().
MIROXGCL_API std::istream& operator>>(std::istream& is, GCL_String& s);

/// The standard library's own over the bytes. Under C++20, a std::unordered_map whose comparison is
/// std::equal_to<> looks views and literals up without making strings of them.
template <>
struct std::hash<GCL_String> {
  /// Marks that views are hashed as strings are.
  using is_transparent = void;
  /// The hash of a string, a view or a literal.
  std::size_t operator()(std::string_view s) const noexcept {
    return std::hash<std::string_view>()(s);
  }
};

/// The same for Qt's containers.
inline std::size_t qHash(GCL_String const& s, std::size_t seed = 0) noexcept {
  return std::hash<GCL_String>()(s) ^ seed;
}
/// The same for Boost's containers.
inline std::size_t hash_value(GCL_String const& s) noexcept { return std::hash<GCL_String>()(s); }

/// Writes a string to Qt's QDebug as a `char const*` is written: up to its first NUL, without
/// quotes.
template <class Debug>
auto operator<<(Debug out, GCL_String const& s) -> decltype(Debug(out.maybeSpace())) {
  return out << s.c_str();
}

/// Shows GoogleTest the text in quotes.
MIROXGCL_API void PrintTo(GCL_String const& s, std::ostream* os);

#endif
