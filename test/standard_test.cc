// The library's values among the standard library's, and what doc/coming-from.md says of
// std::string and std::vector: each pair gives the same, but where a test says how they differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "miroxgcl/gcl.h"

namespace {

using namespace std::string_literals;

static_assert(std::is_nothrow_swappable_v<GCL_String> && std::is_nothrow_swappable_v<GCL_Status> &&
              std::is_nothrow_move_assignable_v<GCL_StringList> &&
              std::is_nothrow_move_assignable_v<GCL_Credentials>);
static_assert(!std::is_convertible_v<std::string_view, GCL_String> &&
              !std::is_convertible_v<GCL_Status, bool>);

void expect_same(std::string_view ours, std::string const& theirs) { EXPECT_EQ(ours, theirs); }

TEST(Standard, TextsAreMadeAndEditedAlike) {
  std::string theirs("one\0two"s);
  GCL_String ours(theirs);
  expect_same(ours.substr(3, 3), theirs.substr(3, 3));
  expect_same("x" + ours + '!' + "y" + ours, "x" + theirs + '!' + "y" + theirs);
  expect_same(GCL_String('x', 3), std::string(3, 'x'));
  expect_same(ours.append(" three"), theirs.append(" three"));
  expect_same(ours.insert(0, ">> "), theirs.insert(0, ">> "));
  expect_same(ours.replace(3, 3, "1"), theirs.replace(3, 3, "1"));
  expect_same(ours.remove(0, 3), theirs.erase(0, 3));
  expect_same(ours.put_at(0, 'I'), (theirs[0] = 'I', theirs));
  expect_same(ours += "!", theirs += "!");
  expect_same(ours += '?', theirs += '?');
  expect_same(ours += ours, theirs += theirs);
  EXPECT_EQ(std::string(ours.begin(), ours.end()), theirs);
  EXPECT_TRUE(ours.get_at(1) == theirs[1] && ours.size() == theirs.size() && !ours.empty());
}

TEST(Standard, TextsAreComparedAndSearchedAlike) {
  std::string const theirs("one two one");
  GCL_String const ours("one two one"), less("one two");
  EXPECT_EQ(ours.find("one", 1), theirs.find("one", 1));
  EXPECT_EQ(ours.rfind("one"), theirs.rfind("one"));
  EXPECT_EQ(ours.find_first_of("tw"), theirs.find_first_of("tw"));
  EXPECT_EQ(ours.find_last_not_of("one"), theirs.find_last_not_of("one"));
  EXPECT_TRUE(less < ours && ours > less && ours <= ours && ours >= ours && !(ours < ours));
  EXPECT_EQ((std::unordered_map<GCL_String, int>{{ours, 1}, {less, 2}, {ours, 3}}.size()), 2u);
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

TEST(Standard, StatusIsTrueWhenSomethingWentWrong) {
  GCL_Status status;
  EXPECT_FALSE(status);
  status.set(GCL_Status::general_failure);
  EXPECT_TRUE(status);
}

}  // namespace
