// Arrays, lists, stacks and string lists: which items move, what a failure leaves behind, who is
// locked. What they hold and what storage they take is compared at random: see container_fuzz.cc.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "miroxgcl/gcl_err_msg_stack.h"
#include "miroxgcl/gcl_string_list.h"
#include "miroxgcl/lx_dynamic.h"

namespace {

struct failure : std::bad_alloc {};

int s_fuse = 0;  // counts down at each point that can fail; 1 fails there, 0 never

void may_fail() {
  if (s_fuse != 0 && --s_fuse == 0) throw failure();
}

// A storage policy that fails too, and remembers its last block, which it filled with garbage.
struct failing {
  static void* AllocateBlock(std::size_t n) {
    may_fail();
    if (n > 1000000) throw std::bad_alloc();
    ++s_blocks;
    s_size = n;
    return s_last = static_cast<char*>(std::memset(::operator new(n), 0xAB, n));
  }
  static void ReleaseBlock(void* p, std::size_t) noexcept {
    --s_blocks;
    ::operator delete(p);
  }
  static inline int s_blocks = 0;
  static inline char* s_last;
  static inline std::size_t s_size;
};

// An element that can fail whenever it is made, copied or compared, and has no move and no !=.
class item {
 public:
  item(int v = 0) : value((may_fail(), v)) { ++s_alive; }                    // NOLINT
  item(item const& other) : value((may_fail(), other.value)) { ++s_alive; }  // NOLINT
  item& operator=(item const& other) {                                       // NOLINT
    may_fail();
    value = other.value;
    return *this;
  }
  ~item() { --s_alive; }
  bool operator==(item const& other) const { return (may_fail(), value == other.value); }

  int value;
  static inline int s_alive = 0;

 protected:
  item(int v, std::true_type) noexcept : value(v) { ++s_alive; }
};

// The same with a move, which never fails and takes the value away.
struct movable : item {
  movable(int v = 0) : item(v) {}  // NOLINT(google-explicit-constructor)
  movable(movable const&) = default;
  movable(movable&& other) noexcept : item(std::exchange(other.value, -1), std::true_type()) {}
  movable& operator=(movable const&) = default;
  movable& operator=(movable&& other) noexcept {
    value = std::exchange(other.value, -1);
    return *this;
  }
};

template <class T>
using array = LX_TDynamic<T, failing>;
template <class T>
using list = LX_TUnbounded<T, failing>;

template <class C>
auto content(C const& c) {
  return std::vector<std::decay_t<decltype(c.ItemAt(0))>>(c.begin(), c.end());
}

// `c` with the numbers from 0 to n - 1, the first two put in backwards, so that they wrap.
template <class C>
C filled(C c, int n) {
  for (int k = 2; k < n; ++k) c.Append(k);
  c.Insert(1), c.Insert(0);
  return c;
}

struct Containers : testing::Test {
  void TearDown() override {
    EXPECT_TRUE(s_fuse == 0 && failing::s_blocks == 0 && item::s_alive == 0);
  }
};

// The sizes wrap to something small in 32 bits, as slots or as bytes of them.
TEST_F(Containers, ImpossibleSizesAreRefusedBeforeAnythingChanges) {
  for (unsigned int chunk : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0x40000001u, 0x20000000u}) {
    auto a = filled(array<double>(4), 4);
    a.SetChunkSize(chunk);
    EXPECT_THROW(a.Append(4), std::bad_alloc) << chunk;
    EXPECT_THROW(a.Insert(4, 1), std::bad_alloc) << chunk;
    EXPECT_THROW(a.Preallocate(0x80000001u), std::bad_alloc) << chunk;
    a.Remove(1);  // would want a larger array, and does without it
    EXPECT_EQ(content(a), (std::vector<double>{0, 2, 3}));
  }
  EXPECT_THROW(array<int>(0x60000000).Preallocate(0x60000001), std::bad_alloc);
  EXPECT_THROW(GCL_StringList(-1).Append("x"), std::bad_alloc);
}

// All slots, what items left behind included and a dot for 0, with the first and last item's slot.
std::string picture(array<char> const& a) {
  std::string text(failing::s_last, failing::s_size);
  std::replace(text.begin(), text.end(), '\0', '.');
  return text + " " + std::to_string(&a.First() - failing::s_last) + "-" +
         std::to_string(&a.Last() - failing::s_last);
}

// The items abcde in 8 slots: from the first slot, up to the last slot, or wrapped.
array<char> abcde(char where) {
  array<char> a(8);
  for (char c : std::string(where == '<' ? "abcde" : where == '>' ? "zyxabcde" : "cde")) {
    a.Append(c);
  }
  if (where == '>') a.Remove(0), a.Remove(0), a.Remove(0);
  if (where == 'o') a.Insert('b'), a.Insert('a');
  return a;
}

TEST_F(Containers, OnlyTheShorterSideMoves) {
  struct {
    char where, step;
    unsigned int i;
    char const* after;
  } const cases[] = {
      {'<', 'i', 2, "b!cde..a 7-4"}, {'<', 'i', 3, "abc!de.. 0-5"}, {'<', 'i', 5, "abcde!.. 0-5"},
      {'<', 'a', 1, "b!cde..a 7-4"}, {'<', 'r', 2, "aabde... 1-4"}, {'<', 'r', 3, "abcee... 0-3"},
      {'>', 'i', 0, "zy!abcde 2-7"}, {'>', 'i', 3, "eyxabc!d 3-0"}, {'>', 'a', 4, "!yxabcde 3-0"},
      {'>', 'r', 2, "zyxaabde 4-7"}, {'o', 'i', 1, "cde..a!b 5-2"}, {'o', 'i', 2, "!cde..ab 6-3"},
      {'o', 'i', 3, "c!de..ab 6-3"}, {'o', 'r', 1, "cde...aa 7-2"}, {'o', 'r', 2, "dee...ab 6-1"},
  };
  for (auto const& c : cases) {
    array<char> a = abcde(c.where);
    if (c.step == 'i') a.Insert('!', c.i);
    if (c.step == 'a') a.Append('!', c.i);
    if (c.step == 'r') a.Remove(c.i);
    EXPECT_EQ(picture(a), c.after) << c.where << c.step << c.i;
  }
}

// Fails `run` at each of its points in turn, on containers with room and on a full one, which then
// hold what they held, if they `keep` their value, else as many items; and work on.
template <class C>
void check_failures(C const& empty, bool keep, std::function<void(C&)> const& run) {
  for (int n : {3, 4, 7}) {
    bool failed = true;
    for (int point = 1; failed; ++point) {
      C c = filled(empty, n);
      auto expected = content(c);
      failed = false;
      s_fuse = point;
      try {
        run(c);
      } catch (failure const&) {
        failed = true;
      }
      s_fuse = 0;
      ASSERT_TRUE(failed || point > 1);
      if (!failed) continue;
      if (!keep) expected = content(c);
      ASSERT_TRUE(content(c) == expected && c.Length() == static_cast<unsigned int>(n)) << point;
      for (int k = 0; k < 6; ++k) c.Append(9), expected.emplace_back(9);
      ASSERT_TRUE(content(c) == expected) << point;
    }
  }
}

template <class C>
void check_all_failures(C const& empty, bool keeps_inside) {
  check_failures<C>(empty, true, [](C& c) { c.Insert(9); });
  check_failures<C>(empty, true, [](C& c) { c.Append(c.First()); });
  check_failures<C>(empty, true, [](C& c) { c.Replace(1, 9); });
  check_failures<C>(empty, true, [](C& c) { EXPECT_EQ(C(c), c); });
  check_failures<C>(empty, keeps_inside, [](C& c) { c.Insert(9, 1); });
  check_failures<C>(empty, keeps_inside, [](C& c) { c.Append(9, 2); });
}

TEST_F(Containers, FailuresLeaveAWorkingContainer) {
  check_all_failures(array<item>(4), false);
  check_all_failures(array<movable>(4), true);
  check_all_failures(list<item>(), true);
  check_failures<list<item>>({}, true, [](auto& l) { l = filled(list<item>(), 5); });
}

TEST_F(Containers, InterruptedAssignmentsLeaveTheArrayEmptyAndRemovalsNeedNoMemory) {
  auto const other = filled(array<item>(4), 6), before = filled(array<item>(4), 4);
  bool done = false;
  for (int point = 1; !done; ++point) {
    array<item> a(before);
    s_fuse = point;
    try {
      a = other;
      done = true;
    } catch (failure const&) {
    }
    s_fuse = 0;
    EXPECT_TRUE(done ? a == other : a.Length() == 0 || a == before) << point;
    a = other;
    s_fuse = point;
    for (int k = 0; k < 2; ++k) a.Remove(a.Length() - 1);
    s_fuse = 0;
    EXPECT_TRUE(a == before) << point;
  }
}

std::vector<void const*> s_locked, s_unlocked;

struct locked_collection : LX_TDynamicCollection<item, failing> {
  using LX_TDynamicCollection::operator=;
  void Lock() const override { s_locked.push_back(this); }
  void Unlock() const override { s_unlocked.push_back(this); }
};

struct locked_stack : LX_TUnboundedStack<item, failing> {
  using LX_TUnboundedStack::operator=;
  void Lock() override { s_locked.push_back(this); }
  void Unlock() override { s_unlocked.push_back(this); }
};

// What `run` locks, all of which it must unlock again.
using locks = std::vector<void const*>;
locks locked_by(std::function<void()> const& run) {
  s_locked.clear(), s_unlocked.clear();
  run();
  EXPECT_EQ(s_locked, s_unlocked);
  return s_locked;
}

// A collection locks itself, a stack the other; `Locked` tells which of two objects is locked.
template <class Any, class Class>
void check_locks(Class& a, Class& b, void const* locked) {
  Any& any_a = a;
  Any const& any_b = b;
  for (int k : {1, 2, 3}) b.Add(k);
  EXPECT_EQ(locked_by([&] { any_a = any_b; }), locks{locked});
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE(any_a == any_b); }), locks{locked});
  a.Add(4);
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE(any_a != any_b); }), locks{locked});
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE((any_a = any_a) == any_a); }), locks{});
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE((a = b) == b && a.ItemAt(2).value == 3); }), locks{});
  s_fuse = 2;
  EXPECT_EQ(locked_by([&] { EXPECT_THROW(any_a.operator==(any_b), failure); }), locks{locked});
  s_fuse = 6;
  EXPECT_EQ(locked_by([&] { EXPECT_THROW(any_a = any_b, failure); }), locks{locked});
  EXPECT_TRUE(a.IsEmpty() && b.Cardinality() == 3);
}

TEST_F(Containers, AssignmentsAndComparisonsAreLocked) {
  locked_collection a, b;
  check_locks<LX_TCollection<item>>(a, b, &a);
  locked_stack c, d;
  check_locks<LX_TStack<item>>(c, d, &d);
}

template <class Iterator, class C>
void check_iterator(C c) {
  Iterator i(c);
  c.Add("a");
  EXPECT_TRUE(i.IsDone() && i.CurrentItem() == nullptr);  // it was empty at the start
  EXPECT_EQ(i.Next(), 1);
  c.Add("b");
  EXPECT_EQ(i.Next(), 1);
  *i.CurrentItem() = "c";
  EXPECT_EQ(c.ItemAt(1), "c");
  for (int k = 0; k < 2; ++k) EXPECT_TRUE(i.Next() == 0 && i.CurrentItem() == nullptr);
  i.Reset();
  c.Purge();
  EXPECT_EQ(i.IsDone(), 1);
}

TEST_F(Containers, IteratorsAskAnewAtEveryCall) {
  check_iterator<LX_TCollectionActiveIterator<GCL_String>>(LX_TDynamicCollection<GCL_String>(4));
  check_iterator<LX_TStackActiveIterator<GCL_String>>(GCL_ErrMsgStack());
  check_iterator<DRL_ListBaseActiveIterator<GCL_String>>(GCL_StringList(4));
}

TEST_F(Containers, StringListsAreValuesAndSlotsLeftBehindKeepTheirStrings) {
  GCL_String const x("x");
  GCL_StringList a(4), b(32);
  a.Append(x);
  b = a;
  EXPECT_TRUE(a == b && b.ChunkSize() == 4 && x.body()->reference_count() == 3);
  b.SetChunkSize(0xFFFFFFFF);  // no copy of it can be had
  EXPECT_THROW(a = b, std::bad_alloc);
  EXPECT_EQ(a.Location(x), 0);
  GCL_StringList moved(std::move(a));
  EXPECT_TRUE(a.IsEmpty() && moved.Length() == 1);  // NOLINT(bugprone-use-after-move)
  moved.Append(x), moved.Remove(1);
  EXPECT_EQ(x.body()->reference_count(), 4u);
  moved.Insert("y");  // into the slot left behind
  EXPECT_EQ(x.body()->reference_count(), 3u);
}

TEST_F(Containers, LongListsAreWalkedInLinearTime) {
  LX_TUnbounded<unsigned int> l;
  unsigned int const n = 1000000;
  for (unsigned int i = 0; i < n; ++i) l.Append(i);
  for (unsigned int i = n; i > 0; --i) ASSERT_EQ(l[i - 1], i - 1);
}

#ifdef MIROXGCL_CHECK_PRECONDITIONS

void expect_violation(std::string const& kind, std::string const& location, char const* reason,
                      std::function<void()> const& run) {
  try {
    run();
    ADD_FAILURE() << location;
  } catch (LX_XException const& e) {
    EXPECT_TRUE(e.kind() == kind && e.location() == location && e.what() == reason) << location;
  }
}

TEST_F(Containers, ViolationsAreDescribed) {
  array<int> a(4);
  list<int> l{0};
  LX_TUnboundedStack<int> s;
  a.Append(0);
  auto const range = [](std::string const& location, std::function<void()> const& run) {
    expect_violation("Range_Error", location, LX_kInvalidIndex, run);
  };
  range("LX_TDynamic::Insert", [&] { a.Insert(1, 2); });
  range("LX_TDynamic::Append", [&] { a.Append(1, 1); });
  range("LX_TDynamic::Remove", [&] { a.Remove(1); });
  range("LX_TDynamic::Replace", [&] { a.Replace(1, 1); });
  range("LX_TDynamic::Location", [&] { a.Location(1, 2); });
  range("LX_TDynamic<>::operator[]", [&] { a[1] = 1; });
  range("LX_TUnbounded::Insert", [&] { l.Insert(1, 1); });
  range("LX_TUnbounded::Append", [&] { l.Append(1, 2); });
  range("LX_TUnbounded<>::operator[]", [&] { std::as_const(l)[1]; });
  auto const& expect = expect_violation;
  expect("Not_Null", "LX_TDynamic<>::SetChunkSize", LX_kNotEmpty, [&] { a.SetChunkSize(0); });
  expect("Underflow", "LX_TUnbounded::Remove", LX_kEmpty, [&] { s.Pop(); });
  expect("Underflow", "LX_TUnbounded<>::First()", LX_kEmpty, [&] { s.Top() = 1; });
  a.Remove(0);
  expect("Underflow", "LX_TDynamic::Remove", LX_kEmpty, [&] { a.Remove(0); });
}

#endif

}  // namespace
