// Users and groups, against services made up for the purpose and against the real ones.
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxgcl/gcl_os_group.h"
#include "miroxgcl/gcl_os_user.h"
#include "miroxplat/imsg.h"
#include "support/fake_services.h"

namespace {

using texts = std::vector<std::string>;

std::string text_of(GCL_String const& s) { return s.c_str(); }

credutl_sid_s sid_of(char c) {
  credutl_sid_s sid;
  std::memset(sid.bytes, c, sizeof sid.bytes);
  return sid;
}

std::string bytes_of(credutl_sid_s const& sid) {
  return {reinterpret_cast<char const*>(sid.bytes), sizeof sid.bytes};
}

// The service's one buffer: what an earlier answer said is gone with the next.
char const* answer(char const* text) {
  static char buffer[16];
  std::memset(buffer, '#', sizeof buffer - 1);
  return std::strcpy(buffer, text);
}

GCL_OSUser user_named(char const* name) {
  GCL_Status status;
  return {status, name};
}

// A status that failed before and holds a message.
GCL_Status failed_status() {
  GCL_Status status;
  status.set(5);
  status.add_message("held\n");
  return status;
}

std::string outcome(GCL_Status const& status) {
  return std::to_string(status.value()) + " " + text_of(status.error_message());
}

// Messages of the services are displayed here, in place of the process's streams.
class Identity : public testing::Test {
 protected:
  void SetUp() override {
    imsg_get_redirect_procs(IMSG_PROC_COUNT, m_procs, &m_context);
    std::vector<imsg_redirect_proc> const procs(IMSG_PROC_COUNT, display);
    imsg_set_redirect_procs(procs.data(), IMSG_PROC_COUNT, this);
  }
  void TearDown() override {
    void* context = nullptr;
    imsg_redirect_proc procs[IMSG_PROC_COUNT];
    imsg_get_redirect_procs(IMSG_PROC_COUNT, procs, &context);
    EXPECT_EQ(context, this);  // every redirection was undone
    imsg_set_redirect_procs(m_procs, IMSG_PROC_COUNT, m_context);
  }

  std::string displayed;

 private:
  static void display(void* self, char* text) { static_cast<Identity*>(self)->displayed += text; }

  imsg_redirect_proc m_procs[IMSG_PROC_COUNT];
  void* m_context;
};

class FakeIdentity : public Identity {
 protected:
  fake_services fakes;
};

TEST_F(FakeIdentity, ServicesGetTheirArguments) {
  fakes.myloginname = [] { return answer("ann"); };
  fakes.mygroupname = [] { return answer("staff"); };
  fakes.usid_to_user = [](auto...) { return answer("bob"); };
  fakes.gsid_to_group = [](auto...) { return answer("wheel"); };
  fakes.user_to_fullname = [](auto...) { return answer("Ann B."); };
  fakes.get_homedir = [](char const*, int, char* buffer) {
    EXPECT_STREQ(buffer, "");
    return std::strcpy(buffer, "/home/ann") != nullptr ? 7 : 0;
  };
  fakes.user_to_usid = [](char const*, int, credutl_sid_s* sid) { return *sid = sid_of('u'), 0; };
  fakes.user_to_gsid = [](char const*, int, credutl_sid_s* sid) { return *sid = sid_of('p'), 0; };
  fakes.group_to_gsid = [](char const*, int, credutl_sid_s* sid) { return *sid = sid_of('g'), 0; };

  // A text is the library's own before the next call, and each success drops what was held.
  auto status = failed_status();
  auto const ok = [&] { return std::exchange(status, failed_status()).value() == 0; };
  GCL_OSUser const ann(status);
  EXPECT_TRUE(ok());
  GCL_OSGroup const staff(status);
  EXPECT_TRUE(ok());
  GCL_OSUser const bob(status, sid_of('1'));
  EXPECT_TRUE(ok());
  GCL_OSGroup const wheel(status, sid_of('2'));
  EXPECT_TRUE(ok());
  GCL_String const full_name = ann.full_name();
  GCL_String const home = ann.home_dir(status);
  EXPECT_EQ(outcome(status), "0 ");
  status = failed_status();
  EXPECT_EQ(bytes_of(ann.sid(status)), bytes_of(sid_of('u')));
  EXPECT_EQ(outcome(status), "0 ");
  status = failed_status();
  EXPECT_EQ(bytes_of(staff.sid(status)), bytes_of(sid_of('g')));
  EXPECT_EQ(outcome(status), "0 ");
  status = failed_status();
  EXPECT_EQ(text_of(ann.primary_group(status).group_name()), "wheel");
  EXPECT_EQ(outcome(status), "0 ");

  EXPECT_EQ(text_of(ann.user_name()) + "," + text_of(staff.group_name()), "ann,staff");
  EXPECT_EQ(text_of(bob.user_name()) + "," + text_of(wheel.group_name()), "bob,wheel");
  EXPECT_EQ(text_of(full_name) + "," + text_of(home), "Ann B.,/home/ann");
  EXPECT_EQ(
      fakes.calls,
      (texts{"myloginname()", "mygroupname()", "usid_to_user(" + std::string(34, '1') + ", 1, 0)",
             "gsid_to_group(" + std::string(34, '2') + ", 1, 0)", "user_to_fullname('ann')",
             "get_homedir('ann', 1024)", "user_to_usid('ann', 0)", "group_to_gsid('staff', 0)",
             "user_to_gsid('ann', 0)", "gsid_to_group(" + std::string(34, 'p') + ", 1, 0)"}));
}

TEST_F(FakeIdentity, CodesOfTheServiceBecomeCodesOfTheStatus) {
  struct {
    int code;
    char const* outcome;
  } const cases[] = {{0, "0 "},
                     {1, "1001 held\nbecause\n"},
                     {2, "1002 held\nbecause\n"},
                     {3, "1001 held\nbecause\n"},
                     {-2, "1001 held\nbecause\n"}};
  int code = 0;
  auto const look_up = [&](auto...) { return imsg_print(6, "because\n", -1), code; };
  fakes.user_to_usid = fakes.user_to_gsid = fakes.group_to_gsid = look_up;
  fakes.gsid_to_group = [](auto...) { return answer("wheel"); };
  for (auto const& one : cases) {
    code = one.code;
    GCL_Status user = failed_status(), primary = user, group = user;
    user_named("ann").sid(user);
    GCL_OSGroup().sid(group);
    auto const found = user_named("ann").primary_group(primary);
    EXPECT_EQ(outcome(user), one.outcome);
    EXPECT_EQ(outcome(group), one.outcome);
    EXPECT_EQ(outcome(primary), one.outcome);
    EXPECT_EQ(text_of(found.group_name()), code == 0 ? "wheel" : "");
  }
  EXPECT_EQ(displayed, "");  // these three redirect
  EXPECT_EQ(fakes.calls.size(), 3 * std::size(cases) + 1);
}

TEST_F(FakeIdentity, OtherOperationsLeaveMessagesOnDisplay) {
  char const* name = nullptr;
  auto const say = [&](auto...) { return imsg_print(6, "said ", -1), name; };
  fakes.myloginname = fakes.mygroupname = say;
  fakes.usid_to_user = fakes.gsid_to_group = say;
  fakes.user_to_fullname = say;
  fakes.get_homedir = [&](auto...) { return imsg_print(6, "said ", -1), 0; };
  for (bool fails : {true, false}) {
    name = fails ? nullptr : "name";
    std::string const expected = fails ? "1001 held\n" : "0 ";
    GCL_Status user = failed_status(), group = user, of_sid = user, of_gsid = user, home = user;
    EXPECT_EQ(GCL_OSUser(user).user_name(), GCL_String(name));
    EXPECT_EQ(GCL_OSGroup(group).group_name(), GCL_String(name));
    EXPECT_EQ(GCL_OSUser(of_sid, sid_of('x')).user_name(), GCL_String(name));
    EXPECT_EQ(GCL_OSGroup(of_gsid, sid_of('x')).group_name(), GCL_String(name));
    for (GCL_Status const* status : {&user, &group, &of_sid, &of_gsid}) {
      EXPECT_EQ(outcome(*status), expected);
    }
    GCL_OSUser const ann(user, "ann");
    EXPECT_EQ(text_of(ann.home_dir(home)), "");
    EXPECT_EQ(outcome(home), "1001 held\n");
    EXPECT_EQ(text_of(ann.full_name()), fails ? "ann" : "name");
    EXPECT_EQ(displayed, "said said said said said said ");
    displayed.clear();
  }
  name = "";
  EXPECT_EQ(text_of(user_named("ann").full_name()), "");
}

TEST_F(FakeIdentity, HomeDirectoryEndsWithinItsBuffer) {
  GCL_Status status;
  GCL_OSUser const ann = user_named("ann");
  fakes.get_homedir = [](char const*, int size, char* buffer) {
    return std::memset(buffer, '/', static_cast<std::size_t>(size)) != nullptr ? 1 : 0;
  };
  EXPECT_EQ(text_of(ann.home_dir(status)), std::string(1023, '/'));
  EXPECT_TRUE(status.is_ok());
  fakes.get_homedir = [](auto...) { return -1; };  // success, and nothing written
  EXPECT_EQ(text_of(ann.home_dir(status)), "");
  EXPECT_TRUE(status.is_ok());
}

TEST_F(FakeIdentity, PrimaryGroupWithoutNameKeepsAllMessages) {
  fakes.user_to_gsid = [](auto...) { return imsg_print(4, "found\n", -1), 0; };
  fakes.gsid_to_group = [](auto...) {
    return imsg_print(6, "nameless\n", -1), static_cast<char const*>(nullptr);
  };
  auto status = failed_status();
  auto const group = user_named("ann").primary_group(status);
  EXPECT_EQ(outcome(status), "1001 held\nfound\nnameless\n");
  EXPECT_TRUE(group == GCL_OSGroup());
  EXPECT_EQ(displayed, "");
}

TEST_F(FakeIdentity, NamesAreTakenOnTrustAndCompared) {
  auto status = failed_status();
  GCL_OSUser const ann(status, "ann"), nobody;
  EXPECT_EQ(outcome(status), "0 ");
  status = failed_status();
  GCL_OSGroup const staff(status, "staff"), none;
  EXPECT_EQ(outcome(status), "0 ");
  EXPECT_TRUE(fakes.calls.empty());
  GCL_OSUser copy(ann);
  EXPECT_TRUE(copy == ann && !(copy != ann) && copy != nobody && !(copy == nobody));
  EXPECT_EQ(copy.user_name().c_str(), ann.user_name().c_str());  // shared
  copy = nobody;
  EXPECT_TRUE(copy == nobody && copy != ann);
  GCL_OSGroup group(staff);
  EXPECT_TRUE(group == staff && !(group != staff) && group != none && !(group == none));
  EXPECT_EQ(group.group_name().c_str(), staff.group_name().c_str());
  fakes.myloginname = [] { return answer("ann"); };
  EXPECT_TRUE(GCL_OSUser(status) == ann);
}

TEST_F(Identity, RootIsWhatTheDatabaseSays) {
  passwd const entry = *getpwnam("root");
  GCL_Status status;
  GCL_OSUser const root(status, "root");
  EXPECT_EQ(text_of(root.home_dir(status)), entry.pw_dir);
  credutl_sid_s const sid = root.sid(status);
  ASSERT_TRUE(status.is_ok());
  EXPECT_EQ(GCL_OSUser(status, sid), root);
  GCL_OSGroup const group = root.primary_group(status);
  ASSERT_TRUE(status.is_ok());
  credutl_sid_s const group_sid = group.sid(status);
  EXPECT_EQ(GCL_OSGroup(status, group_sid), group);
  EXPECT_EQ(text_of(GCL_OSUser(status).user_name()), getpwuid(geteuid())->pw_name);
  EXPECT_TRUE(status.is_ok());
  EXPECT_EQ(GCL_OSUser(status, group_sid), GCL_OSUser());
  EXPECT_TRUE(status == 1001);
}

TEST_F(Identity, MissingNamesAreNamedInTheMessage) {
  GCL_Status status;
  GCL_OSUser const missing(status, "no%such-login");
  GCL_OSGroup const missing_group(status, "no%such-group");
  EXPECT_TRUE(status.is_ok());
  missing.sid(status);
  EXPECT_EQ(outcome(status), "1002 No user is named \"no%such-login\" on this system.\n");
  status.set_ok();
  EXPECT_EQ(missing.primary_group(status), GCL_OSGroup());
  EXPECT_EQ(outcome(status), "1002 No user is named \"no%such-login\" on this system.\n");
  status.set_ok();
  missing_group.sid(status);
  EXPECT_EQ(outcome(status), "1002 No group is named \"no%such-group\" on this system.\n");
  status.set_ok();
  EXPECT_EQ(displayed, "");
  EXPECT_EQ(text_of(missing.home_dir(status)), "");
  EXPECT_EQ(outcome(status), "1001 ");
  EXPECT_NE(displayed.find("no%such-login"), std::string::npos);
  EXPECT_EQ(missing.full_name(), missing.user_name());
}

}  // namespace
