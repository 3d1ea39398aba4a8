// What traces cost when they are switched off.
#include <benchmark/benchmark.h>

#include "miroxgcl/gcl_ctrace.h"

namespace {

void empty_loop(benchmark::State& state) {
  long i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(++i);
}
BENCHMARK(empty_loop);

void disabled_scope(benchmark::State& state) {
  long i = 0;
  for (auto _ : state) {
    GCL_CTRACE("Bench", "run", GCL_Debug::parsing, GCL_Debug::coarse);
    benchmark::DoNotOptimize(++i);
  }
}
BENCHMARK(disabled_scope);

void disabled_message(benchmark::State& state) {
  long i = 0;
  GCL_CTRACE("Bench", "run", GCL_Debug::parsing, GCL_Debug::coarse);
  for (auto _ : state) {
    GCL_CTRACE_OUT("i=" << i);
    benchmark::DoNotOptimize(++i);
  }
}
BENCHMARK(disabled_message);

}  // namespace
