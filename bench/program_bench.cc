// Whole programs: thousands of strings at once, beside the standard library's two strings and Qt's;
// thousands of statuses; and walks over an array by the standard library's means.
#include <malloc.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "compare.h"
#include "cow_program.h"
#include "miroxgcl/gcl_status.h"
#include "miroxgcl/gcl_string.h"
#include "miroxgcl/gcl_string_algo.h"
#include "miroxgcl/lx_dynamic.h"
#include "program_loops.h"
#include "qt.h"

template <>
struct Texts<GCL_String> {
  static GCL_String make(std::string_view text) { return GCL_String(text.data(), text.size()); }
  static unsigned int find(GCL_String const& s, char c, unsigned int pos) { return s.find(c, pos); }
  static bool is_found(unsigned int pos) { return pos != GCL_String::npos; }
  static GCL_String part(GCL_String const& s, unsigned int pos, unsigned int n) {
    return s.substr(pos, n);
  }
  static bool contains(GCL_String const& s, char const* sought) { return s.contains(sought); }
  static GCL_StringList split(GCL_String const& s, char separator) {
    return ::split(s, std::string_view(&separator, 1));
  }
  static GCL_String join(GCL_StringList const& fields, char separator) {
    return ::join(fields, std::string_view(&separator, 1));
  }
};

#ifdef HAS_QT
template <>
struct Texts<QByteArray> {
  static QByteArray make(std::string_view text) {
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
  }
  static qsizetype find(QByteArray const& s, char c, qsizetype pos) { return s.indexOf(c, pos); }
  static bool is_found(qsizetype pos) { return pos >= 0; }
  static QByteArray part(QByteArray const& s, qsizetype pos, qsizetype n) { return s.mid(pos, n); }
  static bool contains(QByteArray const& s, char const* sought) { return s.contains(sought); }
  static QList<QByteArray> split(QByteArray const& s, char separator) { return s.split(separator); }
  static QByteArray join(QList<QByteArray> const& fields, char separator) {
    return fields.join(separator);
  }
};
#endif

namespace {

// The library's programs and the peers'.
struct Contest {
  Programs ours = programs<GCL_String>();
  Programs cow = cow::programs();
  Programs roomy = cow::programs_in_our_blocks();
  Programs standard = programs<std::string>();
#ifdef HAS_QT
  Programs qt = programs_without_streams<QByteArray>();
#else
  Programs qt = {};
#endif

  void row(std::string const& name, std::string const& reach, Loop Programs::*loop) const {
    Row(name, reach, 1)
        .ours(ours.*loop)
        .peer("CoW string", cow.*loop)
        .peer("CoW string in our blocks", roomy.*loop)
        .peer("std::string", standard.*loop)
        .peer("QByteArray", qt.*loop);
  }
};

// What the growth rule and the allocator make of a string of ours, without anything besides.
template <unsigned int length>
std::size_t least_memory() {
  std::size_t const capacity = GCL_String('x', length).capacity() + 1u;
  void* const block = std::malloc(sizeof(GCL_StringRep) + capacity);
  std::size_t const size = malloc_usable_size(block) + sizeof(std::size_t);  // and its header
  std::free(block);
  return sizeof(GCL_String) + size;
}

template <unsigned int length>
void register_memory(Contest const& all) {
  ByteRow const row("memory of a string of " + std::to_string(length) + " bytes",
                    "body + capacity + allocator <= 1");
  row.ours([=] { return all.ours.memory_of(length); });
  row.peer("body + capacity + allocator", least_memory<length>);
  row.peer("CoW string", [=] { return all.cow.memory_of(length); });
  row.peer("std::string", [=] { return all.standard.memory_of(length); });
  if (all.qt.memory_of != nullptr) {
    row.peer("QByteArray", [=] { return all.qt.memory_of(length); });
  }
}

void register_strings() {
  Contest const all;
  std::string const reach = "CoW string, QByteArray <= 1";
  all.row("count 2,000,000 words in an unordered_map", reach, &Programs::count_hashed);
  all.row("count 2,000,000 words in a map", reach, &Programs::count_ordered);
  all.row("sort 500,000 strings", reach, &Programs::sort);
  all.row("build and drop 500,000 of 40 bytes", "CoW string, QByteArray <= 1.3",
          &Programs::build_and_drop);
  all.row("copy and drop 500,000", reach, &Programs::copy_and_drop);
  all.row("join five parts with +, 500,000 times", reach, &Programs::join_five);
  all.row("read 17 MB of text by getline", "std::string <= 1.25", &Programs::read_lines);
  all.row("read 2,000,000 words by >>", "std::string <= 1.25", &Programs::read_words);
  all.row("2,000,000 tokens by find and substr", reach, &Programs::tokens);
  all.row("split and join 100 MB of CSV", reach, &Programs::split_and_join);
  all.row("find a literal in 200,000 lines", reach, &Programs::find_in_lines);
  register_memory<10>(all);
  register_memory<40>(all);
  register_memory<200>(all);
}

// What a program has that knows no class of statuses.
struct PlainStatus {
  int code = 0;
  std::vector<std::string> messages;
};

constexpr char const* message = "The user nobody-here does not exist.";

void fail(GCL_Status& status) {
  status.set(GCL_Status::no_such_name);
  status.add_message(message);
}

void fail(PlainStatus& status) {
  status.code = 2;
  status.messages.emplace_back(message);
}

template <class Status>
void fail_often(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    std::vector<Status> all(100'000);
    for (Status& status : all) fail(status);
    keep(all);
  }
}

std::vector<int> const& random_numbers() {
  static std::vector<int> const all = [] {
    std::mt19937 random(7);
    std::vector<int> result(1'000'000);
    for (int& n : result) n = static_cast<int>(random() >> 1);
    return result;
  }();
  return all;
}

using Ours = LX_TDynamic<int>;

void preallocate(Ours& array, unsigned int n) { array.Preallocate(n); }
void preallocate(std::deque<int>&, unsigned int) {}  // knows nothing of the kind

template <class Array, int count>
Array filled() {
  Array array;
  preallocate(array, count);
  std::copy_n(random_numbers().begin(), count, std::back_inserter(array));
  return array;
}

template <class Array, int count>
void sum(long rounds) {
  static Array const array = filled<Array, count>();
  for (long i = 0; i < rounds; ++i) {
    int total = 0;
    for (int item : array) total ^= item;
    keep(total);
  }
}

// Other numbers each time, so that the processor cannot learn their order.
template <class Array, int count>
void sort(long rounds) {
  static Array array = filled<Array, count>();
  for (long i = 0; i < rounds; ++i) {
    long const from = i * count % static_cast<long>(random_numbers().size());
    std::copy_n(random_numbers().begin() + from, count, array.begin());
    std::sort(array.begin(), array.end());
    keep(array);
  }
}

// The number sought stands nowhere.
template <class Array, int count>
void find(long rounds) {
  static Array const array = filled<Array, count>();
  for (long i = 0; i < rounds; ++i) {
    auto found = std::find(array.begin(), array.end(), -1);
    keep(found);
  }
}

template <int count>
void register_walks(std::string const& size) {
  constexpr long batch = count == 1000 ? 100 : 1;
  std::string const reach = "std::deque <= 1.2";
  Row("array: sum " + size + " by range-for", reach, batch)
      .ours(sum<Ours, count>)
      .peer("std::deque", sum<std::deque<int>, count>);
  Row("array: sort " + size, reach, batch)
      .ours(sort<Ours, count>)
      .peer("std::deque", sort<std::deque<int>, count>);
  Row("array: find in " + size, reach, batch)
      .ours(find<Ours, count>)
      .peer("std::deque", find<std::deque<int>, count>);
}

}  // namespace

int main(int argc, char** argv) {
  // Memory once had stays with the process: what the kernel takes for pages depends on the order of
  // the rows.
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  mallopt(M_MMAP_THRESHOLD, 1 << 25);
  register_strings();
  Row("100,000 statuses with a message each", "code and std::vector of std::string <= 1", 1)
      .ours(fail_often<GCL_Status>)
      .peer("code and std::vector of std::string", fail_often<PlainStatus>);
  register_walks<1000>("1,000");
  register_walks<1'000'000>("1,000,000");
  return run_rows(argc, argv);
}
