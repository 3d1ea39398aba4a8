// What two threads pay, each doing the same as the other, by the clock: copies of strings of their own and
// of one string, empty strings, disabled traces.
#include <memory>
#include <string>
#include <thread>

#include "compare.h"
#include "miroxgcl/gcl_ctrace.h"
#include "miroxgcl/gcl_string.h"

namespace {

// `work` in each of `count` threads.
template <int count, class Work>
void in_threads(Work const& work) {
  std::thread threads[count];
  for (std::thread& thread : threads) thread = std::thread(work);
  for (std::thread& thread : threads) thread.join();
}

GCL_String made(GCL_String const*) { return GCL_String("a text of thirty bytes, or so."); }
std::shared_ptr<std::string> made(std::shared_ptr<std::string> const*) {
  return std::make_shared<std::string>("a text of thirty bytes, or so.");
}

template <class Value, bool is_shared>
void copy_and_drop(long rounds) {
  Value const shared = made(static_cast<Value const*>(nullptr));
  in_threads<2>([&] {
    Value const own = is_shared ? shared : made(static_cast<Value const*>(nullptr));
    for (long i = 0; i < rounds; ++i) {
      Value copy(own);
      keep(copy);
    }
  });
}

template <int threads>
void make_empty(long rounds) {
  in_threads<threads>([&] {
    for (long i = 0; i < rounds; ++i) {
      GCL_String empty;
      keep(empty);
    }
  });
}

template <int threads>
void trace_disabled(long rounds) {
  in_threads<threads>([&] {
    for (long i = 0; i < rounds; ++i) {
      GCL_CTRACE("Bench", "trace_disabled", GCL_Debug::parsing, GCL_Debug::coarse);
      keep(i);
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  using Peer = std::shared_ptr<std::string>;
  constexpr long batch = 20'000'000;  // so that starting the threads does not count
  Row("two threads: copy and drop own strings", "std::shared_ptr <= 1.1", batch, Clock::wall)
      .ours(copy_and_drop<GCL_String, false>)
      .peer("std::shared_ptr", copy_and_drop<Peer, false>);
  Row("two threads: copy and drop one string", "std::shared_ptr <= 1.1", batch, Clock::wall)
      .ours(copy_and_drop<GCL_String, true>)
      .peer("std::shared_ptr", copy_and_drop<Peer, true>);
  Row("two threads: make and drop empty strings", "one thread <= 1.2", batch, Clock::wall)
      .ours(make_empty<2>)
      .peer("one thread", make_empty<1>);
  Row("two threads: a disabled trace", "one thread <= 20", batch, Clock::wall)
      .ours(trace_disabled<2>)
      .peer("one thread", trace_disabled<1>);
  return run_rows(argc, argv);
}
