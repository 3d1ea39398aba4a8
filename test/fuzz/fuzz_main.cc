// The entry of every differential test: libFuzzer's, and without it a run over given and random inputs.
//   xxx_fuzz FOLDER [RUNS [SEED]]
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  fuzz_input input(data, size);
  fuzz_one_input(input);
  return 0;
}

#ifndef MIROXGCL_LIBFUZZER
namespace {

void run(std::vector<char> const& bytes) {
  LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  unsigned long inputs = 0;
  for (auto const& entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    run({std::istreambuf_iterator<char>(file), {}});
    ++inputs;
  }
  unsigned long const runs = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0;
  unsigned long const seed = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 1;
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  for (unsigned long i = 0; i < runs; ++i, ++inputs) {
    std::vector<char> bytes(random() % 512);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
    run(bytes);
  }
  std::printf("%lu inputs\n", inputs);
}
#endif
