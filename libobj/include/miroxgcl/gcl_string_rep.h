/// @file
/// GCL_StringRep: the body that strings share, a counted byte buffer with a length and a capacity.
///
/// Strings decide when a body may change; the body decides how much room a buffer gets.
#ifndef MIROXGCL_GCL_STRING_REP_H
#define MIROXGCL_GCL_STRING_REP_H

#include <cstddef>
#include <cstdint>

#include "miroxgcl/gcl_body.h"

/// The body of a string.
///
/// Invariants:
/// 1. m_length < m_capacity, so the byte after the text exists. The library keeps it NUL, so that
///    reading the text writes nothing.
/// 2. m_capacity never changes: a body that is too small is replaced, not enlarged.
/// 3. m_length changes only while one handle holds the body.
/// @ingroup strings
class MIROXGCL_API GCL_StringRep final : public GCL_Body {
 public:
  /// The greatest length of a text in bytes: one less than GCL_String::npos.
  static constexpr unsigned int max_length = 0x7FFFFFFEu;

  /// A body of `length` bytes with room for `reserve` bytes, or for the text and its terminator,
  /// whichever is more, rounded up by the growth rule. Copies `length` bytes from `text`; when
  /// `text` is null they are left for the caller to fill. The count is 0.
  /// Throws std::bad_alloc, or std::bad_array_new_length when length > max_length.
  GCL_StringRep(unsigned int length, unsigned int reserve, char const* text);
  ~GCL_StringRep() override;

  bool is_null() const override;  ///< length() == 0

  /// Whether both texts are the same bytes; null equals an empty text.
  bool operator==(GCL_Body const* other) const override;

  /// The length of the text in bytes, the size of the buffer in bytes, and the buffer, which the
  /// body owns.
  /// @{
  unsigned int length() const { return m_length; }
  unsigned int capacity() const { return m_capacity; }
  char const* buffer() const { return m_buffer; }
  /// @}

  /// A hash of the bytes, the same on every machine. It forgets all but about the last 28 bytes and
  /// the length, so that it spreads texts with a common tail badly: std::hash<GCL_String> does not.
  unsigned int hash() const;

  /// A hash that texts differing only in the case of letters share; it ends at the first NUL.
  /// Allocates a scratch copy of the text; throws std::bad_alloc.
  unsigned int hash_fold_case() const;

  /// The empty body that default-constructed strings share. It is never freed and never changed;
  /// the first call, from whatever thread, builds it in memory of the library's own. Does not touch
  /// its count, unless there are threads: then it is made so high that it need not be changed any
  /// more.
  static GCL_StringRep* null_instance() noexcept {
    GCL_StringRep* const rep = __atomic_load_n(&m_null_instance, __ATOMIC_ACQUIRE);
    if (rep == nullptr) return build_null_instance();
    rep->make_immortal();
    return rep;
  }

  /// The size of a body in memory is not known from its class: strings make it one block with its
  /// buffer.
  /// @{
  static void* operator new(std::size_t n);
  static void operator delete(void* p) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void*, void*) noexcept {}
  /// @}

  /// `length` as a body has it. Throws std::bad_array_new_length when it exceeds max_length.
  static unsigned int checked_length(std::uint64_t length);

 private:
  friend class GCL_String;

  // As new GCL_StringRep(...), but body and buffer are one block: the buffer follows the body.
  MIROXGCL_LOCAL static GCL_StringRep* make(unsigned int length, unsigned int reserve,
                                            char const* text);

  // The growth rule: the capacity of a buffer into which `n` bytes must fit, n > 0.
  MIROXGCL_LOCAL static unsigned int capacity_for(unsigned int n);
  static constexpr unsigned int null_capacity = 8;
  // Forecasts the capacity that a series of edits leaves, so that one body can be built for all.
  struct MIROXGCL_LOCAL CapacityForecast {
    // Before the first edit of a string that holds `rep`, which may be null.
    explicit CapacityForecast(GCL_StringRep const* rep);

    // An edit that shortens the text: in place where the body is unshared, otherwise in a new body
    // with room for `room` bytes. The caller adjusts `length`.
    void add_shortening(unsigned int room);
    // `count` edits that append `step` bytes each. REQUIRES: the sum is at most max_length.
    void add_appends(unsigned int step, unsigned int count);

    bool needs_new_body() const { return reserve != 0; }

    unsigned int length;    // of the text
    unsigned int capacity;  // of the body; 0 while none may be changed in place
    unsigned int reserve;   // for which the last new body has room; 0 while no edit needs one
  };

  MIROXGCL_LOCAL static unsigned int capacity_of(unsigned int length, unsigned int reserve);
  static GCL_StringRep* build_null_instance() noexcept;
  // A body whose buffer of that capacity follows it in memory.
  MIROXGCL_LOCAL GCL_StringRep(unsigned int length, unsigned int capacity) noexcept;
  MIROXGCL_LOCAL char* following_bytes() { return reinterpret_cast<char*>(this + 1); }

  // Changes the length, and writes the terminator behind the text.
  void set_length(unsigned int length) noexcept {
    m_length = length;
    m_buffer[length] = '\0';
  }

  unsigned int m_length;
  unsigned int m_capacity;
  char* m_buffer;  // m_capacity bytes: the text, the terminator's place, room

  static GCL_StringRep* m_null_instance;
};

static_assert(sizeof(unsigned int) == 4, "lengths and capacities are 32 bits wide");
static_assert(sizeof(void*) != 4 || sizeof(GCL_StringRep) == 20, "the layout on 32 bit");

#endif
