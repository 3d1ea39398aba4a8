// Users and groups, against services made up for the purpose and against the real ones.
#include <gtest/gtest.h>

#include <cstring>

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
  fakes.get_homedir = [](auto, int size, char* buffer) {
    return *std::fill_n(buffer, size - 1, '/') = '!';
  };
  fakes.user_to_usid = [](auto, auto, auto* sid) { return *sid = sid_of('u'), 0; };
  fakes.user_to_gsid = [](auto, auto, auto* sid) { return *sid = sid_of('p'), 0; };
  fakes.group_to_gsid = [](auto, auto, auto* sid) { return *sid = sid_of('g'), 0; };

  // A text is the library's own before the next call.
  auto const ann = check("0 ", [](auto& s) { return GCL_OSUser(s); });
  auto const staff = check("0 ", [](auto& s) { return GCL_OSGroup(s); });
  auto const bob = check("0 ", [](auto& s) { return GCL_OSUser(s, sid_of('1')); });
  auto const wheel = check("0 ", [](auto& s) { return GCL_OSGroup(s, sid_of('2')); });
  EXPECT_EQ(ann.full_name(), "Ann B.");
  EXPECT_EQ(check("0 ", [&](auto& s) { return ann.home_dir(s); }), GCL_String('/', 1023));
  EXPECT_EQ(check("0 ", [&](auto& s) { return ann.sid(s); }).bytes[33], 'u');
  EXPECT_EQ(check("0 ", [&](auto& s) { return staff.sid(s); }).bytes[33], 'g');
  EXPECT_EQ(check("0 ", [&](auto& s) { return ann.primary_group(s); }), wheel);
  EXPECT_TRUE(ann == named("ann") && bob == named("bob") && ann != bob && !(ann == bob));
  EXPECT_TRUE(staff == named<GCL_OSGroup>("staff") && staff != wheel && !(staff == wheel));
  std::string const in[] = {std::string(34, '1'), std::string(34, '2'), std::string(34, 'p')};
  EXPECT_EQ(fakes.calls,
            (std::vector<std::string>{
                "myloginname()", "mygroupname()", "usid_to_user(" + in[0] + ", 1, 0)",
                "gsid_to_group(" + in[1] + ", 1, 0)", "user_to_fullname('ann')",
                "get_homedir('ann', 1024)", "user_to_usid('ann', 0)", "group_to_gsid('staff', 0)",
                "user_to_gsid('ann', 0)", "gsid_to_group(" + in[2] + ", 1, 0)"}));
}

// Codes become the status's. Only the look-ups of identifiers send it the messages, too.
TEST(Identity, FailuresGoToTheStatus) {
  GCL_Status display;
  display.grab_imsg_out();
  fake_services fakes;
  int code = 0;
  auto const fail = [&](auto...) { return imsg_print(6, "said\n", -1), code; };
  auto const name = [&](auto...) { return imsg_print(6, "said\n", -1), code == 0 ? "" : nullptr; };
  fakes.user_to_usid = fakes.user_to_gsid = fakes.group_to_gsid = fail;
  fakes.usid_to_user = fakes.gsid_to_group = name;
  fakes.myloginname = fakes.mygroupname = name;
  fakes.user_to_fullname = name;
  fakes.get_homedir = [&](auto...) { return name() != nullptr; };
  for (int one : {0, 1, 2, 3, -2}) {
    display.set_ok();
    code = one;
    std::string const number = code == 0 ? "0 " : code == 2 ? "1002 " : "1001 ";
    std::string const told = number + (code == 0 ? "" : "held\nsaid\n");
    check(told, [](auto& s) { return named("ann").sid(s); });
    check(told, [](auto& s) { return named<GCL_OSGroup>("staff").sid(s); });
    EXPECT_EQ(check(told, [](auto& s) { return named("ann").primary_group(s); }), GCL_OSGroup());
    EXPECT_EQ(display.error_message(), "");
    std::string const outcome = code == 0 ? "0 " : "1001 held\n";
    EXPECT_EQ(check(outcome, [](auto& s) { return GCL_OSUser(s); }), GCL_OSUser());
    EXPECT_EQ(check(outcome, [](auto& s) { return GCL_OSGroup(s); }), GCL_OSGroup());
    EXPECT_EQ(check(outcome, [](auto& s) { return GCL_OSUser(s, sid_of('x')); }), GCL_OSUser());
    EXPECT_EQ(check(outcome, [](auto& s) { return GCL_OSGroup(s, sid_of('x')); }), GCL_OSGroup());
    EXPECT_EQ(check(outcome, [](auto& s) { return named("a").home_dir(s); }), GCL_String());
    EXPECT_EQ(named("ann").full_name(), code == 0 ? "" : "ann");
    EXPECT_EQ(display.error_message(), "said\nsaid\nsaid\nsaid\nsaid\nsaid\n");
  }
  code = 0;
  fakes.gsid_to_group = [&](auto...) { return fail(), static_cast<char const*>(nullptr); };
  check("1001 held\nsaid\nsaid\n", [](auto& s) { return named("ann").primary_group(s); });
}

TEST(Identity, RealServicesKnowRootAndNameWhatIsMissing) {
  GCL_Status status;
  auto const root = named("root");
  EXPECT_EQ(GCL_OSUser(status, root.sid(status)), root);
  auto const group = root.primary_group(status);
  EXPECT_EQ(GCL_OSGroup(status, group.sid(status)), group);
  EXPECT_TRUE(status.is_ok());
  auto const unknown = [](std::string const& word, std::string const& database) {
    return "1002 held\nNo " + word + " is named \"no%such\" on this system: \"getent " + database +
           "\" lists those there are.\n";
  };
  check(unknown("user", "passwd"), [](auto& s) { return named("no%such").primary_group(s); });
  check(unknown("group", "group"), [](auto& s) { return named<GCL_OSGroup>("no%such").sid(s); });
}

}  // namespace
