// Arrays, lists, stacks and string lists: which items move, what a failure leaves behind, who is
// locked. What they hold and what storage they take is compared at random: see container_fuzz.cc.
#include <gtest/gtest.h>

#include <any>
#include <cstdint>
#include <ctime>
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

TEST(Containers, EmptyOneAssignedToAFullOneLeavesItEmpty) {
  LX_TDynamic<GCL_String> const empty(4);
  LX_TDynamic<GCL_String> a{"one", "two"};

  a = empty;

  EXPECT_EQ(a.Length(), 0u);
}

// The items abcde in 8 slots of which the rest hold what was there before, from v to z.
TEST(Containers, OnlyTheShorterSideMoves) {
  enum what { inserts, appends, removes };
  struct {
    unsigned int first_slot;
    what step;
    unsigned int index;
    char const* slots;
  } const cases[] = {
      {0, inserts, 2, "b!cdexya"},  // the two before it, around the end
      {0, appends, 2, "abc!deyz"},  // the two after it
      {3, removes, 2, "xyzaabde"},  // the two before it
      {6, inserts, 1, "cdexya!b"},  // the one before it
      {6, removes, 2, "deexyzab"},  // the two after it, around the end
  };
  for (auto const& row : cases) {
    LX_TDynamic<char> a(8);
    for (char c : std::string("mnopqrstuvwxyzabcde").substr(6 - row.first_slot)) {
      a.Append(c);
      if (a.Length() > 5) a.Remove(0);
    }
    char const* const slots = &a.First() - row.first_slot;
    if (row.step == inserts) a.Insert('!', row.index);
    if (row.step == appends) a.Append('!', row.index);
    if (row.step == removes) a.Remove(row.index);
    EXPECT_EQ(std::string(slots, 8), row.slots);
  }
}

// Values that own others of their kind. They cannot be moved: an array copies them to grow.
template <template <class> class Container>
struct node {
  node(int v = 0) : value(v) {}  // NOLINT(google-explicit-constructor)
  node(node const&) = default;
  node& operator=(node const&) = default;
  int value;
  Container<node> kids;
  friend bool operator==(node const& a, node const& b) { return a.value == b.value; }
};
template <class T>
using array_of = LX_TDynamic<T>;
template <class T>
using collection_of = LX_TDynamicCollection<T>;
template <class T>
using list_of = LX_TUnbounded<T>;
template <class T>
using stack_of = LX_TUnboundedStack<T>;

// Assigns as containers of this type.
template <class Assigned, template <class> class Container>
void check_assignment_from_within() {
  for (bool const moves : {false, true}) {
    node<Container> child(1), root;
    child.kids = {2, 3};
    root.kids = {child, 4};
    Assigned &to = root.kids, &from = const_cast<node<Container>&>(*root.kids.begin()).kids;
    moves ? to = std::move(from) : to = from;
    EXPECT_TRUE(root.kids == child.kids);
  }
}

TEST(Containers, WhatAnItemOwnsCanBeAssignedToItsContainer) {
  check_assignment_from_within<array_of<node<array_of>>, array_of>();
  check_assignment_from_within<collection_of<node<collection_of>>, collection_of>();
  check_assignment_from_within<LX_TCollection<node<collection_of>>, collection_of>();
  check_assignment_from_within<list_of<node<list_of>>, list_of>();
  check_assignment_from_within<stack_of<node<stack_of>>, stack_of>();
  check_assignment_from_within<LX_TStack<node<stack_of>>, stack_of>();
}

TEST(Containers, WhatAnItemOwnsCanBePutInItsArray) {
  using owner = node<array_of>;
  using array = LX_TDynamic<owner>;
  void (*const steps[])(array&, owner const&) = {
      [](array& a, owner const& n) { a.Append(n); },
      [](array& a, owner const& n) { a.Append(n, 0); },
      [](array& a, owner const& n) { a.Insert(n, 2); },
      [](array& a, owner const& n) { a.Replace(1, n); },
  };
  for (auto step : steps) {
    for (int n : {3, 4}) {  // with room, and full
      array a = filled(array(4), n);
      a[1].kids = {9};
      step(a, a[1].kids[0]);
      EXPECT_NE(a.Location(9, 0), -1);
    }
  }
}

struct alignas(64) wide {
  friend bool operator==(wide const&, wide const&) { return true; }
};

template <class Container>
void check_alignment(Container c) {
  for (int k = 0; k < 9; ++k) c.Add(wide());
  for (wide const& item : c) EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&item) % alignof(wide), 0u);
}

TEST(Containers, ItemsAreAlignedAsTheyAsk) {
  check_alignment(LX_TDynamicCollection<wide>(2));
  check_alignment(LX_TUnboundedStack<wide>());
}

// Containers with room and a full one, on which each step fails wherever it can: they keep their
// value and work on.
template <class C>
void check_failures(C const& empty) {
  C const other = filled(empty, 5);
  void (*const steps[])(C&, C const&) = {
      [](C& c, C const& d) { c.Insert(d.Last()); },
      [](C& c, C const&) { c.Append(c.First()); },
      [](C& c, C const& d) { c.Insert(d.Last(), 1); },
      [](C& c, C const&) { c.Remove(1); },
      [](C& c, C const&) { c = C(c); },
      [](C& c, C const& d) { c = d; },
  };
  for (auto step : steps) {
    for (int n : {3, 4, 6}) {
      auto const prepare = [&] { return filled(empty, n); };
      auto const check = [&](C& c, bool failed) {
        C expected = prepare();
        for (int k = 0; k < 6; ++k) c.Append(k), expected.Append(k);
        EXPECT_TRUE(!failed || c == expected) << n;
      };
      fail_each_allocation(
          prepare, [&](C& c) { step(c, other); }, check);
    }
  }
}

TEST(Containers, FailuresLeaveAWorkingContainer) {
  check_failures(LX_TDynamic<item>(4));
  check_failures(LX_TDynamic<movable>(4));
  check_failures(LX_TUnbounded<item>());
  auto const list = [](int) { LX_TUnbounded<item>{1, 2}; };
  std::size_t const held = failing_allocator::live_blocks();
  EXPECT_GT(fail_each_allocation([] { return 0; }, list, [](int, bool) {}), 4);
  EXPECT_EQ(failing_allocator::live_blocks(), held);
  auto a = filled(LX_TDynamic<long long>(4), 5);
  failing_allocator const failing(1);
  a.Remove(4);  // does without it
  EXPECT_NE(failing.failed_size(), 0u);
  EXPECT_EQ(a.Length(), 4u);
  EXPECT_EQ(a.Last(), 3);
}

void const* s_lockable;
std::string s_calls;  // of Lock() and Unlock()

void note(char const* call, void const* object) {
  s_calls += object == s_lockable ? call : "of another ";
}

struct locked_collection : LX_TDynamicCollection<item> {
  void Lock() const override { note("lock ", this); }
  void Unlock() const override { note("unlock ", this); }
};

struct locked_stack : LX_TUnboundedStack<item> {
  void Lock() override { note("lock ", this); }
  void Unlock() override { note("unlock ", this); }
};

// Assignment and comparison lock `lockable`, and no other, once, and not for long when they throw.
template <class Container>
void check_locks(Container& a, Container& b, void const* lockable) {
  s_lockable = lockable;
  for (int k : {1, 2, 3}) b.Add(k);
  auto const prepare = [] { return s_calls.clear(), 0; };
  auto const check = [&](int, bool) { EXPECT_EQ(s_calls, "lock unlock "); };
  fail_each_allocation(
      prepare, [&](int) { a = b; }, check);
  fail_each_allocation(
      prepare, [&](int) { EXPECT_TRUE(a == b); }, check);

  s_calls.clear();
  a = *&a;
  EXPECT_TRUE(a == a);
  EXPECT_EQ(a.Cardinality(), 3u);
  EXPECT_EQ(s_calls, "");
}

TEST(Containers, CollectionsLockThemselvesAndStacksTheOther) {
  locked_collection a, b;
  check_locks<LX_TCollection<item>>(a, b, &a);
  locked_stack c, d;
  check_locks<LX_TStack<item>>(c, d, &d);

  a = b;
  c = d;
  EXPECT_EQ(s_calls, "");  // of one class
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

template <class List>
void check_that_chunk_size_stays() {
  List const items;
  List list(8);
  list = items;
  EXPECT_EQ(list.ChunkSize(), 8u);
  list = List(5);
  EXPECT_EQ(list.ChunkSize(), 8u);
}

TEST(Containers, TypedListsKeepTheirChunkSize) {
  check_that_chunk_size_stays<GCL_IntegerList>();
  check_that_chunk_size_stays<GCL_OSUserList>();
  check_that_chunk_size_stays<GCL_OSGroupList>();
}

TEST(Containers, LongListsAreWalkedAndAssignedInLinearTime) {
  unsigned int const n = 200'000;
  LX_TUnbounded<unsigned int> l;
  LX_TDynamicCollection<unsigned int> a, b(1);
  a.Preallocate(n);
  for (unsigned int i = 0; i < n; ++i) l.Append(i), a.Append(i);
  LX_TCollection<unsigned int>&from = a, &to = b;
  std::clock_t const start = std::clock();

  for (unsigned int i = 0; i < n; ++i) ASSERT_EQ(l[i], i);
  for (unsigned int i = n; i > 0; --i) ASSERT_EQ(l[i - 1], i - 1);
  to = from;

  EXPECT_TRUE(a == b);
  EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
}

#ifdef MIROXGCL_CHECK_PRECONDITIONS

TEST(Containers, ViolationsAreDescribed) {
  LX_TDynamicCollection<int> a{0};
  LX_TUnbounded<int> empty;
  auto const expect = [](char const* kind, std::string const& what, auto violate) {
    try {
      violate();
      ADD_FAILURE() << what;
    } catch (LX_XException const& e) {
      EXPECT_STREQ(e.kind(), kind);
      EXPECT_EQ(e.what(), what);
    }
  };
  expect("Range_Error", std::string("LX_TDynamic::Remove: ") + LX_kInvalidIndex,
         [&] { a.Remove(1); });
  expect("Underflow", std::string("LX_TUnbounded::Last: ") + LX_kEmpty, [&] { empty.Last(); });
  expect("Not_Null", std::string("LX_TDynamic<>::SetChunkSize: ") + LX_kNotEmpty,
         [&] { a.SetChunkSize(0); });
}

#endif

}  // namespace
