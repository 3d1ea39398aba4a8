// Construction and editing. Searches are in gcl_string_search.cc.
#include "miroxgcl/gcl_string.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>

template class GCL_Handle<GCL_StringRep>;

namespace {

// How many bytes of the array `s` are meant by the count `n`. Refuses what no string could hold.
unsigned int count_in(char const* s, unsigned int n) {
  if (s == nullptr) return 0;
  return GCL_StringRep::checked_length(n == GCL_String::npos ? std::strlen(s) : n);
}

// How many bytes of the string `s` are meant by the count `n`.
unsigned int count_in(GCL_String const& s, unsigned int n) {
  if (n == GCL_String::npos) return s.length();
  LX_REQUIRE(n <= s.length(), "Range_Error", "GCL_String, count of a source", LX_kInvalidIndex);
  return n;
}

// `n` bytes at `pos` cut at `length`. Never adds the two: the sum may wrap.
unsigned int clamp(unsigned int n, unsigned int pos, unsigned int length) {
  return std::min(n, length - pos);
}

// Whether `p` points into the text of `rep` or at its terminator's place. std::less orders
// pointers that have nothing to do with each other.
bool points_into(GCL_StringRep const& rep, char const* p) {
  std::less<> const before;
  return !before(p, rep.buffer()) && !before(rep.buffer() + rep.length(), p);
}

void copy_bytes(char* dest, char const* src, std::size_t n) {
  if (n != 0) std::memcpy(dest, src, n);
}

}  // namespace

char const GCL_String::m_empty_text[1] = "";

// A body of the first `n` bytes, null for none.
GCL_StringRep* GCL_String::copy_of(char const* s, unsigned int n) {
  return n != 0 ? GCL_StringRep::make(n, 0, s) : nullptr;
}

GCL_String::GCL_String(GCL_String const& s, unsigned int n) {
  if (n == npos) {
    *this = s;
  } else {
    set_rep(GCL_StringRep::make(count_in(s, n), 0, s.c_str()));
  }
}

GCL_String::GCL_String(char const* s, unsigned int n) : GCL_Handle(copy_of(s, count_in(s, n))) {}

GCL_String::GCL_String(unsigned char const* s, unsigned int n)
    : GCL_String(reinterpret_cast<char const*>(s), n) {}

GCL_String::GCL_String(std::string_view s)
    : GCL_Handle(copy_of(s.data(), GCL_StringRep::checked_length(s.size()))) {}

GCL_String::GCL_String(char c, unsigned int count) {
  if (count == 0) return;
  set_rep(GCL_StringRep::make(count, 1, nullptr));
  std::memset(body()->m_buffer, c, count);
}

GCL_String::GCL_String(unsigned char c, unsigned int count)
    : GCL_String(static_cast<char>(c), count) {}

unsigned int GCL_String::copy(char* dest, unsigned int n, unsigned int pos) const {
  require_position(pos, "GCL_String::copy");
  unsigned int const count = clamp(n, pos, length());
  copy_bytes(dest, c_str() + pos, count);
  return count;
}

GCL_String GCL_String::substr(unsigned int pos, unsigned int n) const {
  require_position(pos, "GCL_String::substr");
  unsigned int const count = clamp(n, pos, length());
  return count == 0 ? GCL_String() : GCL_String(bytes() + pos, count);
}

GCL_String& GCL_String::assign(GCL_String const& s, unsigned int n) {
  return assign_bytes(s.c_str(), count_in(s, n));
}

GCL_String& GCL_String::assign_array(char const* s, unsigned int n) {
  return assign_bytes(s, count_in(s, n));
}

GCL_String& GCL_String::assign(char c, unsigned int count) { return *this = GCL_String(c, count); }

// `s` may point into the text.
GCL_String& GCL_String::assign_bytes(char const* s, unsigned int n) {
  if (n == 0) {
    set_rep(nullptr);
  } else if (may_change_in_place(n)) {
    std::memmove(body()->m_buffer, s, n);
    body()->set_length(n);
  } else {
    set_rep(GCL_StringRep::make(n, 0, s));
  }
  return *this;
}

// A second handle on the body makes appending or inserting a string to itself build a new one.
GCL_String& GCL_String::append(GCL_String const& s, unsigned int n) {
  if (&s == this) return append(GCL_String(s), n);
  return append_bytes(s.c_str(), count_in(s, n));
}

GCL_String& GCL_String::append(char const* s, unsigned int n) {
  return append_bytes(s, count_in(s, n));
}

// `s` may point into the text. The bytes may then overlap their own copy, in the terminator's
// place.
GCL_String& GCL_String::append_bytes(char const* s, unsigned int n) {
  if (n == 0) return *this;
  unsigned int const length = this->length();
  if (n > GCL_StringRep::max_length - length || !may_change_in_place(length + n)) {
    return do_replace(length, 0, s, n);
  }
  std::memmove(body()->m_buffer + length, s, n);
  body()->set_length(length + n);
  return *this;
}

GCL_String& GCL_String::append_slow_path(char c, unsigned int count) {
  if (count == 1) return do_replace(length(), 0, &c, 1);
  return append(GCL_String(c, count));
}

GCL_String& GCL_String::insert(unsigned int pos, GCL_String const& s, unsigned int n) {
  require_position(pos, "GCL_String::insert");
  if (&s == this) return insert(pos, GCL_String(s), n);
  if (s.body() == nullptr) return *this;
  return do_replace(pos, 0, s.c_str(), count_in(s, n));
}

GCL_String& GCL_String::insert_array(unsigned int pos, char const* s, unsigned int n) {
  require_position(pos, "GCL_String::insert");
  n = count_in(s, n);
  return n == 0 ? *this : do_replace(pos, 0, s, n);
}

GCL_String& GCL_String::replace(unsigned int pos, unsigned int n, GCL_String const& s,
                                unsigned int slen) {
  return replace_array(pos, n, s.c_str(), count_in(s, slen));
}

GCL_String& GCL_String::replace_array(unsigned int pos, unsigned int n, char const* s,
                                      unsigned int slen) {
  require_position(pos, "GCL_String::replace");
  slen = count_in(s, slen);
  n = clamp(n, pos, length());
  return n == 0 && slen == 0 ? *this : do_replace(pos, n, s, slen);
}

GCL_String& GCL_String::remove(unsigned int pos, unsigned int n) {
  require_position(pos, "GCL_String::remove");
  n = clamp(n, pos, length());
  return n == 0 ? *this : do_replace(pos, n, "", 0);
}

GCL_String& GCL_String::get_remove(GCL_String& out, unsigned int pos, unsigned int n) {
  require_position(pos, "GCL_String::get_remove");
  n = clamp(n, pos, length());
  out = substr(pos, n);
  return &out == this ? *this : do_replace(pos, n, "", 0);
}

GCL_String& GCL_String::put_at_slow_path(unsigned int pos, char c) {
  if (pos == length()) return append(&c, 1);
  reserve(length());
  body()->m_buffer[pos] = c;
  return *this;
}

GCL_String const& GCL_String::reserve(unsigned int n) const {
  unsigned int const room = std::max(n, length());
  take_body(room == 0 ? nullptr : GCL_StringRep::make(length(), room, c_str()));
  return *this;
}

void GCL_String::throw_out_of_range() { throw std::out_of_range("GCL_String::at"); }

GCL_String GCL_String::concatenate(std::string_view a, std::string_view b) {
  unsigned int const length = GCL_StringRep::checked_length(std::uint64_t{a.size()} + b.size());
  GCL_String sum;
  if (length == 0) return sum.set_rep(nullptr), sum;
  sum.set_rep(GCL_StringRep::make(0, length, nullptr));
  copy_bytes(sum.body()->m_buffer, a.data(), a.size());
  copy_bytes(sum.body()->m_buffer + a.size(), b.data(), b.size());
  sum.body()->set_length(length);
  return sum;
}

// Puts `srclen` bytes from `src` in the place of the `n` bytes at `pos`; every edit comes here.
// `src` may point into the text. REQUIRES: pos + n <= length().
GCL_String& GCL_String::do_replace(unsigned int pos, unsigned int n, char const* src,
                                   unsigned int srclen) {
  unsigned int const length = this->length();
  unsigned int const newlen = GCL_StringRep::checked_length(std::uint64_t{length} - n + srclen);
  if (newlen == 0) {
    set_rep(nullptr);
    return *this;
  }

  GCL_StringRep* const rep = body();
  bool const own_text = rep != nullptr && points_into(*rep, src);
  if (own_text && n == 0 && srclen == 0) return *this;

  unsigned int const tail = length - pos - n;
  if (may_change_in_place(newlen)) {
    if (own_text) return replace(pos, n, GCL_String(src, srclen));
    std::memmove(rep->m_buffer + pos + srclen, rep->m_buffer + pos + n, tail);
    rep->set_length(newlen);
    copy_bytes(rep->m_buffer + pos, src, srclen);
    return *this;
  }

  // The old body lives until the new one is complete, so `src` may still point into it.
  auto* const fresh = GCL_StringRep::make(pos, newlen, rep != nullptr ? rep->m_buffer : nullptr);
  if (rep != nullptr) {
    copy_bytes(fresh->m_buffer + pos + srclen, rep->m_buffer + pos + n, tail);
  }
  copy_bytes(fresh->m_buffer + pos, src, srclen);
  fresh->set_length(newlen);
  return set_rep(fresh), *this;
}
