// Bodies, handles and strings: sharing, growth, editing, searching.
#include "miroxgcl/gcl_string.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <new>
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

// A body that holds a handle, says when it goes and equals no body, not even itself.
struct Probe : GCL_Body {
  explicit Probe(int* deaths) : m_deaths(deaths) {}
  ~Probe() override {
    ++*m_deaths;
    if (m_on_death) m_on_death();
  }
  bool operator==(GCL_Body const* other) const override { return other == nullptr; }
  GCL_Handle<Probe> m_inner;
  int* m_deaths;
  std::function<void()> m_on_death;
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

TEST(Handle, KeepsItsOnlyBodyWhenAssignedToItself) {
  int deaths = 0;
  auto* const probe = new Probe(&deaths);
  GCL_HandleBase h{GCL_Handle<Probe>(probe)};
  auto& alias = h;
  h = alias;
  h = probe;
  h = std::move(alias);
  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(probe->reference_count(), 1u);
  h = GCL_HandleBase();
  EXPECT_EQ(deaths, 1);
}

TEST(Handle, SourceMayDieWithTheOldBody) {
  int deaths = 0;
  GCL_Handle<Probe> h(new Probe(&deaths));
  h.body()->m_inner = new Probe(&deaths);
  h.body()->m_inner.body()->m_inner = new Probe(&deaths);
  h = h.body()->m_inner;
  EXPECT_EQ(deaths, 1);
  h = std::move(h.body()->m_inner);
  EXPECT_EQ(deaths, 2);
  EXPECT_EQ(h.body()->reference_count(), 1u);
}

TEST(Handle, HoldsTheNewBodyWhenTheOldOneDies) {
  int deaths = 0;
  GCL_Handle<Probe> h(new Probe(&deaths));
  auto* const next = new Probe(&deaths);
  h.body()->m_on_death = [&h, next] {
    EXPECT_EQ(h.body(), next);
    EXPECT_EQ(next->reference_count(), 1u);
  };
  h = next;
  EXPECT_EQ(deaths, 1);
}

TEST(Handle, BodyThatIsThereDecidesAComparison) {
  int deaths = 0;
  GCL_Handle<Probe> const probe(new Probe(&deaths));
  GCL_HandleBase const none;
  EXPECT_TRUE(none == GCL_HandleBase());
  EXPECT_TRUE(probe == none && none == probe);
  EXPECT_TRUE(probe == GCL_Handle<Probe>(probe));
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
  EXPECT_EQ(GCL_StringRep(5, 5, "abcde").capacity(), 12u);
  EXPECT_THROW(GCL_StringRep(4294967295u, 0, nullptr), std::bad_array_new_length);
  EXPECT_THROW(GCL_StringRep(npos, 0, nullptr), std::bad_array_new_length);
}

// Where the address space has room for it, the size is asked for; nothing of it is allocated.
TEST(StringRep, GrowthThatWrapsAsksForExactlyWhatMustFit) {
  auto const asked_for = [](unsigned int length, unsigned int reserve) {
    failing_allocator const failing(1);
    EXPECT_THROW(GCL_StringRep(length, reserve, nullptr), std::bad_alloc);
    return failing_allocator::failed_size();
  };
  if (sizeof(std::size_t) == 4) return;
  EXPECT_EQ(asked_for(0, 3435973836u), 4294967295u);
  EXPECT_EQ(asked_for(0, 3435973837u), 3435973837u);
  EXPECT_EQ(asked_for(0, 4294967295u), 4294967295u);
  EXPECT_EQ(asked_for(npos - 1, 0), 2684354558u);
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
  EXPECT_EQ(folded(std::string("A\0b", 3)), (3u << 5) ^ 'a');
}

TEST(StringRep, FoldedHashEndsTheTextBeforeItIsRead) {
  GCL_String s("abc");
  s.remove(2);
  ASSERT_EQ(s.body()->buffer()[2], 'c');
  EXPECT_EQ(s.hash_fold_case(), GCL_String("AB").hash_fold_case());
  EXPECT_EQ(s.body()->buffer()[2], '\0');
}

TEST(StringRep, ComparesLengthsThenAllBytes) {
  GCL_StringRep const a(3, 0, "a\0b");
  GCL_StringRep const b(3, 0, "a\0c");
  GCL_StringRep const c(2, 0, "a\0");
  EXPECT_TRUE(a == &a);
  EXPECT_FALSE(a == &b || a == &c || c == &a || a == nullptr);
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

// 4294967295 bytes more would wrap to a shorter text; npos is no special count for a character.
TEST(String, RefusesWhatIsTooLongAndKeepsItsValue) {
  using Edit = void (*)(GCL_String&);
  Edit const edits[] = {[](GCL_String& s) { s.append('x', npos); },
                        [](GCL_String& s) { s.assign('x', npos); },
                        [](GCL_String& s) { s.assign('x', 4294967295u); },
                        [](GCL_String& s) { s.assign("x", 4294967295u); },
                        [](GCL_String& s) { s.append("x", npos - 3); },
                        [](GCL_String& s) { s.append("x", 4294967295u); },
                        [](GCL_String& s) { s.append(GCL_String("x"), 4294967295u); },
                        [](GCL_String& s) { s.insert(1, "x", npos - 3); },
                        [](GCL_String& s) { s.insert(1, s, 4294967294u); },
                        [](GCL_String& s) { s.replace(1, 2, "x", npos - 1); },
                        [](GCL_String& s) { s.replace(0, 3, "x", 4294967295u); },
                        [](GCL_String& s) { s = GCL_String("x", 4294967295u); },
                        [](GCL_String& s) { s = GCL_String(s, 2147483648u); }};
  for (Edit const edit : edits) {
    GCL_String s("abc");
    GCL_StringRep const* const body = s.body();
    EXPECT_THROW(edit(s), std::bad_array_new_length);
    EXPECT_EQ(text(s), "abc");
    EXPECT_EQ(s.body(), body);
    EXPECT_EQ(count(s), 1u);
  }
}

TEST(String, GreatestLengthIsNotRefused) {
  if (sizeof(std::size_t) == 4) return;
  GCL_String s("abc");
  failing_allocator const failing(2);  // the body's; the buffer's
  EXPECT_THROW(s.append("x", npos - 4), std::bad_alloc);
  EXPECT_EQ(failing_allocator::failed_size(), 2684354557u);
}

TEST(String, EditsInPlaceAllocateNothing) {
  GCL_String s = with_capacity("abcdef", 60);
  GCL_String const piece("xy");
  failing_allocator const failing(1);
  s.append('g').append("hi").append(piece).insert(1, piece).replace(0, 1, piece, 1);
  s.put_at(0, 'A').put_at(12, '!').remove(1, 2).remove(9);
  EXPECT_EQ(text(s), "Abcdefghi");
  EXPECT_EQ(text(s.assign(piece)), "xy");
}

TEST(String, NulAndHighBytesAreBytesLikeAnyOther) {
  char const bytes[] = "a\0b\xE9";
  GCL_String s(bytes, 4);
  EXPECT_EQ(GCL_String(bytes).length(), 1u);
  EXPECT_EQ(text(s.append(bytes)), std::string("a\0b\xE9\x61", 5));
  EXPECT_EQ(text(s.insert(1, GCL_String(s)).remove(6)), std::string("aa\0b\xE9\x61", 6));
  EXPECT_EQ(text(s.append(s.c_str() + 6, 1)), std::string("aa\0b\xE9\x61\0", 7));
  EXPECT_EQ(s.get_at(7), '\0');
  EXPECT_EQ(text(GCL_String('\xE9', 2)), "\xE9\xE9");
  EXPECT_EQ(text(GCL_String(static_cast<unsigned char>(0xE9))), "\xE9");
  EXPECT_EQ(text(GCL_String(reinterpret_cast<unsigned char const*>(bytes + 2), 2)), "b\xE9");
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

// Processor time: reading the whole text again at each of the 10,486 matches takes far longer.
TEST(String, BackwardSearchesAreLinear) {
  GCL_String s('a', 1u << 20);
  for (unsigned int i = 0; i < s.length(); i += 100) s.put_at(i, '/');
  std::clock_t const start = std::clock();
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(s.rfind("/"), 1048500u);
    EXPECT_EQ(s.find_last_of("/"), 1048500u);
    EXPECT_EQ(s.find_last_not_of("a"), 1048500u);
  }
  EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC);
}

TEST(String, OrdersBytesUnsigned) {
  EXPECT_EQ(GCL_String("\xE9").compare("A"), 1);
  EXPECT_EQ(GCL_String("A").compare("\xE9"), -1);
  EXPECT_EQ(GCL_String("ab").compare("abc"), -1);
  EXPECT_EQ(GCL_String("abc").compare("ab"), 1);
  EXPECT_EQ(GCL_String("a\0b", 3).compare(GCL_String("a\0c", 3)), -1);
  EXPECT_EQ(GCL_String("").compare(GCL_String()), 0);
}

// What a body should be. Strings that share it share the pointer, so that its count is the body's.
struct ModelBody {
  std::string text;
  unsigned int capacity;
};
using Model = std::shared_ptr<ModelBody>;

std::string text(Model const& t) { return t != nullptr ? t->text : ""; }
unsigned int length(Model const& t) { return static_cast<unsigned int>(text(t).size()); }
Model make_body(std::string const& t, std::size_t room) {
  return std::make_shared<ModelBody>(ModelBody{t, rule(static_cast<unsigned int>(room))});
}
Model make_body(std::string const& t) { return make_body(t, t.size() + 1); }

// An edit as it should be: in place if the body is unshared and has room, else with a new body.
void edit(Model& t, unsigned int pos, unsigned int n, std::string const& piece) {
  std::string const result = text(t).replace(pos, n, piece);
  if (result.empty()) {
    t = nullptr;
  } else if (t != nullptr && t.use_count() == 1 && result.size() < t->capacity) {
    t->text = result;
  } else {
    t = make_body(result, std::max<std::size_t>(result.size(), pos + 1));
  }
}

// Strings that share bodies in all ways, each beside its model.
class Differential {
 public:
  explicit Differential(unsigned int seed) : m_random(seed) {}

  // Edits one string, with another's text or its own, and checks all.
  void step() {
    unsigned int const k = below(5);
    unsigned int const other = below(5);
    GCL_String& s = m_ours[k];
    Model& t = m_theirs[k];
    GCL_String& o = m_ours[other];
    Model& u = m_theirs[other];
    m_pos = below(length(t) + 1);
    m_n = std::min(length(t) - m_pos, below(8) != 0 ? below(30) : npos);
    m_count = below(5) != 0 ? std::min(length(u), below(30)) : length(u);
    m_at = below(length(u) - m_count + 1);
    m_c = "ab/\xE9"[below(4)];
    GCL_StringRep const* const old_body = s.body();
    ModelBody const* const old_model = t.get();
    switch (below(8)) {
      case 0:
      case 1:
        take_text(s, t, o, u);
        break;
      case 2:
        edit_alone(s, t, o, u);
        break;
      case 3:
        search(s, text(t), o, text(u));
        break;
      default:
        edit_with_text(s, t, o, u);
        break;
    }
    ASSERT_EQ(s.body() == old_body, t.get() == old_model) << "new body or not: string " << k;
    if (length(t) > 1000) edit(t, 90, length(t) - 90, ""), s.remove(90);
    for (std::size_t i = 0; i < m_ours.size(); ++i) check(m_ours[i], m_theirs[i]);
  }

 private:
  unsigned int below(unsigned int n) { return static_cast<unsigned int>(m_random() % n); }

  void take_text(GCL_String& s, Model& t, GCL_String& o, Model& u) {
    std::string const begin = text(u).substr(0, m_count);
    std::string const piece = text(u).substr(m_at, m_count);
    switch (below(12)) {
      case 0:
        s = std::move(o);
        if (&t != &u) t = std::move(u);
        break;
      case 1:
        s.assign(m_c, m_count);
        t = m_count == 0 ? nullptr : make_body(std::string(m_count, m_c));
        break;
      case 2:
        s = GCL_String(o, m_count), t = make_body(begin);
        break;
      case 3:
        s = o.substr(m_at, m_count), t = piece.empty() ? m_empty : make_body(piece);
        break;
      case 4:
        s.assign(o, m_count);
        if (m_count != 0 && t != nullptr && t.use_count() == 1 && m_count < t->capacity) {
          t->text = begin;
        } else {
          t = m_count == 0 ? nullptr : make_body(begin);
        }
        break;
      default:
        s = o, t = u;
        break;
    }
  }

  void edit_with_text(GCL_String& s, Model& t, GCL_String& o, Model& u) {
    std::string const begin = text(u).substr(0, m_count);
    unsigned int const operation = below(4);
    // Appending or inserting a string to itself goes through a second handle.
    Model const second = operation < 2 && &s == &o ? t : nullptr;
    bool const is_nothing = m_count == 0 && t == u && length(t) != 0;
    switch (operation) {
      case 0:
        s.append(o, m_count);
        if (m_count != 0) edit(t, length(t), 0, begin);
        break;
      case 1:
        s.insert(m_pos, o, m_count);
        if (u != nullptr && !is_nothing) edit(t, m_pos, 0, begin);
        break;
      case 2:
        s.replace(m_pos, m_n, o, m_count);
        if (m_n != 0 || m_count != 0) edit(t, m_pos, m_n, begin);
        break;
      case 3:
        s.append(o.c_str() + m_at, m_count);
        if (m_count != 0) edit(t, length(t), 0, text(u).substr(m_at, m_count));
    }
  }

  void edit_alone(GCL_String& s, Model& t, GCL_String& o, Model& u) {
    switch (below(5)) {
      case 0:
        s.remove(m_pos, m_n);
        if (m_n != 0) edit(t, m_pos, m_n, "");
        break;
      case 1: {
        std::string const piece = text(t).substr(m_pos, m_n);
        s.get_remove(o, m_pos, m_n);
        u = piece.empty() ? m_empty : make_body(piece);
        if (&s != &o) edit(t, m_pos, m_n, "");
        break;
      }
      case 2:
        s.append(m_c, m_n);
        if (m_n != 0) edit(t, length(t), 0, std::string(m_n, m_c));
        break;
      case 3:
        s.put_at(m_pos, m_c);
        if (m_pos == length(t)) return edit(t, m_pos, 0, std::string(1, m_c));
        if (t.use_count() > 1) t = make_body(t->text);
        t->text[m_pos] = m_c;
        break;
      case 4:
        s.reserve(m_count);
        t = m_count + length(t) == 0 ? nullptr
                                     : make_body(text(t), std::max(m_count, length(t) + 1));
    }
  }

  void search(GCL_String const& s, std::string const& t, GCL_String const& o,
              std::string const& u) {
    std::string const q = u.substr(m_at, std::min(m_count, m_n % 4));
    GCL_String const p = o.substr(m_at, std::min(m_count, m_n % 4));
    auto const found = [](std::size_t i) { return static_cast<unsigned int>(i) & npos; };
    unsigned int const last = m_pos == t.size() ? npos : m_pos;
    ASSERT_EQ(s.find(p, m_pos), m_pos < t.size() ? found(t.find(q, m_pos)) : npos);
    ASSERT_EQ(s.rfind(p, last), t.empty() ? npos : q.empty() ? last : found(t.rfind(q, last)));
    ASSERT_EQ(s.find_first_of(p, m_pos), found(t.find_first_of(q, m_pos)));
    ASSERT_EQ(s.find_last_of(p, last), found(t.find_last_of(q, last)));
    ASSERT_EQ(s.find_first_not_of(p, m_pos), found(t.find_first_not_of(q, m_pos)));
    ASSERT_EQ(s.find_last_not_of(p, last), found(t.find_last_not_of(q, last)));
    ASSERT_EQ(s.compare(o), (t > u) - (t < u));
  }

  void check(GCL_String const& s, Model const& t) const {
    ASSERT_EQ(s.body() == nullptr, t == nullptr);
    ASSERT_EQ(text(s), text(t));
    if (t == nullptr) return;
    ASSERT_EQ(capacity(s), t->capacity);
    ASSERT_EQ(s.body() == GCL_StringRep::null_instance(), t == m_empty);
    unsigned int const others = t == m_empty ? m_other_holders : 0;
    ASSERT_EQ(count(s), static_cast<unsigned int>(t.use_count()) + others);
  }

  std::mt19937 m_random;
  Model m_empty = make_body("");
  // Strings of the library's own share the empty body, too; m_empty counts for one of them.
  unsigned int m_other_holders = GCL_StringRep::null_instance()->reference_count() - 1;
  std::vector<GCL_String> m_ours{5};
  std::vector<Model> m_theirs{5, m_empty};
  unsigned int m_pos = 0;    // in the string
  unsigned int m_n = 0;      // bytes from there on
  unsigned int m_at = 0;     // in the other string
  unsigned int m_count = 0;  // bytes from there or from its begin on
  char m_c = '\0';
};

TEST(String, AgreesWithItsModelOverManySteps) {
  Differential strings(20261122);
  for (int step = 0; step < 100'000; ++step) {
    strings.step();
    ASSERT_FALSE(HasFailure()) << "in step " << step;
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
  for (bool shared : {false, true}) {
    for (Edit const edit : edits) {
      GCL_String const original("abcdef");
      int const failures =
          fail_each_allocation([&] { return shared ? original : GCL_String("abcdef"); },
                               [&](GCL_String& s) { edit(s, piece); },
                               [&](GCL_String const& s, bool failed) {
                                 if (failed) {
                                   EXPECT_EQ(text(s), "abcdef");
                                   EXPECT_EQ(count(original), shared ? 2u : 1u);
                                 }
                                 EXPECT_EQ(text(original), "abcdef");
                               });
      EXPECT_TRUE(failures != 0 || !shared);
    }
  }
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

}  // namespace
