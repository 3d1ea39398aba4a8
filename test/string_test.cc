// Handles and strings: exact values and edges. Sequences of edits and searches are compared with a
// model in fuzz/string_fuzz.cc.
#include "miroxgcl/gcl_string.h"

#include <gtest/gtest.h>

#include <ctime>

#include "support/failing_allocator.h"

namespace {

constexpr unsigned int npos = GCL_String::npos;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }

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

// The buffer's size for a length and a reserve; nothing of that size is allocated.
TEST(StringRep, GrowsByTheRule) {
  unsigned int const table[][3] = {{0, 1, 8},
                                   {0, 63, 126},
                                   {0, 255, 382},
                                   {0, 256, 320},
                                   {npos - 1, 0, 2684354558},
                                   {0, 3435973836, 4294967295},
                                   {0, 3435973837, 3435973837}};  // as the rule's sum wraps
  for (auto const& [length, reserve, size] : table) {
    failing_allocator const failing(1);
    EXPECT_THROW(GCL_StringRep(length, reserve, nullptr), std::bad_alloc);
    EXPECT_EQ(failing_allocator::failed_size(), size);
  }
}

TEST(String, Hashes) {
  EXPECT_EQ(GCL_String("ab").hash(), 0xC222u);
  EXPECT_EQ(GCL_String("abcde").hash(), 0x8C6C5845u);
  EXPECT_EQ(GCL_String("\xE9").hash(), 0xFFFFFFC9u);
  EXPECT_EQ(GCL_String("aB\xE9").hash_fold_case(), ((((3u << 5 ^ 'a') << 5) ^ 'b') << 5) ^ 0xE9u);
  EXPECT_EQ(GCL_String("A\0b", 3).hash_fold_case(), (3u << 5) ^ 'a');
}

TEST(String, EditsBytesAndFindsCharacters) {
  GCL_String s("a\0b\xE9", 4);
  EXPECT_EQ(text(s.append("x\0y").insert(1, s).remove(8)), std::string("aa\0b\xE9x\0b", 8));
  char end[8];
  EXPECT_EQ(std::string(end, s.copy(end, 4294967295u, 5)), std::string("x\0b", 3));
  EXPECT_EQ(GCL_String("a\0b", 3).compare(GCL_String("a\0c", 3)), -1);

  GCL_String const t("x\xC3\xA9y\xC3\xA8z");
  EXPECT_EQ(t.find("\xA9"), npos);
  EXPECT_EQ(t.find_first_of("\xA9z"), 6u);
  EXPECT_EQ(t.find_first_not_of("x\xC3"), 3u);
  EXPECT_EQ(t.find_last_not_of("z"), 4u);
  EXPECT_EQ(t.find_last_of("z", 7), npos);
  EXPECT_EQ(t.rfind("", 99), 99u);
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
        EXPECT_TRUE(!failed || s.body()->reference_count() == 1u + is_shared);
      };
      EXPECT_TRUE(fail_each_allocation(prepare, edit, check) != 0 || !is_shared);
    }
  }
}

}  // namespace
