// GCL_String: the library's string, a run of bytes that is copied by sharing and written by
// copying.
//
//   GCL_String a("one");        // a body of its own, count 1
//   GCL_String b(a);            // shares it, count 2: no byte was copied
//   b.append("two");            // b takes a body of its own first; a is still "one"
//   b.append('!');              // b is the only holder and has room: written in place
//
// Lengths and positions count bytes; NUL is a byte like any other, except where an operation takes
// a NUL-terminated array. Searches step over whole UTF-8 characters.
#ifndef MIROXGCL_GCL_STRING_H
#define MIROXGCL_GCL_STRING_H

#include <climits>
#include <cstring>
#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>

#include "miroxgcl/gcl_handle.h"
#include "miroxgcl/gcl_string_rep.h"
#include "miroxgcl/lx_precondition.h"

extern template class MIROXGCL_API GCL_Handle<GCL_StringRep>;

// Chooses the overloads for counts and positions of which one is wider than 32 bits. Such a number
// keeps its meaning when it is too large: it never loses its upper bits.
template <class... N>
using GCL_IfWide =
    std::enable_if_t<(std::is_integral_v<N> && ...) && ((sizeof(N) > sizeof(unsigned int)) || ...),
                     int>;

// The empty text may be held as no body, as the body that all default-constructed strings share,
// or as a body of length 0; every operation treats the three alike.
//
// A body is changed in place only while one handle holds it; an edit that finds it shared or too
// small builds the new body completely, then moves this handle to it. So no other string sees a
// change, and a string keeps its value when memory cannot be had: such an edit throws
// std::bad_alloc (or std::bad_array_new_length when the result would be longer than npos - 1
// bytes).
//
// An argument may be the string itself or point into its text, the terminating NUL included; it is
// used as if copied first. A null `char const*` is the empty text, whatever its count.
//
// Strings that share no body may be used in different threads, once the first has been made. Those
// that share one belong to one thread at a time: counts are plain, and even constant operations
// write the terminating NUL behind the text.
class MIROXGCL_API GCL_String : public GCL_Handle<GCL_StringRep> {
 public:
  // As a count: all of the source. As the result of a search: nothing found.
  static constexpr unsigned int npos = 0x7FFFFFFFu;

  // The empty string. Allocates nothing.
  GCL_String() noexcept : GCL_Handle(GCL_StringRep::null_instance()) {}
  GCL_String(GCL_String const&) noexcept = default;
  GCL_String(GCL_String&&) noexcept = default;
  // The first `n` bytes of `s`; shares the body of `s` when `n` is npos. REQUIRES: n is npos or
  // at most s.length(), here and wherever a string is a source.
  GCL_String(GCL_String const& s, unsigned int n);
  // The first `n` bytes of the array `s`, NUL too, or the bytes before its first NUL when `n` is npos.
  GCL_String(char const* s, unsigned int n = npos);           // NOLINT(google-explicit-constructor)
  GCL_String(unsigned char const* s, unsigned int n = npos);  // NOLINT(google-explicit-constructor)
  // The bytes of `s`, NUL too.
  explicit GCL_String(std::string_view s);
  // `count` times the byte `c`; npos is a count like any other, and too large.
  explicit GCL_String(char c, unsigned int count = 1);
  explicit GCL_String(unsigned char c, unsigned int count = 1);
  // A count that 32 bits cannot hold is too large.
  template <class Source, class N, GCL_IfWide<N> = 0>
  GCL_String(Source const& source, N n) : GCL_String(source, narrow(n)) {}
  ~GCL_String() = default;

  // Shares the other's body: constant time, never throws.
  GCL_String& operator=(GCL_String const&) noexcept = default;
  GCL_String& operator=(GCL_String&&) noexcept = default;
  using GCL_Handle<GCL_StringRep>::operator=;

  // --- Access. Pointers stand until this string is next changed or released.

  // The number of bytes.
  unsigned int length() const noexcept { return body() != nullptr ? body()->m_length : 0; }

  // The text, ended with a NUL. Bytes behind a NUL within the text are there, but not for strlen.
  char const* c_str() const noexcept {
    GCL_StringRep const* const rep = body();
    if (rep == nullptr) return m_empty_text;
    rep->m_buffer[rep->m_length] = '\0';
    return rep->m_buffer;
  }
  char const* get_str() const noexcept { return c_str(); }

  // As the standard library's strings: the bytes in order, which are not for writing.
  using value_type = char;
  using const_iterator = char const*;
  using iterator = const_iterator;
  using size_type = unsigned int;
  const_iterator begin() const noexcept { return body() != nullptr ? bytes() : m_empty_text; }
  const_iterator end() const noexcept { return begin() + length(); }
  char const* data() const noexcept { return c_str(); }
  unsigned int size() const noexcept { return length(); }
  [[nodiscard]] bool empty() const noexcept { return length() == 0; }
  operator std::string_view() const noexcept {  // NOLINT(google-explicit-constructor)
    return {begin(), length()};
  }

  // The byte at `pos`, NUL at the end. REQUIRES: pos <= length().
  char get_at(unsigned int pos) const {
    require_position(pos, "GCL_String::get_at");
    return c_str()[pos];
  }

  // Copies at most `n` bytes from `pos` on to `dest`, without a terminator, and returns how many.
  // REQUIRES: pos <= length().
  unsigned int copy(char* dest, unsigned int n = npos, unsigned int pos = 0) const;
  template <class N, class P = unsigned int, GCL_IfWide<N, P> = 0>
  unsigned int copy(char* dest, N n, P pos = 0) const {
    return copy(dest, narrow(n), narrow(pos));
  }

  // At most `n` bytes from `pos` on, as a string of its own. REQUIRES: pos <= length().
  [[nodiscard]] GCL_String substr(unsigned int pos, unsigned int n = npos) const;
  template <class P, class N = unsigned int, GCL_IfWide<P, N> = 0>
  [[nodiscard]] GCL_String substr(P pos, N n = npos) const {
    return substr(narrow(pos), narrow(n));
  }

  // --- Editing. Each returns the string. Counts that reach beyond the end of this string mean up to
  // its end; those of a source must not exceed it. REQUIRES: positions are at most length().

  // Copies the first `n` bytes of `s`, in place when the body is unshared and has room. Unlike
  // operator=, never shares.
  GCL_String& assign(GCL_String const& s, unsigned int n = npos);
  GCL_String& assign(char const* s, unsigned int n = npos);
  GCL_String& assign(unsigned char const* s, unsigned int n = npos) {
    return assign(reinterpret_cast<char const*>(s), n);
  }
  GCL_String& assign(char c, unsigned int count = 1);
  template <class Source, class N, GCL_IfWide<N> = 0>
  GCL_String& assign(Source const& source, N n) {
    return assign(source, narrow(n));
  }

  GCL_String& append(GCL_String const& s, unsigned int n = npos);
  GCL_String& append(char const* s, unsigned int n = npos);
  GCL_String& append(unsigned char const* s, unsigned int n = npos) {
    return append(reinterpret_cast<char const*>(s), n);
  }
  GCL_String& append(char c, unsigned int count = 1) {
    if (count != 1 || !may_change_in_place(length() + 1)) return append_slow_path(c, count);
    body()->m_buffer[body()->m_length++] = c;
    return *this;
  }
  template <class Source, class N, GCL_IfWide<N> = 0>
  GCL_String& append(Source const& source, N n) {
    return append(source, narrow(n));
  }

  GCL_String& operator+=(GCL_String const& s) { return append(s); }
  GCL_String& operator+=(char const* s) { return append(s); }
  GCL_String& operator+=(char c) { return append(c); }

  // Puts the first `n` bytes of `s` before the byte at `pos`.
  GCL_String& insert(unsigned int pos, GCL_String const& s, unsigned int n = npos);
  GCL_String& insert(unsigned int pos, char const* s, unsigned int n = npos);
  GCL_String& insert(unsigned int pos, unsigned char const* s, unsigned int n = npos) {
    return insert(pos, reinterpret_cast<char const*>(s), n);
  }
  template <class P, class Source, class N = unsigned int, GCL_IfWide<P, N> = 0>
  GCL_String& insert(P pos, Source const& source, N n = npos) {
    return insert(narrow(pos), source, narrow(n));
  }

  // Puts the first `slen` bytes of `s` in the place of the `n` bytes at `pos`.
  GCL_String& replace(unsigned int pos, unsigned int n, GCL_String const& s,
                      unsigned int slen = npos);
  GCL_String& replace(unsigned int pos, unsigned int n, char const* s, unsigned int slen = npos);
  GCL_String& replace(unsigned int pos, unsigned int n, unsigned char const* s,
                      unsigned int slen = npos) {
    return replace(pos, n, reinterpret_cast<char const*>(s), slen);
  }
  template <class P, class N, class Source, class M = unsigned int, GCL_IfWide<P, N, M> = 0>
  GCL_String& replace(P pos, N n, Source const& source, M slen = npos) {
    return replace(narrow(pos), narrow(n), source, narrow(slen));
  }

  // Takes `n` bytes at `pos` out. Nothing left: no body.
  GCL_String& remove(unsigned int pos, unsigned int n = npos);
  template <class P, class N = unsigned int, GCL_IfWide<P, N> = 0>
  GCL_String& remove(P pos, N n = npos) {
    return remove(narrow(pos), narrow(n));
  }

  // The same, and hands them to `out`. When `out` is this string, it ends as the piece.
  GCL_String& get_remove(GCL_String& out, unsigned int pos, unsigned int n = npos);
  template <class P, class N = unsigned int, GCL_IfWide<P, N> = 0>
  GCL_String& get_remove(GCL_String& out, P pos, N n = npos) {
    return get_remove(out, narrow(pos), narrow(n));
  }

  // Sets the byte at `pos`; at the end, appends it.
  GCL_String& put_at(unsigned int pos, char c) {
    require_position(pos, "GCL_String::put_at");
    if (pos == length() || body()->reference_count() > 1) return put_at_slow_path(pos, c);
    body()->m_buffer[pos] = c;
    return *this;
  }

  // Moves the text to a new, unshared body with room for `n` bytes by the growth rule, in every
  // case; with `n` 0 and no text, to no body. The value stays.
  GCL_String const& reserve(unsigned int n) const;
  template <class N, GCL_IfWide<N> = 0>
  GCL_String const& reserve(N n) const {
    return reserve(GCL_StringRep::checked_length(static_cast<std::uint64_t>(n)));
  }

  // --- Line ends and formatting, up to the first NUL. One pass; what is shared or has room is as
  // after the single edits that a conversion is made of. Each returns the string.

  // Whether a line feed and a carriage return stand side by side anywhere.
  [[nodiscard]] bool is_pc_mode() const;
  // Removes every carriage return.
  GCL_String& from_pc_mode();
  // Removes every carriage return, then puts one before each line feed.
  GCL_String& to_pc_mode();
  // Removes the message service's style sequences, in a new body in every case.
  GCL_String& remove_formatting();

  // --- Search. The answer is a byte position, or npos. What is sought is seen up to its first NUL,
  // the text from where the search begins up to the next.

  // The first occurrence of `s` at or after `pos`. An empty `s` occurs at every byte.
  [[nodiscard]] unsigned int find(GCL_String const& s, unsigned int pos = 0) const;
  // The last occurrence of `s` not after `last`, overlapping ones included. For an empty `s` in a
  // text: `last` itself. It goes forward from one occurrence to the next: its cost is that of reading
  // the text up to `last`, and the length of `s` for each occurrence.
  [[nodiscard]] unsigned int rfind(GCL_String const& s, unsigned int last = npos) const;
  // The first character at or after `pos` that is, or whose first byte is not, among those of
  // `set`; the second looks at all bytes of both, NUL too.
  [[nodiscard]] unsigned int find_first_of(GCL_String const& set, unsigned int pos = 0) const;
  [[nodiscard]] unsigned int find_first_not_of(GCL_String const& set, unsigned int pos = 0) const;
  // The last such character not after `last`; npos means the last byte. find_last_of goes forward
  // from one match to the next and reads the set for each; find_last_not_of is linear.
  [[nodiscard]] unsigned int find_last_of(GCL_String const& set, unsigned int last = npos) const;
  [[nodiscard]] unsigned int find_last_not_of(GCL_String const& set,
                                              unsigned int last = npos) const;
  template <class P, GCL_IfWide<P> = 0>
  [[nodiscard]] unsigned int find(GCL_String const& s, P pos) const {
    return find(s, narrow(pos));
  }
  template <class P, GCL_IfWide<P> = 0>
  [[nodiscard]] unsigned int rfind(GCL_String const& s, P last) const {
    return rfind(s, narrow(last));
  }
  template <class P, GCL_IfWide<P> = 0>
  [[nodiscard]] unsigned int find_first_of(GCL_String const& set, P pos) const {
    return find_first_of(set, narrow(pos));
  }
  template <class P, GCL_IfWide<P> = 0>
  [[nodiscard]] unsigned int find_first_not_of(GCL_String const& set, P pos) const {
    return find_first_not_of(set, narrow(pos));
  }
  template <class P, GCL_IfWide<P> = 0>
  [[nodiscard]] unsigned int find_last_of(GCL_String const& set, P last) const {
    return find_last_of(set, narrow(last));
  }
  template <class P, GCL_IfWide<P> = 0>
  [[nodiscard]] unsigned int find_last_not_of(GCL_String const& set, P last) const {
    return find_last_not_of(set, narrow(last));
  }

  // -1, 0 or 1 as this text comes before, equals or comes after `s`, byte by byte, each 0 to 255;
  // a text comes before any longer one that begins with it.
  [[nodiscard]] int compare(GCL_String const& s) const noexcept {
    unsigned int const a = length();
    unsigned int const b = s.length();
    int const order = a == 0 || b == 0 ? 0 : std::memcmp(bytes(), s.bytes(), a < b ? a : b);
    return order != 0 ? (order > 0) - (order < 0) : (a > b) - (a < b);
  }

  // --- Hashes of the text; 0 for the empty one. See GCL_StringRep.
  [[nodiscard]] unsigned int hash() const { return body() != nullptr ? body()->hash() : 0; }
  [[nodiscard]] unsigned int hash_fold_case() const {
    return body() != nullptr ? body()->hash_fold_case() : 0;
  }

 private:
  friend MIROXGCL_API std::istream& operator>>(std::istream& is, GCL_String& s);
  friend MIROXGCL_API std::istream& getline(std::istream& is, GCL_String& s, char delim);
  class Input;

  MIROXGCL_LOCAL GCL_String& do_replace(unsigned int pos, unsigned int n, char const* src,
                                        unsigned int srclen);
  MIROXGCL_LOCAL GCL_String& assign_bytes(char const* s, unsigned int n);
  MIROXGCL_LOCAL GCL_String& append_bytes(char const* s, unsigned int n);
  struct LineEnds;
  MIROXGCL_LOCAL GCL_String& convert_line_ends(bool to_pc);
  MIROXGCL_LOCAL void apply(LineEnds const& change, unsigned int reserve);
  MIROXGCL_LOCAL void append_in_chunks(char const* data, unsigned int n, GCL_String& spare);
  MIROXGCL_LOCAL static GCL_String with_body(unsigned int reserve, GCL_String& spare);

  // The text of every string without body, the same wherever an accessor was inlined.
  static char const m_empty_text[1];

  // A number of any width as 32 bits have it: what they cannot hold becomes the largest, which is too
  // large for every text.
  template <class N>
  static constexpr unsigned int narrow(N n) noexcept {
    bool const fits = n >= N{0} && static_cast<std::make_unsigned_t<N>>(n) <= UINT_MAX;
    return fits ? static_cast<unsigned int>(n) : UINT_MAX;
  }

  MIROXGCL_LOCAL void require_position([[maybe_unused]] unsigned int pos,
                                       [[maybe_unused]] char const* operation) const {
    LX_REQUIRE(pos <= length(), "Range_Error", operation, LX_kInvalidIndex);
  }

  // A sole holder may change the body, if `newlen` bytes and the terminator fit, and a string may be
  // as long.
  bool may_change_in_place(unsigned int newlen) const noexcept {
    return body() != nullptr && body()->reference_count() <= 1 && newlen < body()->m_capacity &&
           newlen <= GCL_StringRep::max_length;
  }
  char const* bytes() const noexcept { return body()->m_buffer; }
  GCL_String& append_slow_path(char c, unsigned int count);
  GCL_String& put_at_slow_path(unsigned int pos, char c);

  friend bool operator==(GCL_String const& a, GCL_String const& b) noexcept;
};

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

// A literal is compared where it lies.
MIROXGCL_API inline bool operator==(GCL_String const& a, char const* b) noexcept {
  return std::string_view(a) == (b != nullptr ? b : "");
}
MIROXGCL_API inline bool operator==(char const* a, GCL_String const& b) noexcept { return b == a; }
MIROXGCL_API inline bool operator!=(GCL_String const& a, char const* b) noexcept {
  return !(a == b);
}
MIROXGCL_API inline bool operator!=(char const* a, GCL_String const& b) noexcept {
  return !(b == a);
}

// A temporary on the left takes the right side's bytes and becomes the result: a chain of sums builds
// one string.
MIROXGCL_API inline GCL_String operator+(GCL_String&& a, GCL_String const& b) {
  return std::move(a.append(b));
}
MIROXGCL_API inline GCL_String operator+(GCL_String&& a, char const* b) {
  return std::move(a.append(b));
}
MIROXGCL_API inline GCL_String operator+(GCL_String&& a, char b) { return std::move(a.append(b)); }
MIROXGCL_API inline GCL_String operator+(GCL_String const& a, GCL_String const& b) {
  return GCL_String(a) + b;
}
MIROXGCL_API inline GCL_String operator+(GCL_String const& a, char const* b) {
  return GCL_String(a) + b;
}
MIROXGCL_API inline GCL_String operator+(GCL_String const& a, char b) { return GCL_String(a) + b; }

// The standard library's own over the bytes. Under C++20, a std::unordered_map whose comparison is
// std::equal_to<> looks views and literals up without making strings of them.
template <>
struct std::hash<GCL_String> {
  using is_transparent = void;
  std::size_t operator()(std::string_view s) const noexcept {
    return std::hash<std::string_view>()(s);
  }
};

// Writes exactly the bytes of `s`, NUL too; width and fill of the stream play no part.
MIROXGCL_API std::ostream& operator<<(std::ostream& os, GCL_String const& s);

// Reads a line without its delimiter, which is taken from the stream, or a word, which ends before a
// whitespace character; before a word, whitespace is skipped as the stream's flags say. The length
// has no limit, and the string grows by 32 bytes at a time.
//
// The stream stays good when anything was read, also when the input ended there; otherwise it fails
// and `s` is empty. An empty line is a success. When the stream throws, or memory ends, what was taken
// from the stream is in `s`.
MIROXGCL_API std::istream& getline(std::istream& is, GCL_String& s, char delim = '\n');
MIROXGCL_API std::istream& operator>>(std::istream& is, GCL_String& s);

static_assert(sizeof(GCL_String) == sizeof(void*), "a string is one pointer");

template <>
struct LX_TIsRelocatable<GCL_String> {
  static constexpr bool value = true;
};

#endif
