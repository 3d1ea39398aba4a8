// Bodies, handles and strings: sharing, growth, editing, searching.
#include "miroxgcl/gcl_string.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "support/failing_allocator.h"

namespace {

constexpr unsigned int npos = GCL_String::npos;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }
unsigned int count(GCL_String const& s) {
  return s.body() != nullptr ? s.body()->reference_count() : 0;
}
unsigned int capacity(GCL_String const& s) {
  return s.body() != nullptr ? s.body()->capacity() : 0;
}
unsigned int rule(unsigned int n) {
  unsigned int const c = n <= 63 ? 2 * n : n <= 255 ? n + n / 2 : n + n / 4;
  return c < 8 ? 8 : c;
}
GCL_String with_capacity(char const* s, unsigned int reserve) {
  GCL_String result(s);
  result.reserve(reserve);
  return result;
}

static_assert(!std::is_copy_constructible_v<GCL_StringRep> && !std::is_copy_assignable_v<GCL_Body>);
static_assert(std::is_nothrow_move_constructible_v<GCL_String> &&
              std::is_nothrow_move_assignable_v<GCL_String>);
static_assert(sizeof(void*) != 4 || (sizeof(GCL_Body) == 8 && sizeof(GCL_StringRep) == 20));

// A body that holds a handle and says when it goes.
struct Probe : GCL_Body {
  explicit Probe(int* deaths) : m_deaths(deaths) {}
  ~Probe() override { ++*m_deaths; }
  bool operator==(GCL_Body const* other) const override { return other == nullptr; }
  GCL_Handle<Probe> m_inner;
  int* m_deaths;
};

TEST(Handle, OwnsOneCountWhateverIsAssigned) {
  int deaths = 0;
  {
    GCL_Handle<Probe> a(new Probe(&deaths));
    auto& alias = a;
    a = alias;
    a = a.body();
    GCL_Handle<Probe> b(a);
    b = a;
    EXPECT_EQ(a.body()->reference_count(), 2u);
    b = GCL_Handle<Probe>();
    EXPECT_EQ(a.body()->reference_count(), 1u);
    GCL_HandleBase untyped(a);
    EXPECT_EQ(a.body()->reference_count(), 2u);
    GCL_HandleBase moved(std::move(untyped));
    EXPECT_EQ(a.body()->reference_count(), 2u);
    EXPECT_EQ(deaths, 0);
  }
  EXPECT_EQ(deaths, 1);
}

TEST(Handle, SourceMayDieWithTheOldBody) {
  int deaths = 0;
  GCL_Handle<Probe> h(new Probe(&deaths));
  h.body()->m_inner = new Probe(&deaths);
  h = h.body()->m_inner;
  EXPECT_EQ(deaths, 1);
  EXPECT_EQ(h.body()->reference_count(), 1u);
}

TEST(Handle, BodyThatIsThereDecidesAComparison) {
  int deaths = 0;
  GCL_Handle<Probe> const probe(new Probe(&deaths));
  GCL_HandleBase const none;
  EXPECT_TRUE(none == GCL_HandleBase());
  EXPECT_TRUE(probe == none && none == probe);
  GCL_HandleBase const empty(static_cast<GCL_HandleBase const&>(GCL_String()));
  EXPECT_TRUE(empty == none && none == empty);
  EXPECT_FALSE(none == static_cast<GCL_HandleBase const&>(GCL_String("a")));
}

TEST(StringRep, GrowthRule) {
  std::map<unsigned int, unsigned int> const table = {
      {1, 8}, {4, 8}, {5, 10}, {63, 126}, {64, 96}, {255, 382}, {256, 320}, {1000, 1250}};
  for (auto const& [n, expected] : table) {
    GCL_StringRep const rep(0, n, nullptr);
    EXPECT_EQ(rep.capacity(), expected) << n;
  }
  EXPECT_EQ(GCL_StringRep(5, 0, "abcde").capacity(), 12u);
  EXPECT_EQ(GCL_StringRep(3, 2, "abc").capacity(), 8u);
  EXPECT_EQ(GCL_StringRep(10, 11, "0123456789").capacity(), 22u);
  EXPECT_THROW(GCL_StringRep(4294967295u, 0, nullptr), std::bad_alloc);
  EXPECT_THROW(GCL_StringRep(npos, 0, nullptr), std::bad_alloc);
}

TEST(StringRep, Hashes) {
  std::map<std::string, unsigned int> const table = {{"", 0},
                                                     {"a", 0x41},
                                                     {"ab", 0xC222},
                                                     {"abcd", 0x646362E1},
                                                     {"abcde", 0x8C6C5845},
                                                     {"\xE9", 0xFFFFFFC9}};
  for (auto const& [t, expected] : table) {
    GCL_StringRep const rep(static_cast<unsigned int>(t.size()), 0, t.data());
    EXPECT_EQ(rep.hash(), expected) << t;
  }
  auto const folded = [](std::string const& t) {
    GCL_StringRep const rep(static_cast<unsigned int>(t.size()), 0, t.data());
    return rep.hash_fold_case();
  };
  EXPECT_EQ(folded(""), 0u);
  EXPECT_EQ(folded("ABC"), folded("abc"));
  EXPECT_EQ(folded("abc"), ((((3u << 5 ^ 'a') << 5) ^ 'b') << 5) ^ 'c');
  EXPECT_EQ(folded("\xE9"), (1u << 5) ^ 0xE9u);
  EXPECT_EQ(folded(std::string("a\0b", 3)), folded(std::string("A\0c", 3)));
}

TEST(StringRep, ComparesLengthsThenAllBytes) {
  GCL_StringRep const a(3, 0, "a\0b");
  GCL_StringRep const b(3, 0, "a\0c");
  GCL_StringRep const c(2, 0, "a\0");
  EXPECT_TRUE(a == &a);
  EXPECT_FALSE(a == &b || a == &c || a == nullptr);
  EXPECT_TRUE(GCL_StringRep(0, 0, nullptr) == nullptr);
  EXPECT_EQ(GCL_StringRep::null_instance(), GCL_StringRep::null_instance());
}

TEST(String, EmptyInThreeRepresentations) {
  GCL_String const shared;
  EXPECT_EQ(shared.body(), GCL_StringRep::null_instance());
  EXPECT_EQ(GCL_String("abc").substr(3).body(), GCL_StringRep::null_instance());
  GCL_String const own(GCL_String("abc"), 0);
  EXPECT_EQ(own.body()->length(), 0u);
  for (GCL_String const& none :
       {GCL_String(""), GCL_String('x', 0), GCL_String("abc").assign("", 0),
        GCL_String("abc").remove(0), GCL_String().reserve(0)}) {
    EXPECT_EQ(none.body(), nullptr);
    EXPECT_EQ(text(none), "");
    EXPECT_TRUE(none == shared && own == none && shared == own);
  }
  GCL_String s;
  s.append("x");
  EXPECT_EQ(GCL_String().length(), 0u);
  EXPECT_EQ(capacity(with_capacity("", 100)), 150u);
  EXPECT_EQ(GCL_String(static_cast<char const*>(nullptr)).length(), 0u);
}

TEST(String, AppendingByteByByteGrowsByTheRule) {
  std::vector<unsigned int> const expected = {8, 16, 32, 64, 96, 144, 216, 324, 405, 506};
  std::vector<unsigned int> seen;
  GCL_String s;
  for (unsigned int i = 1; i <= 500; ++i) {
    s.append('x');
    if (seen.empty() || seen.back() != capacity(s)) seen.push_back(capacity(s));
    ASSERT_LT(s.length(), capacity(s));
  }
  EXPECT_EQ(seen, expected);
}

TEST(String, CopiesShareUntilOneIsEdited) {
  GCL_String const a("abc");
  GCL_String b(a);
  EXPECT_EQ(count(a), 2u);
  EXPECT_EQ(GCL_String(a, npos).body(), a.body());
  b.put_at(1, 'x');
  EXPECT_EQ(text(a), "abc");
  EXPECT_EQ(text(b), "axc");
  EXPECT_EQ(count(a), 1u);
  GCL_StringRep const* const body = b.body();
  b.put_at(3, '!').put_at(0, '\xFF');
  EXPECT_EQ(b.body(), body);
  EXPECT_EQ(text(b), "\xFFxc!");
  GCL_String c = std::move(b);
  EXPECT_EQ(b.length(), 0u);
  b.append("again");
  EXPECT_EQ(text(b), "again");
  EXPECT_NE(GCL_String(a).assign(a).body(), a.body());
}

TEST(String, AppendingOrInsertingItselfBuildsANewBody) {
  for (int way = 0; way < 3; ++way) {
    GCL_String s = with_capacity("abcd", 60);
    GCL_StringRep const* const body = s.body();
    if (way == 0) s.append(s);
    if (way == 1) s.insert(0, s);
    if (way == 2) s.append(s, 2);
    EXPECT_NE(s.body(), body);
    EXPECT_EQ(text(s), way == 2 ? "abcdab" : "abcdabcd");
    EXPECT_EQ(capacity(s), rule(s.length()));
  }
}

TEST(String, SourceMayPointAnywhereIntoTheOwnText) {
  for (bool shared : {false, true}) {
    for (unsigned int reserve : {0u, 60u}) {
      for (unsigned int at = 0; at <= 6; ++at) {
        GCL_String s = with_capacity("abcdef", reserve);
        GCL_String const other = shared ? s : GCL_String();
        std::string model = "abcdef";
        model += model.substr(at);
        s.append(s.c_str() + at, 6 - at);
        EXPECT_EQ(text(s), model);
        if (shared) {
          EXPECT_EQ(text(other), "abcdef");
        }
      }
      GCL_String s = with_capacity("abcdef", reserve);
      GCL_String const other = shared ? s : GCL_String();
      EXPECT_EQ(text(s.replace(0, 1, s)), "abcdefbcdef");
      s.insert(2, other, shared ? 3 : 0);
      EXPECT_EQ(text(s), shared ? "ababccdefbcdef" : "abcdefbcdef");
    }
  }
}

TEST(String, GetRemoveSetsItsResultFirst) {
  GCL_String s("abcdef");
  GCL_String out(s);
  GCL_StringRep const* const body = s.body();
  s.get_remove(out, 2, 3);
  EXPECT_EQ(text(s), "abf");
  EXPECT_EQ(text(out), "cde");
  EXPECT_EQ(s.body(), body);
  s.get_remove(s, 1, npos);
  EXPECT_EQ(text(s), "bf");
  GCL_String const share(s);
  s.get_remove(out, 1, 0);
  EXPECT_NE(s.body(), share.body());
  EXPECT_EQ(text(s), "bf");
}

TEST(String, CountsAreCutWithoutWrapping) {
  GCL_String const s("abcdef");
  char buffer[8] = "";
  EXPECT_EQ(text(s.substr(4, 4294967295u)), "ef");
  EXPECT_EQ(text(GCL_String(s).remove(4, 4294967294u)), "abcd");
  EXPECT_EQ(text(GCL_String(s).replace(5, npos, "XY", 1)), "abcdeX");
  EXPECT_EQ(s.copy(buffer, npos, 5), 1u);
  EXPECT_EQ(s.copy(buffer, npos, 6), 0u);
  EXPECT_STREQ(buffer, "f");
  EXPECT_EQ(GCL_String("abc").remove(3).body()->length(), 3u);
}

TEST(String, RefusesWhatIsTooLongAndKeepsItsValue) {
  GCL_String s("abc");
  char const byte = 'x';
  EXPECT_THROW(s.append('x', npos), std::bad_alloc);
  EXPECT_THROW(s.assign('x', 4294967295u), std::bad_alloc);
  EXPECT_THROW(s.append(&byte, npos - 3), std::bad_alloc);
  EXPECT_THROW(s.append(&byte, 4294967290u), std::bad_alloc);
  EXPECT_THROW(s.insert(1, GCL_String("x"), npos - 3), std::bad_alloc);
  EXPECT_EQ(text(s), "abc");
  EXPECT_EQ(count(s), 1u);
}

TEST(String, Searches) {
  GCL_String const s("aa/bb/c");
  EXPECT_EQ(s.find("/"), 2u);
  EXPECT_EQ(s.find("/", 3), 5u);
  EXPECT_EQ(s.find("", 6), 6u);
  EXPECT_EQ(s.find("", 7), npos);
  EXPECT_EQ(GCL_String().find(""), npos);
  EXPECT_EQ(s.find("aa/bb/cc"), npos);
  EXPECT_EQ(s.rfind("/"), 5u);
  EXPECT_EQ(s.rfind("/", 5), 5u);
  EXPECT_EQ(s.rfind("/", 4), 2u);
  EXPECT_EQ(s.rfind("/", 1), npos);
  EXPECT_EQ(s.rfind("", 99), 99u);
  EXPECT_EQ(GCL_String("xxx").rfind("xx"), 1u);
  EXPECT_EQ(s.find_first_of("/b", 3), 3u);
  EXPECT_EQ(s.find_last_of("ab"), 4u);
  EXPECT_EQ(s.find_last_of("/", 7), npos);
  EXPECT_EQ(s.find_first_not_of("a/b"), 6u);
  EXPECT_EQ(s.find_first_not_of("", 3), 3u);
  EXPECT_EQ(s.find_first_not_of("abc/"), npos);
  EXPECT_EQ(s.find_last_not_of("bc"), 5u);
  EXPECT_EQ(GCL_String("a\0b", 3).find_first_not_of(GCL_String("\0a", 2)), 2u);
}

TEST(String, SearchesStepOverWholeCharacters) {
  GCL_String const s("x\xC3\xA9y\xC3\xA8z");
  EXPECT_EQ(s.find("\xA9"), npos);
  EXPECT_EQ(s.find("\xC3"), npos);
  EXPECT_EQ(s.find("\xC3\xA8"), 4u);
  EXPECT_EQ(s.find_first_not_of("x\xC3"), 3u);
  EXPECT_EQ(s.find_last_of("\xC3\xA9\xC3\xA8"), 4u);
  EXPECT_EQ(s.find_last_not_of("z"), 4u);
  EXPECT_EQ(s.find_first_of("\xA9z"), 6u);
}

TEST(String, BackwardSearchesAreLinear) {
  GCL_String s('a', 1u << 20);
  for (unsigned int i = 0; i < s.length(); i += 100) s.put_at(i, '/');
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(s.rfind("/"), 1048500u);
    EXPECT_EQ(s.find_last_of("/"), 1048500u);
    EXPECT_EQ(s.find_last_not_of("a"), 1048500u);
  }
}

TEST(String, OrdersBytesUnsigned) {
  EXPECT_EQ(GCL_String("\xE9").compare("A"), 1);
  EXPECT_EQ(GCL_String("A").compare("\xE9"), -1);
  EXPECT_EQ(GCL_String("ab").compare("abc"), -1);
  EXPECT_EQ(GCL_String("abc").compare("ab"), 1);
  EXPECT_EQ(GCL_String("a\0b", 3).compare(GCL_String("a\0c", 3)), -1);
  EXPECT_EQ(GCL_String("").compare(GCL_String()), 0);
}

// Strings that share bodies in all ways, against std::string; capacities against the rule.
TEST(String, AgreesWithStdStringOverManySteps) {
  std::mt19937 random(20261122);
  // Strings of the library's own share the empty body, too.
  unsigned int const other_holders = GCL_StringRep::null_instance()->reference_count();
  auto const below = [&](std::size_t n) { return static_cast<unsigned int>(random() % n); };
  std::vector<GCL_String> ours(5);
  std::vector<std::string> theirs(5);
  for (int step = 0; step < 100'000; ++step) {
    unsigned int const k = below(5);
    unsigned int const other = below(5);
    GCL_String& s = ours[k];
    GCL_String const& o = ours[other];
    std::string& t = theirs[k];
    std::string const u = theirs[other];
    unsigned int const pos = below(t.size() + 1);
    unsigned int const n = below(2) != 0 ? npos : below(20);
    unsigned int const m = below(u.size() + 1);
    char const c = static_cast<char>('a' + below(3));
    unsigned int const old_capacity = capacity(s);
    bool const in_place = old_capacity != 0 && count(s) == 1;
    GCL_StringRep const* const old_body = s.body();
    switch (below(16)) {
      case 0:
        s.append(o, m);
        t.append(u, 0, m);
        break;
      case 1:
        s.insert(pos, o, m);
        t.insert(pos, u, 0, m);
        break;
      case 2:
        s.replace(pos, n, o, m);
        t.replace(pos, n, u, 0, m);
        break;
      case 3:
      case 4:
        s.remove(pos, n);
        t.erase(pos, n);
        break;
      case 5:
        s.get_remove(ours[other], pos, n);
        theirs[other] = t.substr(pos, n);
        if (k != other) t.erase(pos, n);
        break;
      case 6:
        s.assign(o, m);
        t.assign(u, 0, m);
        break;
      case 7:
        s.assign(c, m);
        t.assign(m, c);
        break;
      case 8:
        s.append(c, m % 9);
        t.append(m % 9, c);
        break;
      case 9:
        s.append(o.c_str() + (u.size() - m), m);
        t.append(u, u.size() - m, m);
        break;
      case 10:
        s.put_at(pos, c);
        if (pos == t.size())
          t += c;
        else
          t[pos] = c;
        break;
      case 11:
        s.reserve(m);
        break;
      case 12:
        s = o;
        t = u;
        break;
      case 13:
        s = o.substr(o.length() - m);
        t = u.substr(u.size() - m);
        break;
      case 14:
        s = GCL_String(o, m);
        t = u.substr(0, m);
        break;
      case 15: {
        auto const position = [](std::size_t p) {
          return p == std::string::npos ? npos : static_cast<unsigned int>(p);
        };
        ASSERT_EQ(s.find(o, pos), pos < t.size() ? position(t.find(u, pos)) : npos);
        ASSERT_EQ(s.rfind(o, pos), t.empty() ? npos : u.empty() ? pos : position(t.rfind(u, pos)));
        ASSERT_EQ(s.compare(o), (t > u) - (t < u));
      }
    }
    if (t.size() > 400) {
      s.remove(10, npos);
      t.erase(10);
    }
    std::map<GCL_StringRep const*, unsigned int> holders;
    for (std::size_t i = 0; i < ours.size(); ++i) {
      ASSERT_EQ(text(ours[i]), theirs[i]) << "step " << step << ", string " << i;
      if (ours[i].body() != nullptr) ++holders[ours[i].body()];
    }
    for (auto const& [body, n_holders] : holders) {
      unsigned int const others = body == GCL_StringRep::null_instance() ? other_holders : 0;
      ASSERT_EQ(body->reference_count(), n_holders + others) << "step " << step;
      ASSERT_LT(body->length(), body->capacity());
    }
    if (in_place && s.body() == old_body) {
      ASSERT_EQ(capacity(s), old_capacity);
    }
  }
}

TEST(String, KeepsItsValueWhenAnAllocationFails) {
  GCL_String const piece("0123456789");
  using Edit = void (*)(GCL_String&, GCL_String const&);
  Edit const edits[] = {
      [](GCL_String& s, GCL_String const& p) { s.append(p); },
      [](GCL_String& s, GCL_String const&) { s.append(s); },
      [](GCL_String& s, GCL_String const&) { s.append(s.c_str() + 1, 3); },
      [](GCL_String& s, GCL_String const&) { s.append('x', 70); },
      [](GCL_String& s, GCL_String const& p) { s.insert(1, p); },
      [](GCL_String& s, GCL_String const&) { s.insert(1, s); },
      [](GCL_String& s, GCL_String const& p) { s.replace(1, 2, p); },
      [](GCL_String& s, GCL_String const&) { s.replace(1, 2, s); },
      [](GCL_String& s, GCL_String const&) { s.remove(1, 2); },
      [](GCL_String& s, GCL_String const& p) { s.assign(p); },
      [](GCL_String& s, GCL_String const&) { s.assign('x', 70); },
      [](GCL_String& s, GCL_String const&) { s.put_at(1, 'x'); },
      [](GCL_String& s, GCL_String const&) { s.reserve(100); },
      [](GCL_String& s, GCL_String const&) {
        GCL_String out;
        s.get_remove(out, 1, 2);
      },
      [](GCL_String& s, GCL_String const&) { static_cast<void>(s.body()->hash_fold_case()); }};
  std::size_t const held = failing_allocator::live_blocks();
  int failures = 0;
  for (bool shared : {false, true}) {
    for (Edit const edit : edits) {
      GCL_String const original("abcdef");
      failures += fail_each_allocation([&] { return shared ? original : GCL_String("abcdef"); },
                                       [&](GCL_String& s) { edit(s, piece); },
                                       [&](GCL_String const& s, bool failed) {
                                         if (failed) {
                                           EXPECT_EQ(text(s), "abcdef");
                                         }
                                         EXPECT_EQ(text(original), "abcdef");
                                       });
    }
  }
  EXPECT_GT(failures, 40);
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

}  // namespace
