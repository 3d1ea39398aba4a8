// Asks the operating system who users are, and says why not when it has no answer.
//
//   identity [LOGIN ...]      LOGIN "-" reads more logins from standard input, one a line.
//
// Exit code: 0 when every user was found, 1 otherwise.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "miroxgcl/gcl_os_user.h"
#include "miroxgcl/gcl_status.h"

namespace {

void print(char const* what, GCL_String const& text) {
  std::printf("  %-14s %s\n", what, text.c_str());
}

void print(char const* what, credutl_sid_s const& sid) {
  std::printf("  %-14s ", what);
  for (unsigned char const byte : sid.bytes) std::printf("%02x", byte);
  std::printf("\n");
}

// What a failed operation left behind: a code, and what its services said, the oldest first.
bool report(GCL_Status const& status) {
  std::printf("  %-14s %d\n  %-14s %s", "failed with", status.value(), "because",
              status.error_message().c_str());
  return false;
}

bool identify(GCL_OSUser const& user) {
  print("login", user.user_name());

  GCL_Status status;
  credutl_sid_s const sid = user.sid(status);
  if (!status.is_ok()) return report(status);
  print("identifier", sid);
  print("full name", user.full_name());

  GCL_String const home = user.home_dir(status);
  if (!status.is_ok()) return report(status);
  print("home directory", home);

  GCL_OSGroup const group = user.primary_group(status);
  if (!status.is_ok()) return report(status);
  print("primary group", group.group_name());
  return true;
}

// A user is made of a login on trust; whether there is one shows when it is asked something.
std::vector<GCL_OSUser> users(int argc, char** argv) {
  GCL_Status status;
  if (argc == 1) return {GCL_OSUser(status), {status, "root"}, {status, "nobody-has-this-name"}};
  std::vector<GCL_OSUser> result;
  for (int i = 1; i < argc; ++i) {
    std::string name = argv[i];
    if (name != "-") {
      result.push_back({status, name.c_str()});
    } else {
      while (std::getline(std::cin, name)) result.push_back({status, name.c_str()});
    }
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  bool all_found = true;
  for (GCL_OSUser const& user : users(argc, argv)) all_found = identify(user) && all_found;
  return all_found ? 0 : 1;
}
