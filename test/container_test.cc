// Arrays, lists, stacks and string lists: which items move, what a failure leaves behind, who is
// locked. What they hold and what storage they take is compared at random: see container_fuzz.cc.
#include <gtest/gtest.h>

#include <any>
#include <string>
#include <utility>

#include "miroxgcl/gcl.h"
#include "support/failing_allocator.h"

namespace {

// Takes memory whenever it is made, copied, assigned or compared; its move does not.
struct movable {
  movable(int v = 0) : value(v) {}  // NOLINT(google-explicit-constructor)
  int value;
  std::any memory = std::string();  // empty when moved from
};
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool operator==(movable a, movable b) { return a.value == b.value && a.memory.has_value(); }

// The same with a move that takes memory too.
struct item : movable {
  using movable::movable;
  item(item const&) = default;
  // NOLINTNEXTLINE(performance-*)
  item(item&& other) : movable(other) { other.memory.reset(); }
  item& operator=(item const&) = default;
};

// `c` with the numbers from 0 to n - 1; for an odd n, the first two put in backwards, so that they
// wrap.
template <class C>
C filled(C c, int n) {
  for (int k = n % 2 * 2; k < n; ++k) c.Append(k);
  if (n % 2 != 0) c.Insert(1), c.Insert(0);
  return c;
}

// The sizes wrap to something small in 32 bits, as slots or as bytes of them.
TEST(Containers, ImpossibleSizesAreRefusedBeforeAnythingChanges) {
  auto const before = filled(LX_TDynamic<long long>(4), 4);
  for (unsigned int chunk : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0x40000001u, 0x20000000u}) {
    auto a = before;
    a.SetChunkSize(chunk);
    EXPECT_THROW(a.Preallocate(0x80000001u), std::bad_alloc) << chunk;
    failing_allocator const failing(1);
    EXPECT_THROW(a.Append(4), std::bad_alloc) << chunk;
    EXPECT_TRUE(failing.failed_size() == 0 || failing.failed_size() >= 0x7FFFFFFF) << chunk;
    EXPECT_TRUE(a == before) << chunk;
  }
}

// The items abcde in 8 slots, from slot 0, 3 or 6 on, inserted, appended or removed at an index, and
// all slots after that, with what items left behind.
TEST(Containers, OnlyTheShorterSideMoves) {
  std::pair<char const*, char const*> const cases[] = {
      {"0i2", "b!cdexya"}, {"0i3", "abc!deyz"}, {"0i5", "abcde!yz"}, {"0a1", "b!cdexya"},
      {"0r2", "aabdexyz"}, {"0r3", "abceexyz"}, {"3i0", "xy!abcde"}, {"3i3", "eyzabc!d"},
      {"3a4", "!yzabcde"}, {"3r2", "xyzaabde"}, {"6i1", "cdexya!b"}, {"6i2", "!cdeyzab"},
      {"6a1", "cdexyab!"}, {"6r1", "cdexyzaa"}, {"6r2", "deexyzab"}, {"0a2", "abc!deyz"},
  };
  for (auto const& [step, after] : cases) {
    LX_TDynamic<char> a(8);
    for (char c : std::string("mnopqrstuvwxyzabcde").substr(static_cast<unsigned>('6' - step[0]))) {
      a.Append(c);
      if (a.Length() > 5) a.Remove(0);
    }
    char const* const slots = &a.First() - (step[0] - '0');
    auto const i = static_cast<unsigned int>(step[2] - '0');
    step[1] == 'i' ? a.Insert('!', i) : step[1] == 'a' ? a.Append('!', i) : a.Remove(i);
    EXPECT_EQ(std::string(slots, 8), after) << step;
  }
}

// Containers with room and a full one, on which each step fails wherever it can. They work on, and
// those that do not keep their value keep their length or are empty.
template <class C>
void check_failures(C const& empty, bool keeps_inside, bool keeps_assigned) {
  C const other = filled(empty, 5);
  std::pair<bool, void (*)(C&, C const&)> const steps[] = {
      {true, [](C& c, C const& d) { c.Insert(d.Last()); }},
      {true, [](C& c, C const&) { c.Append(c.First()); }},
      {true, [](C& c, C const&) { c = C(c); }},
      {keeps_inside, [](C& c, C const& d) { c.Insert(d.Last(), 1); }},
      {keeps_assigned, [](C& c, C const& d) { c = d; }},
  };
  for (auto const& step : steps) {
    for (int n : {3, 4, 6}) {
      auto const prepare = [&] { return filled(empty, n); };
      auto const check = [&](C& c, bool failed) {
        C expected = prepare();
        if (!step.first && (c.Length() == expected.Length() || c.Length() == 0)) expected = c;
        for (int k = 0; k < 6; ++k) c.Append(k), expected.Append(k);
        EXPECT_TRUE(!failed || c == expected) << n;
      };
      fail_each_allocation(
          prepare, [&](C& c) { step.second(c, other); }, check);
    }
  }
}

TEST(Containers, FailuresLeaveAWorkingContainer) {
  check_failures(LX_TDynamic<item>(4), false, false);
  check_failures(LX_TDynamic<movable>(4), true, false);
  check_failures(LX_TUnbounded<item>(), true, true);
  auto const list = [](int) { LX_TUnbounded<item>{1, 2}; };
  std::size_t const held = failing_allocator::live_blocks();
  EXPECT_GT(fail_each_allocation([] { return 0; }, list, [](int, bool) {}), 4);
  EXPECT_EQ(failing_allocator::live_blocks(), held);
  auto a = filled(LX_TDynamic<long long>(4), 5);
  failing_allocator const failing(1);
  a.Remove(4);  // does without it
  EXPECT_TRUE(failing.failed_size() != 0 && a.Length() == 4 && a.Last() == 3);
}

void const* s_lockable;
int s_calls;  // 1 for each Lock() and 10 for each Unlock() of that object, 1000 for another's

struct locked_collection : LX_TDynamicCollection<item> {
  void Lock() const override { s_calls += this == s_lockable ? 1 : 1000; }
  void Unlock() const override { s_calls += this == s_lockable ? 10 : 1000; }
};

struct locked_stack : LX_TUnboundedStack<item> {
  void Lock() override { s_calls += this == s_lockable ? 1 : 1000; }
  void Unlock() override { s_calls += this == s_lockable ? 10 : 1000; }
};

// Only `lockable` is locked: once, and not for long when something throws.
template <class Container>
void check_locks(Container& a, Container& b, void const* lockable) {
  s_lockable = lockable;
  for (int k : {1, 2, 3}) a.Add(k % 3), b.Add(k);
  EXPECT_TRUE(a != b);
  auto const operation = [&](int) { EXPECT_TRUE((a = b) == b); };
  auto const check = [&](int, bool) { EXPECT_EQ(s_calls, a.IsEmpty() ? 11 : 22); };
  fail_each_allocation([] { return s_calls = 0; }, operation, check);
  a.Add(4);
  EXPECT_TRUE(a != b);
  s_calls = 0;
  EXPECT_TRUE((a = a) == a && a.Cardinality() == 4 && s_calls == 0);
}

TEST(Containers, CollectionsLockThemselvesAndStacksTheOther) {
  locked_collection a, b;
  check_locks<LX_TCollection<item>>(a, b, &a);
  locked_stack c, d;
  check_locks<LX_TStack<item>>(c, d, &d);
  EXPECT_TRUE((a = b) == b && (c = d) == d && s_calls == 0);  // of one class
}

template <class Iterator, class C>
void check_iterator(C c) {
  Iterator i(c);
  c.Add("a"), c.Add("b");
  EXPECT_TRUE(i.IsDone() && i.CurrentItem() == nullptr);  // it was empty at the start
  EXPECT_TRUE(i.Next() == 1 && i.Next() == 1);
  *i.CurrentItem() = "c";
  EXPECT_EQ(c.ItemAt(1), "c");
  for (int k = 0; k < 2; ++k) EXPECT_TRUE(i.Next() == 0 && i.CurrentItem() == nullptr);
  i.Reset();
  c.Purge();
  EXPECT_EQ(i.IsDone(), 1);
}

TEST(Containers, IteratorsAskAnewAtEveryCall) {
  check_iterator<LX_TCollectionActiveIterator<GCL_String>>(LX_TDynamicCollection<GCL_String>(4));
  check_iterator<LX_TStackActiveIterator<GCL_String>>(GCL_ErrMsgStack());
  check_iterator<DRL_ListBaseActiveIterator<GCL_String>>(GCL_StringList(4));
}

TEST(Containers, StringListsAreValuesAndSlotsLeftBehindKeepTheirStrings) {
  GCL_String const x("x");
  GCL_StringList a(4), b(32);
  a.Append(x);
  b = a;
  EXPECT_TRUE(a == b && b.ChunkSize() == 4 && x.body()->reference_count() == 3);
  b.SetChunkSize(0xFFFFFFFF);  // no copy of it can be had
  EXPECT_THROW(a = b, std::bad_alloc);
  GCL_StringList moved(std::move(a));
  EXPECT_TRUE(a.IsEmpty() && moved.Length() == 1);  // NOLINT(bugprone-use-after-move)
  moved.Append(x), moved.Remove(1);
  EXPECT_EQ(x.body()->reference_count(), 4u);
}

TEST(Containers, LongListsAreWalkedInLinearTime) {
  LX_TUnbounded<unsigned int> l;
  for (unsigned int i = 0; i < 1000000; ++i) l.Append(i);
  for (unsigned int i = 1000000; i > 0; --i) ASSERT_EQ(l[i - 1], i - 1);
}

#ifdef MIROXGCL_CHECK_PRECONDITIONS

TEST(Containers, ViolationsAreDescribed) {
  LX_TDynamicCollection<int> a{0}, none;
  LX_TUnbounded<int> l{0}, empty;
  auto const expect = [](char const* description, char const* reason, auto run) {
    try {
      run();
      ADD_FAILURE() << description;
    } catch (LX_XException const& e) {
      EXPECT_EQ(std::string(e.kind()) + ' ' + e.location(), description);
      EXPECT_EQ(e.what(), e.location() + std::string(": ") + reason);
    }
  };
  expect("Range_Error LX_TDynamic::Insert", LX_kInvalidIndex, [&] { a.Insert(1, 2); });
  expect("Range_Error LX_TDynamic::Append", LX_kInvalidIndex, [&] { a.Append(1, 1); });
  expect("Range_Error LX_TDynamic::Remove", LX_kInvalidIndex, [&] { a.Remove(1); });
  expect("Range_Error LX_TDynamic::Replace", LX_kInvalidIndex, [&] { a.Replace(1, 1); });
  expect("Range_Error LX_TDynamic::Location", LX_kInvalidIndex,
         [&] { LX_TDynamic<int>().Location(1, 1); });
  expect("Underflow LX_TUnbounded::Remove", LX_kEmpty, [&] { empty.Remove(0); });
  expect("Range_Error LX_TDynamic<>::operator[]", LX_kInvalidIndex, [&] { a[1] = 1; });
  expect("Range_Error LX_TUnbounded::Insert", LX_kInvalidIndex, [&] { l.Insert(1, 1); });
  expect("Range_Error LX_TUnbounded::Append", LX_kInvalidIndex, [&] { l.Append(1, 2); });
  expect("Range_Error LX_TUnbounded<>::operator[]", LX_kInvalidIndex, [&] { l[1] = 1; });
  expect("Not_Null LX_TDynamic<>::SetChunkSize", LX_kNotEmpty, [&] { a.SetChunkSize(0); });
  expect("Underflow LX_TUnbounded<>::First()", LX_kEmpty, [&] { empty.First() = 1; });
  expect("Underflow LX_TDynamic::Remove", LX_kEmpty, [&] { none.Remove(0); });
}

#endif

}  // namespace
