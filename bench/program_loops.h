// What programs do with thousands of strings of a class S, one loop each.
#ifndef MIROXGCL_BENCH_PROGRAM_LOOPS_H
#define MIROXGCL_BENCH_PROGRAM_LOOPS_H

#include <malloc.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "keep.h"
#include "program_text.h"

// What one string class does: loops, so that a source with the older std::string can hand its own to
// another. A null loop says that the class has nothing of the kind.
struct Programs {
  Loop count_hashed;
  Loop count_ordered;
  Loop sort;
  Loop build_and_drop;
  Loop copy_and_drop;
  Loop join_five;
  Loop read_lines;
  Loop read_words;
  Loop tokens;
  Loop split_and_join;
  Loop find_in_lines;
  std::size_t (*memory_of)(unsigned int length);
};

// Where the classes differ: what stands here serves the standard library's strings.
template <class S>
struct Texts {
  static S make(std::string_view text) { return S(text.data(), text.size()); }
  static std::size_t find(S const& s, char c, std::size_t pos) { return s.find(c, pos); }
  static bool is_found(std::size_t pos) { return pos != S::npos; }
  static S part(S const& s, std::size_t pos, std::size_t n) { return s.substr(pos, n); }
  static bool contains(S const& s, char const* sought) { return s.find(sought) != S::npos; }

  static std::vector<S> split(S const& s, char separator) {
    std::vector<S> fields;
    std::size_t begin = 0;
    for (std::size_t end; (end = s.find(separator, begin)) != S::npos; begin = end + 1) {
      fields.push_back(s.substr(begin, end - begin));
    }
    fields.push_back(s.substr(begin));
    return fields;
  }
  static S join(std::vector<S> const& fields, char separator) {
    S text;
    for (S const& field : fields) {
      if (&field != &fields.front()) text += separator;
      text += field;
    }
    return text;
  }
};

template <class S>
std::vector<S> make_all(std::vector<std::string_view> const& texts) {
  std::vector<S> all;
  all.reserve(texts.size());
  for (std::string_view text : texts) all.push_back(Texts<S>::make(text));
  return all;
}

template <class S, class Map>
void count_words(long rounds) {
  std::vector<std::string_view> const& all = words();
  for (long i = 0; i < rounds; ++i) {
    Map counts;
    for (std::string_view word : all) ++counts[Texts<S>::make(word)];
    keep(counts);
  }
}

template <class S>
void sort_names(long rounds) {
  static std::vector<S> all = make_all<S>(names());
  static std::vector<S> sorted(all.size());
  std::vector<unsigned int> const& order = shuffled();
  for (long i = 0; i < rounds; ++i) {
    auto out = sorted.begin();
    for (unsigned int from : order) *out++ = std::move(all[from]);
    std::sort(sorted.begin(), sorted.end());
    keep(sorted);
    all.swap(sorted);
  }
}

template <class S>
void build_and_drop(long rounds) {
  std::string_view const text = prose();
  for (long i = 0; i < rounds; ++i) {
    std::vector<S> built;
    built.reserve(500'000);
    for (std::size_t n = 0; n < 500'000; ++n) {
      built.push_back(Texts<S>::make(text.substr(n * 20, 40)));
    }
    keep(built);
  }
}

template <class S>
void copy_and_drop_all(long rounds) {
  static std::vector<S> const all = make_all<S>(names());
  for (long i = 0; i < rounds; ++i) {
    std::vector<S> copies(all);
    keep(copies);
  }
}

template <class S>
void join_five(long rounds) {
  S const folder = Texts<S>::make("/var/log/applications");
  S const name = Texts<S>::make("server");
  S const date = Texts<S>::make("2024-02-29");
  for (long i = 0; i < rounds; ++i) {
    for (int n = 0; n < 500'000; ++n) {
      S path = folder + "/" + name + "-" + date;
      keep(path);
    }
  }
}

template <class S>
void read_lines(long rounds) {
  char const* const file = prose_file();
  for (long i = 0; i < rounds; ++i) {
    std::ifstream in(file);
    S line;
    std::size_t bytes = 0;
    while (getline(in, line)) bytes += line.size();
    keep(bytes);
  }
}

template <class S>
void read_words(long rounds) {
  char const* const file = prose_file();
  for (long i = 0; i < rounds; ++i) {
    std::ifstream in(file);
    S word;
    std::size_t bytes = 0;
    while (in >> word) bytes += word.size();
    keep(bytes);
  }
}

template <class S>
void take_tokens(long rounds) {
  static S const text = Texts<S>::make(prose());
  for (long i = 0; i < rounds; ++i) {
    auto begin = Texts<S>::find(text, ' ', 0);
    while (Texts<S>::is_found(begin)) {
      auto const end = Texts<S>::find(text, ' ', begin + 1);
      if (!Texts<S>::is_found(end)) break;
      S token = Texts<S>::part(text, begin + 1, end - begin - 1);
      keep(token);
      begin = end;
    }
  }
}

template <class S>
void split_and_join(long rounds) {
  static std::vector<S> const lines = make_all<S>(csv_lines());
  for (long i = 0; i < rounds; ++i) {
    for (int n = 0; n < 100; ++n) {
      for (S const& line : lines) {
        S changed = Texts<S>::join(Texts<S>::split(line, ','), ';');
        keep(changed);
      }
    }
  }
}

template <class S>
void find_in_lines(long rounds) {
  static std::vector<S> const lines = make_all<S>(log_lines());
  for (long i = 0; i < rounds; ++i) {
    long found = 0;
    for (S const& line : lines) found += Texts<S>::contains(line, "needle") ? 1 : 0;
    keep(found);
  }
}

// The bytes of one string among many: its handle, and what the allocator hands out for the rest.
template <class S>
std::size_t memory_of(unsigned int length) {
  constexpr std::size_t count = 10'000;
  std::vector<S> strings;
  strings.reserve(count);
  std::size_t const before = mallinfo2().uordblks;
  for (std::size_t i = 0; i < count; ++i) {
    strings.push_back(Texts<S>::make(prose().substr(0, length)));
  }
  return sizeof(S) + (mallinfo2().uordblks - before + count / 2) / count;
}

// All but the reading, which not every class has.
template <class S>
Programs programs_without_streams() {
  return {count_words<S, std::unordered_map<S, int>>,
          count_words<S, std::map<S, int>>,
          sort_names<S>,
          build_and_drop<S>,
          copy_and_drop_all<S>,
          join_five<S>,
          nullptr,
          nullptr,
          take_tokens<S>,
          split_and_join<S>,
          find_in_lines<S>,
          memory_of<S>};
}

template <class S>
Programs programs() {
  Programs all = programs_without_streams<S>();
  all.read_lines = read_lines<S>;
  all.read_words = read_words<S>;
  return all;
}

#endif
