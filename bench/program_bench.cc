// Programs that hold thousands of strings, lists or statuses, ours beside the peers.
#include <algorithm>
#include <cstdio>
#include <deque>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "compare.h"
#include "cow_string.h"
#include "miroxgcl/gcl.h"
#include "program_loops.h"
#include "qt.h"

using namespace program;

template <>
struct program::Texts<GCL_String> {
  static std::size_t find(GCL_String const& s, char c, std::size_t pos) {
    return s.find(c, static_cast<unsigned int>(pos));
  }
  static bool has(GCL_String const& s, char const* literal) {
    return s.find(literal) != GCL_String::npos;
  }
  static GCL_String piece(GCL_String const& s, std::size_t pos, std::size_t n) {
    return s.substr(static_cast<unsigned int>(pos), static_cast<unsigned int>(n));
  }
  static GCL_StringList split(GCL_String const& s, char separator) {
    return ::split(s, {&separator, 1});
  }
  static GCL_String join(GCL_StringList const& pieces, char separator) {
    return ::join(pieces, {&separator, 1});
  }
};

#ifdef HAS_QT
template <>
struct program::Texts<QByteArray> {
  static std::size_t find(QByteArray const& s, char c, std::size_t pos) {
    return static_cast<std::size_t>(s.indexOf(c, static_cast<qsizetype>(pos)));
  }
  static bool has(QByteArray const& s, char const* literal) { return s.indexOf(literal) != -1; }
  static QByteArray piece(QByteArray const& s, std::size_t pos, std::size_t n) {
    return s.mid(static_cast<qsizetype>(pos), static_cast<qsizetype>(n));
  }
  static QByteArrayList split(QByteArray const& s, char separator) { return s.split(separator); }
  static QByteArray join(QByteArrayList const& pieces, char separator) {
    return pieces.join(separator);
  }
};
#endif

namespace {

template <class S>
using unordered_counts = std::unordered_map<S, int>;
template <class S>
using ordered_counts = std::map<S, int>;

// A file of 20 MB, in lines of 10 words.
std::string const& file_of_words() {
  static std::string const name = [] {
    std::string const path = "miroxgcl_program_bench.tmp";
    std::ofstream out(path);
    Numbers random;
    for (int n = 0; n < 3'000'000; ++n) {
      unsigned int const word = random.below(5000);
      out.write(letters(word * 2), 3 + word % 8);
      out.put(n % 10 == 9 ? '\n' : ' ');
    }
    return path;
  }();
  return name;
}

template <class S>
void read_by_lines(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    std::ifstream in(file_of_words());
    std::size_t bytes = 0;
    for (S line; getline(in, line);) bytes += line.size();
    keep(bytes);
  }
}

template <class S>
void read_by_words(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    std::ifstream in(file_of_words());
    std::size_t bytes = 0;
    for (S word; in >> word;) bytes += word.size();
    keep(bytes);
  }
}

// What a status amounts to, made of the standard library.
struct standard_status {
  int value = 0;
  std::vector<std::string> messages;
  void set(int code) { value = code; }
  void add_message(std::string const& text) { messages.push_back(text); }
};

template <class Status, class S>
void make_statuses(long rounds) {
  S const message("the file is not where it was yesterday");
  for (long i = 0; i < rounds; ++i) {
    std::vector<Status> statuses(100'000);
    for (Status& status : statuses) {
      status.set(1);
      status.add_message(message);
    }
    keep(statuses);
  }
}

template <class Array>
Array numbers(int count) {
  Array array;
  for (int n = 0; n < count; ++n) array.push_back(n);
  return array;
}

LX_TDynamic<int> our_numbers(int count) {
  LX_TDynamic<int> array(1);
  array.Preallocate(static_cast<unsigned int>(count));
  for (int n = 0; n < count; ++n) array.Append(n);
  return array;
}

template <class Array, Array make(int), int count>
void sum_numbers(long rounds) {
  static Array const array = make(count);
  for (long i = 0; i < rounds; ++i) {
    int sum = 0;
    for (int number : array) sum ^= number;
    keep(sum);
  }
}

template <class Array, Array make(int), int count>
void find_number(long rounds) {
  static Array const array = make(count);
  for (long i = 0; i < rounds; ++i) {
    bool const found = std::find(array.begin(), array.end(), -1) != array.end();
    keep(found);
  }
}

template <class Array, Array make(int), int count>
void sort_numbers(long rounds) {
  Array array = make(count);
  Numbers random;
  for (long i = 0; i < rounds; ++i) {
    for (int& number : array) number = static_cast<int>(random.below(1u << 24));
    std::sort(array.begin(), array.end());
    keep(array);
  }
}

template <int count>
void add_walks(char const* size) {
  using Deque = std::deque<int>;
  using Ours = LX_TDynamic<int>;
  std::string const suffix = std::string(" ") + size + " numbers";
  long const batch = std::max(1, 100'000 / count);
  Row("walk" + suffix, "std::deque <= 1.2", batch)
      .ours(sum_numbers<Ours, our_numbers, count>)
      .peer("std::deque", sum_numbers<Deque, numbers<Deque>, count>);
  Row("find in" + suffix, "std::deque <= 1.2", batch)
      .ours(find_number<Ours, our_numbers, count>)
      .peer("std::deque", find_number<Deque, numbers<Deque>, count>);
  Row("sort" + suffix, "std::deque <= 1.2", batch)
      .ours(sort_numbers<Ours, our_numbers, count>)
      .peer("std::deque", sort_numbers<Deque, numbers<Deque>, count>);
}

}  // namespace

int main(int argc, char** argv) {
  char const* const shared = "CoW string, QByteArray <= 1";
  Row("count 2,000,000 words, unordered_map", shared, 1)
      .ours(count_words<GCL_String, unordered_counts<GCL_String>>)
      .peer("CoW string", cow::count_words)
      .peer("std::string", count_words<std::string, unordered_counts<std::string>>)
      .peer("QByteArray", QT(count_words<QByteArray, unordered_counts<QByteArray>>));
  Row("count 2,000,000 words, map", shared, 1)
      .ours(count_words<GCL_String, ordered_counts<GCL_String>>)
      .peer("CoW string", cow::count_words_in_order)
      .peer("std::string", count_words<std::string, ordered_counts<std::string>>)
      .peer("QByteArray", QT(count_words<QByteArray, ordered_counts<QByteArray>>));
  Row("sort 500,000 strings", shared, 1)
      .ours(sort_strings<GCL_String>)
      .peer("CoW string", cow::sort_strings)
      .peer("std::string", sort_strings<std::string>)
      .peer("QByteArray", QT(sort_strings<QByteArray>));
  Row("build 500,000 strings of 40 bytes", "CoW string, QByteArray <= 1.3", 1)
      .ours(build_strings<GCL_String>)
      .peer("CoW string", cow::build_strings)
      .peer("std::string", build_strings<std::string>)
      .peer("QByteArray", QT(build_strings<QByteArray>));
  Row("copy and drop 500,000 strings", shared, 1)
      .ours(copy_and_drop_strings<GCL_String>)
      .peer("CoW string", cow::copy_and_drop_strings)
      .peer("std::string", copy_and_drop_strings<std::string>)
      .peer("QByteArray", QT(copy_and_drop_strings<QByteArray>));
  Row("join five parts 100,000 times", shared, 1)
      .ours(join_five_parts<GCL_String>)
      .peer("CoW string", cow::join_five_parts)
      .peer("std::string", join_five_parts<std::string>)
      .peer("QByteArray", QT(join_five_parts<QByteArray>));
  Row("100,000 tokens by find and substr", shared, 1)
      .ours(take_tokens<GCL_String>)
      .peer("CoW string", cow::take_tokens)
      .peer("std::string", take_tokens<std::string>)
      .peer("QByteArray", QT(take_tokens<QByteArray>));
  Row("split and join 100 MB in lines", shared, 1)
      .ours(split_and_join_lines<GCL_String>)
      .peer("CoW string", cow::split_and_join_lines)
      .peer("std::string", split_and_join_lines<std::string>)
      .peer("QByteArray", QT(split_and_join_lines<QByteArray>));
  Row("a literal in 200,000 lines", shared, 1)
      .ours(find_literal_in_lines<GCL_String>)
      .peer("CoW string", cow::find_literal_in_lines)
      .peer("std::string", find_literal_in_lines<std::string>)
      .peer("QByteArray", QT(find_literal_in_lines<QByteArray>));
  Row("read 20 MB by getline", "std::string <= 1.25", 1)
      .ours(read_by_lines<GCL_String>)
      .peer("std::string", read_by_lines<std::string>);
  Row("read 20 MB by >>", "std::string <= 1.25", 1)
      .ours(read_by_words<GCL_String>)
      .peer("std::string", read_by_words<std::string>);
  Row("100,000 statuses with a message each", "int and vector of std::string <= 1", 1)
      .ours(make_statuses<GCL_Status, GCL_String>)
      .peer("int and vector of std::string", make_statuses<standard_status, std::string>);
  add_walks<1000>("1,000");
  add_walks<1'000'000>("1,000,000");
  for (int const size : {10, 40, 200}) {
    MemoryRow("memory of a string of " + std::to_string(size) + " bytes",
              "CoW string, QByteArray <= 1.5", size)
        .ours(memory_of_one<GCL_String>)
        .peer("CoW string", cow::memory_of_one)
        .peer("std::string", memory_of_one<std::string>)
        .peer("QByteArray", QT(memory_of_one<QByteArray>));
  }
  int const code = run_rows(argc, argv);
  std::remove("miroxgcl_program_bench.tmp");
  return code;
}
