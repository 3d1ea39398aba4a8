// A row of the comparison: one operation, as the library and its peers perform it.
//
//   Row("copy and drop 100 bytes", "CoW string <= 1")
//       .ours(copy_and_drop<GCL_String>)
//       .peer("CoW string", cow_copy_and_drop)
//       .peer("std::string", copy_and_drop<std::string>);
//
// A reach is the greatest ratio of our time to that of each peer it names: "a, b <= 2". Instead of
// a ratio, "a + 1" allows so many nanoseconds over the peer.
#ifndef MIROXGCL_BENCH_COMPARE_H
#define MIROXGCL_BENCH_COMPARE_H

#include <benchmark/benchmark.h>

#include <string>

#include "keep.h"

// What it runs is named "row|reach|ours" or "row|reach|peer", which report.py takes apart.
class Row {
 public:
  // A loop is asked for `batch` rounds at a time: the more, the less its preparations count.
  Row(std::string const& name, std::string const& reach, long batch = 1000)
      : m_name(name + '|' + reach + '|'), m_batch(batch) {}

  Row const& ours(Loop loop) const { return peer("ours", loop); }
  // A peer without loop is not on this machine.
  Row const& peer(std::string const& peer, Loop loop) const {
    if (loop == nullptr) return *this;
    benchmark::RegisterBenchmark((m_name + peer).c_str(),
                                 [loop, batch = m_batch](benchmark::State& state) {
                                   while (state.KeepRunningBatch(batch)) loop(batch);
                                 });
    return *this;
  }

 private:
  std::string m_name;
  long m_batch;
};

inline int run_rows(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

#endif
