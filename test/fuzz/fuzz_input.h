// What the differential tests share. Each is a file xxx_fuzz.cc with one function that reads its
// steps from the fuzzer's bytes, does them to the library's object and to an independent model of
// it, and compares the two after every step:
//
//   void fuzz_one_input(fuzz_input& input) {
//     while (!input.empty()) {
//       switch (input.number(2)) {
//         case 0: { auto const word = input.text(20); ours.append(word.c_str()); model += word; } break;
//         ...
//       }
//       FUZZ_CHECK(model == ours.c_str());
//     }
//   }
//
// The flavour `fuzz` links it with libFuzzer; all others replay the checked-in inputs and then run
// inputs of random bytes.
#ifndef TEST_FUZZ_FUZZ_INPUT_H
#define TEST_FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

class fuzz_input {
 public:
  fuzz_input(std::uint8_t const* data, std::size_t size) : m_next(data), m_end(data + size) {}

  bool empty() const { return m_next == m_end; }

  // 0 to `last`; 0 when the bytes are used up.
  unsigned int number(unsigned int last) {
    std::uint64_t value = 0;
    for (std::uint64_t range = 1; range <= last; range *= 256) value = value * 256 + byte();
    return static_cast<unsigned int>(value % (std::uint64_t{last} + 1));
  }

  // Any bytes, at most `longest`; few when few are left.
  std::string text(unsigned int longest) {
    std::string result;
    for (auto n = number(longest); n != 0 && !empty(); --n) result += static_cast<char>(byte());
    return result;
  }

  // At most `longest` characters of `alphabet`, so that the same ones meet often.
  std::string text(unsigned int longest, std::string const& alphabet) {
    std::string result = text(longest);
    for (char& c : result) c = alphabet[static_cast<unsigned char>(c) % alphabet.size()];
    return result;
  }

 private:
  std::uint8_t byte() { return empty() ? std::uint8_t{0} : *m_next++; }

  std::uint8_t const* m_next;
  std::uint8_t const* m_end;
};

void fuzz_one_input(fuzz_input& input);

#define FUZZ_CHECK(condition) ((condition) ? void() : fuzz_failed(#condition, __FILE__, __LINE__))

[[noreturn]] inline void fuzz_failed(char const* condition, char const* file, int line) {
  std::fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
  std::abort();
}

#endif
