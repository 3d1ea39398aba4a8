// The entry of every differential test: libFuzzer's, and without it a run over given and random inputs.
//   xxx_fuzz FOLDER [RUNS [SEED]]
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  fuzz_input input(data, size);
  fuzz_one_input(input);
  return 0;
}

#ifndef MIROXGCL_LIBFUZZER
int main(int argc, char** argv) {
  unsigned long inputs = 0;
  auto const run = [&inputs](std::vector<std::uint8_t> const& bytes) {
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    ++inputs;
  };
  for (auto const& entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    run({std::istreambuf_iterator<char>(file), {}});
  }
  unsigned long const runs = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 0;
  unsigned long const seed = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 1;
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  for (unsigned long i = 0; i < runs; ++i) {
    std::vector<std::uint8_t> bytes(random() % 512);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    run(bytes);
  }
  std::printf("%lu inputs\n", inputs);
}
#endif
