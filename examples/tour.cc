// The tour of the guide: texts, lists, statuses, paths and dates, traces.
//
//   tour [LOGINS]      LOGINS is one text with commas in it; the default names one that is unknown.
//
// Exit code: 0 when every login was found, 1 otherwise.
#include <algorithm>
#include <iostream>

#include "miroxgcl/gcl.h"

namespace {

void show_texts() {
  //! [texts]
  GCL_String a("one");
  GCL_String b(a);       // shares a's text: no byte is copied
  b.append(" and two");  // b takes a text of its own first
  std::cout << a << "; " << b << "; " << b.substr(0, 3) << "; " << b.find("two") << "\n";
  //! [texts]
}

//! [lists]
// "root, daemon,," names two: root and daemon.
GCL_StringList logins_of(GCL_String const& text) {
  GCL_StringList logins(8);  // grows by 8 items
  for (GCL_String const& piece : split(text, ",")) {
    GCL_String const login = trim(piece);
    if (!login.empty()) logins.Append(login);
  }
  std::sort(logins.begin(), logins.end());
  return logins;
}
//! [lists]

//! [fail]
// The name of a user's primary group.
GCL_String group_of(GCL_Status& status, GCL_String const& login) {
  GCL_CTRACE("tour", "group_of", GCL_Debug::reading, GCL_Debug::coarse);
  GCL_OSGroup const group = GCL_OSUser(status, login).primary_group(status);
  GCL_CTRACE_OUT("login=" << login << " code=" << status.value());
  if (!status.is_ok()) status.add_message("So it has no group.\n");
  return group.group_name();
}
//! [fail]

//! [check]
bool show(GCL_String const& login) {
  //! [five]
  GCL_Status status;
  GCL_String const group = group_of(status, login);
  if (status.is_ok()) std::cout << login << " is in the group " << group << "\n";
  if (!status.is_ok()) std::cout << status.value() << ": " << status.error_message();
  return status.is_ok();
  //! [five]
}
//! [check]

//! [why]
// A look-up that sets a code alone. What the service prints meanwhile goes to the status, too.
GCL_String home_of(GCL_Status& status, GCL_String const& login) {
  status.reset(0);  // drops what an earlier failure left
  GCL_ImsgRedirect const redirect(status);
  return GCL_OSUser(status, login).home_dir(status);
}
//! [why]

void show_paths_and_dates() {
  //! [paths]
  GCL_Pathname path("/var/log");
  path.append_path(GCL_String("../lib/./news"));
  std::cout << path.absolute() << " in " << path.absolute().dirname() << "\n";

  GCL_Status status;
  GCL_DateTime const date(status, "2026-11-22", GCL_DateTime::past);
  std::cout << date.long_date_time() << "\n";
  GCL_DateTime const none(status, "2026-02-30", GCL_DateTime::past);
  std::cout << "there is no such day: " << status.value() << "\n";
  //! [paths]
}

}  // namespace

int main(int argc, char** argv) {
  show_texts();
  GCL_StringList const logins = logins_of(argc > 1 ? argv[1] : "root, no-such-login,");
  std::cout << logins.Length() << " logins: " << join(logins, " ") << "\n";
  GCL_Status status;
  if (home_of(status, "nobody-here").empty()) std::cout << status.error_message();
  bool all_found = true;
  for (GCL_String const& login : logins) all_found = show(login) && all_found;
  show_paths_and_dates();
  return all_found ? 0 : 1;
}
