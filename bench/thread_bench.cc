// What two threads cost each other. The process has had a second thread before anything is measured,
// so that every count is kept as a process with threads keeps it.
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "compare.h"
#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_string.h"
#include "string_loops.h"

namespace {

using Shared = std::shared_ptr<std::string>;

template <class S>
S make() {
  return S(text_100(), 100);
}
template <>
Shared make<Shared>() {
  return std::make_shared<std::string>(text_100(), 100);
}

template <class S>
void copy_often(S const& original, long rounds) {
  for (long i = 0; i < rounds; ++i) {
    S copy(original);
    keep(copy);
  }
}

// Runs `work` in this thread and another.
template <class Work>
void in_two_threads(Work work) {
  std::thread other(work);
  work();
  other.join();
}

template <class S>
void copy_separate(long rounds) {
  in_two_threads([rounds] { copy_often(make<S>(), rounds); });
}

template <class S>
void copy_shared(long rounds) {
  S const original = make<S>();
  in_two_threads([&original, rounds] { copy_often(original, rounds); });
}

void empty_strings(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    GCL_String empty;
    keep(empty);
  }
}

void disabled_scopes(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    GCL_CTRACE("Bench", "disabled_scopes", GCL_Debug::parsing, GCL_Debug::coarse);
    keep(i);
  }
}

// The limit of a scope, which takes a number of its own: a count that both threads raise.
void numbers(long rounds) {
  static std::atomic<int> number{0};
  for (long i = 0; i < rounds; ++i) {
    int mine = number.fetch_add(1, std::memory_order_relaxed);
    keep(mine);
  }
}

template <void work(long)>
void by_two(long rounds) {
  in_two_threads([rounds] { work(rounds); });
}

// The same beside a thread that does nothing: starting one is part of either.
template <void work(long)>
void by_one(long rounds) {
  std::thread idle([] {});
  work(rounds);
  idle.join();
}

constexpr long batch = 1'000'000;

}  // namespace

int main(int argc, char** argv) {
  std::thread([] {}).join();
  Clock const wall = Clock::wall;
  Row("two threads: copy and drop, a string each", "std::shared_ptr <= 1.1", batch, wall)
      .ours(copy_separate<GCL_String>)
      .peer("std::shared_ptr", copy_separate<Shared>);
  Row("two threads: copy and drop one string", "std::shared_ptr <= 1.1", batch, wall)
      .ours(copy_shared<GCL_String>)
      .peer("std::shared_ptr", copy_shared<Shared>);
  Row("two threads: empty strings", "one thread <= 1.2", batch, wall)
      .ours(by_two<empty_strings>)
      .peer("one thread", by_one<empty_strings>);
  Row("two threads: a disabled scope", "an atomic number by two <= 1.2", batch, wall)
      .ours(by_two<disabled_scopes>)
      .peer("an atomic number by two", by_two<numbers>)
      .peer("one thread", by_one<disabled_scopes>);
  return run_rows(argc, argv);
}
