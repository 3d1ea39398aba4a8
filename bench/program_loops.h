// What whole programs do with thousands of strings of a class S, one loop each.
#ifndef MIROXGCL_BENCH_PROGRAM_LOOPS_H
#define MIROXGCL_BENCH_PROGRAM_LOOPS_H

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "keep.h"

namespace program {

constexpr int word_count = 2'000'000;
constexpr int string_count = 500'000;
constexpr int line_count = 200'000;

// The same numbers in each run.
class Numbers {
 public:
  unsigned int below(unsigned int n) {
    m_last = m_last * 1664525u + 1013904223u;
    return (m_last >> 8) % n;
  }

 private:
  unsigned int m_last = 1;
};

// Letters without order, from which texts are taken.
inline char const* letters(unsigned int pos) {
  static char const* const text = [] {
    static char all[10'100];
    Numbers random;
    for (char& c : all) c = static_cast<char>('a' + random.below(26));
    return all;
  }();
  return text + pos;
}

// Where the classes differ, how each does it.
template <class S>
struct Texts {
  static std::size_t find(S const& s, char c, std::size_t pos) { return s.find(c, pos); }
  static bool has(S const& s, char const* literal) { return s.find(literal) != S::npos; }
  static S piece(S const& s, std::size_t pos, std::size_t n) { return s.substr(pos, n); }
  static std::vector<S> split(S const& s, char separator) {
    std::vector<S> pieces;
    std::size_t begin = 0;
    for (std::size_t end; (end = s.find(separator, begin)) != S::npos; begin = end + 1) {
      pieces.push_back(s.substr(begin, end - begin));
    }
    pieces.push_back(s.substr(begin));
    return pieces;
  }
  static S join(std::vector<S> const& pieces, char separator) {
    S text;
    for (S const& piece : pieces) {
      if (&piece != &pieces.front()) text += separator;
      text += piece;
    }
    return text;
  }
};

// The words of a text: 5,000 different ones of 3 to 12 letters.
template <class S, class Map>
void count_words(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    Map counts;
    Numbers random;
    for (int n = 0; n < word_count; ++n) {
      unsigned int const word = random.below(5000);
      ++counts[S(letters(word * 2), static_cast<int>(3 + word % 10))];
    }
    keep(counts);
  }
}

template <class S>
std::vector<S> some_strings(int count, int size) {
  std::vector<S> strings;
  strings.reserve(static_cast<std::size_t>(count));
  Numbers random;
  for (int n = 0; n < count; ++n) strings.push_back(S(letters(random.below(10'000)), size));
  return strings;
}

template <class S>
void sort_strings(long rounds) {
  static std::vector<S> const unsorted = some_strings<S>(string_count, 20);
  for (long i = 0; i < rounds; ++i) {
    std::vector<S> strings(unsorted);
    std::sort(strings.begin(), strings.end());
    keep(strings);
  }
}

template <class S>
void build_strings(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    std::vector<S> strings = some_strings<S>(string_count, 40);
    keep(strings);
  }
}

template <class S>
void copy_and_drop_strings(long rounds) {
  static std::vector<S> const strings = some_strings<S>(string_count, 40);
  for (long i = 0; i < rounds; ++i) {
    std::vector<S> copies(strings);
    keep(copies);
  }
}

template <class S>
void join_five_parts(long rounds) {
  static std::vector<S> const parts = some_strings<S>(1000, 12);
  for (long i = 0; i < rounds; ++i) {
    for (std::size_t n = 0; n < 100'000; ++n) {
      S joined = parts[n % 1000] + "/" + parts[(n + 1) % 1000] + "." + parts[(n + 2) % 1000];
      keep(joined);
    }
  }
}

// A line of comma-separated fields of 8 letters each.
template <class S>
S line_of_fields(int fields) {
  S line;
  for (int n = 0; n < fields; ++n) {
    if (n != 0) line += ',';
    line += S(letters(static_cast<unsigned int>(n * 7 % 10'000)), 8);
  }
  return line;
}

template <class S>
void take_tokens(long rounds) {
  static S const line = line_of_fields<S>(100'000);
  for (long i = 0; i < rounds; ++i) {
    std::size_t const length = static_cast<std::size_t>(line.size());
    std::size_t bytes = 0;
    for (std::size_t begin = 0; begin < length;) {
      std::size_t const end = std::min(Texts<S>::find(line, ',', begin), length);
      S const token = Texts<S>::piece(line, begin, end - begin);
      bytes += static_cast<std::size_t>(token.size());
      begin = end + 1;
    }
    keep(bytes);
  }
}

// 100 MB in lines of 90 bytes.
template <class S>
void split_and_join_lines(long rounds) {
  static S const line = line_of_fields<S>(10);
  for (long i = 0; i < rounds; ++i) {
    std::size_t bytes = 0;
    for (int n = 0; n < 1'111'111; ++n) {
      S const again = Texts<S>::join(Texts<S>::split(line, ','), ';');
      bytes += static_cast<std::size_t>(again.size());
    }
    keep(bytes);
  }
}

template <class S>
void find_literal_in_lines(long rounds) {
  static std::vector<S> const lines = some_strings<S>(line_count, 80);
  for (long i = 0; i < rounds; ++i) {
    int found = 0;
    for (S const& line : lines) found += Texts<S>::has(line, "needle") ? 1 : 0;
    keep(found);
  }
}

// Bytes of the heap for each string of `size`, its handle not counted.
template <class S>
double memory_of_one(int size) {
  constexpr int count = 100'000;
  std::vector<S> strings;
  strings.reserve(count);
  std::size_t const before = mallinfo2().uordblks;
  for (int n = 0; n < count; ++n)
    strings.push_back(S(letters(static_cast<unsigned int>(n % 9000)), size));
  return static_cast<double>(mallinfo2().uordblks - before) / count;
}

}  // namespace program

#endif
