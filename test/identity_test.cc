// Users, groups and credentials, against services made up for the purpose. The example whoami asks the
// real ones.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "miroxgcl/gcl.h"
#include "miroxplat/sysutl.h"
#include "support/failing_allocator.h"

namespace {

int s_code = 0;        // what the services answer
bool s_speaks = true;  // they print a message, whatever they answer

int answer() {
  if (s_speaks) imsg_print(6, "said\n", -1);
  return s_code;
}

// An identifier's first bytes are its name. "?" has none.
credutl_sid_s sid_of(char const* name) {
  credutl_sid_s sid = {};
  std::strcpy(reinterpret_cast<char*>(sid.bytes), name);
  return sid;
}
char const* look_up(credutl_sid_s const* sid, int checks, int unused) {
  EXPECT_EQ(checks, 1);
  EXPECT_EQ(unused, 0);
  auto const name = reinterpret_cast<char const*>(sid->bytes);
  return answer() == 0 && *name != '?' ? name : nullptr;
}

}  // namespace

char const* sysutl_myloginname() { return answer() == 0 ? "ann" : nullptr; }
char const* sysutl_mygroupname() { return answer() == 0 ? "staff" : nullptr; }
char const* sysutl_usid_to_user(credutl_sid_s const* sid, int a, int b) {
  return look_up(sid, a, b);
}
char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int a, int b) {
  return look_up(sid, a, b);
}
char const* sysutl_user_to_fullname(char const*) { return answer() == 0 ? "Ann B." : nullptr; }
int sysutl_user_to_usid(char const* user, int, credutl_sid_s* result) {
  return *result = sid_of(user), answer();
}
int sysutl_user_to_gsid(char const* user, int, credutl_sid_s* result) {
  return *result = sid_of(std::strcmp(user, "stray") == 0 ? "?" : "wheel"), answer();
}
int sysutl_group_to_gsid(char const* group, int, credutl_sid_s* result) {
  return *result = sid_of(group), answer();
}
int sysutl_get_homedir(char const*, int size, char* buffer) {
  EXPECT_EQ(size, 1024);
  std::fill_n(buffer, size, '/');  // to its last byte; the end is the library's
  return answer() == 0;
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

TEST(Identity, LookUpsOfIdentifiersPassCodesAndMessagesOn) {
  GCL_Status status;
  GCL_OSUser const ann(status, "ann"), stray(status, "stray");
  GCL_OSGroup const staff(status, "staff");
  struct {
    int code;
    char const* outcome;
  } const rows[] = {{1, "1001 held\nsaid\n"}, {2, "1002 held\nsaid\n"}, {0, "0 "}};
  for (auto const& row : rows) {
    s_code = row.code;
    check(row.outcome, [&](GCL_Status& s) { return ann.sid(s); });
    check(row.outcome, [&](GCL_Status& s) { return staff.sid(s); });
    auto const primary = check(row.outcome, [&](GCL_Status& s) { return ann.primary_group(s); });
    EXPECT_EQ(primary.group_name(), row.code == 0 ? "wheel" : "");
  }
  EXPECT_EQ(GCL_OSUser(status, ann.sid(status)).user_name(), "ann");
  EXPECT_EQ(GCL_OSGroup(status, staff.sid(status)).group_name(), "staff");
  check("1001 held\nsaid\nsaid\n", [&](GCL_Status& s) { return stray.primary_group(s); });
}

TEST(Identity, OtherLookUpsPassACodeAlone) {
  GCL_Status display;
  display.grab_imsg_out();
  for (int const code : {2, 0}) {
    bool const found = code == 0;
    s_code = code;
    auto const passed_on = [&](auto operation) {
      return check(found ? "0 " : "1001 held\n", operation);
    };
    auto const me = passed_on([](GCL_Status& s) { return GCL_OSUser(s); });
    auto const us = passed_on([](GCL_Status& s) { return GCL_OSGroup(s); });
    auto const bob = passed_on([](GCL_Status& s) { return GCL_OSUser(s, sid_of("bob")); });
    auto const disk = passed_on([](GCL_Status& s) { return GCL_OSGroup(s, sid_of("disk")); });
    EXPECT_EQ(me.user_name(), found ? "ann" : "");
    EXPECT_EQ(us.group_name(), found ? "staff" : "");
    EXPECT_EQ(bob.user_name(), found ? "bob" : "");
    EXPECT_EQ(disk.group_name(), found ? "disk" : "");
    EXPECT_EQ(me.full_name(), found ? "Ann B." : "");
    EXPECT_EQ(passed_on([&](GCL_Status& s) { return me.home_dir(s); }),
              found ? GCL_String('/', 1023) : GCL_String());
  }
}

std::string names(GCL_Credentials const& all) {
  GCL_String result = all.user().user_name() + " " + all.primary_group().group_name();
  for (auto const& group : all.secondary_groups()) result += " " + group.group_name();
  return result.c_str();
}

TEST(Credentials, AreARecordsNames) {
  static struct {
    credutl_sid_s user, primary;
    int count;
    credutl_sid_s others[1'000'000];
  } record;  // too large for the stack
  record.user = sid_of("ann"), record.primary = sid_of("staff"), record.count = 2;
  record.others[0] = sid_of("disk"), record.others[1] = sid_of("tape");
  s_speaks = false;
  GCL_Status status;
  auto const translated = [&] {
    return GCL_Credentials(status, reinterpret_cast<credutl_sid_credentials_t const&>(record));
  };
  EXPECT_EQ(names(translated()), "ann staff tape disk");

  for (credutl_sid_s* sid : {&record.user, &record.primary, &record.others[1]}) {
    auto const old = std::exchange(*sid, sid_of("?"));
    EXPECT_EQ(names(translated()), " ");
    EXPECT_EQ(status.value(), 1001);
    *sid = old;
  }
  for (int const count : {0, -1, INT_MIN}) {
    record.count = count;
    EXPECT_EQ(names(translated()), "ann staff");
  }
  record.count = 1'000'000;  // in linear time
  EXPECT_EQ(translated().secondary_groups().Length(), 1'000'000u);
}

TEST(Credentials, CopiesAreDeepAndFailedOnesChangeNothing) {
  GCL_Status status;
  GCL_Credentials source;
  source.set_user(GCL_OSUser(status, "ann"));
  source.set_primary_group(GCL_OSGroup(status, "staff"));
  GCL_Credentials const copy(source);
  source.set_user(GCL_OSUser(status, "bob"));
  source.set_secondary_groups({GCL_OSGroup(status, "disk")});

  auto const assign = [&](GCL_Credentials& target) { target = source; };
  auto const check_names = [](GCL_Credentials const& target, bool failed) {
    EXPECT_EQ(names(target), failed ? "ann staff" : "bob staff disk");
  };
  EXPECT_GT(fail_each_allocation([&] { return copy; }, assign, check_names), 2);
}

}  // namespace
