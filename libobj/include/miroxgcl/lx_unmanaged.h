// LX_CUnmanaged: the containers' storage policy on the global allocation operators.
//
// A policy M is a class with these two static operations; a container asks for exactly the bytes of
// its slots or of one node, and gives each block back with the size it asked for.
#ifndef MIROXGCL_LX_UNMANAGED_H
#define MIROXGCL_LX_UNMANAGED_H

#include <cstddef>
#include <new>

#include "miroxgcl/gcl_config.h"

class MIROXGCL_API LX_CUnmanaged {
 public:
  // A block of `n` bytes, aligned for any type of the language's own. Throws std::bad_alloc.
  static void* AllocateBlock(std::size_t n) { return ::operator new(n); }

  // Gives back the block `p` of `n` bytes; null is allowed.
  static void ReleaseBlock(void* p, std::size_t) noexcept { ::operator delete(p); }
};

#endif
