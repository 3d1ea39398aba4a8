// Storage areas, administrative handles, typed collections, credentials and the identification line.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "miroxgcl/gcl_admin_handle.h"
#include "miroxgcl/gcl_credentials.h"
#include "miroxgcl/gcl_handle.h"
#include "miroxgcl/gcl_integer_list.h"
#include "miroxgcl/gcl_os_user_list.h"
#include "miroxgcl/gcl_status_list.h"
#include "miroxgcl/gcl_stg_area_rep.h"
#include "miroxgcl/tbs_version_id.h"
#include "support/failing_allocator.h"
#include "support/replaced.h"

namespace {

std::vector<std::string> s_calls;
std::function<int(char const*, adm_handle_t*)> s_get_handle;

// The names that the fake identity service knows, by an identifier's first byte.
std::map<int, char const*> s_names;

std::vector<std::string> names(GCL_OSGroupList const& groups) {
  std::vector<std::string> result;
  for (unsigned int i = 0; i < groups.Length(); ++i) {
    result.push_back(groups[i].group_name().c_str());
  }
  return result;
}

}  // namespace

extern "C" {

stg_area_t stg_create_area(unsigned int n) {
  s_calls.push_back("create " + std::to_string(n));
  return n;
}

void stg_delete_area(stg_area_t* area) {
  s_calls.push_back("delete " + std::to_string(*area));
  *area = 0;
}

int adm_get_handle(char const* name, adm_handle_t* handle) {
  return (s_get_handle ? s_get_handle : replaced(adm_get_handle, "adm_get_handle"))(name, handle);
}

void adm_free_handle(adm_handle_t* handle) {
  s_calls.push_back("free " + std::to_string(*handle));
  replaced(adm_free_handle, "adm_free_handle")(handle);
}

char const* sysutl_usid_to_user(credutl_sid_s const* sid, int, int) {
  return s_names[sid->bytes[0]];
}
char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int, int) {
  return s_names[sid->bytes[0]];
}
}

namespace {

class Resources : public testing::Test {
 protected:
  Resources() { s_calls.clear(); }
  ~Resources() override { s_get_handle = nullptr; }
};

TEST_F(Resources, LastHandleDeletesTheArea) {
  {
    GCL_Handle<GCL_StgAreaRep> const a(new GCL_StgAreaRep(7));
    GCL_Handle<GCL_StgAreaRep> b(a);
    EXPECT_TRUE(a == GCL_Handle<GCL_StgAreaRep>(new GCL_StgAreaRep(7)));
    EXPECT_FALSE(a == GCL_Handle<GCL_StgAreaRep>(new GCL_StgAreaRep(0)));
    EXPECT_FALSE(a == GCL_Handle<GCL_StgAreaRep>() || GCL_Handle<GCL_StgAreaRep>() == a);
    EXPECT_TRUE(b.body()->is_null());
    EXPECT_EQ(b.body()->area(), 7u);
  }
  EXPECT_EQ(s_calls, (std::vector<std::string>{"create 7", "create 7", "delete 7", "create 0",
                                               "delete 0", "delete 7"}));
}

TEST_F(Resources, AdminHandleReportsAndIsFreed) {
  GCL_Status status;
  { GCL_AdminHandle const handle(status, "name"); }
  EXPECT_TRUE(status.is_ok());
  EXPECT_EQ(s_calls.size(), 1u);
  { GCL_AdminHandle const handle(status, ""); }
  EXPECT_EQ(status.value(), ADM_EMPTY_NAME);
  EXPECT_EQ(status.get_message_stack()->Depth(), 1u);
  EXPECT_EQ(s_calls.size(), 1u);

  s_get_handle = [](char const*, adm_handle_t* handle) {
    *handle = 99;
    return imsg_print(6, "%s", -1, "half way\n");
  };
  GCL_Status other;
  GCL_String const name("name");
  {
    failing_allocator const failing(1);  // the message's
    EXPECT_THROW(GCL_AdminHandle(other, name), std::bad_alloc);
  }
  EXPECT_EQ(s_calls.back(), "free 99");
}

TEST_F(Resources, TypedListsAssignAsTheirBasesDo) {
  GCL_IntegerList numbers(4);
  for (int i = 1; i <= 5; ++i) numbers.Append(i);
  EXPECT_EQ(numbers.Location(3) * 10 + numbers.Location(7), 19);
  GCL_IntegerList more(3);
  more = numbers;
  EXPECT_TRUE(more == numbers && more.ChunkSize() == 3);

  GCL_Status status;
  GCL_OSUserList users(2);
  users.Append(GCL_OSUser(status, "a"));
  users.Append(GCL_OSUser(status, "b"));
  GCL_OSUserList own(8);
  GCL_OSUserList::Base plain(1);
  plain = users;
  LX_TCollection<GCL_OSUser>& any = own;
  any = static_cast<LX_TCollection<GCL_OSUser> const&>(plain);
  EXPECT_TRUE(own == users && own.ChunkSize() == 8);
  own.Clear();
  own = plain;
  EXPECT_TRUE(own == users && own.ChunkSize() == 8);
  own = GCL_OSUserList(5);
  EXPECT_TRUE(own.IsEmpty() && own.ChunkSize() == 8);
  EXPECT_EQ(GCL_OSUserList(users).ChunkSize(), 2u);
  EXPECT_EQ(GCL_OSUserList::nil.Length(), 0u);
}

// A status's copy may throw; the list keeps its value all the same.
TEST_F(Resources, ListOfStatusesKeepsItsValueWhenAnAllocationFails) {
  LX_TDynamicCollection<GCL_Status> original(2);
  GCL_Status status;
  for (int i = 1; i <= 4; ++i) {
    status.set(i);
    status.add_message("message");
    original.Append(status);
  }
  auto const prepare = [&] { return LX_TDynamicCollection<GCL_Status>(original); };
  auto const check = [&](LX_TDynamicCollection<GCL_Status> const& list, bool failed) {
    if (!failed) return;
    ASSERT_EQ(list.Length(), 4u);
    for (unsigned int i = 0; i < 4; ++i) {
      EXPECT_EQ(list[i].error_message(), original[i].error_message());
    }
  };
  std::size_t const held = failing_allocator::live_blocks();
  for (unsigned int at = 0; at < 4; ++at) {
    EXPECT_GT(fail_each_allocation(
                  prepare, [&](auto& l) { l.Insert(status, at); }, check),
              2);
    EXPECT_GT(fail_each_allocation(
                  prepare, [&](auto& l) { l.Append(l[at], at); }, check),
              2);
    EXPECT_EQ(fail_each_allocation(
                  prepare, [&](auto& l) { l.Remove(at); }, check),
              0);
  }
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

// A record of users and groups whose identifiers begin with the given bytes, in a block of its size.
std::vector<unsigned char> record(int count, std::string const& firsts) {
  std::vector<unsigned char> bytes(72 + 34 * (firsts.size() - 2));
  bytes[0] = static_cast<unsigned char>(firsts[0]);
  bytes[34] = static_cast<unsigned char>(firsts[1]);
  std::memcpy(&bytes[68], &count, sizeof count);
  for (std::size_t i = 2; i < firsts.size(); ++i) {
    bytes[72 + 34 * (i - 2)] = static_cast<unsigned char>(firsts[i]);
  }
  return bytes;
}

GCL_Credentials credentials(GCL_Status& status, std::vector<unsigned char> const& bytes) {
  return {status, *reinterpret_cast<credutl_sid_credentials_t const*>(bytes.data())};
}

TEST_F(Resources, CredentialsTranslateARecord) {
  s_names['u'] = "ann";
  s_names['g'] = "staff";
  s_names['1'] = "one";
  s_names['2'] = "two";
  GCL_Status status;
  GCL_Credentials const all = credentials(status, record(2, "ug12"));
  EXPECT_TRUE(status.is_ok());
  EXPECT_EQ(all.user().user_name(), "ann");
  EXPECT_EQ(all.primary_group().group_name(), "staff");
  EXPECT_EQ(names(all.secondary_groups()), (std::vector<std::string>{"two", "one"}));
  EXPECT_EQ(all.secondary_groups().ChunkSize(), 8u);
  for (int count : {0, -1, -2147483647 - 1}) {
    EXPECT_EQ(credentials(status, record(count, "ug")).secondary_groups().Length(), 0u);
    EXPECT_TRUE(status.is_ok());
  }
  for (char const* unknown : {"?g12", "u?12", "ug1?", "ug?2"}) {
    GCL_Credentials const none = credentials(status, record(2, unknown));
    EXPECT_EQ(status.value(), 1001);
    EXPECT_EQ(none.user().user_name().length() + none.primary_group().group_name().length(), 0u);
    EXPECT_EQ(none.secondary_groups().Length(), 0u);
  }
}

TEST_F(Resources, CredentialsAreDeepValues) {
  GCL_Status status;
  GCL_Credentials a;
  GCL_OSGroupList groups(3);
  groups.Append(GCL_OSGroup(status, "one"));
  a.set_secondary_groups(groups);
  a.set_user(GCL_OSUser(status, "ann"));
  GCL_Credentials b(a);
  b.set_user(GCL_OSUser(status, "ben"));
  EXPECT_EQ(a.user().user_name(), "ann");
  EXPECT_NE(&a.secondary_groups(), &b.secondary_groups());
  EXPECT_EQ(names(b.secondary_groups()), std::vector<std::string>{"one"});
  auto& alias = a;
  a = alias;
  EXPECT_EQ(a.user().user_name(), "ann");
  std::size_t const held = failing_allocator::live_blocks();
  int const failures =
      fail_each_allocation([&] { return GCL_Credentials(b); }, [&](GCL_Credentials& c) { c = a; },
                           [](GCL_Credentials const& c, bool failed) {
                             EXPECT_EQ(c.user().user_name(), failed ? "ben" : "ann");
                           });
  EXPECT_GT(failures, 2);
  EXPECT_EQ(failing_allocator::live_blocks(), held);
  a.clear();
  EXPECT_EQ(a.user().user_name().length() + a.secondary_groups().Length(), 0u);
}

TEST(Version, IdentificationLineHasItsColumns) {
  char line[200] = "";
  int const length = libmiroxgcl_sprintf_verid(line);
  std::string const text = line;
  EXPECT_EQ(static_cast<std::size_t>(length), text.size());
  EXPECT_EQ(text.substr(0, 34), "libmiroxgcl" + std::string(23, ' '));
  int numbers[4] = {};
  char rest[100] = "";
  EXPECT_EQ(std::sscanf(line + 34, "%d.%d.%d.%d %99[^\n]", numbers, numbers + 1, numbers + 2,
                        numbers + 3, rest),
            5);
  char weekday[4], month[4];
  int day = 0, hour = 0, minute = 0, second = 0, year = 0;
  EXPECT_EQ(std::sscanf(rest, "(%3s %3s %d %d:%d:%d %4d)", weekday, month, &day, &hour, &minute,
                        &second, &year),
            7);
  EXPECT_EQ(text.substr(text.size() - 2), ")\n");
  GCL_Status status;
  status.grab_imsg_out();
  libmiroxgcl_print_verid();
  status.release_imsg_out();
  EXPECT_EQ(status.error_message(), line);
}

}  // namespace
