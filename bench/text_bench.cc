// Reading text by lines, and converting its line ends.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>

#include "miroxgcl/gcl_string.h"

namespace {

constexpr std::size_t text_size = 100'000'000;
constexpr std::size_t line_size = 80;

std::string text_of_lines() {
  std::string text(text_size, 'x');
  for (std::size_t i = line_size - 1; i < text.size(); i += line_size) text[i] = '\n';
  return text;
}

// A file of 80-byte lines that goes with the process.
class LineFile {
 public:
  LineFile() : m_name("miroxgcl_text_bench.tmp") { std::ofstream(m_name) << text_of_lines(); }
  ~LineFile() { std::remove(m_name.c_str()); }
  std::string const& name() const { return m_name; }

 private:
  std::string m_name;
};

LineFile const& line_file() {
  static LineFile const file;
  return file;
}

template <class String>
void read_lines(benchmark::State& state) {
  for (auto _ : state) {
    std::ifstream in(line_file().name());
    String line;
    std::size_t bytes = 0;
    while (getline(in, line)) bytes += line.length();
    benchmark::DoNotOptimize(bytes);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text_size));
}
BENCHMARK_TEMPLATE(read_lines, std::string)->Name("getline/std")->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(read_lines, GCL_String)->Name("getline/ours")->Unit(benchmark::kMillisecond);

// The limit: one hand-written pass over memory.
char* to_pc_by_hand(char* out, char const* p, char const* end) {
  for (; p != end; ++p) {
    if (*p == '\n') *out++ = '\r';
    *out++ = *p;
  }
  return out;
}

char* from_pc_by_hand(char* out, char const* p, char const* end) {
  for (; p != end; ++p) {
    if (*p != '\r') *out++ = *p;
  }
  return out;
}

void convert_by_hand(benchmark::State& state, char* (*convert)(char*, char const*, char const*),
                     std::string const& text) {
  for (auto _ : state) {
    std::unique_ptr<char[]> out(new char[text.size() * 2]);
    benchmark::DoNotOptimize(convert(out.get(), text.data(), text.data() + text.size()));
    benchmark::ClobberMemory();
  }
}

void convert(benchmark::State& state, GCL_String& (GCL_String::*convert)(),
             GCL_String const& text) {
  for (auto _ : state) {
    GCL_String copy(text);  // shared, so that each round builds its result anew
    benchmark::DoNotOptimize((copy.*convert)());
  }
}

std::string const& unix_text() {
  static std::string const text = text_of_lines();
  return text;
}

std::string const& pc_text() {
  static std::string const text = [] {
    std::string result(unix_text().size() + unix_text().size() / line_size + 1, '\0');
    char* const end = to_pc_by_hand(&result[0], unix_text().data(), unix_text().data() + text_size);
    result.resize(static_cast<std::size_t>(end - result.data()));
    return result;
  }();
  return text;
}

GCL_String shared(std::string const& text) {
  return {text.data(), static_cast<unsigned int>(text.size())};
}

void to_pc_hand(benchmark::State& s) { convert_by_hand(s, to_pc_by_hand, unix_text()); }
void to_pc_ours(benchmark::State& s) { convert(s, &GCL_String::to_pc_mode, shared(unix_text())); }
void from_pc_hand(benchmark::State& s) { convert_by_hand(s, from_pc_by_hand, pc_text()); }
void from_pc_ours(benchmark::State& s) { convert(s, &GCL_String::from_pc_mode, shared(pc_text())); }
BENCHMARK(to_pc_hand)->Name("to_pc_mode/by hand")->Unit(benchmark::kMillisecond);
BENCHMARK(to_pc_ours)->Name("to_pc_mode/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(from_pc_hand)->Name("from_pc_mode/by hand")->Unit(benchmark::kMillisecond);
BENCHMARK(from_pc_ours)->Name("from_pc_mode/ours")->Unit(benchmark::kMillisecond);

}  // namespace
