// Handles and strings: exact values and edges, what calls with literals cost, streams and line ends,
// memory that runs out. Sequences of edits, searches and reads are compared with models in
// fuzz/string_fuzz.cc and fuzz/text_fuzz.cc; what the standard library spells alike, in the tables of
// doc/coming-from.md.
#include <gtest/gtest.h>

#include <ctime>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <unordered_map>

#include "miroxgcl/gcl.h"
#include "support/failing_allocator.h"

namespace {

using namespace std::literals;

constexpr unsigned int npos = GCL_String::npos;

static_assert(std::is_nothrow_swappable_v<GCL_String> && std::is_nothrow_swappable_v<GCL_Status> &&
              std::is_nothrow_move_assignable_v<GCL_StringList> &&
              std::is_nothrow_move_assignable_v<GCL_Credentials>);
static_assert(!std::is_convertible_v<std::string_view, GCL_String> &&
              !std::is_convertible_v<GCL_Status, bool>);

// A body that holds a handle and tells when it dies.
struct Probe : GCL_Body {
  ~Probe() override { on_death(); }
  bool operator==(GCL_Body const*) const override { return false; }
  GCL_Handle<Probe> inner;
  std::function<void()> on_death = [] {};
};

TEST(Handle, OwnsOneCountWhateverIsAssigned) {
  auto* const probe = new Probe;
  GCL_HandleBase h = GCL_Handle<Probe>(probe);
  auto& same = h;
  h = same;
  h = std::move(same);
  h = probe;
  GCL_HandleBase copy(h), last(std::move(h));
  h = copy;
  last = std::move(h);
  copy = GCL_HandleBase();
  EXPECT_EQ(probe->reference_count(), 1u);
}

TEST(Handle, AssignsWhileTheOldBodyDies) {
  GCL_Handle<Probe> h(new Probe);
  auto* const last = h.body();
  for (bool const moves : {false, true}) {
    auto* const outer = new Probe;
    outer->inner = h;
    outer->on_death = [&] { EXPECT_EQ(h.body(), last); };
    h = outer;
    moves ? (h = std::move(outer->inner)) : (h = outer->inner);
    EXPECT_EQ(last->reference_count(), 1u);
  }
}

TEST(Handle, BodyThatIsThereDecidesAComparison) {
  GCL_HandleBase const none, empty(GCL_String{}), a(GCL_String("a\0b", 3));
  EXPECT_TRUE(empty == none && none == empty && none == GCL_HandleBase());
  EXPECT_FALSE(a == none || none == a || a == GCL_String("a\0c", 3));
}

TEST(String, Hashes) {
  EXPECT_EQ(GCL_String("ab").hash(), 0xC222u);
  EXPECT_EQ(GCL_String("abcd").hash(), 4u << 5 ^ 0x64636261u);
  EXPECT_EQ(GCL_String("abcde").hash(), 0x8C6C5845u);
  EXPECT_EQ(GCL_String("abcd\x81"
                       "fgh")
                .hash(),
            0xE40B0AA1u);
  EXPECT_EQ(GCL_String("abcdefghijkl").hash(), 0xED0822C8u);
  EXPECT_EQ(GCL_String("\xE9").hash(), 0xFFFFFFC9u);
  EXPECT_EQ(GCL_String("aB\xE9").hash_fold_case(), ((((3u << 5 ^ 'a') << 5) ^ 'b') << 5) ^ 0xE9u);
  EXPECT_EQ(GCL_String("A\0b", 3).hash_fold_case(), (3u << 5) ^ 'a');
}

TEST(String, TakesAllBytesButSeeksUpToTheFirstNul) {
  GCL_String const s("a\0b"s);
  char const* const null = nullptr;

  EXPECT_EQ(s.substr(1), "\0b"s);
  EXPECT_EQ(s.substr(1ull), "\0b"s);
  EXPECT_EQ(s.find("b"), npos);
  EXPECT_FALSE(s == "a");
  EXPECT_THROW(s.at(3), std::out_of_range);
  EXPECT_EQ(GCL_String(null, 5), null);
}

TEST(String, SearchesSeeWholeCharacters) {
  GCL_String const s("x\xC3\xA9y\xC3\xA8z");

  EXPECT_EQ(s.find("\xA9"), npos);
  EXPECT_EQ(s.find_first_of("\xA9z"), 6u);
  EXPECT_EQ(s.find_first_not_of("x\xC3"), 3u);
  EXPECT_EQ(s.find_last_not_of("z"), 4u);
}

// Processor time: reading all of the text, the pattern or the set again at each match takes far
// longer.
TEST(String, SearchesAreLinear) {
  GCL_String path('a', 1u << 20), letters, halves;
  for (unsigned int i = 0; i < path.length(); i += 100) path.put_at(i, '/');
  for (int i = 0; i < 200'000; ++i) letters.append("\xC3\xA9");
  for (int i = 0; i < 100'000; ++i) halves.append("\xA9\xC3");
  std::clock_t const start = std::clock();

  EXPECT_EQ(path.rfind("/"), 1048500u);
  EXPECT_EQ(path.find_last_of("/"), 1048500u);
  EXPECT_EQ(letters.find(halves), npos);  // each occurrence begins inside a character
  EXPECT_EQ(letters.find_last_not_of(GCL_String('x', 400'000)), 399'998u);

  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

// 4294967295 bytes more would wrap to a shorter text; npos is no special count for a character.
TEST(String, RefusesWhatIsTooLong) {
  GCL_String s("abc");
  EXPECT_THROW(s.append('x', npos), std::bad_array_new_length);
  EXPECT_THROW(s.append("x", npos - 3), std::bad_array_new_length);
  EXPECT_THROW(s.append("x", 4294967295u), std::bad_array_new_length);
  EXPECT_THROW(GCL_String("abc", 4294967299), std::bad_array_new_length);  // not 3
  EXPECT_EQ(s.substr(1, 4294967297), "bc");
  failing_allocator const failing(1);
  EXPECT_THROW(s.append("x", npos - 4), std::bad_alloc);
  EXPECT_NE(failing_allocator::failed_size(), 0u);
}

TEST(StringRep, GrowsToNoLessThanAskedForWhereTheRulesSumWraps) {
  failing_allocator const failing(1);
  EXPECT_THROW(GCL_StringRep(0, 3'435'973'837, nullptr), std::bad_alloc);
  EXPECT_EQ(failing_allocator::failed_size(), 3'435'973'837);
}

// A body of the longest length that has room for more. Its text is never touched.
TEST(String, LongestTextTakesNoFurtherCharacter) {
  if (sizeof(void*) == 4) GTEST_SKIP() << "no block of that size";
  GCL_String s;
  s.set_rep(new GCL_StringRep(npos - 1, 0, nullptr));
  EXPECT_THROW(s.append('x'), std::bad_array_new_length);
  EXPECT_THROW(s.put_at(npos - 1, 'x'), std::bad_array_new_length);
}

#ifdef MIROXGCL_CHECK_PRECONDITIONS

TEST(String, PositionsAndCountsOfSourcesAreChecked) {
  GCL_String s("abc");
  EXPECT_EQ(s.get_at(3), '\0');
  EXPECT_EQ(s.put_at(3, 'd'), "abcd");
  EXPECT_THROW(s.get_at(5), LX_XException);
  EXPECT_THROW(s.put_at(5, 'x'), LX_XException);
  EXPECT_THROW(s.insert(5, "x"), LX_XException);
  EXPECT_THROW(s.replace(5, 0, "x"), LX_XException);
  EXPECT_THROW(s.remove(5), LX_XException);
  EXPECT_THROW(s.append(GCL_String("x"), 2), LX_XException);
  EXPECT_EQ(s, "abcd");
}

#endif

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

TEST(String, LiteralsAreUsedWhereTheyAre) {
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

TEST(String, MapsLookTextsUpWhereTheyAre) {
  std::map<GCL_String, int, std::less<>> const ordered{{"a key of more than 16 bytes", 1}};
  std::unordered_map<GCL_String, int, std::hash<GCL_String>, std::equal_to<>> const hashed{
      {"a key of more than 16 bytes", 2}};

  EXPECT_FALSE(allocates([&] { EXPECT_EQ(ordered.count("a key of more than 16 bytes"), 1u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(hashed.count("a key of more than 16 bytes"sv), 1u); }));
  EXPECT_FALSE(allocates([&] { EXPECT_EQ(hashed.count("no key of them all"), 0u); }));
}

TEST(String, HashesSpreadTextsWithACommonTail) {
  std::set<std::size_t> hashes;
  for (int i = 0; i < 1000; ++i) {
    hashes.insert(std::hash<GCL_String>()(std::to_string(i) + std::string(60, 'x')));
  }
  EXPECT_GT(hashes.size(), 990u);
}

TEST(String, LeftSideOfASumMayBeMovedFromLater) {
  for (auto* const add : {+[](GCL_String& s) { return std::move(s) + s; },
                          +[](GCL_String& s) { return std::move(s) + s.c_str(); },
                          +[](GCL_String& s) { return std::move(s) + s.substr(0); }}) {
    GCL_String s("one");
    EXPECT_EQ(add(s), "oneone");
  }
}

TEST(String, IsSplitJoinedAndTrimmed) {
  GCL_String const path("/usr//lib/");

  EXPECT_EQ(join(split(path, "/"), "|"), "|usr||lib|");
  EXPECT_EQ(join(split(path, ""), "|"), "/usr//lib/");
  EXPECT_EQ(split(GCL_String(), "/").Length(), 1u);
  EXPECT_EQ(join(GCL_StringList{}, "/"), "");
  EXPECT_EQ(trim(GCL_String(" \t a b\n")), "a b");
  EXPECT_EQ(trim(GCL_String(" \n ")), "");
  EXPECT_EQ(trim(path).body(), path.body());
  EXPECT_EQ(split(GCL_String(',', 1'000'000), ",").Length(), 1'000'001u);  // in linear time
}

TEST(String, KeepsItsValueWhenAnAllocationFails) {
  void (*const edits[])(GCL_String&) = {
      [](GCL_String& s) { s.append(s); },        [](GCL_String& s) { s.to_pc_mode(); },
      [](GCL_String& s) { s.replace(1, 2, s); }, [](GCL_String& s) { s.assign("0123456789"); },
      [](GCL_String& s) { s.put_at(1, 'x'); },   [](GCL_String& s) { s.get_remove(s, 1, 2); }};
  for (auto* const edit : edits) {
    for (bool const is_shared : {false, true}) {
      GCL_String const original("abc\nef");
      auto const prepare = [&] { return is_shared ? original : GCL_String("abc\nef"); };
      GCL_String edited = prepare();
      edit(edited);
      auto const check = [&](GCL_String const& s, bool failed) {
        EXPECT_EQ(s, failed ? original : edited);
        if (!failed) return;
        EXPECT_EQ(s.body()->reference_count(), is_shared ? 2u : 1u);
      };
      EXPECT_TRUE(fail_each_allocation(prepare, edit, check) != 0 || !is_shared);
    }
  }
}

TEST(LineEnds, AreTwoCharactersSideBySide) {
  EXPECT_TRUE(GCL_String("\n\ra").is_pc_mode());
  EXPECT_TRUE(GCL_String("a\r\n\n").is_pc_mode());
  EXPECT_FALSE(GCL_String("\n \r").is_pc_mode());
  EXPECT_FALSE(GCL_String("\0\r\n"s).is_pc_mode());
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

TEST(Streams, WriteBytesOnly) {
  std::ostringstream out;
  out.width(20);
  out << GCL_String("a\0b", 3) << GCL_String() << GCL_String("\xFF");
  EXPECT_EQ(out.str(), "a\0b\xFF"s);
}

TEST(Streams, LeaveWhatWasReadWhenTheyThrow) {
  std::istringstream in("some");
  in.exceptions(std::ios::eofbit);
  GCL_String s("old");
  EXPECT_THROW(getline(in, s), std::ios::failure);
  EXPECT_EQ(s, "some");
}

// A source that hands out single bytes and holds none.
struct single_bytes : std::streambuf {
  explicit single_bytes(std::string t) : text(std::move(t)) {}
  int underflow() override { return at < text.size() ? text[at] : traits_type::eof(); }
  int uflow() override { return at < text.size() ? text[at++] : traits_type::eof(); }
  std::string text;
  std::size_t at = 0;
};

template <class Source>
void check_that_no_byte_is_lost() {
  std::string const line = std::string(299, 'x');
  auto const open = [&] { return std::pair(std::make_unique<Source>(line + '\n'), GCL_String()); };
  auto const read = [](auto& reading) {
    std::istream in(reading.first.get());
    getline(in, reading.second);
  };
  auto const check = [&](auto& reading, bool failed) {
    std::string const taken(reading.second);
    std::string const left{std::istreambuf_iterator<char>(reading.first.get()), {}};
    EXPECT_EQ(taken + left, failed ? line + '\n' : line);
  };
  EXPECT_GE(fail_each_allocation(open, read, check), 1);
}

TEST(Streams, LoseNoByteWhenMemoryRunsOut) {
  check_that_no_byte_is_lost<std::stringbuf>();
  check_that_no_byte_is_lost<single_bytes>();
}

}  // namespace
