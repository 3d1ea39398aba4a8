// Line ends, style characters and streams: exact values, memory that runs out and long texts. See
// fuzz/text_fuzz.cc too.
#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>

#include "miroxgcl/gcl_string.h"
#include "support/failing_allocator.h"

namespace {

using namespace std::string_literals;
using ios = std::ios_base;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }

GCL_String to_string(std::string const& t) {
  return {t.data(), static_cast<unsigned int>(t.size())};
}

TEST(LineEnds, AreConvertedUpToTheFirstNul) {
  struct {
    std::string start;
    bool is_pc;
    std::string from, to;
  } const table[] = {{"", false, "", ""},
                     {"a\rb", false, "ab", "ab"},
                     {"\n\ra", true, "\na", "\r\na"},
                     {"a\r\n\n", true, "a\n\n", "a\r\n\r\n"},
                     {"\n\0\r\n"s, false, "\n\0\r\n"s, "\r\n\0\r\n"s}};
  for (auto const& row : table) {
    GCL_String s = to_string(row.start), t = s;
    EXPECT_EQ(s.is_pc_mode(), row.is_pc) << row.start;
    EXPECT_EQ(text(s.from_pc_mode()), row.from);
    EXPECT_EQ(text(t.to_pc_mode()), row.to);
  }
}

TEST(LineEnds, TakeTimeInProportionToTheText) {
  auto const start = std::chrono::steady_clock::now();
  GCL_String s('\n', 10'000'000);
  EXPECT_EQ(s.to_pc_mode().length(), 20'000'000u);                 // to a new body
  EXPECT_EQ(s.from_pc_mode().to_pc_mode().length(), 20'000'000u);  // and in place
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(Formatting, IsRemovedInANewBodyOfTheOldSize) {
  std::string const table[][2] = {
      {"", ""}, {"plain", "plain"}, {"\x1B[1mbold\x1B[m", "bold"}, {"a\x1B[m\0b"s, "a"}};
  for (auto const& [start, stripped] : table) {
    GCL_String s = to_string(start);
    GCL_String const other(s);
    EXPECT_EQ(text(s.remove_formatting()), stripped);
    EXPECT_NE(s.body(), other.body());
    EXPECT_EQ(s.body()->capacity(), to_string(start + "x").body()->capacity());
    EXPECT_EQ(text(other), start);
  }
}

// A stream buffer that throws at its end, and counts its flushes.
struct special_buffer : std::stringbuf {
  using std::stringbuf::stringbuf;
  int underflow() override { throw 7; }
  int sync() override { return ++flushes, 0; }
  int flushes = 0;
};

TEST(Streams, FlushWhatIsTiedAndReturnThemselves) {
  special_buffer sink;
  std::ostream out(&sink);
  std::istringstream in("one\ntwo");
  in.tie(&out);
  GCL_String s;
  EXPECT_TRUE(&getline(in, s) == &in && s == "one" && sink.flushes == 1);
  EXPECT_TRUE(&(in >> s) == &in && s == "two" && sink.flushes >= 2);
}

TEST(Streams, LeaveWhatWasReadWhenTheyThrow) {
  GCL_String s("old");
  for (auto const mask : {ios::eofbit, ios::failbit, ios::badbit}) {
    for (bool const word : {false, true}) {
      std::stringbuf ends("some");
      special_buffer throws("some");
      std::istream in(mask == ios::badbit ? &throws : &ends);
      in.exceptions(mask);
      EXPECT_ANY_THROW(word ? in >> s : getline(in, s));
      EXPECT_EQ(text(s), "some");
      EXPECT_EQ(in.rdstate(), mask == ios::badbit ? mask : ios::eofbit | ios::failbit);
    }
  }
}

TEST(Streams, WriteTheBytesAndNothingElse) {
  std::ostringstream os;
  os.width(20);
  os << GCL_String("a\0b", 3) << GCL_String() << GCL_String("") << GCL_String("\xFF");
  EXPECT_EQ(os.str(), "a\0b\xFF"s);
}

TEST(Text, IsOldOrWholeWhenMemoryRunsOut) {
  GCL_String const feeds('\n', 9);
  std::size_t const held = failing_allocator::live_blocks();
  auto const convert = [](GCL_String& s) { s.to_pc_mode(); };
  auto const is_old = [](GCL_String const& s, bool failed) { EXPECT_EQ(s.length() == 9, failed); };
  EXPECT_GE(fail_each_allocation([&] { return feeds; }, convert, is_old), 1);

  using Reading = std::pair<std::stringstream, GCL_String>;
  auto const open = [] { return Reading(std::string(500, 'x'), "old"); };
  auto const read = [](Reading& r) { getline(r.first, r.second); };
  auto const is_empty = [](Reading const& r, bool failed) {
    EXPECT_EQ(r.second.length(), failed ? 0u : 500u);
  };
  EXPECT_GE(fail_each_allocation(open, read, is_empty), 1);
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

}  // namespace
