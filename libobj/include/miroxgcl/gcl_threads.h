/// @file
/// Counting that costs a program without threads nothing: plain until the process starts its second
/// thread, atomic from then on.
#ifndef MIROXGCL_GCL_THREADS_H
#define MIROXGCL_GCL_THREADS_H

#include <cstdint>
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define MIROXGCL_HAS_THREAD_FLAG 1
#endif

namespace gcl_threads {

/// Whether the process surely has one thread: the C library's own flag. False where it has none.
inline bool is_single() noexcept {
#ifdef MIROXGCL_HAS_THREAD_FLAG
  return __libc_single_threaded != 0;
#else
  return false;
#endif
}

/// A count as high as this is not changed any more while there are threads: no program has so
/// many holders, and what must never be freed is set to more (see make_immortal).
constexpr std::uint32_t immortal = 0x40000000u;

/// Adds one to a count.
inline void increment(std::uint32_t& count) noexcept {
  if (is_single()) {
    ++count;
  } else if (__atomic_load_n(&count, __ATOMIC_RELAXED) < immortal) {
    __atomic_fetch_add(&count, 1, __ATOMIC_RELAXED);
  }
}

/// Takes one from a count. Whether it is 0 then: whatever other threads did to what was counted has
/// been done before.
inline bool decrement(std::uint32_t& count) noexcept {
  if (is_single()) return --count == 0;
  if (__atomic_load_n(&count, __ATOMIC_RELAXED) >= immortal) return false;
  if (__atomic_fetch_sub(&count, 1, __ATOMIC_RELEASE) != 1) return false;
  static_cast<void>(__atomic_load_n(&count, __ATOMIC_ACQUIRE));
  return true;
}

/// A count, in order with what other threads did before they took theirs from it.
inline std::uint32_t read(std::uint32_t const& count) noexcept {
  return __atomic_load_n(&count, __ATOMIC_ACQUIRE);
}

/// Once there are threads, makes a count so high that it need not be changed any more. Threads do
/// not wait for each other at it then.
inline void make_immortal(std::uint32_t& count) noexcept {
  if (is_single()) return;
  std::uint32_t old = __atomic_load_n(&count, __ATOMIC_RELAXED);
  while (old < immortal && !__atomic_compare_exchange_n(&count, &old, old + immortal + immortal / 2,
                                                        true, __ATOMIC_RELAXED, __ATOMIC_RELAXED)) {
  }
}

/// What an owning pointer holds, while other threads may make it with made_once(): null, or an
/// object that is whole.
template <class Owner>
typename Owner::pointer read_made(Owner const& owner) noexcept {
  static_assert(sizeof(Owner) == sizeof(typename Owner::pointer), "a pointer and nothing else");
  return __atomic_load_n(reinterpret_cast<typename Owner::pointer const*>(&owner),
                         __ATOMIC_ACQUIRE);
}

/// What an owning pointer holds; where that is null, an object made of `arguments`, which it keeps
/// then. Of several threads that come at once, one stores its own and the others take that.
template <class Owner, class... Arguments>
typename Owner::element_type& made_once(Owner& owner, Arguments... arguments) {
  typename Owner::pointer present = read_made(owner);
  if (present != nullptr) return *present;
  Owner made(new typename Owner::element_type(arguments...));
  if (__atomic_compare_exchange_n(reinterpret_cast<typename Owner::pointer*>(&owner), &present,
                                  made.get(), false, __ATOMIC_ACQ_REL, __ATOMIC_ACQUIRE)) {
    present = made.release();
  }
  return *present;
}

}  // namespace gcl_threads

#endif
