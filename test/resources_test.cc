// Storage areas, administrative handles, typed lists, credentials and the identification line.
#include <gtest/gtest.h>

#include <climits>

#include "miroxgcl/gcl.h"
#include "miroxplat/sysutl.h"
#include "support/failing_allocator.h"

namespace {

std::string s_calls;

// An identifier's first bytes are its name, but for "?".
char const* name_of(credutl_sid_s const* sid) {
  auto const name = reinterpret_cast<char const*>(sid->bytes);
  return *name == '?' ? nullptr : name;
}

std::string names(GCL_Credentials const& all) {
  GCL_String result = all.user().user_name() + all.primary_group().group_name();
  for (auto const& group : all.secondary_groups()) result.append(group.group_name());
  return result.c_str();
}

}  // namespace

stg_area_t stg_create_area(unsigned int n) { return s_calls += " create", n; }
void stg_delete_area(stg_area_t* area) { s_calls += " delete " + std::to_string(*area); }
int adm_get_handle(char const* name, adm_handle_t* handle) {
  if (*name != '\0') *handle = 99;
  return imsg_print(6, "%s", -1, name);
}
void adm_free_handle(adm_handle_t* handle) { s_calls += " free " + std::to_string(*handle); }
char const* sysutl_usid_to_user(credutl_sid_s const* sid, int, int) { return name_of(sid); }
char const* sysutl_gsid_to_group(credutl_sid_s const* sid, int, int) { return name_of(sid); }

namespace {

TEST(Resources, LastHandleDeletesTheArea) {
  using handle = GCL_Handle<GCL_StgAreaRep>;
  {
    handle const a(new GCL_StgAreaRep(7)), b(a);
    EXPECT_TRUE(b.body()->is_null() && b.body()->area() == 7);
    EXPECT_TRUE(a == handle(new GCL_StgAreaRep(7)));
    EXPECT_FALSE(a == handle(new GCL_StgAreaRep(0)) || a == handle() || handle() == a);
  }
  EXPECT_EQ(std::exchange(s_calls, ""), " create create delete 7 create delete 0 delete 7");
}

TEST(Resources, AdminHandleReportsAndIsFreed) {
  GCL_String const message('x', 1000);
  auto const get = [&](GCL_Status& status) { GCL_AdminHandle(status, message); };
  auto const check = [&](GCL_Status const& status, bool failed) {
    EXPECT_EQ(std::exchange(s_calls, ""), " free 99");
    EXPECT_TRUE(failed || (status == 1000 && status.error_message() == message));
  };
  EXPECT_GT(fail_each_allocation([] { return GCL_Status(); }, get, check), 2);
  GCL_Status status;
  { GCL_AdminHandle const none(status, ""); }
  EXPECT_TRUE(status.is_ok() && s_calls.empty());
}

template <class Item, class List>
void check_assignment(LX_TDynamicCollection<Item> const& items, List own) {
  LX_TCollection<Item>& any = own;
  any = static_cast<LX_TCollection<Item> const&>(items);
  EXPECT_TRUE(own == items && own.ChunkSize() == 8);
  own = List(5);
  EXPECT_TRUE(own.IsEmpty() && own.ChunkSize() == 8);
  own = items;
  EXPECT_TRUE(own == items && List(own).ChunkSize() == 8);
}

TEST(Resources, TypedListsKeepTheirChunkSize) {
  GCL_Status status;
  check_assignment<int>({1, 2, 3}, GCL_IntegerList(8));
  check_assignment<GCL_OSUser>({GCL_OSUser(status, "a")}, GCL_OSUserList(8));
  check_assignment<GCL_OSGroup>({GCL_OSGroup(status, "a")}, GCL_OSGroupList(8));
}

TEST(Resources, CredentialsAreARecordsNamesAndDeepValues) {
  static struct {
    credutl_sid_s user, primary;
    int count;
    credutl_sid_s others[1'000'000];
  } record;  // too large for an initialiser in the program's file
  record.user = {"u"}, record.primary = {"p"}, record.count = 2;
  record.others[0] = {"1"}, record.others[1] = {"2"};
  GCL_Status status;
  auto const translated = [&] {
    return GCL_Credentials(status, reinterpret_cast<credutl_sid_credentials_t const&>(record));
  };
  GCL_Credentials all = translated();
  GCL_Credentials changed(all);
  changed.set_user(GCL_OSUser(status, "v"));
  changed.set_secondary_groups(GCL_OSGroupList{GCL_OSGroup(status, "3")});
  EXPECT_EQ(names(all) + names(changed), "up21vp3");
  EXPECT_GT(fail_each_allocation([&] { return changed; }, [&](auto& target) { target = all; },
                                 [](auto const& target, bool failed) {
                                   EXPECT_EQ(names(target), failed ? "vp3" : "up21");
                                 }),
            2);
  for (credutl_sid_s* sid : {&record.user, &record.primary, &record.others[0], &record.others[1]}) {
    auto const old = std::exchange(sid->bytes[0], '?');
    EXPECT_EQ(names(translated()), "");
    EXPECT_EQ(status.value(), 1001);
    sid->bytes[0] = old;
  }
  for (int const count : {0, -1, INT_MIN}) {
    record.count = count;
    EXPECT_EQ(names(translated()), "up");
  }
  record.count = 1'000'000;
  EXPECT_EQ(translated().secondary_groups().Length(), 1'000'000u);
  all.clear();
  EXPECT_EQ(names(all), "");
}

TEST(Resources, IdentificationLineHasItsColumns) {
  char buffer[200] = "";
  std::string const line(buffer, static_cast<unsigned int>(libmiroxgcl_sprintf_verid(buffer)));
  char const columns[] =
      "libmiroxgcl {23}[0-9.]+ \\([A-Z].. [A-Z].. [0-9]+ [0-9:]{8} [0-9]{4}\\)\n";
  EXPECT_TRUE(testing::internal::RE::FullMatch(line, columns)) << line;
  testing::internal::CaptureStdout();
  libmiroxgcl_print_verid();
  EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
}

}  // namespace
