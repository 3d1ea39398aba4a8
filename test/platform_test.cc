// The service layer's messages, texts and identities, on their own.
#include <grp.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "miroxplat/credutl.h"
#include "miroxplat/imsg.h"
#include "miroxplat/strutl.h"
#include "miroxplat/sysutl.h"

namespace {

int s_interruptions = 0;  // how often the faked look-up at the end is still interrupted

// An exact copy without spare bytes, so that the address checker sees a read past the NUL.
class exact {
 public:
  explicit exact(std::string const& s) : m_bytes(new char[s.size() + 1]) {
    std::memcpy(m_bytes.get(), s.c_str(), s.size() + 1);
  }
  operator char const*() const { return m_bytes.get(); }

 private:
  std::unique_ptr<char[]> m_bytes;
};

// Collects all messages while it lives.
class captured {
 public:
  captured() {
    imsg_get_redirect_procs(IMSG_PROC_COUNT, m_procs, &m_arg);
    std::vector<imsg_redirect_proc> const procs(IMSG_PROC_COUNT, take);
    imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, this);
  }
  ~captured() { imsg_set_redirect_procs(m_procs, IMSG_PROC_COUNT, m_arg); }

  std::string text;
  bool throws = false;

 private:
  static void take(void* arg, char* text) {
    auto& self = *static_cast<captured*>(arg);
    self.text += text;
    std::memset(text, '!', std::strlen(text));  // the text is the receiver's to write to
    if (self.throws) throw self.text.size();
  }

  imsg_redirect_proc m_procs[IMSG_PROC_COUNT];
  void* m_arg;
};

std::string stripped(std::string const& text) {
  exact const source(text);
  std::vector<char> dest(text.size() + 1, '?');
  imsg_strip_style_chars(dest.data(), source);
  return dest.data();
}

// A slow decoder of its own: the length of the character that starts at `i`, by its code point.
std::size_t reference_length(std::string const& s, std::size_t i) {
  static unsigned long const least[] = {0, 0, 0x80, 0x800, 0x10000};
  auto const lead = static_cast<unsigned char>(s[i]);
  std::size_t const n = lead < 0xC0 || lead > 0xF7 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (n == 1 || i + n > s.size()) return 1;
  unsigned long code = lead & (0xFFu >> (n + 1));
  for (std::size_t k = 1; k < n; ++k) {
    auto const byte = static_cast<unsigned char>(s[i + k]);
    if ((byte & 0xC0) != 0x80) return 1;
    code = code << 6 | (byte & 0x3F);
  }
  bool const valid = code >= least[n] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  return valid ? n : 1;
}

// The positions at which characters begin, and the end.
std::vector<std::size_t> boundaries(std::string const& s) {
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < s.size(); i += reference_length(s, i)) result.push_back(i);
  result.push_back(s.size());
  return result;
}

int reference_find(std::string const& text, std::size_t start, std::string const& pattern) {
  auto const ends = boundaries(text);
  for (std::size_t i : ends) {
    if (i >= start && text.compare(i, pattern.size(), pattern) == 0 &&
        std::count(ends.begin(), ends.end(), i + pattern.size()) != 0) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::pair<int, int> reference_find_of(std::string const& text, std::size_t start,
                                      std::string const& set) {
  for (std::size_t i : boundaries(text)) {
    if (i < start || i == text.size()) continue;
    int const at = reference_find(set, 0, text.substr(i, reference_length(text, i)));
    if (at >= 0) return {static_cast<int>(i), at};
  }
  return {-1, -1};
}

TEST(Message, AnyLengthArrivesWholeAndWritable) {
  captured messages;
  for (std::size_t n : {0u, 510u, 511u, 100000u}) {
    std::string const body(n, 'x');
    messages.text.clear();
    EXPECT_EQ(imsg_print(3, "%s%d", -1, body.c_str(), 7), static_cast<int>(n + 1));
    EXPECT_EQ(messages.text, body + "7");
  }
  messages.text.clear();
  EXPECT_EQ(imsg_print(6, "%s", -1, "100%n %s"), 8);  // a text, not a format
  EXPECT_EQ(messages.text, "100%n %s");
  EXPECT_EQ(imsg_print(11, "x", -1), -1);
  EXPECT_EQ(imsg_print(-1, "x", -1), -1);
  EXPECT_EQ(messages.text, "100%n %s");
}

TEST(Message, ReceiversExceptionPassesThrough) {  // the leak checker watches the long text
  captured messages;
  messages.throws = true;
  EXPECT_THROW(imsg_print(1, "%s", -1, std::string(3000, 'x').c_str()), std::size_t);
  EXPECT_EQ(messages.text.size(), 3000u);
}

TEST(Message, NullEntriesAreKeptAndDisplay) {
  captured restores_the_table;
  imsg_redirect_proc const silent = [](void*, char*) {};
  imsg_redirect_proc procs[IMSG_PROC_COUNT] = {};
  imsg_set_redirect_procs(procs, IMSG_PROC_COUNT, &procs);
  void* arg = nullptr;
  std::vector<imsg_redirect_proc> kept(IMSG_PROC_COUNT + 1, silent);
  imsg_get_redirect_procs(IMSG_PROC_COUNT + 1, kept.data(), &arg);  // gets no more than there are
  EXPECT_EQ(arg, &procs);
  EXPECT_EQ(std::count(kept.begin(), kept.end(), nullptr), IMSG_PROC_COUNT);
  EXPECT_EQ(kept.back(), silent);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (int slot = 0; slot < IMSG_PROC_COUNT; ++slot) imsg_print(slot, "%d ", -1, slot);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 1 2 3 ");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "4 5 6 7 8 9 10 ");

  imsg_set_redirect_procs(&silent, 1, nullptr);  // the entries beyond stay
  imsg_get_redirect_procs(2, kept.data(), &arg);
  EXPECT_EQ(kept[0], silent);
  EXPECT_EQ(kept[1], nullptr);
}

TEST(Message, StyleSequencesAreRemoved) {
  EXPECT_EQ(stripped("a\033[1;31mb\033[0 qc\033(Bd\0337e\033\\f"), "abcdef");
  EXPECT_EQ(stripped("a\x1B]0;t\ab\x1B]8;;u\x1B\\c\x1BPq\ar\x1B\x1B\\d\x1B_x\x1B\\e"), "abcde");
  // What cannot belong to a sequence ends it and stays.
  EXPECT_EQ(stripped("\x1B[1\nx\x1B[1\xC3\xA9y\x1B[ 1z\x1B[\x1B[1mw\x1B\xC3\xA9"),
            "\nx\xC3\xA9y1zw\xC3\xA9");
  EXPECT_EQ(stripped("\302\2331m\302\2350"), "\302\2331m\302\2350");  // UTF-8, no controls
  for (char const* unfinished : {"", "[", "[1;3", "[1 ", "]", "]0;t", "]0;t\x1B", "P", "Pq\x1B",
                                 "^x", "_x", "X\a", "(", " /"}) {
    EXPECT_EQ(stripped(std::string("text\x1B") + unfinished), "text") << unfinished;
  }
}

TEST(Text, WholeCharactersOnly) {
  unsigned int index = 99, second = 99;
  for (char const* piece : {"\xC3", "\xA9"}) {
    EXPECT_FALSE(strutl_find_str(exact("\xC3\xA9"), 0, piece, &index));
    EXPECT_FALSE(strutl_find_char_from(exact("\xC3\xA9"), 0, piece, &index, &second));
  }
  ASSERT_TRUE(strutl_find_str(exact("\xC3\xA9\xA9"), 1, "\xA9", &index));
  EXPECT_EQ(index, 2u);
  ASSERT_TRUE(strutl_find_char_from(exact("\xC3\xA8\xC3\xA9"), 0, "b\xC3\xA9", &index, &second));
  EXPECT_EQ(index, 2u);
  EXPECT_EQ(second, 1u);
}

TEST(Text, AgreesWithASlowReference) {
  static char const bytes[] = "ab\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\xED\xA0\x80\xF4\x8F\xE0\xC1\xFF";
  std::mt19937 random(1);
  auto const below = [&](std::size_t n) { return random() % n; };
  auto const text_of = [&](std::size_t longest) {
    std::string s(below(longest + 1), 'x');
    for (char& c : s) c = bytes[below(sizeof bytes - 1)];
    return s;
  };
  for (int round = 0; round < 100000; ++round) {
    std::string const s = text_of(12);
    std::size_t const start = below(s.size() + 1);
    // Half of the patterns are pieces of the text.
    std::string const p = (below(2) ? s.substr(below(s.size() + 1), 1 + below(4)) : text_of(3));
    SCOPED_TRACE(testing::PrintToString(s) + " " + testing::PrintToString(p));
    exact const text(s), pattern(p);
    unsigned int const from = static_cast<unsigned int>(start);
    unsigned int i = 0, k = 0;
    if (!p.empty()) {
      bool const found = strutl_find_str(text, from, pattern, &i) != 0;
      ASSERT_EQ(found ? static_cast<int>(i) : -1, reference_find(s, start, p));
    }
    bool const found = strutl_find_char_from(text, from, pattern, &i, &k) != 0;
    auto const expected = reference_find_of(s, start, p);
    ASSERT_EQ(found ? static_cast<int>(i) : -1, expected.first);
    ASSERT_EQ(found ? static_cast<int>(k) : -1, expected.second);

    std::size_t const last = start + below(s.size() - start + 1);
    std::string const range = s.substr(start, last - start);
    int at = -1;
    int const code =
        strutl_find_last_char(text, static_cast<int>(start), static_cast<int>(last), &at);
    ASSERT_EQ(code != 0, range.empty());
    if (!range.empty()) {
      ASSERT_EQ(static_cast<std::size_t>(at), start + boundaries(range).rbegin()[1]);
      ASSERT_EQ(strutl_mblen(text + start, static_cast<unsigned int>(range.size())),
                reference_length(range, 0));
    }
  }
}

TEST(Text, CaseAndEnds) {
  char dest[6] = "?????";
  strutl_cvt_case_string("A@[Z\xC3\x89", 1, 5, dest);
  EXPECT_STREQ(dest, "a@[z");
  strutl_cvt_case_string("AB", 0, sizeof dest, dest);
  EXPECT_STREQ(dest, "AB");
  strutl_cvt_case_string("x", 1, 0, dest);
  EXPECT_STREQ(dest, "AB");
  int at = -1;
  EXPECT_EQ(strutl_find_last_char("a\xE2\x82\xAC", 0, -1, &at), 0);
  EXPECT_EQ(at, 1);
  EXPECT_NE(strutl_find_last_char("abc", 3, -1, &at), 0);
}

TEST(Identity, ChangedOrForeignIdentifiersAreRefused) {
  captured messages;
  credutl_sid_s user, group;
  ASSERT_EQ(sysutl_user_to_usid("root", 0, &user), 0);
  ASSERT_EQ(sysutl_group_to_gsid("root", 0, &group), 0);
  EXPECT_STREQ(sysutl_usid_to_user(&user, 1, 0), "root");
  EXPECT_STREQ(sysutl_gsid_to_group(&group, 1, 0), "root");
  EXPECT_EQ(messages.text, "");
  EXPECT_EQ(sysutl_usid_to_user(&group, 1, 0), nullptr);
  EXPECT_EQ(sysutl_gsid_to_group(&user, 1, 0), nullptr);
  EXPECT_EQ(std::count(messages.text.begin(), messages.text.end(), '\n'), 2);
  for (unsigned char& byte : user.bytes) {
    for (int bit = 0; bit < 8; ++bit) {
      byte = static_cast<unsigned char>(byte ^ 1 << bit);
      messages.text.clear();
      EXPECT_EQ(sysutl_usid_to_user(&user, 1, 0), nullptr);
      EXPECT_NE(messages.text.find("damaged"), std::string::npos);
      byte = static_cast<unsigned char>(byte ^ 1 << bit);
    }
  }
}

TEST(Identity, AgreesWithTheDatabase) {
  std::vector<std::string> names;
  setpwent();
  while (passwd const* entry = getpwent()) names.push_back(entry->pw_name);
  endpwent();
  for (std::string const& name : names) {
    SCOPED_TRACE(name);
    passwd const entry = *getpwnam(name.c_str());
    std::string const home = entry.pw_dir, first = getpwuid(entry.pw_uid)->pw_name;
    credutl_sid_s sid;
    ASSERT_EQ(sysutl_user_to_usid(name.c_str(), 0, &sid), 0);
    EXPECT_EQ(sysutl_usid_to_user(&sid, 1, 0), first);
    ASSERT_EQ(sysutl_user_to_gsid(name.c_str(), 0, &sid), 0);
    if (group const* primary = getgrgid(entry.pw_gid)) {
      EXPECT_STREQ(sysutl_gsid_to_group(&sid, 1, 0), primary->gr_name);
    }
    std::vector<char> buffer(home.size() + 1, '?');
    EXPECT_TRUE(sysutl_get_homedir(name.c_str(), static_cast<int>(home.size() + 1), buffer.data()));
    EXPECT_EQ(buffer.data(), home);
    captured messages;
    EXPECT_FALSE(sysutl_get_homedir(name.c_str(), static_cast<int>(home.size()), buffer.data()));
    EXPECT_EQ(messages.text.find("The home directory of the user \"" + name), 0u);
    EXPECT_EQ(buffer[0], '\0');
  }
  EXPECT_EQ(sysutl_myloginname(), std::string(getpwuid(geteuid())->pw_name));
  EXPECT_EQ(sysutl_mygroupname(), std::string(getgrgid(getegid())->gr_name));
}

TEST(Identity, TheDatabaseIsAskedAgainAndItsFailuresAreNamed) {
  captured messages;
  credutl_sid_s sid = {{42}};
  s_interruptions = 2;
  EXPECT_STREQ(sysutl_user_to_fullname("fake.large"), "Dr Ann Co");
  EXPECT_EQ(s_interruptions, 0);
  EXPECT_EQ(messages.text, "");
  EXPECT_EQ(sysutl_user_to_usid("fake.absent", 0, &sid), 2);
  EXPECT_EQ(messages.text, "No user is named \"fake.absent\" on this system.\n");
  EXPECT_EQ(sysutl_group_to_gsid("no%such", 0, &sid), 2);
  EXPECT_EQ(sysutl_user_to_usid(nullptr, 0, &sid), 2);
  for (char const* name : {"fake.broken", "fake.endless"}) {
    messages.text.clear();
    EXPECT_EQ(sysutl_user_to_gsid(name, 0, &sid), 1);
    int const error = std::strcmp(name, "fake.broken") == 0 ? EIO : ERANGE;
    EXPECT_NE(messages.text.find(name), std::string::npos);
    EXPECT_NE(messages.text.find(std::strerror(error)), std::string::npos);
  }
  EXPECT_EQ(sid.bytes[0], 42);
}

}  // namespace

// Stands in for the C library's call: users of its own, the database's answer for all others.
extern "C" MIROXPLAT_API int getpwnam_r(char const* name, passwd* entry, char*, std::size_t size,
                                        passwd** result) {
  static char login[] = "ann", comment[] = "Dr & Co,Room 1";
  std::string const asked = name;
  *result = nullptr;
  if (s_interruptions > 0) return --s_interruptions, EINTR;
  if (asked == "fake.absent") return ENOENT;
  if (asked == "fake.broken") return EIO;
  if (asked == "fake.endless" || (asked == "fake.large" && size < 100000)) return ERANGE;
  passwd const* const real = getpwnam(asked == "fake.large" ? "root" : name);
  if (real == nullptr) return 0;
  *entry = *real;
  if (asked == "fake.large") entry->pw_name = login, entry->pw_gecos = comment;
  *result = entry;
  return 0;
}
