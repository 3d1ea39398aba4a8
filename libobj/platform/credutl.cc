#include "miroxplat/credutl.h"

#include <cstring>

#include "credutl_codec.h"

namespace credutl {
namespace {

// bytes[0..3]   magic
// bytes[4]      kind
// bytes[5..8]   number, least byte first
// bytes[9..29]  zero
// bytes[30..33] check sum of all before, least byte first
constexpr unsigned char magic[] = {'m', 's', 'i', 'd'};
constexpr int kind_at = 4;
constexpr int number_at = 5;
constexpr int check_at = 30;

void put_number(unsigned char* p, std::uint32_t number) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<unsigned char>(number >> (8 * i));
}

std::uint32_t get_number(unsigned char const* p) {
  std::uint32_t number = 0;
  for (int i = 0; i < 4; ++i) number |= static_cast<std::uint32_t>(p[i]) << (8 * i);
  return number;
}

// FNV-1a: a change of one byte always changes it.
std::uint32_t check_sum(unsigned char const* begin, unsigned char const* end) {
  std::uint32_t sum = 2166136261u;
  for (; begin != end; ++begin) sum = (sum ^ *begin) * 16777619u;
  return sum;
}

}  // namespace

credutl_sid_s encode(sid_kind kind, std::uint32_t number) {
  credutl_sid_s sid = {};
  std::memcpy(sid.bytes, magic, sizeof magic);
  sid.bytes[kind_at] = static_cast<unsigned char>(kind);
  put_number(sid.bytes + number_at, number);
  put_number(sid.bytes + check_at, check_sum(sid.bytes, sid.bytes + check_at));
  return sid;
}

bool decode(credutl_sid_s const& sid, sid_kind kind, std::uint32_t* number) {
  std::uint32_t const candidate = get_number(sid.bytes + number_at);
  credutl_sid_s const genuine = encode(kind, candidate);
  if (std::memcmp(sid.bytes, genuine.bytes, sizeof sid.bytes) != 0) return false;
  *number = candidate;
  return true;
}

}  // namespace credutl
