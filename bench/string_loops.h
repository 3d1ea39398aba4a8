// The operations on a string class S, one loop each.
#ifndef MIROXGCL_BENCH_STRING_LOOPS_H
#define MIROXGCL_BENCH_STRING_LOOPS_H

#include <string>

#include "keep.h"

// 100 bytes of text.
inline char const* text_100() {
  static char const text[] =
      "one and two and three and four and five and six and seven and eight and nine and ten and "
      "that is it.";
  static_assert(sizeof text == 101, "100 bytes and the terminator");
  return text;
}

// 1 MB whose bytes follow one another without order, all of `letters`, and then `end`.
template <class S>
S megabyte(char const* letters, unsigned int count, char const* end) {
  S text;
  unsigned int random = 1;
  for (int i = 0; i < 1'000'000; ++i) {
    random = random * 1664525u + 1013904223u;
    text.append(letters + (random >> 16) % count, 1);
  }
  text.append(end);
  return text;
}

constexpr char const* lower_case = "abcdefghijklmnopqrstuvwxyz ";

// Where the classes differ, how each does it; GCL_String's stand in string_bench.cc.
template <class S>
struct Edits {
  static void append(S& s, char c) { s.push_back(c); }
  static void erase(S& s, unsigned int pos, unsigned int n) { s.erase(pos, n); }
  static void put(S& s, unsigned int pos, char c) { s[pos] = c; }
};

template <class S>
void copy_and_drop(long rounds) {
  S const text(text_100(), 100);
  for (long i = 0; i < rounds; ++i) {
    S copy(text);
    keep(copy);
  }
}

template <class S>
void assign_one_of_two(long rounds) {
  S const texts[] = {S(text_100(), 100), S(text_100() + 10, 90)};
  S target;
  for (long i = 0; i < rounds; ++i) {
    target = texts[i & 1];
    keep(target);
  }
}

template <class S, int size>
void make_and_drop(long rounds) {
  char const* text = text_100();
  for (long i = 0; i < rounds; ++i) {
    keep(text);
    S made(text, size);
    keep(made);
  }
}

template <class S>
void append_million(long rounds) {
  for (long i = 0; i < rounds; ++i) {
    S text;
    for (int n = 0; n < 1'000'000; ++n) {
      Edits<S>::append(text, 'x');
      keep(text);
    }
  }
}

template <class S>
void append_runs(long rounds) {
  S const run(text_100(), 32);
  for (long i = 0; i < rounds; ++i) {
    S text;
    for (int n = 0; n < 32'768; ++n) {
      text.append(run);
      keep(text);
    }
  }
}

template <class S>
void insert_and_erase(long rounds) {
  S text;
  for (int n = 0; n < 10; ++n) text.append(text_100(), 100);
  S const eight(text_100(), 8);
  for (long i = 0; i < rounds; ++i) {
    text.insert(500, eight);
    keep(text);
    Edits<S>::erase(text, 500, 8);
    keep(text);
  }
}

template <class S>
void copy_and_write(long rounds) {
  S const text(text_100(), 100);
  for (long i = 0; i < rounds; ++i) {
    S copy(text);
    Edits<S>::put(copy, 50, 'x');
    keep(copy);
  }
}

template <class S>
void find_at_end(long rounds) {
  static S const text = megabyte<S>(lower_case, 27, "eight  8");
  S const sought("eight  8", 8);
  for (long i = 0; i < rounds; ++i) {
    auto found = text.find(sought);
    keep(found);
  }
}

template <class S>
void find_one_of_three(long rounds) {
  static S const text = megabyte<S>(lower_case, 27, "Y");
  S const set("XYZ", 3);
  for (long i = 0; i < rounds; ++i) {
    auto found = text.find_first_of(set);
    keep(found);
  }
}

template <class S>
void find_none_of_three(long rounds) {
  static S const text = megabyte<S>("abc", 3, "d");
  S const set("abc", 3);
  for (long i = 0; i < rounds; ++i) {
    auto found = text.find_first_not_of(set);
    keep(found);
  }
}

template <class S>
void find_literal(long rounds) {
  S text(text_100(), 60);
  for (long i = 0; i < rounds; ++i) {
    keep(text);
    auto found = text.find("eight");
    keep(found);
  }
}

template <class S>
void insert_and_erase_literal(long rounds) {
  S text;
  for (int n = 0; n < 10; ++n) text.append(text_100(), 100);
  for (long i = 0; i < rounds; ++i) {
    text.insert(500, "a literal");
    keep(text);
    text.erase(500, 9);
    keep(text);
  }
}

template <class S>
void compare_with_literal(long rounds) {
  S text("a literal");
  for (long i = 0; i < rounds; ++i) {
    keep(text);
    bool equal = text == "a literal";
    keep(equal);
  }
}

template <class S>
void add_literals(long rounds) {
  S text(text_100(), 20);
  for (long i = 0; i < rounds; ++i) {
    keep(text);
    S sum = "a" + text + "b";
    keep(sum);
  }
}

template <class S>
void compare_20(long rounds) {
  S a(text_100(), 20);
  S b(text_100(), 20);
  for (long i = 0; i < rounds; ++i) {
    keep(a);
    keep(b);
    int order = a.compare(b);
    keep(order);
  }
}

template <class S>
void compare_megabyte(long rounds) {
  static S a = megabyte<S>(lower_case, 27, "");
  static S b = megabyte<S>(lower_case, 27, "");
  for (long i = 0; i < rounds; ++i) {
    keep(a);
    keep(b);
    int order = a.compare(b);
    keep(order);
  }
}

#endif
