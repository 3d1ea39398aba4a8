// Bodies, handles and strings: exact values and edges. Sequences of edits and searches are compared
// with a model in fuzz/string_fuzz.cc.
#include "miroxgcl/gcl_string.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <new>
#include <set>
#include <string>

#include "support/failing_allocator.h"

namespace {

constexpr unsigned int npos = GCL_String::npos;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }

// A body that holds a handle and says when it goes.
struct Probe : GCL_Body {
  explicit Probe(std::function<void()> on_death, GCL_Handle<Probe> inner = {})
      : m_inner(std::move(inner)), m_on_death(std::move(on_death)) {}
  ~Probe() override { m_on_death(); }
  bool operator==(GCL_Body const*) const override { return false; }
  GCL_Handle<Probe> m_inner;
  std::function<void()> m_on_death;
};

TEST(Handle, OwnsOneCountWhateverIsAssigned) {
  int deaths = 0;
  auto* const probe = new Probe([&] { ++deaths; });
  GCL_Handle<Probe> typed(probe);
  auto& same = typed;
  typed = same;
  typed = std::move(same);
  GCL_HandleBase untyped(typed);
  typed = GCL_Handle<Probe>();
  auto& alias = untyped;
  untyped = alias;
  untyped = probe;
  untyped = std::move(alias);
  GCL_HandleBase copy(std::move(untyped));
  EXPECT_EQ(probe->reference_count(), 1u);
  untyped = copy;
  copy = GCL_HandleBase();
  EXPECT_EQ(deaths, 0);
  untyped = nullptr;
  EXPECT_EQ(deaths, 1);
}

TEST(Handle, AssignsWhileTheOldBodyDies) {
  int deaths = 0;
  GCL_Handle<Probe> h;
  for (int i = 0; i < 4; ++i) h = new Probe([&] { ++deaths; }, h);
  h = h.body()->m_inner;
  h = std::move(h.body()->m_inner);
  EXPECT_EQ(deaths, 2);
  auto* const last = h.body()->m_inner.body();
  h.body()->m_on_death = [&h, last] { EXPECT_EQ(h.body(), last); };
  h = last;
  EXPECT_EQ(last->reference_count(), 1u);
}

TEST(Handle, BodyThatIsThereDecidesAComparison) {
  GCL_HandleBase const none, empty(GCL_String{}), a(GCL_String("a"));
  EXPECT_TRUE(empty == none && none == empty && none == GCL_HandleBase());
  EXPECT_FALSE(a == none || none == a);
}

// The buffer's size for a length and a reserve; nothing of that size is allocated.
TEST(StringRep, GrowsByTheRule) {
  auto const size_for = [](unsigned int length, unsigned int reserve) {
    failing_allocator const failing(1);
    EXPECT_THROW(GCL_StringRep(length, reserve, nullptr), std::bad_alloc);
    return failing_allocator::failed_size();
  };
  EXPECT_EQ(size_for(0, 1), 8u);
  EXPECT_EQ(size_for(0, 63), 126u);
  EXPECT_EQ(size_for(0, 255), 382u);
  EXPECT_EQ(size_for(0, 256), 320u);
  if (sizeof(std::size_t) == 4) return;
  EXPECT_EQ(size_for(npos - 1, 0), 2684354558u);
  EXPECT_EQ(size_for(0, 3435973836u), 4294967295u);
  EXPECT_EQ(size_for(0, 3435973837u), 3435973837u);  // as the rule's sum wraps
}

TEST(String, Hashes) {
  EXPECT_EQ(GCL_String("ab").hash(), 0xC222u);
  EXPECT_EQ(GCL_String("abcde").hash(), 0x8C6C5845u);
  EXPECT_EQ(GCL_String("\xE9").hash(), 0xFFFFFFC9u);
  EXPECT_EQ(GCL_String("aB\xE9").hash_fold_case(), ((((3u << 5 ^ 'a') << 5) ^ 'b') << 5) ^ 0xE9u);
  EXPECT_EQ(GCL_String("A\0b", 3).hash_fold_case(), (3u << 5) ^ 'a');
}

TEST(String, NulAndHighBytesAreBytesLikeAnyOther) {
  GCL_String s("a\0b\xE9", 4);
  EXPECT_EQ(text(s.append("x\0y").append("\0", 1)), std::string("a\0b\xE9x\0", 6));
  EXPECT_EQ(text(s.insert(1, s).remove(8)), std::string("aa\0b\xE9x\0\0", 8));
  char end[8];
  EXPECT_EQ(std::string(end, s.copy(end, 4294967295u, 5)), std::string("x\0\0", 3));
  EXPECT_EQ(GCL_String("a\0b", 3).compare(GCL_String("a\0c", 3)), -1);
  EXPECT_FALSE(*GCL_String("a\0b", 3).body() == GCL_String("a\0c", 3).body());
}

TEST(String, SearchesStepOverWholeCharacters) {
  GCL_String const s("x\xC3\xA9y\xC3\xA8z");
  EXPECT_EQ(s.find("\xA9"), npos);
  EXPECT_EQ(s.find_first_of("\xA9z"), 6u);
  EXPECT_EQ(s.find_first_not_of("x\xC3"), 3u);
  EXPECT_EQ(s.find_last_of("\xC3\xA9\xC3\xA8"), 4u);
  EXPECT_EQ(s.find_last_of("z", 7), npos);
  EXPECT_EQ(s.rfind("", 99), 99u);
}

// Processor time: reading the whole text again at each of the 10,486 matches takes far longer.
TEST(String, BackwardSearchesAreLinear) {
  GCL_String s('a', 1u << 20);
  for (unsigned int i = 0; i < s.length(); i += 100) s.put_at(i, '/');
  std::clock_t const start = std::clock();
  EXPECT_EQ(s.rfind("/"), 1048500u);
  EXPECT_EQ(s.find_last_of("/"), 1048500u);
  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

// 4294967295 bytes more would wrap to a shorter text; npos is no special count for a character.
TEST(String, RefusesWhatIsTooLong) {
  GCL_String s("abc");
  EXPECT_THROW(s.append('x', npos), std::bad_array_new_length);
  EXPECT_THROW(s.append("x", npos - 3), std::bad_array_new_length);
  EXPECT_THROW(s.append("x", 4294967295u), std::bad_array_new_length);
  EXPECT_THROW(s.replace(1, 2, "x", npos - 1), std::bad_array_new_length);
  EXPECT_EQ(text(s), "abc");
  failing_allocator const failing(1);
  EXPECT_THROW(s.append("x", npos - 4), std::bad_alloc);
  EXPECT_NE(failing_allocator::failed_size(), 0u);
}

// `count` strings share the text, and a new try succeeds.
TEST(String, KeepsItsValueWhenAnAllocationFails) {
  void (*const edits[])(GCL_String&) = {
      [](GCL_String& s) { s.append(s); },
      [](GCL_String& s) { s.append(s.c_str() + 1, 3); },
      [](GCL_String& s) { s.append('x', 70); },
      [](GCL_String& s) { s.replace(1, 2, s); },
      [](GCL_String& s) { s.assign("0123456789"); },
      [](GCL_String& s) { s.assign('x', 70); },
      [](GCL_String& s) { s.put_at(1, 'x'); },
      [](GCL_String& s) { s.reserve(100); },
      [](GCL_String& s) { s = GCL_String(s, 2); },
      [](GCL_String& s) { s.get_remove(s, 1, 2); },
      [](GCL_String& s) { static_cast<void>(s.hash_fold_case()); }};
  std::size_t const held = failing_allocator::live_blocks();
  for (unsigned int count : {1u, 2u}) {
    for (auto* const edit : edits) {
      GCL_String const original("abcdef");
      std::set<std::string> results;
      auto const prepare = [&] { return count == 2 ? original : GCL_String("abcdef"); };
      auto const check = [&](GCL_String& s, bool failed) {
        if (failed) {
          EXPECT_EQ(text(s), "abcdef");
          EXPECT_EQ(s.body()->reference_count(), count);
          edit(s);
        }
        results.insert(text(s));
      };
      EXPECT_TRUE(fail_each_allocation(prepare, edit, check) != 0 || count == 1);
      EXPECT_EQ(results.size(), 1u);
    }
  }
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

}  // namespace
