// The service layer's messages, texts and identities, on their own.
#include <gtest/gtest.h>
#include <pwd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>

#include "miroxplat/imsg.h"
#include "miroxplat/strutl.h"
#include "miroxplat/sysutl.h"
#include "support/replaced.h"

namespace {

std::string s_messages;
std::function<int(passwd*, std::size_t, passwd**)> s_find_user;

// The text is the receiver's to write to.
void take(void*, char* text) {
  s_messages += text;
  *text = '!';
}

// A null one is the service's own.
void set_receivers(imsg_redirect_proc receiver) {
  std::vector<imsg_redirect_proc> const procs(IMSG_PROC_COUNT, receiver);
  imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, nullptr);
  s_messages.clear();
}

TEST(Messages, ArriveWholeOrAreDisplayed) {
  for (std::size_t n : {0u, 510u, 511u, 100000u}) {
    set_receivers(take);
    EXPECT_EQ(imsg_print(3, "%s%d", -1, std::string(n, 'x').c_str(), 7), static_cast<int>(n + 1));
    EXPECT_EQ(s_messages, std::string(n, 'x') + "7");
  }
  set_receivers(take);
  EXPECT_EQ(imsg_print(6, "%d %ls\n", -1, 1, L"\x4E2D"), 7);  // no such character in this locale
  EXPECT_EQ(s_messages, "%d %ls\n");
  EXPECT_EQ(imsg_print(IMSG_PROC_COUNT, "x", -1) + imsg_print(-1, "x", -1), -2);
  set_receivers(nullptr);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  for (int slot = 0; slot < IMSG_PROC_COUNT; ++slot) imsg_print(slot, "%d ", -1, slot);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 1 2 3 ");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "4 5 6 7 8 9 10 ");
  imsg_redirect_proc procs[IMSG_PROC_COUNT + 1] = {take};
  void* arg = nullptr;
  imsg_set_redirect_procs(procs, 1, procs);  // the entries beyond stay
  imsg_get_redirect_procs(IMSG_PROC_COUNT + 1, procs, &arg);
  EXPECT_TRUE(arg == procs && procs[0] == take && procs[1] == nullptr && procs[11] == nullptr);
}

TEST(Messages, StyleSequencesAreRemoved) {
  char dest[100];
  imsg_strip_style_chars(dest, "\x1B[1;3ma\x1B[ qb\x1B(Bc\x1B]t\ad\x1B]\x1B\\e\x1BP\a\x1B\x1B\\f");
  EXPECT_STREQ(dest, "abcdef");
  // What cannot belong to a sequence ends it and stays; a character's second byte begins none.
  imsg_strip_style_chars(dest, "\x1B[1\nx\x1B[1\xC3\xA9y\x1B[ 1z\x1B[\x1B[1mw\x1B\xC2\x9B;1m");
  EXPECT_STREQ(dest, "\nx\xC3\xA9y1zw\xC2\x9B;1m");
  for (std::string const text : {"", "[", "[1 ", "]", "]0;t\x1B", "Pq\x1B", "X\a", "(", " /"}) {
    imsg_strip_style_chars(dest, ("unfinished\x1B" + text).c_str());
    EXPECT_STREQ(dest, "unfinished") << text;
  }
}

TEST(Texts, CharactersAreThoseOfUtf8) {
  for (std::string const character :
       {"\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    auto const size = static_cast<unsigned int>(character.size());
    EXPECT_EQ(strutl_mblen(character.c_str(), size), size) << testing::PrintToString(character);
    EXPECT_EQ(strutl_mblen(character.c_str(), size - 1), 1u) << testing::PrintToString(character);
  }
  for (std::string const malformed :
       {"\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
        "\xE2\x82\xC0", "\x80\x80"}) {
    auto const size = static_cast<unsigned int>(malformed.size());
    EXPECT_EQ(strutl_mblen(malformed.c_str(), size), 1u) << testing::PrintToString(malformed);
  }
}

TEST(Identities, AreRefusedWhenDamaged) {
  set_receivers(take);
  credutl_sid_s user, group;
  ASSERT_EQ(sysutl_user_to_usid("root", 0, &user) + sysutl_group_to_gsid("root", 0, &group), 0);
  EXPECT_EQ(sysutl_usid_to_user(&group, 1, 0), nullptr);
  EXPECT_NE(s_messages.find("it is damaged or of another kind."), s_messages.npos);
  for (int bit = 0; bit < 8 * 34; ++bit) {
    credutl_sid_s changed = user;
    changed.bytes[bit / 8] = static_cast<unsigned char>(user.bytes[bit / 8] ^ 1 << bit % 8);
    EXPECT_EQ(sysutl_usid_to_user(&changed, 1, 0), nullptr);
  }
}

TEST(Identities, AreMissingOrTheDatabaseFails) {
  struct {
    int error, code;
    std::string message;
  } const rows[] = {
      {0, 2, "No user is named \"a%n\""},       {ENOENT, 2, "No user is named"},
      {ESRCH, 2, "No user is named"},           {EBADF, 2, "No user is named"},
      {EPERM, 2, "No user is named"},           {EIO, 1, "failed: Input/output error."},
      {EINTR, 1, "failed: Interrupted system"}, {ERANGE, 1, "takes more than 16777216 bytes."}};
  for (auto const& row : rows) {
    s_find_user = [&](auto...) { return row.error; };
    credutl_sid_s user;
    set_receivers(take);
    EXPECT_EQ(sysutl_user_to_usid("a%n", 0, &user), row.code);
    EXPECT_NE(s_messages.find(row.message), s_messages.npos) << s_messages;
    s_messages.clear();
    EXPECT_EQ(sysutl_user_to_fullname("a%n"), nullptr);
    EXPECT_EQ(s_messages.empty(), row.code == 2);
  }
}

TEST(Identities, OfLongNamesAreNotAskedFor) {
  int calls = 0;
  s_find_user = [&](auto...) { return ++calls, ENOENT; };
  set_receivers(take);
  char home[] = "old";
  EXPECT_FALSE(sysutl_get_homedir(std::string(4096, 'n').c_str(), 4, home));
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(sysutl_get_homedir(std::string(4097, 'n').c_str(), 4, home));
  EXPECT_EQ(calls, 1);
  EXPECT_NE(s_messages.find("nnn...\" on this system: the name has 4097 bytes"), s_messages.npos);
}

// The answer of a slow database for one who has these two fields.
auto patient(char* comment, char* home) {
  return [=, calls = 0](passwd* entry, std::size_t size, passwd** found) mutable {
    static char login[] = "ann";
    *entry = {};
    entry->pw_name = login;
    entry->pw_gecos = comment;
    entry->pw_dir = home;
    *found = entry;
    return ++calls < 3 ? EINTR : size < 100000 ? ERANGE : 0;
  };
}

TEST(Identities, AreLookedUpWithPatience) {
  char comment[] = "Dr & Co,Room 1", folder[] = "/home", home[] = "0123456789";
  s_find_user = patient(comment, folder);
  EXPECT_STREQ(sysutl_user_to_fullname("ann"), "Dr Ann Co");
  EXPECT_TRUE(sysutl_get_homedir("ann", 6, home));
  EXPECT_STREQ(home, "/home");
  EXPECT_FALSE(sysutl_get_homedir("ann", 5, home));
  EXPECT_STREQ(home, "");
  s_find_user = patient(nullptr, nullptr);
  EXPECT_EQ(sysutl_user_to_fullname("ann"), nullptr);
  EXPECT_TRUE(sysutl_get_homedir("ann", 1, home));
}

}  // namespace

extern "C" MIROXPLAT_API int getpwnam_r(char const* name, passwd* entry, char* texts,
                                        std::size_t size, passwd** found) {
  return s_find_user ? s_find_user(entry, size, found)
                     : replaced(getpwnam_r, "getpwnam_r")(name, entry, texts, size, found);
}
