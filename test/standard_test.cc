// The library's values among the standard library's: views, iterators, algorithms, hashing.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_set>

#include "miroxgcl/gcl.h"

namespace {

using namespace std::string_literals;

static_assert(std::is_nothrow_swappable_v<GCL_String> && std::is_nothrow_swappable_v<GCL_Status> &&
              std::is_nothrow_move_assignable_v<GCL_StringList> &&
              std::is_nothrow_move_assignable_v<GCL_Credentials>);
static_assert(!std::is_convertible_v<std::string_view, GCL_String> &&
              !std::is_convertible_v<GCL_Status, bool>);

std::string text(GCL_StringList const& list) { return join(list, "|").c_str(); }

TEST(Standard, ViewsAndSumsKeepEveryByte) {
  GCL_String const s("a\0b"s);
  EXPECT_EQ(s, GCL_String("a\0b", 3));
  EXPECT_EQ(std::string_view(s), "a\0b"s);
  EXPECT_EQ(std::string(s.begin(), s.end()), "a\0b"s);
  EXPECT_FALSE(s == "a" || "a" == s);
  EXPECT_TRUE(GCL_String() == "" && GCL_String().begin() == GCL_String().end());
  EXPECT_EQ(std::string_view("x" + s + '!' + "y" + s), "xa\0b!ya\0b"s);
  GCL_String sum("m");
  sum += sum;
  sum += "n";
  sum += 'o';
  EXPECT_EQ(sum, "mmno");
  EXPECT_TRUE(GCL_String("a") < s && s > GCL_String("a") && s <= s && s >= s && !(s < s));
  EXPECT_EQ(std::unordered_set<GCL_String>({s, "b", "b", s}).size(), 2u);
}

TEST(Standard, WholeTextOperations) {
  GCL_String const path("/usr//lib/");
  EXPECT_EQ(text(split(path, "/")), "|usr||lib|");
  EXPECT_EQ(join(split(path, "/"), "/"), path);
  EXPECT_EQ(text(split(path, "")), "/usr//lib/");
  EXPECT_EQ(split(GCL_String(), "/").Length(), 1u);
  EXPECT_EQ(join(GCL_StringList{}, "/"), "");
  EXPECT_TRUE(starts_with(path, "/usr") && !starts_with(path, "usr") && starts_with(path, ""));
  EXPECT_TRUE(ends_with(path, "lib/") && !ends_with(path, "//usr//lib/") && ends_with(path, ""));
  EXPECT_EQ(trim(" \t a b\n"), "a b");
  EXPECT_EQ(trim(" \n "), "");
  EXPECT_EQ(trim(path).body(), path.body());
}

TEST(Standard, AlgorithmsWorkOnContainers) {
  GCL_IntegerList numbers{3, 1, 2};
  std::sort(numbers.begin(), numbers.end());
  EXPECT_TRUE(std::equal(numbers.begin(), numbers.end(), std::begin({1, 2, 3})));
  GCL_StringList words{"b", "a"};
  std::reverse(words.begin(), words.end());
  for (GCL_String& word : words) word += '!';
  EXPECT_EQ(text(words), "a!|b!");
  auto const& constant = words;
  EXPECT_EQ(std::find(constant.begin(), constant.end(), "b!") - constant.begin(), 1);
  LX_TUnbounded<int> list{1, 2, 3};
  for (int& item : list) item *= 2;
  EXPECT_EQ(std::accumulate(list.begin(), list.end(), 0), 12);
  LX_TUnboundedStack<int> stack;
  for (int const item : list) stack.Push(item);
  EXPECT_TRUE(std::equal(stack.begin(), stack.end(), std::begin({6, 4, 2})));
}

TEST(Standard, StatusIsTrueWhenSomethingWentWrong) {
  GCL_Status status;
  EXPECT_FALSE(status);
  status.set(GCL_Status::general_failure);
  EXPECT_TRUE(status);
}

}  // namespace
