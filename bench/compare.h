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

// Which clock measures a row: the thread's CPU time, or the wall's where there are several threads.
enum class Clock { cpu, wall };

// What it runs is named "row|reach|ours" or "row|reach|peer", which report.py takes apart.
class Row {
 public:
  // A loop is asked for `batch` rounds at a time: the more, the less its preparations count.
  Row(std::string const& name, std::string const& reach, long batch = 1000,
      Clock clock = Clock::cpu)
      : m_name(name + '|' + reach + '|'), m_batch(batch), m_clock(clock) {}

  Row const& ours(Loop loop) const { return peer("ours", loop); }
  // A peer without loop is not on this machine.
  Row const& peer(std::string const& peer, Loop loop) const {
    if (loop == nullptr) return *this;
    auto* const run = benchmark::RegisterBenchmark(
        (m_name + peer).c_str(), [loop, batch = m_batch](benchmark::State& state) {
          while (state.KeepRunningBatch(batch)) loop(batch);
        });
    if (m_clock == Clock::wall) run->UseRealTime();
    return *this;
  }

 private:
  std::string m_name;
  long m_batch;
  Clock m_clock;
};

// A row of bytes instead of time, for values of `size`: reported as so many nanoseconds.
class MemoryRow {
 public:
  using Measure = double (*)(int size);

  MemoryRow(std::string const& name, std::string const& reach, int size)
      : m_name(name + '|' + reach + '|'), m_size(size) {}

  MemoryRow const& ours(Measure measure) const { return peer("ours", measure); }
  MemoryRow const& peer(std::string const& peer, Measure measure) const {
    if (measure == nullptr) return *this;
    benchmark::RegisterBenchmark((m_name + peer).c_str(),
                                 [measure, size = m_size](benchmark::State& state) {
                                   for (auto _ : state)
                                     state.SetIterationTime(measure(size) * 1e-9);
                                 })
        ->UseManualTime()
        ->Iterations(1);
    return *this;
  }

 private:
  std::string m_name;
  int m_size;
};

inline int run_rows(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

#endif
