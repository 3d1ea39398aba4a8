// The services that the product's own would replace, and what is built on them: file names and
// pathnames, dates, storage areas and administrative handles.
#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <fstream>

#include "miroxgcl/gcl.h"
#include "miroxplat/date_fmt.h"
#include "miroxplat/fileutl.h"
#include "support/failing_allocator.h"

namespace {

// What is stored, also when the service fails. The directory goes to where the path stands.
std::string strip_leaf(std::string path, int dir_size = 1024, int leaf_size = 1024) {
  char leaf[1024] = "old";
  int const code = fileutl_strip_leaf(path.c_str(), dir_size, path.data(), leaf_size, leaf);
  return (code == 0 ? "" : "failed") + std::string(path.c_str()) + ',' + leaf;
}

TEST(FileNames, AreGivenWholeOrNotAtAll) {
  std::string const longest = "/" + std::string(1022, 'x');
  EXPECT_EQ(strip_leaf(longest + "/leaf"), longest + ",leaf");
  EXPECT_EQ(strip_leaf(longest + "x/leaf", 1025), "failed,");
  EXPECT_EQ(strip_leaf("//a//b", 4, 2), "//a,b");
  for (int const dir_size : {3, 4}) EXPECT_EQ(strip_leaf("dir/leaf", dir_size, 4), "failed,");
  EXPECT_EQ(strip_leaf("x/..//y//"), "x/..,y");
  EXPECT_EQ(strip_leaf("x"), ".,x");
  EXPECT_EQ(strip_leaf("/"), "/,/");
  EXPECT_EQ(GCL_Pathname("//a/../../b/").absolute(), "/b");
  std::string const here = std::filesystem::current_path();
  EXPECT_EQ(GCL_Pathname("x/../y//").absolute().c_str(), here + "/y");
}

TEST(Pathnames, JoinWithOneSeparatorAtTheSeam) {
  GCL_Pathname path("/\xC3\xA9");
  GCL_String const before(path);

  EXPECT_EQ(path.append_path(GCL_Pathname("b")), "/\xC3\xA9/b");
  EXPECT_EQ(path.append_path(path), "/\xC3\xA9/b/\xC3\xA9/b");
  EXPECT_EQ(before, "/\xC3\xA9");
  EXPECT_EQ(GCL_Pathname("a/").append_path(GCL_String("/b\0c", 4)), GCL_String("a/b\0c", 5));
  EXPECT_EQ(GCL_Pathname().append_path(GCL_Pathname("/b")), "b");
}

TEST(Pathnames, AreTakenApart) {
  GCL_Pathname const path("/dir/leaf"), too_long(GCL_String('p', 1024));

  EXPECT_EQ(path.dirname(), "/dir");
  EXPECT_EQ(path.basename(), "leaf");
  EXPECT_TRUE(path.is_absolute());
  EXPECT_TRUE(path.basename().is_relative());
  EXPECT_EQ(too_long.dirname(), "");
  EXPECT_EQ(too_long.basename(), "");
  EXPECT_EQ(too_long.absolute(), "");
}

TEST(Pathnames, KeepTheirValueWhenAnAllocationFails) {
  GCL_Pathname const shared("abcdef"), tail(GCL_String('t', 100));
  auto const append = [&](GCL_Pathname& path) { path.append_path(tail); };
  auto const check = [](GCL_Pathname const& path, bool failed) {
    EXPECT_EQ(path.length(), failed ? 6u : 107u);
  };
  EXPECT_GT(fail_each_allocation([&] { return shared; }, append, check), 1);
}

TEST(FileNames, AreFoundOnTheirMount) {
  std::string mounts;
  std::getline(std::ifstream("/proc/mounts"), mounts, '\0');
  if (mounts.find(" /proc proc ") == mounts.npos) GTEST_SKIP() << "no usual machine";
  GCL_String source;
  GCL_Pathname mount, below;
  GCL_Pathname("/proc/sys/../version").components(source, mount, below);
  EXPECT_NE(source, "");
  EXPECT_EQ(mount, "/proc");
  EXPECT_EQ(below, "version");
  GCL_Pathname("/proc/none").components(source, mount, below);
  EXPECT_EQ(source + mount + below, "");
}

TEST(FileNames, SayWhyTheyAreNotFound) {
  char source[100], mount[100], below[100];
  auto const locate = [&](char const* path, int size) {
    return fileutl_path_locate(path, source, size, mount, size, below, size);
  };
  EXPECT_EQ(locate("", 100), FILEUTL_NO_NAME);
  EXPECT_EQ(locate("/none", 100), FILEUTL_NO_FILE);
  EXPECT_EQ(locate("/proc", 1), FILEUTL_NO_ROOM);
}

// The time that a text stands for; -77 for none.
long read(std::string const& text, int frame = 0) {
  long t = -77;
  date_str_to_time2(text.c_str(), frame, &t);
  return t;
}

TEST(Dates, AreReadBackHoweverFarTheyAre) {
  setenv("TZ", "UTC0", 1);
  for (long const t : {LONG_MIN, -1L, 951'782'400L, LONG_MAX}) {
    EXPECT_EQ(read(date_fmt_long_date_time(t)), t);
  }
}

TEST(Dates, OfTheLastHalfYearAreShownWithTheHour) {
  setenv("TZ", "UTC0", 1);
  std::time_t const now = std::time(nullptr);
  for (long const age : {15'778'416L, 3600L}) {
    EXPECT_EQ(read(date_fmt_ls_date_time(now - age)), (now - age) / 60 * 60);
  }
  for (long const age : {15'778'536L, -3600L}) {
    EXPECT_EQ(read(date_fmt_ls_date_time(now - age)), (now - age) / 86'400 * 86'400);
  }
}

// fuzz/date_fuzz.cc tries the changes of every zone.
TEST(Dates, ThatTheClockShowsTwiceOrNeverAlwaysMeanTheSame) {
  if (!std::filesystem::exists("/usr/share/zoneinfo/right")) GTEST_SKIP() << "no zones";
  struct {
    char const *zone, *text, *utc;  // none: refused
  } const rows[] = {{"America/New_York", "2026-11-01.01:30:00", "2026-11-01.05:30:00"},
                    {"Europe/Moscow", "2011-03-27.02:30", "2011-03-26.23:30:00"},
                    {"America/Argentina/San_Luis", "2009-10-11", "2009-10-11.04:00:00"},
                    {"Pacific/Apia", "2011-12-30", "none"},
                    {"Pacific/Apia", "2011-12-30.12:00", "none"},
                    {"right/Asia/Tokyo", "2017-01-01.08:59:60", "2017-01-01.00:00:26"},
                    {"Asia/Tokyo", "2017-01-01.08:59:60", "none"}};
  for (auto const& row : rows) {
    for (char const* const read_before : {"2026-01-15", "2026-07-15"}) {
      setenv("TZ", row.zone, 1);
      read(read_before);
      long const t = read(row.text);
      setenv("TZ", "UTC0", 1);
      EXPECT_STREQ(t != -77 ? date_fmt_token_date_time(t) : "none", row.utc) << row.zone;
    }
  }
}

TEST(Dates, ThatAreNoneOrTooLateAreRefused) {
  setenv("TZ", "UTC0", 1);
  EXPECT_EQ(read("2068-12-31") == -77, sizeof(long) == 4);
  EXPECT_EQ(read("2000-02-29"), 951'782'400);
  char const nonsense[] =
      "| |2100-02-29|2026-00-10|2026-13-10|2026-11-00| 2026-11-22|Nov 22|todayx|@|@1x|-5:00|12:60|"
      "2026-11-22.14:05\n|2026-11-22.24:00|2026-11-22.14:05:60|12:5|Monday, November 22, 2026 "
      "14:05:09|292277026596-12-04.15:30:08|999999999999-01-01|@9223372036854775808";
  for (auto const& text : split(GCL_String(nonsense), "|"))
    EXPECT_EQ(read(text.c_str()), -77) << text;
}

TEST(Handles, AreBoundedAndStaleCopiesFreeNothing) {
  GCL_Status errors;
  GCL_ImsgRedirect const redirect(errors);
  adm_handle_t handles[ADM_MAX_HANDLES], extra;
  for (adm_handle_t& handle : handles) EXPECT_EQ(adm_get_handle("name", &handle), ADM_OK);
  adm_handle_t stale = handles[5];
  adm_free_handle(&handles[5]);
  EXPECT_EQ(adm_get_handle(std::string(255, 'n').c_str(), &handles[5]), ADM_OK);
  adm_free_handle(&stale);  // whose value is nobody's
  EXPECT_EQ(adm_get_handle("extra", &extra), ADM_TABLE_FULL);
  for (adm_handle_t& handle : handles) adm_free_handle(&handle);
  EXPECT_EQ(adm_get_handle(std::string(256, 'n').c_str(), &extra), ADM_LONG_NAME);
  stg_area_t area = stg_create_area(100), deleted = area;
  stg_delete_area(&area);
  EXPECT_NE(stg_create_area(10), deleted);
}

TEST(Handles, AreFreedByTheirOwners) {
  for (int i = 0; i <= ADM_MAX_HANDLES; ++i) {
    GCL_Status status;
    GCL_AdminHandle const handle(status, "name");
    ASSERT_TRUE(status.is_ok());
  }
  GCL_String const long_name('n', 256);
  auto const get = [&](GCL_Status& status) { GCL_AdminHandle(status, long_name); };
  auto const check = [](GCL_Status const& status, bool failed) {
    EXPECT_EQ(status, failed ? 0 : ADM_LONG_NAME);
    EXPECT_EQ(status.error_message() == "", failed);
  };
  EXPECT_GT(fail_each_allocation([] { return GCL_Status(); }, get, check), 2);
}

TEST(StorageAreas, AreDeletedByTheirLastHandle) {
  using handle = GCL_Handle<GCL_StgAreaRep>;
  handle const other(new GCL_StgAreaRep(7));
  std::size_t const held = failing_allocator::live_blocks();
  {
    handle const a(new GCL_StgAreaRep(7)), b(a);
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a == other);
  }
  EXPECT_EQ(failing_allocator::live_blocks(), held);
}

}  // namespace
