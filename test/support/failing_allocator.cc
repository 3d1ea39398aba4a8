#include "support/failing_allocator.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

int s_allocations_left = 0;  // until one fails; 0: none will
std::size_t s_live_blocks = 0;
std::size_t s_failed_size = 0;

void* allocate(std::size_t n) {
  if (s_allocations_left != 0 && --s_allocations_left == 0) {
    s_failed_size = n;
    return nullptr;
  }
  void* const p = n <= PTRDIFF_MAX ? std::malloc(n != 0 ? n : 1) : nullptr;
  if (p != nullptr) ++s_live_blocks;
  return p;
}

}  // namespace

failing_allocator::failing_allocator(int n) {
  s_allocations_left = n;
  s_failed_size = 0;
}
failing_allocator::~failing_allocator() { s_allocations_left = 0; }
std::size_t failing_allocator::live_blocks() { return s_live_blocks; }
std::size_t failing_allocator::failed_size() { return s_failed_size; }

void* operator new(std::size_t n) {
  void* const p = allocate(n);
  return p != nullptr ? p : throw std::bad_alloc();
}
void* operator new[](std::size_t n) { return operator new(n); }
void* operator new(std::size_t n, std::nothrow_t const&) noexcept { return allocate(n); }
void* operator new[](std::size_t n, std::nothrow_t const&) noexcept { return allocate(n); }
void operator delete(void* p) noexcept {
  if (p != nullptr) --s_live_blocks;
  std::free(p);
}
void operator delete[](void* p) noexcept { operator delete(p); }
void operator delete(void* p, std::size_t) noexcept { operator delete(p); }
void operator delete[](void* p, std::size_t) noexcept { operator delete(p); }
