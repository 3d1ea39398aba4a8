#include "miroxplat/sysutl.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "credutl_codec.h"
#include "miroxplat/imsg.h"
#include "thread_results.h"

namespace {

using credutl::sid_kind;

constexpr std::size_t first_buffer_size = 1024;
constexpr std::size_t largest_buffer_size = std::size_t{16} << 20;
constexpr int most_interruptions = 100;

// What the user or group database answered. `entry` points into `texts`.
template <class Entry>
struct answer {
  bool found = false;
  int error = 0;  // of the database itself; 0 when it merely has no such entry
  Entry entry = {};
  std::vector<char> texts;
};

// Whether this is one of the ways to say that there is no such entry; getpwnam(3) lists them.
bool means_not_found(int error) {
  return error == ENOENT || error == ESRCH || error == EBADF || error == EPERM;
}

// Asks one of the reentrant calls, with a buffer as large as the answer turns out to need.
template <class Entry, class Key>
answer<Entry> look_up(int (*query)(Key, Entry*, char*, std::size_t, Entry**), Key key) {
  answer<Entry> result;
  result.texts.resize(first_buffer_size);
  Entry* match = nullptr;
  for (int interruptions = 0;;) {
    std::size_t const size = result.texts.size();
    int const error = query(key, &result.entry, result.texts.data(), size, &match);
    if (error == EINTR && ++interruptions < most_interruptions) continue;
    if (error == ERANGE && size < largest_buffer_size) {
      result.texts.resize(size * 2);
      continue;
    }
    result.found = error == 0 && match != nullptr;
    if (!means_not_found(error)) result.error = error;
    return result;
  }
}

char const* word_for(sid_kind kind) { return kind == sid_kind::user ? "user" : "group"; }

char const* database_of(sid_kind kind) { return kind == sid_kind::user ? "passwd" : "group"; }

// What went wrong in the database.
std::string reason_of(int error) {
  if (error != ERANGE) return std::strerror(error);
  return "the entry takes more than " + std::to_string(largest_buffer_size) + " bytes";
}

// The length of the longest name that the system is asked for: a name of megabytes crashes some of
// its name-service modules. Directory servers have names longer than the system's own limit.
std::size_t longest_name() {
  constexpr long usual = 4096;
  return static_cast<std::size_t>(std::max(usual, sysconf(_SC_LOGIN_NAME_MAX)));
}

bool is_too_long(char const* name) {
  std::size_t const longest = longest_name();
  return strnlen(name, longest + 1) > longest;
}

// Asks for the entry of a name.
template <class Entry>
answer<Entry> look_up_name(int (*query)(char const*, Entry*, char*, std::size_t, Entry**),
                           char const* name) {
  if (name == nullptr || is_too_long(name)) return {};
  return look_up(query, name);
}

// Prints why there is no such entry; `asked_for` is its name or number. Returns the failure's code.
template <class Entry>
int report(answer<Entry> const& failed, sid_kind kind, char const* relation,
           char const* asked_for) {
  char const* const word = word_for(kind);
  if (failed.error == 0) {
    imsg_print(IMSG_ERROR, "No %s %s \"%s\" on this system: \"getent %s\" lists those there are.\n",
               -1, word, relation, asked_for, database_of(kind));
    return SYSUTL_NO_SUCH_NAME;
  }
  imsg_print(IMSG_ERROR,
             "Cannot look for the %s that %s \"%s\": the system's database failed: %s. See what "
             "/etc/nsswitch.conf names for \"%s\", and try again.\n",
             -1, word, relation, asked_for, reason_of(failed.error).c_str(), database_of(kind));
  return SYSUTL_DATABASE_FAILURE;
}

// Prints that a name is too long, and shows its first characters. Returns the failure's code.
int report_too_long(sid_kind kind, char const* name) {
  int shown = 60;  // bytes, whole UTF-8 characters
  while ((static_cast<unsigned char>(name[shown]) & 0xC0u) == 0x80) --shown;
  imsg_print(IMSG_ERROR,
             "No %s is named \"%.*s...\" on this system: the name has %zu bytes, and names have at "
             "most %zu. \"getent %s\" lists those there are.\n",
             -1, word_for(kind), shown, name, std::strlen(name), longest_name(), database_of(kind));
  return SYSUTL_NO_SUCH_NAME;
}

// SYSUTL_FOUND when the name was found. Otherwise prints why it was not, and returns the code.
template <class Entry>
int check_name(answer<Entry> const& result, sid_kind kind, char const* name) {
  if (result.found) return SYSUTL_FOUND;
  if (name == nullptr) name = "";
  return is_too_long(name) ? report_too_long(kind, name) : report(result, kind, "is named", name);
}

// Looks up a user or group number; prints an error on failure.
template <class Entry, class Number>
answer<Entry> look_up_number(int (*query)(Number, Entry*, char*, std::size_t, Entry**),
                             sid_kind kind, Number number) {
  answer<Entry> result = look_up(query, number);
  if (!result.found) report(result, kind, "has the number", std::to_string(number).c_str());
  return result;
}

// The number in an identifier of this kind. Prints an error and returns false when it is refused.
bool get_number(credutl_sid_s const* sid, sid_kind kind, std::uint32_t* number) {
  if (sid != nullptr && credutl::decode(*sid, kind, number)) return true;
  char digits[2 * sizeof sid->bytes + 1] = "";
  for (std::size_t i = 0; sid != nullptr && i < sizeof sid->bytes; ++i) {
    std::snprintf(digits + 2 * i, 3, "%02x", static_cast<unsigned int>(sid->bytes[i]));
  }
  imsg_print(IMSG_ERROR, "The identifier \"%s\" is no %s's: it is %s. Take one from %s.\n", -1,
             digits, word_for(kind), sid != nullptr ? "damaged or of another kind" : "missing",
             kind == sid_kind::user ? "sysutl_user_to_usid" : "sysutl_group_to_gsid");
  return false;
}

// Some databases leave fields out.
char const* or_empty(char const* field) { return field != nullptr ? field : ""; }

char capital(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

// The comment field's first part, in which '&' means the capitalised login name.
std::string full_name(passwd const& user) {
  std::string login = or_empty(user.pw_name);
  if (!login.empty()) login[0] = capital(login[0]);
  std::string result;
  for (char const* p = or_empty(user.pw_gecos); *p != '\0' && *p != ','; ++p) {
    if (*p == '&') {
      result += login;
    } else {
      result += *p;
    }
  }
  return result;
}

// Keeps the name that was found where the caller may read it; null when none was found.
char const* keep(answer<passwd> const& user, std::string& name) {
  if (!user.found) return nullptr;
  name = or_empty(user.entry.pw_name);
  return name.c_str();
}

char const* keep(answer<group> const& found, std::string& name) {
  if (!found.found) return nullptr;
  name = or_empty(found.entry.gr_name);
  return name.c_str();
}

}  // namespace

char const* sysutl_myloginname(void) {
  return keep(look_up_number(getpwuid_r, sid_kind::user, geteuid()),
              results_of_this_thread().my_login_name);
}

char const* sysutl_mygroupname(void) {
  return keep(look_up_number(getgrgid_r, sid_kind::group, getegid()),
              results_of_this_thread().my_group_name);
}

char const* sysutl_usid_to_user(credutl_sid_s const* sid, int, int) {
  std::uint32_t number = 0;
  if (!get_number(sid, sid_kind::user, &number)) return nullptr;
  return keep(look_up_number(getpwuid_r, sid_kind::user, uid_t{number}),
              results_of_this_thread().user);
}

char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int, int) {
  std::uint32_t number = 0;
  if (!get_number(sid, sid_kind::group, &number)) return nullptr;
  return keep(look_up_number(getgrgid_r, sid_kind::group, gid_t{number}),
              results_of_this_thread().group);
}

int sysutl_user_to_usid(char const* name, int, credutl_sid_s* sid) {
  auto const user = look_up_name(getpwnam_r, name);
  if (user.found) *sid = credutl::encode(sid_kind::user, user.entry.pw_uid);
  return check_name(user, sid_kind::user, name);
}

int sysutl_user_to_gsid(char const* name, int, credutl_sid_s* sid) {
  auto const user = look_up_name(getpwnam_r, name);
  if (user.found) *sid = credutl::encode(sid_kind::group, user.entry.pw_gid);
  return check_name(user, sid_kind::user, name);
}

int sysutl_group_to_gsid(char const* name, int, credutl_sid_s* sid) {
  auto const group = look_up_name(getgrnam_r, name);
  if (group.found) *sid = credutl::encode(sid_kind::group, group.entry.gr_gid);
  return check_name(group, sid_kind::group, name);
}

char const* sysutl_user_to_fullname(char const* name) {
  auto const user = look_up_name(getpwnam_r, name);
  if (user.error != 0) check_name(user, sid_kind::user, name);
  if (!user.found) return nullptr;
  std::string& result = results_of_this_thread().full_name;
  result = full_name(user.entry);
  return result.empty() ? nullptr : result.c_str();
}

int sysutl_get_homedir(char const* name, int size, char* buffer) {
  if (size > 0) buffer[0] = '\0';
  auto const user = look_up_name(getpwnam_r, name);
  if (check_name(user, sid_kind::user, name) != SYSUTL_FOUND) return 0;
  char const* const directory = or_empty(user.entry.pw_dir);
  std::size_t const needed = std::strlen(directory) + 1;
  if (size <= 0 || static_cast<std::size_t>(size) < needed) {
    imsg_print(IMSG_ERROR,
               "The home directory of the user \"%s\" needs a buffer of %zu bytes, not %d.\n", -1,
               name, needed, size);
    return 0;
  }
  std::memcpy(buffer, directory, needed);
  return 1;
}
