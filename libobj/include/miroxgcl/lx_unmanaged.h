/// @file
/// LX_CUnmanaged: the containers' storage policy on the global allocation operators.
///
/// A policy M is a class with these static operations; a container asks for exactly the bytes of
/// its slots or of one node, and gives each block back with the size it asked for. The operations
/// with an alignment are called only for items that are aligned more strictly than the language's
/// own types; a policy for others need not have them.
#ifndef MIROXGCL_LX_UNMANAGED_H
#define MIROXGCL_LX_UNMANAGED_H

#include <cstddef>
#include <new>
#include <type_traits>

#include "miroxgcl/gcl_config.h"

/// The storage policy of the library's own containers.
/// @ingroup collections
class MIROXGCL_API LX_CUnmanaged {
 public:
  /// A block of `n` bytes, aligned for any type of the language's own. Throws std::bad_alloc.
  static void* AllocateBlock(std::size_t n) { return ::operator new(n); }

  /// Gives back the block `p` of `n` bytes; null is allowed.
  static void ReleaseBlock(void* p, std::size_t) noexcept { ::operator delete(p); }

  /// The same for a block of a stricter alignment, a power of two.
  /// @{
  static void* AllocateBlock(std::size_t n, std::align_val_t alignment) {
    return ::operator new(n, alignment);
  }
  static void ReleaseBlock(void* p, std::size_t, std::align_val_t alignment) noexcept {
    ::operator delete(p, alignment);
  }
  /// @}
};

/// @cond IMPLEMENTATION

// Whether a policy has the operations with an alignment.
template <class M, class = void>
struct LX_TAligns : std::false_type {};
template <class M>
struct LX_TAligns<M, std::void_t<decltype(M::AllocateBlock(0, std::align_val_t{}))>>
    : std::true_type {};

// A block of `n` bytes of M for objects of class T.
template <class T, class M>
void* LX_AllocateFor(std::size_t n) {
  if constexpr (alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__) {
    return M::AllocateBlock(n);
  } else {
    static_assert(LX_TAligns<M>::value,
                  "The items are aligned more strictly than the storage policy's blocks: give the "
                  "policy AllocateBlock and ReleaseBlock with a std::align_val_t.");
    return M::AllocateBlock(n, std::align_val_t{alignof(T)});
  }
}
template <class T, class M>
void LX_ReleaseFor(void* p, std::size_t n) noexcept {
  if constexpr (alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__) {
    M::ReleaseBlock(p, n);
  } else {
    M::ReleaseBlock(p, n, std::align_val_t{alignof(T)});
  }
}

/// @endcond

#endif
