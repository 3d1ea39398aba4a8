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

#include <cstddef>
#include <functional>
#include <string>

#include "keep.h"

enum class Clock { cpu, wall };  // the wall's where several threads work

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
    benchmark::internal::Benchmark* const run = benchmark::RegisterBenchmark(
        (m_name + peer).c_str(), [loop, batch = m_batch](benchmark::State& state) {
          loop(0);  // makes what it works on, once and unmeasured
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

// A row of bytes instead of time, which each of `measure` answers.
class ByteRow {
 public:
  using Measure = std::function<std::size_t()>;

  ByteRow(std::string const& name, std::string const& reach) : m_name(name + '|' + reach + '|') {}

  void ours(Measure const& measure) const { peer("ours", measure); }
  void peer(std::string const& peer, Measure const& measure) const {
    benchmark::RegisterBenchmark((m_name + peer).c_str(), [measure](benchmark::State& state) {
      for ([[maybe_unused]] auto round : state) {
      }
      state.counters["bytes"] = static_cast<double>(measure());
    });
  }

 private:
  std::string m_name;
};

inline int run_rows(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}

#endif
