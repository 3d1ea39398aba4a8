#include "program_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <random>
#include <string>

namespace {

using Views = std::vector<std::string_view>;

class Writer {
 public:
  explicit Writer(unsigned int seed) : m_random(seed) {}
  unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_random()) % limit; }
  std::string letters(unsigned int least, unsigned int most) {
    std::string text(least + below(most - least + 1), ' ');
    for (char& c : text) c = static_cast<char>('a' + below(26));
    return text;
  }

 private:
  std::mt19937 m_random;
};

// Views of texts that are never freed.
Views views_of(std::vector<std::string>* texts) { return Views(texts->begin(), texts->end()); }

template <class Make>
Views make_views(std::size_t count, unsigned int seed, Make make) {
  Writer writer(seed);
  auto* const texts = new std::vector<std::string>;
  for (std::size_t i = 0; i < count; ++i) texts->push_back(make(writer, i));
  return views_of(texts);
}

class ProseFile {
 public:
  ProseFile() { std::ofstream(name) << prose(); }
  ProseFile(ProseFile const&) = delete;
  ProseFile& operator=(ProseFile const&) = delete;
  ~ProseFile() { std::remove(name); }

  static constexpr char const* name = "miroxgcl_program_bench.tmp";
};

}  // namespace

std::vector<std::string_view> const& words() {
  static Views const all = [] {
    Views const different =
        make_views(20'000, 1, [](Writer& w, std::size_t) { return w.letters(3, 12); });
    Writer writer(2);
    Views result;
    for (int i = 0; i < 2'000'000; ++i) result.push_back(different[writer.below(20'000)]);
    return result;
  }();
  return all;
}

std::vector<std::string_view> const& names() {
  static Views const all =
      make_views(500'000, 3, [](Writer& w, std::size_t) { return w.letters(8, 24); });
  return all;
}

std::vector<unsigned int> const& shuffled() {
  static std::vector<unsigned int> const all = [] {
    std::vector<unsigned int> result(names().size());
    std::iota(result.begin(), result.end(), 0u);
    std::shuffle(result.begin(), result.end(), std::mt19937(4));
    return result;
  }();
  return all;
}

std::string_view prose() {
  static std::string const text = [] {
    std::string result;
    std::size_t line_begin = 0;
    for (std::string_view word : words()) {
      bool const fits = result.size() + 1 + word.size() - line_begin <= 80;
      if (!result.empty()) result += fits ? ' ' : '\n';
      if (!fits) line_begin = result.size();
      result += word;
    }
    return result + '\n';
  }();
  return text;
}

char const* prose_file() {
  static ProseFile const file;
  return ProseFile::name;
}

std::vector<std::string_view> const& csv_lines() {
  static Views const all = make_views(10'000, 5, [](Writer& w, std::size_t) {
    std::string line = w.letters(4, 14);
    for (int field = 1; field < 10; ++field) line += ',' + w.letters(4, 14);
    return line;
  });
  return all;
}

std::vector<std::string_view> const& log_lines() {
  static Views const all = make_views(200'000, 6, [](Writer& w, std::size_t i) {
    std::string line = w.letters(3, 12);
    std::size_t const size = 10 + w.below(81);
    while (line.size() < size) line += ' ' + w.letters(1, 9);
    return i % 1000 == 999 ? line + " needle" : line;
  });
  return all;
}
