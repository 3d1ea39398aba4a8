#include "miroxgcl/gcl_string_rep.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "capacity.h"
#include "miroxplat/strutl.h"

GCL_StringRep* GCL_StringRep::m_null_instance = nullptr;

namespace {

constexpr int to_lower_case = 1;  // the string utility's mode

// One step of both hashes. Only the top bit is carried over, so this is not a rotation.
unsigned int mix(unsigned int h, unsigned int word) { return ((h << 5) | (h >> 31)) ^ word; }

unsigned int little_endian_word(char const* p) {
  auto const* const b = reinterpret_cast<unsigned char const*>(p);
  return b[0] | unsigned{b[1]} << 8 | unsigned{b[2]} << 16 | unsigned{b[3]} << 24;
}

}  // namespace

GCL_StringRep::GCL_StringRep(unsigned int length, unsigned int reserve, char const* text)
    : m_length(length),
      m_capacity(capacity_of(length, reserve)),
      m_buffer(static_cast<char*>(::operator new(m_capacity))) {
  if (text != nullptr) std::memcpy(m_buffer, text, length);
  set_length(length);
}

GCL_StringRep::GCL_StringRep(unsigned int length, unsigned int capacity) noexcept
    : m_length(length), m_capacity(capacity), m_buffer(following_bytes()) {
  following_bytes()[length] = '\0';
}

GCL_StringRep* GCL_StringRep::make(unsigned int length, unsigned int reserve, char const* text) {
  unsigned int const capacity = capacity_of(length, reserve);
  std::size_t const size = sizeof(GCL_StringRep) + capacity;
  if (size < capacity) throw std::bad_alloc();  // the sum wrapped
  void* const block = ::operator new(size);
  auto* const rep = ::new (block) GCL_StringRep(length, capacity);
  if (text != nullptr) std::memcpy(rep->following_bytes(), text, length);
  return rep;
}

GCL_StringRep::~GCL_StringRep() {
  if (m_buffer != following_bytes()) ::operator delete(m_buffer);
}

void* GCL_StringRep::operator new(std::size_t n) { return ::operator new(n); }
void GCL_StringRep::operator delete(void* p) noexcept { ::operator delete(p); }

bool GCL_StringRep::is_null() const { return m_length == 0; }

bool GCL_StringRep::operator==(GCL_Body const* other) const {
  if (other == nullptr) return m_length == 0;
  auto const& rep = static_cast<GCL_StringRep const&>(*other);
  return m_length == rep.m_length && std::memcmp(m_buffer, rep.m_buffer, m_length) == 0;
}

unsigned int GCL_StringRep::hash() const {
  unsigned int h = m_length;
  char const* p = m_buffer;
  char const* const end = m_buffer + m_length;
  for (; end - p >= 4; p += 4) h = mix(h, little_endian_word(p));
  if (p == end) return h;
  unsigned int tail = 0;
  for (; p != end; ++p) {
    int const sign_extended = static_cast<signed char>(*p);  // NOLINT(bugprone-signed-char-misuse)
    tail = (tail << 9) | static_cast<unsigned int>(sign_extended);
  }
  return mix(h, tail);
}

unsigned int GCL_StringRep::hash_fold_case() const {
  if (m_length == 0) return 0;
  auto const folded = std::make_unique<char[]>(m_length + 1u);
  if (m_buffer[m_length] != '\0') m_buffer[m_length] = '\0';
  strutl_cvt_case_string(m_buffer, to_lower_case, m_length + 1, folded.get());
  unsigned int h = m_length;
  for (unsigned int i = 0; i < m_length && folded[i] != '\0'; ++i) {
    h = mix(h, static_cast<unsigned char>(folded[i]));
  }
  return h;
}

// Static memory that nothing destroys: strings of other static objects may share the body for as
// long as the process lives. Only the first thread to come builds it.
GCL_StringRep* GCL_StringRep::build_null_instance() noexcept {
  alignas(GCL_StringRep) static unsigned char block[sizeof(GCL_StringRep) + null_capacity];
  static GCL_StringRep* const rep = [] {
    auto* const built = ::new (static_cast<void*>(block)) GCL_StringRep(0, null_capacity);
    built->reference();
    return built;
  }();
  __atomic_store_n(&m_null_instance, rep, __ATOMIC_RELEASE);
  return rep;
}

unsigned int GCL_StringRep::checked_length(std::uint64_t length) {
  if (length > max_length) throw std::bad_array_new_length();
  return static_cast<unsigned int>(length);
}
