// The library's values among the standard library's, in C++20. What is written alike for both is in
// the tables of doc/coming-from.md; here is what such calls do besides, and where they differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "miroxgcl/gcl.h"
#include "support/failing_allocator.h"

namespace {

using namespace std::literals;

static_assert(std::is_nothrow_swappable_v<GCL_String> && std::is_nothrow_swappable_v<GCL_Status> &&
              std::is_nothrow_move_assignable_v<GCL_StringList> &&
              std::is_nothrow_move_assignable_v<GCL_Credentials>);
static_assert(!std::is_convertible_v<std::string_view, GCL_String> &&
              !std::is_convertible_v<GCL_Status, bool>);

void expect_same(std::string_view ours, std::string const& theirs) { EXPECT_EQ(ours, theirs); }

// Runs `operation` with its first allocation failing.
template <class Operation>
bool allocates(Operation operation) {
  try {
    failing_allocator const failing(1);
    operation();
    return false;
  } catch (std::bad_alloc const&) {
    return true;
  }
}

TEST(Standard, CharactersAreReadWhereTheyAre) {
  GCL_String s("a\0c"s);
  GCL_String const shared(s);

  EXPECT_EQ(s[1], '\0');
  EXPECT_EQ(s[3], '\0');
  EXPECT_EQ(&s[0], shared.data());
  EXPECT_EQ(s.at(2), 'c');
  EXPECT_THROW(s.at(3), std::out_of_range);
  EXPECT_THROW(s.at(SIZE_MAX / 2 + 1), std::out_of_range);
  EXPECT_THROW(GCL_String().at(0), std::out_of_range);
  EXPECT_TRUE(GCL_String().begin() == GCL_String().end());
  expect_same(GCL_String(s.rbegin(), s.rend()), "c\0a"s);
}

TEST(Standard, EditsLeaveCopiesAlone) {
  GCL_String const whole("one/two");
  GCL_String s(whole);

  s.resize(3);
  expect_same(s, "one");
  s.resize(5);
  expect_same(s, "one\0\0"s);
  s.pop_back();
  s.erase(3, 9);
  expect_same(s, "one");
  s.erase();
  EXPECT_TRUE(s.empty());
  s = 'c';
  s.append(whole.begin() + 3, whole.end());
  expect_same(s, "c/two");
  s.append(s.begin(), s.end());
  expect_same(s, "c/twoc/two");
  s = s.c_str() + 5;
  expect_same(s, "c/two");
  s.clear();
  s.push_back('x');
  swap(s, s = "y");
  expect_same(s, "y");
  expect_same(whole, "one/two");
}

template <class Text>
void expect_ordered(GCL_String const& less, Text const& more) {
  EXPECT_TRUE(less < more && less <= more && less != more && !(less == more));
  EXPECT_TRUE(more > less && more >= less && more != less && !(more == less));
  EXPECT_FALSE(less > more || less >= more || more < less || more <= less);
  EXPECT_LT(less.compare(more), 0);
  EXPECT_TRUE((less <=> more) < 0 && (more <=> less) > 0);
}

TEST(Standard, TextsOfEveryTypeCompareByTheirBytes) {
  GCL_String const s("a\x7f");
  expect_ordered(s, GCL_String("a\x80"));
  expect_ordered(s, "a\x80");
  expect_ordered(s, "a\x80"s);
  expect_ordered(s, "a\x80"sv);
  EXPECT_TRUE("a\0b"sv == GCL_String("a\0b"s) && GCL_String("a\0b"s) != "a");
}

TEST(Standard, LiteralsAreUsedWhereTheyAre) {
  GCL_String s("a text that is longer than any short one, and has a / in it");
  s.reserve(200);

  EXPECT_FALSE(allocates([&] { EXPECT_EQ(s.find("longer"), 15u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(s.find('/'), 52u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(s.find("/ in it, not this"sv.substr(0, 4)), 52u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(s.rfind("text"s, 60), 2u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(s.find_last_of("xyz"), 29u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_TRUE(s.compare("a") > 0 && s != "a"sv && "a" < s); }));
  EXPECT_FALSE(allocates([&] { s.insert(2, "new "); }));
  EXPECT_FALSE(allocates([&] { s.replace(0, 1, "the"); }));
  EXPECT_FALSE(allocates([&] { s.append("!").append("?"sv) += '.'; }));
  EXPECT_FALSE(allocates([&] { s = "another text, longer than what fits into a pointer"; }));
  EXPECT_TRUE(allocates([&] { s = "a" + s; }));
}

TEST(Standard, MapsLookTextsUpWhereTheyAre) {
  std::map<GCL_String, int, std::less<>> const ordered{{"a key of more than 16 bytes", 1}};
  std::unordered_map<GCL_String, int, std::hash<GCL_String>, std::equal_to<>> const hashed{
      {"a key of more than 16 bytes", 2}};

  EXPECT_FALSE(allocates([&] { EXPECT_EQ(ordered.count("a key of more than 16 bytes"), 1u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(hashed.count("a key of more than 16 bytes"sv), 1u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(hashed.count("no key of them all"), 0u); }));
}

TEST(Standard, HashesSpreadTextsWithACommonTail) {
  std::set<std::size_t> hashes;
  for (int i = 0; i < 1000; ++i) {
    hashes.insert(std::hash<GCL_String>()(std::to_string(i) + std::string(60, 'x')));
  }
  EXPECT_GT(hashes.size(), 990u);
}

TEST(Standard, LeftSideOfASumMayBeMovedFromLater) {
  for (auto* const add : {+[](GCL_String& s) { return std::move(s) + s; },
                          +[](GCL_String& s) { return std::move(s) + s.c_str(); },
                          +[](GCL_String& s) { return std::move(s) + s.substr(0); }}) {
    GCL_String s("one");
    expect_same(add(s), "oneone");
  }
}

TEST(Standard, WhereTextsDiffer) {
  EXPECT_EQ(GCL_String("").find(""), GCL_String::npos);        // std::string: 0
  EXPECT_EQ(GCL_String("a\0b"s).find("b"), GCL_String::npos);  // sees up to the first NUL
  EXPECT_FALSE(GCL_String("a\0b"s) == "a" || "a" == GCL_String("a\0b"s));
  char const* const null = nullptr;
  EXPECT_TRUE(GCL_String(null, 5) == null && GCL_String().assign(null, 5) == "");  // not undefined
  EXPECT_THROW(GCL_String(std::string_view("", std::size_t{1} << 31)), std::bad_alloc);
  EXPECT_THROW(GCL_String(std::string_view("", SIZE_MAX / 2 + 2)), std::bad_alloc);
  GCL_String const a("one"), b(a);
  EXPECT_EQ(a.body(), b.body());  // a copy shares
}

TEST(Standard, WholeTextOperations) {
  GCL_String const path("/usr//lib/");
  expect_same(join(split(path, "/"), "|"), "|usr||lib|");
  expect_same(join(split(path, ""), "|"), "/usr//lib/");
  EXPECT_TRUE(split(GCL_String(), "/").Length() == 1 && join(GCL_StringList{}, "/") == "");
  EXPECT_TRUE(starts_with(path, "/usr") && !starts_with(path, "usr") && starts_with(path, ""));
  EXPECT_TRUE(ends_with(path, "lib/") && !ends_with(path, "//usr//lib/") && ends_with(path, ""));
  EXPECT_TRUE(trim(GCL_String(" \t a b\n")) == "a b" && trim(GCL_String(" \n ")) == "");
  EXPECT_EQ(trim(path).body(), path.body());
  EXPECT_EQ(split(GCL_String(',', 1'000'000), ",").Length(), 1'000'001u);  // in linear time
}

TEST(Standard, ListsAreArraysForTheAlgorithms) {
  std::vector<int> theirs = {3, 1, 2};
  GCL_IntegerList ours = {3, 1, 2};
  ours.Append(4), theirs.push_back(4);
  ours.Insert(0, 1), theirs.insert(theirs.begin() + 1, 0);
  ours.Remove(0), theirs.erase(theirs.begin());
  std::sort(ours.begin(), ours.end()), std::sort(theirs.begin(), theirs.end());
  EXPECT_TRUE(std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end()));
  for (int k : {0, 4}) {
    EXPECT_EQ(ours.Location(k), std::find(theirs.begin(), theirs.end(), k) - theirs.begin());
  }
  EXPECT_EQ(ours.First() + ours.Last(), theirs.front() + theirs.back());
  GCL_StringList words;
  words = {"b", "a"};
  std::reverse(words.begin(), words.end());
  for (GCL_String& word : words) word += '!';
  expect_same(join(words, ","), "a!,b!");

  LX_TUnbounded<int> list{1, 2, 3};
  for (int& item : list) item *= 2;
  EXPECT_EQ(std::accumulate(list.begin(), list.end(), 0), 12);
  LX_TUnboundedStack<int> stack;
  for (int const item : list) stack.Push(item);
  EXPECT_EQ(std::vector<int>(stack.begin(), stack.end()), (std::vector<int>{6, 4, 2}));
}

}  // namespace
