// Line ends, style characters and streams: what fuzz/text_fuzz.cc does not see. Exact values, ties,
// exceptions, memory that runs out and long texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <iterator>
#include <memory>
#include <sstream>

#include "miroxgcl/gcl_string.h"
#include "support/failing_allocator.h"

namespace {

using namespace std::string_literals;
using ios = std::ios_base;

TEST(LineEnds, AreTwoCharactersSideBySide) {
  EXPECT_TRUE(GCL_String("\n\ra").is_pc_mode() && GCL_String("a\r\n\n").is_pc_mode());
  EXPECT_FALSE(GCL_String("\n \r").is_pc_mode() || GCL_String("\0\r\n"s).is_pc_mode());
  EXPECT_EQ(GCL_String("\n\r\na\r\0\r\n"s).to_pc_mode(), GCL_String("\r\n\r\na\0\r\n"s));
}

// Processor time: an edit for each line end takes far longer.
TEST(LineEnds, TakeTimeInProportionToTheText) {
  std::clock_t const start = std::clock();
  // To a new body first, then in place.
  EXPECT_EQ(GCL_String('\n', 1u << 23).to_pc_mode().from_pc_mode().to_pc_mode().size(), 1u << 24);
  EXPECT_LT(std::clock() - start, 10 * CLOCKS_PER_SEC);
}

TEST(Formatting, IsRemovedInANewBodyOfTheOldSize) {
  for (auto const& [start, stripped] :
       {std::pair(""s, ""), {"1234567"s, "1234567"}, {"\x1B[1mbold\x1B[m\0x"s, "bold"}}) {
    GCL_String const other(start);
    GCL_String s(other);
    EXPECT_EQ(s.remove_formatting(), stripped);
    EXPECT_NE(s.body(), other.body());
    EXPECT_EQ(s.body()->capacity(), GCL_String(start + "x").body()->capacity());
  }
}

// Throws at its end, and counts its flushes.
struct special_buffer : std::stringbuf {
  using std::stringbuf::stringbuf;
  int underflow() override { throw 7; }
  int sync() override { return ++flushes, 0; }
  int flushes = 0;
};

TEST(Streams, FlushWhatIsTiedAndWriteBytesOnly) {
  special_buffer sink;
  std::ostream out(&sink);
  out.width(20);
  out << GCL_String("a\0b", 3) << GCL_String() << GCL_String("") << GCL_String("\xFF");
  EXPECT_EQ(sink.str(), "a\0b\xFF"s);
  std::istringstream in("one\ntwo");
  in.tie(&out);
  GCL_String s;
  EXPECT_TRUE(&getline(in, s) == &in && sink.flushes == 1);
  EXPECT_TRUE(&(in >> s) == &in && sink.flushes >= 2);
}

TEST(Streams, LeaveWhatWasReadWhenTheyThrow) {
  for (auto const mask : {ios::eofbit, ios::failbit, ios::badbit}) {
    for (bool const word : {false, true}) {
      std::stringbuf ends("some");
      special_buffer throws("some");
      std::istream in(mask == ios::badbit ? &throws : &ends);
      in.exceptions(mask);
      GCL_String s("old");
      EXPECT_ANY_THROW(word ? in >> s : getline(in, s));
      EXPECT_EQ(s, "some");
      EXPECT_EQ(in.rdstate(), mask == ios::badbit ? mask : ios::eofbit | ios::failbit);
    }
  }
}

// Shows 300 bytes, `step` at a time; with 0, it hands out single ones and holds none.
struct pieces : std::streambuf {
  explicit pieces(std::ptrdiff_t s) : step(s) { setg(text, text, text); }
  int underflow() override { return show(step); }
  int uflow() override { return show(1) == traits_type::eof() ? traits_type::eof() : sbumpc(); }
  int show(std::ptrdiff_t n) {
    setg(text, gptr(), gptr() + std::min(n, std::end(text) - gptr()));
    return gptr() == std::end(text) ? traits_type::eof() : traits_type::to_int_type(*gptr());
  }
  char text[300];
  std::ptrdiff_t step;
};

TEST(Streams, LoseNoByteWhenMemoryRunsOut) {
  for (std::ptrdiff_t const step : {0, 45, 300}) {
    std::string const text = std::string(299, 'x') + '\n';
    auto const open = [&] {
      auto source = std::make_unique<pieces>(step);
      text.copy(source->text, text.size());
      return std::pair(std::move(source), GCL_String("old"));
    };
    auto const read = [](auto& reading) {
      std::istream in(reading.first.get());
      getline(in, reading.second);
    };
    auto const check = [&](auto& reading, bool failed) {
      std::string const taken(reading.second);
      std::string const left{std::istreambuf_iterator<char>(reading.first.get()), {}};
      EXPECT_EQ(taken + left, failed ? text : text.substr(0, 299)) << step;
    };
    EXPECT_GE(fail_each_allocation(open, read, check), 1);
  }
}

}  // namespace
