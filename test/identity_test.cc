// Users and groups, against services made up for the purpose and against the real ones.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "miroxgcl/gcl_os_group.h"
#include "miroxgcl/gcl_os_user.h"
#include "support/fake_services.h"

namespace {

credutl_sid_s sid_of(char c) {
  credutl_sid_s sid;
  std::memset(sid.bytes, c, sizeof sid.bytes);
  return sid;
}

// The service's one buffer: what an earlier answer said is gone with the next.
char const* answer(char const* text) {
  static char buffer[16];
  std::memset(buffer, '#', sizeof buffer - 1);
  return std::strcpy(buffer, text);
}

// What `operation` returns when it gets a status that failed before and holds a message, and whose
// code and messages are to be `outcome` then.
template <class Operation>
auto check(std::string const& outcome, Operation operation) {
  GCL_Status status;
  status.set(5);
  status.add_message("held\n");
  auto result = operation(status);
  EXPECT_EQ(std::to_string(status.value()) + " " + status.error_message().c_str(), outcome);
  return result;
}

template <class Object = GCL_OSUser>
Object named(char const* name) {
  return check("0 ", [=](auto& s) { return Object(s, name); });
}

TEST(Identity, ServicesGetTheirArguments) {
  fake_services fakes;
  fakes.myloginname = [] { return answer("ann"); };
  fakes.mygroupname = [] { return answer("staff"); };
  fakes.usid_to_user = [](auto...) { return answer("bob"); };
  fakes.gsid_to_group = [](auto...) { return answer("wheel"); };
  fakes.user_to_fullname = [](auto...) { return answer("Ann B."); };
  fakes.get_homedir = [](auto, auto, char* buffer) { return std::strcpy(buffer, "/home") ? 7 : 0; };
  fakes.user_to_usid = [](auto, auto, auto* sid) { return *sid = sid_of('u'), 0; };
  fakes.user_to_gsid = [](auto, auto, auto* sid) { return *sid = sid_of('p'), 0; };
  fakes.group_to_gsid = [](auto, auto, auto* sid) { return *sid = sid_of('g'), 0; };

  // A text is the library's own before the next call.
  auto const ann = check("0 ", [](auto& s) { return GCL_OSUser(s); });
  auto const staff = check("0 ", [](auto& s) { return GCL_OSGroup(s); });
  auto const bob = check("0 ", [](auto& s) { return GCL_OSUser(s, sid_of('1')); });
  auto const wheel = check("0 ", [](auto& s) { return GCL_OSGroup(s, sid_of('2')); });
  GCL_String const full_name = ann.full_name();
  EXPECT_EQ(check("0 ", [&](auto& s) { return ann.home_dir(s); }), GCL_String("/home"));
  EXPECT_EQ(check("0 ", [&](auto& s) { return ann.sid(s); }).bytes[33], 'u');
  EXPECT_EQ(check("0 ", [&](auto& s) { return staff.sid(s); }).bytes[33], 'g');
  EXPECT_EQ(check("0 ", [&](auto& s) { return ann.primary_group(s); }), wheel);
  EXPECT_TRUE(ann == named("ann") && bob == named("bob") && full_name == "Ann B.");
  EXPECT_TRUE(staff == named<GCL_OSGroup>("staff") && wheel == named<GCL_OSGroup>("wheel"));
  EXPECT_TRUE(ann != bob && staff != wheel && !(ann == bob) && !(staff == wheel));
  EXPECT_EQ(
      fakes.calls,
      (std::vector<std::string>{
          "myloginname()", "mygroupname()", "usid_to_user(" + std::string(34, '1') + ", 1, 0)",
          "gsid_to_group(" + std::string(34, '2') + ", 1, 0)", "user_to_fullname('ann')",
          "get_homedir('ann', 1024)", "user_to_usid('ann', 0)", "group_to_gsid('staff', 0)",
          "user_to_gsid('ann', 0)", "gsid_to_group(" + std::string(34, 'p') + ", 1, 0)"}));
}

TEST(Identity, CodesBecomeCodesOfTheStatusAndMessagesGoThere) {
  GCL_Status display;
  display.grab_imsg_out();
  fake_services fakes;
  int code = 0;
  fakes.user_to_usid = fakes.user_to_gsid =
      fakes.group_to_gsid = [&](auto...) { return imsg_print(6, "because\n", -1), code; };
  fakes.gsid_to_group = [&](auto...) {
    return imsg_print(6, "nameless\n", -1), static_cast<char const*>(nullptr);
  };
  for (int one : {0, 1, 2, 3, -2}) {
    code = one;
    std::string const failure = code == 2 ? "1002 held\nbecause\n" : "1001 held\nbecause\n";
    std::string const outcome = code == 0 ? "0 " : failure;
    check(outcome, [](auto& s) { return named("ann").sid(s); });
    check(outcome, [](auto& s) { return named<GCL_OSGroup>("staff").sid(s); });
    auto const group = check(code == 0 ? "1001 held\nbecause\nnameless\n" : failure,
                             [](auto& s) { return named("ann").primary_group(s); });
    EXPECT_EQ(group, GCL_OSGroup());
  }
  imsg_print(6, "redirections are undone", -1);
  EXPECT_STREQ(display.error_message().c_str(), "redirections are undone");
}

TEST(Identity, OtherOperationsLeaveMessagesOnDisplay) {
  GCL_Status display;
  display.grab_imsg_out();
  fake_services fakes;
  char const* name = nullptr;
  auto const say = [&](auto...) { return imsg_print(6, "said ", -1), name; };
  fakes.myloginname = fakes.mygroupname = say;
  fakes.usid_to_user = fakes.gsid_to_group = say;
  fakes.user_to_fullname = say;
  fakes.get_homedir = [&](auto...) { return imsg_print(6, "said ", -1), name != nullptr; };
  for (char const* one : {static_cast<char const*>(nullptr), "", "name"}) {
    name = one;
    char const* const outcome = name == nullptr ? "1001 held\n" : "0 ";
    GCL_String const names[] = {
        check(outcome, [](auto& s) { return GCL_OSUser(s).user_name(); }),
        check(outcome, [](auto& s) { return GCL_OSGroup(s).group_name(); }),
        check(outcome, [](auto& s) { return GCL_OSUser(s, sid_of('x')).user_name(); }),
        check(outcome, [](auto& s) { return GCL_OSGroup(s, sid_of('x')).group_name(); })};
    for (GCL_String const& found : names) EXPECT_EQ(found, GCL_String(name));
    EXPECT_EQ(named("ann").full_name(), GCL_String(name != nullptr ? name : "ann"));
    auto const home = check(outcome, [](auto& s) { return named("a").home_dir(s); });
    EXPECT_EQ(home, GCL_String());  // also when the service wrote nothing
    EXPECT_STREQ(display.error_message().c_str(), "said said said said said said ");
    display.set_ok();
  }
  fakes.get_homedir = [](auto, int size, char* buffer) {
    return std::memset(buffer, '/', static_cast<std::size_t>(size)) != nullptr ? -1 : 0;
  };
  auto const longest = check("0 ", [](auto& s) { return named("a").home_dir(s); });
  EXPECT_EQ(longest.c_str(), std::string(1023, '/'));
}

TEST(Identity, RealServicesKnowRootAndNameWhatIsMissing) {
  GCL_Status status;
  auto const root = named("root");
  EXPECT_EQ(GCL_OSUser(status, root.sid(status)), root);
  auto const group = root.primary_group(status);
  EXPECT_EQ(GCL_OSGroup(status, group.sid(status)), group);
  EXPECT_TRUE(status.is_ok());
  std::string const end = " is named \"no%such\" on this system.\n";
  check("1002 held\nNo user" + end, [](auto& s) { return named("no%such").sid(s); });
  check("1002 held\nNo user" + end, [](auto& s) { return named("no%such").primary_group(s); });
  check("1002 held\nNo group" + end, [](auto& s) { return named<GCL_OSGroup>("no%such").sid(s); });
}

}  // namespace
