// Arrays, lists, stacks and string lists: where items stand, what storage they take, what a failure
// leaves behind; and random operations, step by step beside a vector.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <random>
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

// A storage policy that accounts for its blocks and hands them out full of garbage.
class counting {
 public:
  static void* AllocateBlock(std::size_t n) {
    may_fail();
    if (n > 1000000) throw std::bad_alloc();
    void* const p = std::memset(::operator new(n), 0xAB, n);
    s_blocks[p] = n;
    return p;
  }
  static void ReleaseBlock(void* p, std::size_t n) noexcept {
    auto const block = s_blocks.find(p);
    ASSERT_TRUE(block != s_blocks.end() && block->second == n) << n;
    s_blocks.erase(block);
    ::operator delete(p);
  }
  template <class T>
  static std::size_t slots() {  // of all arrays alive
    std::size_t bytes = 0;
    for (auto const& block : s_blocks) bytes += block.second;
    return bytes / sizeof(T);
  }

  static inline std::map<void*, std::size_t> s_blocks;
};

// An element that can fail whenever it is made, copied or compared, and has no move and no !=.
class item {
 public:
  item(int v = 0) : value(v) { begin(); }                    // NOLINT
  item(item const& other) : value(other.value) { begin(); }  // NOLINT
  item& operator=(item const& other) {                       // NOLINT
    may_fail();
    value = other.value;
    return *this;
  }
  ~item() { --s_alive; }
  bool operator==(item const& other) const {
    may_fail();
    return value == other.value;
  }

  int value;
  static inline int s_alive = 0;

 protected:
  item(int v, std::true_type) noexcept : value(v) { ++s_alive; }

 private:
  void begin() {
    may_fail();
    ++s_alive;
  }
};

// The same with a move, which never fails and takes the value away.
class movable : public item {
 public:
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
T make(int v) {
  static char places[256];
  if constexpr (std::is_same_v<T, GCL_String>) return GCL_String(std::to_string(v).c_str());
  if constexpr (std::is_same_v<T, void*>) return &places[v];
  if constexpr (std::is_constructible_v<T, int>) return T(v);
}

template <class C>
auto content(C const& c) {
  std::vector<std::decay_t<decltype(c.ItemAt(0))>> items;
  for (unsigned int i = 0; i < c.Length(); ++i) items.push_back(c.ItemAt(i));
  return items;
}

template <class T>
using array = LX_TDynamic<T, counting>;
template <class T>
using list = LX_TUnbounded<T, counting>;
template <class T>
using collection = LX_TDynamicCollection<T, counting>;
template <class T>
using stack = LX_TUnboundedStack<T, counting>;

// `empty` with the numbers from 0 to n - 1, the first of them put in backwards, so that they wrap.
template <class T, class C>
C filled(C const& empty, int n, int backwards = 0) {
  C c(empty);
  for (int k = backwards; k < n; ++k) c.Append(make<T>(k));
  for (int k = backwards; k > 0; --k) c.Insert(make<T>(k - 1));
  return c;
}

class containers : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(std::exchange(s_fuse, 0), 0);
    EXPECT_TRUE(counting::s_blocks.empty());
    EXPECT_EQ(item::s_alive, 0);
  }
};

// --- Storage.

TEST_F(containers, capacity_follows_the_length_by_chunks) {
  array<int> a(4);
  std::vector<std::size_t> seen;
  for (int k = 0; k < 5; ++k) a.Append(k), seen.push_back(counting::slots<int>());
  for (int k = 0; k < 5; ++k) a.Remove(0), seen.push_back(counting::slots<int>());
  EXPECT_EQ(seen, (std::vector<std::size_t>{4, 4, 4, 4, 8, 4, 4, 4, 4, 0}));

  a.Preallocate(10);
  EXPECT_EQ(counting::slots<int>(), 12u);
  EXPECT_EQ(a.Length(), 0u);
  a = array<int>(a);  // nothing comes over from an empty array, not its storage either
  EXPECT_EQ(counting::slots<int>(), 0u);
  a.Preallocate(5);
  a.Append(1);
  a.Append(2);
  a.Preallocate(2);
  EXPECT_EQ(counting::slots<int>(), 8u);
  a.Remove(0);
  EXPECT_EQ(counting::slots<int>(), 4u);
  a.SetChunkSize(6);  // the slots held stay until one is missing
  for (int k = 0; k < 3; ++k) a.Append(k);
  EXPECT_EQ(counting::slots<int>(), 4u);
  a.Append(3);
  EXPECT_EQ(counting::slots<int>(), 6u);
  a.Clear();
  array<int> without_chunk;
  without_chunk.Append(1);
  EXPECT_EQ(counting::slots<int>(), 32u);
  EXPECT_EQ(without_chunk.ChunkSize(), 0u);
}

// The sizes wrap to something small in 32 bits, as slots or as bytes of them.
TEST_F(containers, impossible_sizes_are_refused_before_anything_changes) {
  for (unsigned int chunk : {0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu, 0x40000001u, 0x20000000u}) {
    array<double> a = filled<double>(array<double>(4), 4, 1);
    auto const before = content(a);
    a.SetChunkSize(chunk);
    EXPECT_THROW(a.Append(4), std::bad_alloc) << chunk;
    EXPECT_THROW(a.Insert(4, 1), std::bad_alloc) << chunk;
    EXPECT_THROW(a.Preallocate(0x80000001u), std::bad_alloc) << chunk;
    EXPECT_EQ(content(a), before) << chunk;
    EXPECT_EQ(counting::slots<double>(), 4u);
    a.Remove(1);  // would want a larger array, and does without it
    EXPECT_EQ(content(a), (std::vector<double>{0, 2, 3}));
  }
  array<int> huge(0x60000000);
  EXPECT_THROW(huge.Preallocate(0x60000001), std::bad_alloc);
  EXPECT_THROW(GCL_StringList(-1).Append("x"), std::bad_alloc);
}

// Whole objects go through the policy too, with their own size.
TEST_F(containers, objects_are_allocated_by_the_policy) {
  struct larger : collection<int> {
    int more[8] = {};
  };
  struct larger_stack : stack<int> {
    int more[8] = {};
  };
  std::unique_ptr<LX_TCollection<int>> const c(new larger);
  std::unique_ptr<LX_TStack<int>> const s(new larger_stack);
  std::unique_ptr<array<int>> const a(new array<int>(4));
  std::unique_ptr<list<int>> const l(new list<int>);
  EXPECT_EQ(counting::s_blocks.size(), 4u);
  alignas(collection<int>) unsigned char place[sizeof(collection<int>)];
  auto* const placed = new (static_cast<void*>(place)) collection<int>(4);
  EXPECT_EQ(static_cast<void*>(placed), place);
  placed->~collection<int>();
}

// --- Where the items of an array stand.

// All slots, what items left behind included and a dot for 0, with the first and last item's slot.
std::string picture(array<char> const& a) {
  auto const& block = *counting::s_blocks.begin();
  auto const* const slots = static_cast<char const*>(block.first);
  std::string text(slots, block.second);
  std::replace(text.begin(), text.end(), '\0', '.');
  return text + " " + std::to_string(&a.First() - slots) + "-" + std::to_string(&a.Last() - slots);
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

TEST_F(containers, only_the_shorter_side_moves) {
  struct {
    char where, step;
    unsigned int i;
    char const* after;
  } const cases[] = {
      {'<', '=', 0, "abcde... 0-4"}, {'>', '=', 0, "zyxabcde 3-7"}, {'o', '=', 0, "cde...ab 6-2"},
      {'<', 'i', 0, "abcde..! 7-4"}, {'<', 'i', 1, "!bcde..a 7-4"}, {'<', 'i', 2, "b!cde..a 7-4"},
      {'<', 'i', 3, "abc!de.. 0-5"}, {'<', 'i', 5, "abcde!.. 0-5"}, {'<', 'a', 0, "!bcde..a 7-4"},
      {'<', 'a', 1, "b!cde..a 7-4"}, {'<', 'a', 2, "abc!de.. 0-5"}, {'<', 'a', 4, "abcde!.. 0-5"},
      {'<', 'r', 0, "abcde... 1-4"}, {'<', 'r', 2, "aabde... 1-4"}, {'<', 'r', 3, "abcee... 0-3"},
      {'<', 'r', 4, "abcde... 0-3"}, {'>', 'i', 0, "zy!abcde 2-7"}, {'>', 'i', 2, "zyab!cde 2-7"},
      {'>', 'i', 3, "eyxabc!d 3-0"}, {'>', 'i', 4, "eyxabcd! 3-0"}, {'>', 'i', 5, "!yxabcde 3-0"},
      {'>', 'a', 1, "zyab!cde 2-7"}, {'>', 'a', 2, "eyxabc!d 3-0"}, {'>', 'a', 4, "!yxabcde 3-0"},
      {'>', 'r', 2, "zyxaabde 4-7"}, {'>', 'r', 3, "zyxabcee 3-6"}, {'o', 'i', 0, "cde..!ab 5-2"},
      {'o', 'i', 1, "cde..a!b 5-2"}, {'o', 'i', 2, "!cde..ab 6-3"}, {'o', 'i', 3, "c!de..ab 6-3"},
      {'o', 'i', 5, "cde!..ab 6-3"}, {'o', 'a', 0, "cde..a!b 5-2"}, {'o', 'a', 1, "cde..ab! 5-2"},
      {'o', 'a', 2, "c!de..ab 6-3"}, {'o', 'a', 4, "cde!..ab 6-3"}, {'o', 'r', 0, "cde...ab 7-2"},
      {'o', 'r', 1, "cde...aa 7-2"}, {'o', 'r', 2, "dee...ab 6-1"}, {'o', 'r', 4, "cde...ab 6-1"},
  };
  for (auto const& c : cases) {
    array<char> a = abcde(c.where);
    if (c.step == 'i') a.Insert('!', c.i);
    if (c.step == 'a') a.Append('!', c.i);
    if (c.step == 'r') a.Remove(c.i);
    EXPECT_EQ(picture(a), c.after) << c.where << c.step << c.i;
  }
  array<char> a = abcde('<');
  a.Remove(4);
  a.Insert('!', 2);  // as many before as behind: those before move
  EXPECT_EQ(picture(a), "b!cde..a 7-3");
  a = abcde('<');
  a.Remove(4);
  a.Remove(2);
  EXPECT_EQ(picture(a), "aabde... 1-3");
}

TEST_F(containers, runs_end_where_they_meet_the_edge) {
  array<char> a = abcde('o');
  a.Remove(4), a.Remove(3), a.Remove(2);
  EXPECT_EQ(picture(a), "cde...ab 6-7");
  a.Append('!'), a.Remove(0), a.Remove(0);
  EXPECT_EQ(picture(a), "!de...ab 0-0");
  EXPECT_EQ(a.ExpandLeft(0), 7u);
  EXPECT_EQ(a.ExpandRight(1), 1u);
  EXPECT_EQ(picture(a), "!de...ab 7-1");
  array<char> full(4);
  for (char c : {'b', 'c', 'd', 'a'}) c == 'a' ? full.Insert(c) : full.Append(c);
  a.Clear();
  full.Insert('!', 1);  // laid out anew from slot 0 when it grows
  EXPECT_EQ(picture(full), "!bcd...a 7-3");
}

TEST_F(containers, slots_left_behind_keep_their_strings) {
  GCL_String const x("x");
  array<GCL_String> a(4);
  for (int k = 0; k < 3; ++k) a.Append(x);
  a.Remove(2);
  EXPECT_EQ(x.body()->reference_count(), 4u);
  a.Append("y");  // into the slot left behind
  EXPECT_EQ(x.body()->reference_count(), 3u);
  a.Remove(0), a.Remove(0);
  EXPECT_EQ(x.body()->reference_count(), 3u);
  a.Remove(0);
  EXPECT_EQ(x.body()->reference_count(), 1u);
}

// --- Items that are the container's own.

// Every operation with every item of the container as its argument, at every index, full or not.
template <class T, class C>
void check_own_items(C const& empty) {
  for (int n = 1; n <= 9; ++n) {
    for (int variant = 0; variant < 5 * n * n * n; ++variant) {
      int const step = variant % 5;
      int const i = variant / 5 % n;
      int const own = variant / 5 / n % n;
      auto const at = static_cast<unsigned int>(i);
      C c = filled<T>(empty, n, variant / 5 / n / n);
      auto expected = content(c);
      T const value = expected[static_cast<unsigned int>(own)];
      T const& alias = c.ItemAt(static_cast<unsigned int>(own));
      if (step == 4) {
        c.Replace(at, alias);
        expected[at] = value;
      } else {
        step == 0   ? c.Insert(alias)
        : step == 1 ? c.Append(alias)
        : step == 2 ? c.Insert(alias, at)
                    : c.Append(alias, at);
        expected.insert(expected.begin() + (step == 0 ? 0 : step == 1 ? n : i + step - 2), value);
      }
      ASSERT_TRUE(content(c) == expected) << n << " items, variant " << variant;
    }
  }
}

TEST_F(containers, arguments_may_be_items_of_their_own) {
  check_own_items<int>(array<int>(4));
  check_own_items<void*>(array<void*>(4));
  check_own_items<GCL_String>(array<GCL_String>(4));
  check_own_items<GCL_String>(GCL_StringList(4));
  check_own_items<item>(array<item>(4));
  check_own_items<movable>(array<movable>(4));
  check_own_items<movable>(list<movable>());
}

// --- Failures.

// Fails `run` at each of its points in turn, on containers with room and on a full one, which then
// hold what they held, if they `keep` their value, else as many items; and work on.
template <class T, class C>
void check_failures(C const& empty, bool keep, std::function<void(C&, T const&)> const& run) {
  T const added(99);
  for (unsigned int n : {3u, 4u, 7u}) {
    int point = 0;
    for (bool failed = true; failed;) {
      C c = filled<T>(empty, static_cast<int>(n), 2);
      auto expected = content(c);
      failed = false;
      s_fuse = ++point;
      try {
        run(c, added);
      } catch (failure const&) {
        failed = true;
      }
      s_fuse = 0;
      if (!failed) continue;
      ASSERT_EQ(c.Length(), n) << point;
      if (!keep) expected = content(c);
      for (T const& x : expected) ASSERT_TRUE(0 <= x.value && x.value < 7) << x.value;
      for (int k = 0; k < 6; ++k) c.Append(added), expected.push_back(added);
      ASSERT_TRUE(content(c) == expected) << point;
    }
    EXPECT_GT(point, 1);
  }
}

template <class T, class C>
void check_all_failures(C const& empty, bool keeps_inside) {
  check_failures<T, C>(empty, true, [](C& c, T const& x) { c.Insert(x); });
  check_failures<T, C>(empty, true, [](C& c, T const& x) { c.Append(x); });
  check_failures<T, C>(empty, true, [](C& c, T const& x) { c.Replace(1, x); });
  check_failures<T, C>(empty, true, [](C& c, T const&) { c.Append(c.First()); });
  check_failures<T, C>(empty, true, [](C& c, T const&) { EXPECT_EQ(C(c), c); });
  for (unsigned int i : {1u, 2u}) {
    check_failures<T, C>(empty, keeps_inside, [i](C& c, T const& x) { c.Insert(x, i); });
    check_failures<T, C>(empty, keeps_inside, [i](C& c, T const& x) { c.Append(x, i); });
  }
}

TEST_F(containers, failures_leave_a_working_container) {
  check_all_failures<item>(array<item>(4), false);
  check_all_failures<movable>(array<movable>(4), true);
  check_all_failures<item>(list<item>(), true);
  check_failures<item, list<item>>({}, true, [](list<item>& l, item const& x) {
    list<item> other(l);
    other.Insert(x);
    l = other;
  });
}

// Calls of Lock and Unlock, by the object locked.
std::vector<void const*> s_locked, s_unlocked;

template <class T, class M>
struct locked_collection : LX_TDynamicCollection<T, M> {
  using LX_TDynamicCollection<T, M>::LX_TDynamicCollection;
  using LX_TDynamicCollection<T, M>::operator=;
  void Lock() const override { s_locked.push_back(this); }
  void Unlock() const override { s_unlocked.push_back(this); }
};

struct locked_stack : stack<item> {
  using stack<item>::operator=;
  void Lock() override { s_locked.push_back(this); }
  void Unlock() override { s_unlocked.push_back(this); }
};

// What `run` locks, all of which it must unlock again.
std::vector<void const*> locked_by(std::function<void()> const& run) {
  s_locked.clear();
  s_unlocked.clear();
  run();
  EXPECT_EQ(s_locked, s_unlocked);
  return s_locked;
}
using locks = std::vector<void const*>;

// From an array that the slots at hand serve for, and from one that takes more, which may fail
// while the old value is still there.
TEST_F(containers, interrupted_assignments_leave_the_array_empty) {
  for (unsigned int n : {3u, 6u}) {
    array<item> const other = filled<item>(array<item>(8), static_cast<int>(n), 1);
    array<item> const before = filled<item>(array<item>(4), 4, 1);
    for (int point = 1, done = 0; done == 0; ++point) {
      array<item> a(before);
      s_fuse = point;
      try {
        a = other;
        done = 1;
      } catch (failure const&) {
      }
      s_fuse = 0;
      EXPECT_TRUE(done != 0 ? a == other : a.Length() == 0 || (n == 6 && a == before)) << point;
      array<item> grown(a);
      for (int k = 0; k < 6; ++k) a.Append(k), grown.Append(k);
      EXPECT_EQ(a, grown) << point;
    }
  }
}

TEST_F(containers, collections_of_different_classes_assign_and_compare) {
  locked_collection<item, counting> a(4);
  locked_collection<item, LX_CUnmanaged> b(3);
  LX_TCollection<item>& any_a = a;
  for (int k : {1, 2, 3, 4, 5}) b.Insert(k);
  EXPECT_EQ(locked_by([&] { a = b; }), locks{&a});
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE(any_a == b && !(any_a != b)); }), (locks{&a, &a}));
  EXPECT_EQ(counting::slots<item>(), 8u);
  s_fuse = 2;
  EXPECT_EQ(locked_by([&] { EXPECT_THROW(any_a.operator==(b), failure); }), locks{&a});
  b.Replace(4, 9);
  EXPECT_EQ(locked_by([&] { EXPECT_EQ(any_a == b, 0); }), locks{&a});
  b.Add(5);
  EXPECT_EQ(locked_by([&] { EXPECT_EQ(b != any_a, 1); }), locks{&b});
  EXPECT_EQ(locked_by([&] { any_a = any_a; }), locks{});
  EXPECT_EQ(locked_by([&] { EXPECT_EQ(any_a == any_a, 1); }), locks{});
  EXPECT_EQ(a.Length(), 5u);
  s_fuse = 12;
  EXPECT_EQ(locked_by([&] { EXPECT_THROW(any_a = b, failure); }), locks{&a});
  EXPECT_TRUE(a.IsEmpty() && any_a != b && counting::s_blocks.empty());

  locked_collection<item, counting> same(2);  // of one class: the arrays, without locks
  same.Append(7);
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE((a = same) == same); }), locks{});
  EXPECT_EQ(a.ChunkSize(), 4u);
}

TEST_F(containers, stacks_lock_the_other) {
  locked_stack a;
  locked_stack b;
  LX_TStack<item>& any_a = a;
  LX_TStack<item> const& any_b = b;
  for (int k : {2, 1, 0}) b.Push(k);
  b.Add(3);
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE((any_a = any_b) == any_b); }), (locks{&b, &b}));
  for (unsigned int k = 0; k < 4; ++k) EXPECT_EQ(a.ItemAt(k).value, static_cast<int>(k));
  a.Pop();
  EXPECT_EQ(locked_by([&] { EXPECT_EQ(any_a != any_b, 1); }), locks{&b});
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE((any_a = any_a) == any_a); }), locks{});
  EXPECT_EQ(locked_by([&] { EXPECT_TRUE((a = b) == b && a.Depth() == 4); }), locks{});
  s_fuse = 4;
  EXPECT_EQ(locked_by([&] { EXPECT_THROW(any_a = any_b, failure); }), locks{&b});
  EXPECT_TRUE(a.IsEmpty() && b.Depth() == 4);
  a.Push(5);
  EXPECT_EQ(a.Top().value, 5);

  GCL_ErrMsgStack messages;
  LX_TUnboundedStack<GCL_String> strings;
  strings.Push("older"), strings.Push("newer");
  EXPECT_EQ((messages = strings).Top(), "newer");
  EXPECT_TRUE(GCL_ErrMsgStack(messages) == strings && messages.Depth() == 2);
}

// Fails the copy of each item that goes to the smaller array, and the smaller array itself.
TEST_F(containers, removal_needs_no_memory) {
  for (int point = 1; point <= 5; ++point) {
    array<item> a = filled<item>(array<item>(4), 5);
    s_fuse = point;
    a.Remove(4);
    EXPECT_EQ(std::exchange(s_fuse, 0), 0);
    EXPECT_EQ(counting::slots<item>(), 8u);
    EXPECT_EQ(content(a), content(filled<item>(list<item>(), 4)));
  }
}

// --- Iterators and string lists.

template <class Iterator, class C>
void check_iterator(C& c, std::function<void(char const*)> const& add) {
  Iterator i(c);
  EXPECT_TRUE(i.IsDone() && i.CurrentItem() == nullptr);
  add("a");
  EXPECT_TRUE(i.IsDone() && i.CurrentItem() == nullptr);
  EXPECT_EQ(i.Next(), 1);
  EXPECT_EQ(*i.CurrentItem(), "a");
  for (int k = 0; k < 2; ++k) EXPECT_TRUE(i.Next() == 0 && i.CurrentItem() == nullptr);
  i.Reset();
  add("b");
  EXPECT_EQ(i.Next(), 1);
  *i.CurrentItem() = "c";
  EXPECT_EQ(c.ItemAt(1), "c");
  c = C(c);  // a new value in the same object
  EXPECT_EQ(*static_cast<Iterator const&>(i).CurrentItem(), "c");
  c.Purge();
  EXPECT_EQ(i.IsDone(), 1);
}

TEST_F(containers, iterators_ask_anew_at_every_call) {
  collection<GCL_String> c(4);
  check_iterator<LX_TCollectionActiveIterator<GCL_String>>(c, [&](char const* s) { c.Add(s); });
  GCL_ErrMsgStack stack;
  check_iterator<LX_TStackActiveIterator<GCL_String>>(stack, [&](char const* s) { stack.Add(s); });
  GCL_StringList l(4);
  check_iterator<DRL_ListBaseActiveIterator<GCL_String>>(l, [&](char const* s) { l.Add(s); });
}

TEST_F(containers, string_lists_are_values) {
  GCL_String const x("x");
  GCL_StringList a(4);
  a.Append(x), a.Append("y");
  GCL_StringList b(32);
  b = a;
  EXPECT_TRUE(a == b && b.ChunkSize() == 4 && b.Location(GCL_String("y")) == 1);
  EXPECT_EQ(x.body()->reference_count(), 3u);
  b[0].append("!"), b.Append("z");
  EXPECT_TRUE(a != b && a.First() == "x" && a.Length() == 2 && b.Last() == "z");
  EXPECT_EQ(b.Location(x), -1);

  b.SetChunkSize(0xFFFFFFFF);  // no copy of it can be had
  EXPECT_THROW(a = b, std::bad_alloc);
  EXPECT_EQ(a.Location(x), 0);

  GCL_StringList moved(std::move(a));
  EXPECT_EQ(a.Length(), 0u);  // NOLINT(bugprone-use-after-move): it is usable
  a.Append(x);
  moved = a;
  EXPECT_TRUE(moved == a && GCL_StringList(std::move(a)) == moved && a.IsEmpty());
  EXPECT_TRUE(GCL_StringList::nil.IsEmpty() && GCL_StringList::nil.ChunkSize() == 32);
}

// --- Long lists, and random steps.

TEST_F(containers, long_lists_are_walked_and_cleared_in_linear_time) {
  LX_TUnbounded<unsigned int> l;
  unsigned int const n = 1000000;
  for (unsigned int i = 0; i < n; ++i) l.Append(i);
  for (unsigned int i = 0; i < n; ++i) ASSERT_EQ(l[i], i);
  for (unsigned int i = n; i > 0; --i) ASSERT_EQ(l[i - 1], i - 1);
  l.Clear();
  EXPECT_EQ(l.Length(), 0u);
}

// Random steps on a container and on a vector. Few values, so that items repeat.
template <class T, class C>
struct walked {
  C real;
  std::vector<T> model;

  // Makes one step at index `i`, or none when it is not among these. `changed` is told, beforehand,
  // the new length, and the index of the item put in, replaced or taken out.
  template <class Changed>
  void step(unsigned int what, unsigned int i, T const& x, Changed changed) {
    auto const n = static_cast<unsigned int>(model.size());
    unsigned int const behind = n != 0 ? i + 1 : 0;
    auto const put = [&](unsigned int at) {
      changed(n + 1, at);
      model.insert(std::next(model.begin(), static_cast<int>(at)), x);
    };
    if (what == 0) put(n), real.Append(x);
    if (what == 1) put(0), real.Insert(x);
    if (what == 2) put(i), real.Insert(x, i);
    if (what == 3) put(behind), real.Append(x, i);
    if (what == 4 && n != 0) changed(n, i), model[i] = x, real.Replace(i, x);
    if (what >= 8 && n != 0) {
      changed(n - 1, i);
      model.erase(std::next(model.begin(), static_cast<int>(i)));
      real.Remove(i);
    }
  }
  int first_from(T const& x, unsigned int start) const {
    for (std::size_t i = start; i < model.size(); ++i) {
      if (model[i] == x) return static_cast<int>(i);
    }
    return -1;
  }
};

// An array's walk, with the capacity by the rules of growth.
template <class T>
struct walked_array : walked<T, array<T>> {
  std::size_t slots = 0;

  void resize(std::size_t n) {
    std::size_t const chunk = this->real.ChunkSize() != 0 ? this->real.ChunkSize() : 32;
    slots = (n + chunk - 1) / chunk * chunk;
  }
  void array_step(unsigned int what, unsigned int i, T const& x, walked_array& other) {
    array<T>& a = this->real;
    std::vector<T>& v = this->model;
    this->step(what, i, x, [&](std::size_t n, unsigned int) {
      if (n < v.size() || n > slots) resize(n);
    });
    ASSERT_EQ(a.Location(x, i), this->first_from(x, i));
    if (what == 5) a.SetChunkSize(i % 7 + 1);
    if (what == 6 && i == 0) a = other.real, v = other.model, resize(v.size());
    if (what == 6 && i == 1) std::swap(*this, other);
    if (what == 6 && i == 2 && v.size() < 20) a.Preallocate(20), resize(20);
    if (what == 6 && i == 30) a.Clear(), v.clear(), slots = 0;
    ASSERT_EQ(a == other.real, v == other.model);
    ASSERT_EQ(content(a), v);
  }
};

template <class T>
void walk_arrays() {
  std::mt19937 random(20);
  walked_array<T> both[2];
  for (int k = 0; k < 100000 && !testing::Test::HasFatalFailure(); ++k) {
    unsigned int const which = random() % 2;
    auto const n = static_cast<unsigned int>(both[which].model.size());
    auto const what = static_cast<unsigned int>(random() % (n > 30 ? 12 : 10));
    auto const i = static_cast<unsigned int>(random() % std::max(n, 1u));
    both[which].array_step(what, i, make<T>(static_cast<int>(random() % 12)), both[1 - which]);
    ASSERT_EQ(counting::slots<T>(), both[0].slots + both[1].slots) << "after step " << k;
  }
}

TEST_F(containers, arrays_match_a_vector) {
  walk_arrays<int>();
  walk_arrays<GCL_String>();
}

// What Location answers where items repeat shows the position that the list remembers.
TEST_F(containers, lists_match_a_vector) {
  std::mt19937 random(21);
  walked<GCL_String, list<GCL_String>> w;
  int remembered = -1;  // no position
  for (int k = 0; k < 100000; ++k) {
    auto const n = static_cast<unsigned int>(w.model.size());
    auto const what = static_cast<unsigned int>(random() % (n > 30 ? 12 : 10));
    auto const i = static_cast<unsigned int>(random() % std::max(n, 1u));
    auto const x = make<GCL_String>(static_cast<int>(random() % 12));
    w.step(what, i, x, [&](unsigned int length, unsigned int at) {
      remembered = std::min(static_cast<int>(at), static_cast<int>(length) - 1);
    });
    if (what == 5 && n != 0) {
      ASSERT_EQ(w.real[i], w.model[i]);
      remembered = static_cast<int>(i);
    }
    if (what == 6 && i == 0) w.real = list<GCL_String>(w.real), remembered = -1;
    if (what == 6 && i == 30) w.real.Clear(), w.model.clear(), remembered = -1;
    unsigned int const start = k % 2 == 0 ? std::min(i, w.real.Length()) : 0;
    bool const hit =
        start == 0 && remembered >= 0 && w.model.at(static_cast<std::size_t>(remembered)) == x;
    int const expected = hit ? remembered : w.first_from(x, start);
    ASSERT_EQ(w.real.Location(x, start), expected) << "in step " << k;
    if (expected >= 0) remembered = expected;
    list<GCL_String> const copy(w.real);  // so that this one remembers what it did
    ASSERT_EQ(content(copy), w.model) << "after step " << k;
    ASSERT_TRUE(w.model.empty() || w.real.Last() == w.model.back());
  }
}

#ifdef MIROXGCL_CHECK_PRECONDITIONS

void expect_violation(char const* kind, std::string const& location, char const* reason,
                      std::function<void()> const& run) {
  try {
    run();
    ADD_FAILURE() << location;
  } catch (LX_XException const& e) {
    EXPECT_EQ(e.kind() + (":" + location), kind + (":" + std::string(e.location())));
    EXPECT_TRUE(e.reason() == reason && e.what() == reason) << location << e.reason();
  }
}

// On two items, with the first index that insertion before, and after, must not be given.
template <class C>
void expect_range_violations(C c, std::string const& name, unsigned int before,
                             unsigned int after) {
  c.Append(0), c.Append(1);
  auto const expect = [&](char const* operation, std::function<void()> const& run) {
    expect_violation("Range_Error", name + operation, LX_kInvalidIndex, run);
  };
  expect("::Insert", [&] { c.Insert(1, before); });
  expect("::Append", [&] { c.Append(1, after); });
  expect("::Remove", [&] { c.Remove(2); });
  expect("::Replace", [&] { c.Replace(2, 1); });
  expect("::Location", [&] { c.Location(1, 3); });
  expect("<>::operator[]", [&] { c[2] = 1; });
  expect("<>::operator[]", [&] { std::as_const(c)[2]; });
  EXPECT_EQ(content(c), (std::vector<int>{0, 1}));
}

struct no_storage {
  static void* AllocateBlock(std::size_t) { return nullptr; }
  static void ReleaseBlock(void*, std::size_t) {}
};

TEST_F(containers, violations_are_described) {
  expect_range_violations(array<int>(4), "LX_TDynamic", 3, 2);
  expect_range_violations(list<int>(), "LX_TUnbounded", 2, 3);
  collection<int> c(4);
  stack<int> s;
  LX_TDynamic<int, no_storage> none(4);
  auto const& expect = expect_violation;
  expect("Range_Error", "LX_TDynamic<>::operator[]", LX_kInvalidIndex, [&] { c[0] = 1; });
  expect("Underflow", "LX_TDynamic::Remove", LX_kEmpty, [&] { c.Remove(0); });
  expect("Not_Null", "LX_TDynamic<>::SetChunkSize", LX_kNotEmpty, [&] { c.SetChunkSize(0); });
  expect("Storage_Error", "LX_TDynamic::Resize", LX_kNull, [&] { none.Append(1); });
  expect("Underflow", "LX_TUnbounded::Remove", LX_kEmpty, [&] { s.Pop(); });
  expect("Underflow", "LX_TUnbounded<>::First()", LX_kEmpty, [&] { s.Top() = 1; });
  expect("Underflow", "LX_TUnbounded<>::First()", LX_kEmpty, [&] { std::as_const(s).Top(); });
}

#endif

}  // namespace
