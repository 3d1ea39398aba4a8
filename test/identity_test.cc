// Users and groups, against services made up for the purpose. hostile_test.cc asks the real ones.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

#include "miroxgcl/gcl.h"
#include "miroxplat/sysutl.h"

namespace {

std::ostringstream s_calls;  // of the services, with what went in; of an identifier the last byte
int s_code = 0;              // their answer
bool s_is_group_gone = false;

// Every call says something, whatever its answer.
template <class... Arguments>
int answer(Arguments... arguments) {
  ((s_calls << arguments << ' '), ...);
  imsg_print(6, "said\n", -1);
  return s_code;
}

int sid(char c, credutl_sid_s* sid, int code) {
  std::memset(sid->bytes, c, sizeof sid->bytes);
  return code;
}

credutl_sid_s sid_of(char c) {
  credutl_sid_s result;
  return sid(c, &result, 0), result;
}

char last(credutl_sid_s const* sid) { return static_cast<char>(sid->bytes[33]); }

}  // namespace

char const* sysutl_myloginname() { return answer("login") == 0 ? "ann" : nullptr; }
char const* sysutl_mygroupname() { return answer("group") == 0 ? "staff" : nullptr; }
char const* sysutl_usid_to_user(credutl_sid_s const* sid, int a, int b) {
  return answer("usid_to_user", last(sid), a, b) == 0 ? "bob" : nullptr;
}
char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int a, int b) {
  return answer("gsid_to_group", last(sid), a, b) == 0 && !s_is_group_gone ? "wheel" : nullptr;
}
char const* sysutl_user_to_fullname(char const* user) {
  return answer("user_to_fullname", user) == 0 ? "Ann B." : nullptr;
}
int sysutl_user_to_usid(char const* user, int a, credutl_sid_s* result) {
  return sid('u', result, answer("user_to_usid", user, a));
}
int sysutl_user_to_gsid(char const* user, int a, credutl_sid_s* result) {
  return sid('p', result, answer("user_to_gsid", user, a));
}
int sysutl_group_to_gsid(char const* group, int a, credutl_sid_s* result) {
  return sid('g', result, answer("group_to_gsid", group, a));
}
int sysutl_get_homedir(char const* user, int size, char* buffer) {
  *std::fill_n(buffer, size - 1, '/') = '!';  // to its last byte; the end is the library's
  return answer("homedir", user, size) == 0;
}

namespace {

// The result of `operation` on a status that failed before and holds a message. Its code and
// messages are to be `outcome` then.
template <class Operation>
auto check(std::string const& outcome, Operation operation) {
  GCL_Status status;
  status.set(5);
  status.add_message("held\n");
  auto result = operation(status);
  EXPECT_EQ(std::to_string(status.value()) + " " + status.error_message().c_str(), outcome);
  return result;
}

// Codes become the status's. Only the look-ups of identifiers send it the messages, too.
TEST(Identity, AnswersAndFailuresOfTheServicesArePassedOn) {
  GCL_Status display;
  display.grab_imsg_out();
  auto const ann = check("0 ", [](auto& s) { return GCL_OSUser(s, "ann"); });
  auto const staff = check("0 ", [](auto& s) { return GCL_OSGroup(s, "staff"); });
  for (int code : {0, 1, 2, 3, -2}) {
    s_code = code;
    s_calls.str("");
    display.set_ok();
    bool const ok = code == 0;
    std::string const number = ok ? "0 " : code == 2 ? "1002 " : "1001 ";
    std::string const told = number + (ok ? "" : "held\nsaid\n");
    auto const usid = check(told, [&](auto& s) { return ann.sid(s); });
    auto const gsid = check(told, [&](auto& s) { return staff.sid(s); });
    EXPECT_TRUE(!ok || last(&usid) * 1000 + last(&gsid) == 'u' * 1000 + 'g');
    auto const primary = check(told, [&](auto& s) { return ann.primary_group(s); });
    EXPECT_EQ(primary.group_name(), ok ? "wheel" : "");
    EXPECT_EQ(display.error_message(), "");

    std::string const outcome = ok ? "0 " : "1001 held\n";
    auto const me = check(outcome, [](auto& s) { return GCL_OSUser(s); });
    auto const us = check(outcome, [](auto& s) { return GCL_OSGroup(s); });
    auto const bob = check(outcome, [](auto& s) { return GCL_OSUser(s, sid_of('1')); });
    auto const wheel = check(outcome, [](auto& s) { return GCL_OSGroup(s, sid_of('2')); });
    EXPECT_TRUE(me == (ok ? ann : GCL_OSUser()) && us == (ok ? staff : GCL_OSGroup()));
    EXPECT_TRUE(bob.user_name() == (ok ? "bob" : "") && wheel == primary);
    EXPECT_TRUE(ann != bob && !(ann == bob) && staff != wheel && !(staff == wheel));
    EXPECT_EQ(check(outcome, [&](auto& s) { return ann.home_dir(s); }),
              ok ? GCL_String('/', 1023) : GCL_String());
    EXPECT_EQ(ann.full_name(), ok ? "Ann B." : "ann");
    EXPECT_EQ(display.error_message(), "said\nsaid\nsaid\nsaid\nsaid\nsaid\n");
    EXPECT_EQ(s_calls.str(),
              std::string("user_to_usid ann 0 group_to_gsid staff 0 user_to_gsid ann 0 ") +
                  (ok ? "gsid_to_group p 1 0 " : "") +
                  "login group usid_to_user 1 1 0 gsid_to_group 2 1 0 "
                  "homedir ann 1024 user_to_fullname ann ");
  }
  s_code = 0;
  s_is_group_gone = true;
  check("1001 held\nsaid\nsaid\n", [&](auto& s) { return ann.primary_group(s); });
}

}  // namespace
