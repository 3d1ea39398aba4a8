// GCL_String beside the standard library's two strings, Qt's, and the C library's loops.
#include <cstring>
#include <string>
#include <vector>

#include "compare.h"
#include "cow_string.h"
#include "miroxgcl/gcl_string.h"
#include "qt.h"
#include "string_loops.h"

template <>
struct Edits<GCL_String> {
  static void append(GCL_String& s, char c) { s.append(c); }
  static void erase(GCL_String& s, unsigned int pos, unsigned int n) { s.remove(pos, n); }
  static void put(GCL_String& s, unsigned int pos, char c) { s.put_at(pos, c); }
};

#ifdef HAS_QT
template <>
struct Edits<QByteArray> {
  static void append(QByteArray& s, char c) { s.append(c); }
  static void erase(QByteArray& s, unsigned int pos, unsigned int n) { s.remove(pos, n); }
  static void put(QByteArray& s, unsigned int pos, char c) { s[pos] = c; }
};
#endif

namespace {

void memmem_at_end(long rounds) {
  static std::string const text = megabyte<std::string>(lower_case, 27, "eight  8");
  char const sought[] = "eight  8";
  for (long i = 0; i < rounds; ++i) {
    void* found = memmem(text.data(), text.size(), sought, 8);
    keep(found);
  }
}

void memchr_at_end(long rounds) {
  static std::string const text = megabyte<std::string>(lower_case, 27, "Y");
  for (long i = 0; i < rounds; ++i) {
    void const* found = std::memchr(text.data(), 'Y', text.size());
    keep(found);
  }
}

void memcmp_megabyte(long rounds) {
  static std::string const a = megabyte<std::string>(lower_case, 27, "");
  static std::string const b = a;
  for (long i = 0; i < rounds; ++i) {
    char const* p = a.data();
    keep(p);
    int order = std::memcmp(p, b.data(), a.size());
    keep(order);
  }
}

template <unsigned int size>
void hash(long rounds) {
  GCL_String text('x', size);
  for (long i = 0; i < rounds; ++i) {
    keep(text);
    unsigned int hash = text.hash();
    keep(hash);
  }
}

// One step a word: no hash of this kind can be had sooner, as each step waits for the last.
template <unsigned int size>
void hash_by_hand(long rounds) {
  static_assert(size % 4 == 0, "whole words");
  std::string text(size, 'x');
  for (long i = 0; i < rounds; ++i) {
    keep(text);
    unsigned int hash = size;
    char const* const end = text.data() + size;
    for (char const* p = text.data(); p != end; p += 4) {
      unsigned int word;
      std::memcpy(&word, p, 4);
      hash = ((hash << 5) | (hash >> 31)) ^ word;
    }
    keep(hash);
  }
}

void register_sharing() {
  Row("copy and drop 100 bytes", "CoW string <= 0.8")
      .ours(copy_and_drop<GCL_String>)
      .peer("CoW string", cow::copy_and_drop)
      .peer("std::string", copy_and_drop<std::string>)
      .peer("QByteArray", QT(copy_and_drop<QByteArray>));
  Row("assign one of two strings", "CoW string <= 0.8")
      .ours(assign_one_of_two<GCL_String>)
      .peer("CoW string", cow::assign_one_of_two)
      .peer("std::string", assign_one_of_two<std::string>)
      .peer("QByteArray", QT(assign_one_of_two<QByteArray>));
  Row("make and drop 12 bytes", "CoW string <= 1.25")
      .ours(make_and_drop<GCL_String, 12>)
      .peer("CoW string", cow::make_and_drop_12)
      .peer("std::string", make_and_drop<std::string, 12>)
      .peer("QByteArray", QT(make_and_drop<QByteArray, 12>));
  Row("make and drop 100 bytes", "CoW string <= 1.25")
      .ours(make_and_drop<GCL_String, 100>)
      .peer("CoW string", cow::make_and_drop_100)
      .peer("std::string", make_and_drop<std::string, 100>)
      .peer("QByteArray", QT(make_and_drop<QByteArray, 100>));
  Row("copy 100 bytes and write one", "CoW string <= 1")
      .ours(copy_and_write<GCL_String>)
      .peer("CoW string", cow::copy_and_write)
      .peer("std::string", copy_and_write<std::string>)
      .peer("QByteArray", QT(copy_and_write<QByteArray>));
}

void register_editing() {
  Row("append 1 byte a million times", "std::string <= 1.5", 1)
      .ours(append_million<GCL_String>)
      .peer("CoW string", cow::append_million)
      .peer("std::string", append_million<std::string>)
      .peer("QByteArray", QT(append_million<QByteArray>));
  Row("append 32 bytes 32,768 times", "CoW string <= 1", 1)
      .ours(append_runs<GCL_String>)
      .peer("CoW string", cow::append_runs)
      .peer("std::string", append_runs<std::string>)
      .peer("QByteArray", QT(append_runs<QByteArray>));
  Row("insert and erase 8 bytes amid 1,000", "std::string <= 1")
      .ours(insert_and_erase<GCL_String>)
      .peer("CoW string", cow::insert_and_erase)
      .peer("std::string", insert_and_erase<std::string>)
      .peer("QByteArray", QT(insert_and_erase<QByteArray>));
}

void register_literals() {
  Row("find a literal in 60 bytes", "std::string <= 1")
      .ours(find_literal<GCL_String>)
      .peer("std::string", find_literal<std::string>);
  Row("insert and remove a literal amid 1,000", "std::string <= 1.1")
      .ours(insert_and_erase_literal<GCL_String>)
      .peer("std::string", insert_and_erase_literal<std::string>);
  Row("compare with a literal", "std::string <= 1")
      .ours(compare_with_literal<GCL_String>)
      .peer("std::string", compare_with_literal<std::string>);
  Row("add literals at both ends", "std::string <= 1.25")
      .ours(add_literals<GCL_String>)
      .peer("std::string", add_literals<std::string>);
}

void register_searching() {
  Row("find 8 bytes at the end of 1 MB", "std::string <= 0.35", 1)
      .ours(find_at_end<GCL_String>)
      .peer("std::string", find_at_end<std::string>)
      .peer("memmem", memmem_at_end);
  Row("find one of 3 characters in 1 MB", "std::string <= 0.1", 1)
      .ours(find_one_of_three<GCL_String>)
      .peer("std::string", find_one_of_three<std::string>)
      .peer("memchr of one", memchr_at_end);
  Row("find what is not of 3 in 1 MB", "std::string <= 0.5", 1)
      .ours(find_none_of_three<GCL_String>)
      .peer("std::string", find_none_of_three<std::string>);
  Row("compare 20 bytes", "std::string <= 1")
      .ours(compare_20<GCL_String>)
      .peer("std::string", compare_20<std::string>)
      .peer("QByteArray", QT(compare_20<QByteArray>));
  Row("compare 1 MB", "memcmp <= 1.05", 10)
      .ours(compare_megabyte<GCL_String>)
      .peer("std::string", compare_megabyte<std::string>)
      .peer("memcmp", memcmp_megabyte);
  Row("hash 100 bytes", "by hand <= 1.1").ours(hash<100>).peer("by hand", hash_by_hand<100>);
  Row("hash 1 MB", "by hand <= 1.1", 10)
      .ours(hash<1'000'000>)
      .peer("by hand", hash_by_hand<1'000'000>);
}

}  // namespace

int main(int argc, char** argv) {
  register_sharing();
  register_editing();
  register_literals();
  register_searching();
  return run_rows(argc, argv);
}
