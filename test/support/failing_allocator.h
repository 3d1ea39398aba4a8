// Makes an allocation of the test's program fail, and counts the blocks that are held.
//
//   std::size_t const held = failing_allocator::live_blocks();
//   {
//     failing_allocator const failing(3);      // the third allocation from here on throws bad_alloc
//     EXPECT_THROW(s.append(t), std::bad_alloc);
//   }
//   EXPECT_EQ(failing_allocator::live_blocks(), held);
#ifndef TEST_SUPPORT_FAILING_ALLOCATOR_H
#define TEST_SUPPORT_FAILING_ALLOCATOR_H

#include <cstddef>

class failing_allocator {
 public:
  explicit failing_allocator(int n);
  failing_allocator(failing_allocator&&) = delete;
  ~failing_allocator();

  // Blocks of operator new that were not given back yet.
  static std::size_t live_blocks();

  // The size of the allocation that the latest failing_allocator made fail; 0 for none.
  static std::size_t failed_size();
};

// Runs `operation` on a fresh `prepare()` with its first, second, third ... allocation failing,
// until it gets by without one. `check(value, failed)` follows each run. Returns the failures.
template <class Prepare, class Operation, class Check>
int fail_each_allocation(Prepare prepare, Operation operation, Check check) {
  for (int n = 1;; ++n) {
    auto value = prepare();
    bool failed = false;
    try {
      failing_allocator const failing(n);
      operation(value);
    } catch (...) {
      failed = true;
    }
    check(value, failed);
    if (!failed) return n - 1;
  }
}

#endif
