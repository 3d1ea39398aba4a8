// What doc/coming-from.md says of std::string and std::vector: each pair gives the same, but where
// the last text test says how they differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "miroxgcl/gcl_integer_list.h"
#include "miroxgcl/gcl_string.h"
#include "miroxgcl/gcl_string_algo.h"

namespace {

void expect_same(GCL_String const& ours, std::string const& theirs) {
  EXPECT_EQ(std::string_view(ours), theirs);
}

TEST(Equivalents, TextsAreMadeAndEditedAlike) {
  std::string theirs("one two");
  GCL_String ours("one two");
  expect_same(ours.substr(4, 3), theirs.substr(4, 3));
  expect_same(ours + "!", theirs + "!");
  expect_same(GCL_String('x', 3), std::string(3, 'x'));
  expect_same(ours.append(" three"), theirs.append(" three"));
  expect_same(ours.insert(0, ">> "), theirs.insert(0, ">> "));
  expect_same(ours.replace(3, 3, "1"), theirs.replace(3, 3, "1"));
  expect_same(ours.remove(0, 3), theirs.erase(0, 3));
  expect_same(ours.put_at(0, 'I'), (theirs[0] = 'I', theirs));
  expect_same(ours += "!", theirs += "!");
  EXPECT_EQ(ours.get_at(2), theirs[2]);
  EXPECT_STREQ(ours.c_str(), theirs.c_str());
  EXPECT_EQ(ours.size(), theirs.size());
  EXPECT_TRUE(!ours.empty() && starts_with(ours, "I two") && ends_with(ours, "!"));
}

TEST(Equivalents, SearchesAnswerTheSamePlaces) {
  std::string const theirs("one two one");
  GCL_String const ours("one two one");
  EXPECT_EQ(ours.find("one", 1), theirs.find("one", 1));
  EXPECT_EQ(ours.rfind("one"), theirs.rfind("one"));
  EXPECT_EQ(ours.find_first_of("tw"), theirs.find_first_of("tw"));
  EXPECT_EQ(ours.find_last_not_of("one"), theirs.find_last_not_of("one"));
  EXPECT_EQ(ours.find("none") == GCL_String::npos, theirs.find("none") == std::string::npos);
  EXPECT_EQ((std::unordered_map<GCL_String, int>{{ours, 1}}.count(ours)), 1u);
}

TEST(Equivalents, WhereTheTwoDiffer) {
  EXPECT_EQ(GCL_String("").find(""), GCL_String::npos);          // std::string: 0
  EXPECT_EQ(GCL_String("a\0b", 3).find("b"), GCL_String::npos);  // sees up to the first NUL
  EXPECT_EQ(GCL_String(static_cast<char const*>(nullptr)).length(), 0u);  // not undefined
  GCL_String const a("one"), b(a);
  EXPECT_EQ(a.body(), b.body());  // a copy shares
}

TEST(Equivalents, ListsAreArrays) {
  std::vector<int> theirs = {3, 1, 2};
  GCL_IntegerList ours = {3, 1, 2};
  ours.Append(4), theirs.push_back(4);
  ours.Insert(0, 1), theirs.insert(theirs.begin() + 1, 0);
  ours.Remove(0), theirs.erase(theirs.begin());
  std::sort(ours.begin(), ours.end()), std::sort(theirs.begin(), theirs.end());
  EXPECT_TRUE(std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end()));
  EXPECT_EQ(ours.Location(4), std::find(theirs.begin(), theirs.end(), 4) - theirs.begin());
  EXPECT_EQ(ours.First() + ours.Last(), theirs.front() + theirs.back());
  expect_same(join(split("a,b,,c", ","), "-"), "a-b--c");
  expect_same(trim(" a b\n"), "a b");
}

}  // namespace
