#include "miroxplat/sysutl.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "credutl_codec.h"
#include "miroxplat/imsg.h"

namespace {

using credutl::sid_kind;

constexpr int error_slot = 6;
constexpr int no_such_name = 2;
constexpr int database_failure = 1;
constexpr std::size_t first_buffer_size = 1024;
constexpr std::size_t largest_buffer_size = std::size_t{16} << 20;

// What the user or group database answered. `entry` points into `texts`.
template <class Entry>
struct answer {
  bool found = false;
  int error = 0;  // of the database itself; 0 when it merely has no such entry
  Entry entry = {};
  std::vector<char> texts;
};

// Asks one of the reentrant calls, with a buffer as large as the answer turns out to need.
template <class Entry, class Key>
answer<Entry> look_up(int (*query)(Key, Entry*, char*, std::size_t, Entry**), Key key) {
  answer<Entry> result;
  result.texts.resize(first_buffer_size);
  Entry* match = nullptr;
  for (;;) {
    std::size_t const size = result.texts.size();
    int const error = query(key, &result.entry, result.texts.data(), size, &match);
    if (error == EINTR) continue;
    if (error == ERANGE && size < largest_buffer_size) {
      result.texts.resize(size * 2);
      continue;
    }
    result.found = error == 0 && match != nullptr;
    if (error != ENOENT && error != ESRCH) result.error = error;
    return result;
  }
}

char const* word_for(sid_kind kind) { return kind == sid_kind::user ? "user" : "group"; }

char const* database_of(sid_kind kind) { return kind == sid_kind::user ? "passwd" : "group"; }

// Prints why there is no such entry; `asked_for` is its name or number. Returns the failure's code.
template <class Entry>
int report(answer<Entry> const& failed, sid_kind kind, char const* relation,
           char const* asked_for) {
  char const* const word = word_for(kind);
  if (failed.error == 0) {
    imsg_print(error_slot, "No %s %s \"%s\" on this system: \"getent %s\" lists those there are.\n",
               -1, word, relation, asked_for, database_of(kind));
    return no_such_name;
  }
  imsg_print(error_slot,
             "Cannot look for the %s that %s \"%s\": the system's database failed: %s. See what "
             "/etc/nsswitch.conf names for \"%s\", and try again.\n",
             -1, word, relation, asked_for, std::strerror(failed.error), database_of(kind));
  return database_failure;
}

// Looks up a name. On failure prints an error and leaves its code in `*code`, else 0.
template <class Entry>
answer<Entry> look_up_name(int (*query)(char const*, Entry*, char*, std::size_t, Entry**),
                           sid_kind kind, char const* name, int* code) {
  answer<Entry> result;
  if (name != nullptr) result = look_up(query, name);
  *code = result.found ? 0 : report(result, kind, "is named", name != nullptr ? name : "");
  return result;
}

answer<passwd> look_up_user(char const* name, int* code) {
  return look_up_name(getpwnam_r, sid_kind::user, name, code);
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
  imsg_print(error_slot, "The identifier \"%s\" is no %s's: it is %s. Take one from %s.\n", -1,
             digits, word_for(kind), sid != nullptr ? "damaged or of another kind" : "missing",
             kind == sid_kind::user ? "sysutl_user_to_usid" : "sysutl_group_to_gsid");
  return false;
}

char capital(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; }

// The comment field's first part, in which '&' stands for the capitalised login name.
std::string full_name(passwd const& user) {
  std::string result;
  for (char const* p = user.pw_gecos; *p != '\0' && *p != ','; ++p) {
    if (*p != '&') {
      result += *p;
      continue;
    }
    std::size_t const at = result.size();
    result += user.pw_name;
    result[at] = capital(result[at]);
  }
  return result;
}

}  // namespace

char const* sysutl_myloginname(void) {
  static std::string name;
  auto const user = look_up_number(getpwuid_r, sid_kind::user, geteuid());
  if (!user.found) return nullptr;
  name = user.entry.pw_name;
  return name.c_str();
}

char const* sysutl_mygroupname(void) {
  static std::string name;
  auto const group = look_up_number(getgrgid_r, sid_kind::group, getegid());
  if (!group.found) return nullptr;
  name = group.entry.gr_name;
  return name.c_str();
}

char const* sysutl_usid_to_user(credutl_sid_s const* sid, int, int) {
  static std::string name;
  std::uint32_t number = 0;
  if (!get_number(sid, sid_kind::user, &number)) return nullptr;
  auto const user = look_up_number(getpwuid_r, sid_kind::user, uid_t{number});
  if (!user.found) return nullptr;
  name = user.entry.pw_name;
  return name.c_str();
}

char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int, int) {
  static std::string name;
  std::uint32_t number = 0;
  if (!get_number(sid, sid_kind::group, &number)) return nullptr;
  auto const group = look_up_number(getgrgid_r, sid_kind::group, gid_t{number});
  if (!group.found) return nullptr;
  name = group.entry.gr_name;
  return name.c_str();
}

int sysutl_user_to_usid(char const* name, int, credutl_sid_s* sid) {
  int code = 0;
  auto const user = look_up_user(name, &code);
  if (user.found) *sid = credutl::encode(sid_kind::user, user.entry.pw_uid);
  return code;
}

int sysutl_user_to_gsid(char const* name, int, credutl_sid_s* sid) {
  int code = 0;
  auto const user = look_up_user(name, &code);
  if (user.found) *sid = credutl::encode(sid_kind::group, user.entry.pw_gid);
  return code;
}

int sysutl_group_to_gsid(char const* name, int, credutl_sid_s* sid) {
  int code = 0;
  auto const group = look_up_name(getgrnam_r, sid_kind::group, name, &code);
  if (group.found) *sid = credutl::encode(sid_kind::group, group.entry.gr_gid);
  return code;
}

char const* sysutl_user_to_fullname(char const* name) {
  static std::string result;
  int code = 0;
  auto const user = look_up_user(name, &code);
  result = user.found ? full_name(user.entry) : "";
  return result.empty() ? nullptr : result.c_str();
}

int sysutl_get_homedir(char const* name, int size, char* buffer) {
  if (size > 0) buffer[0] = '\0';
  int code = 0;
  auto const user = look_up_user(name, &code);
  if (!user.found) return 0;
  std::size_t const needed = std::strlen(user.entry.pw_dir) + 1;
  if (size <= 0 || static_cast<std::size_t>(size) < needed) {
    imsg_print(error_slot,
               "The home directory of the user \"%s\" needs a buffer of %zu bytes, not %d.\n", -1,
               name, needed, size);
    return 0;
  }
  std::memcpy(buffer, user.entry.pw_dir, needed);
  return 1;
}
