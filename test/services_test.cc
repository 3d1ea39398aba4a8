// The services that the product's own would replace: file names, dates, storage areas,
// administrative handles and the logging of internal errors.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <fstream>

#include "miroxgcl/gcl.h"
#include "miroxplat/date_fmt.h"
#include "miroxplat/fileutl.h"

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
  EXPECT_EQ(GCL_Pathname("//a/../../b/").absolute(), "/b");
  std::string const here = std::filesystem::current_path();
  EXPECT_EQ(GCL_Pathname("x/../y//").absolute().c_str(), here + "/y");
}

TEST(FileNames, AreFoundOnTheirMount) {
  std::string mounts;
  std::getline(std::ifstream("/proc/mounts"), mounts, '\0');
  if (mounts.find(" /proc proc ") == mounts.npos) GTEST_SKIP() << "no usual machine";
  GCL_String source;
  GCL_Pathname mount, below;
  GCL_Pathname("/proc/sys/../version").components(source, mount, below);
  EXPECT_TRUE(!source.empty() && mount == "/proc" && below == "version");
  GCL_Pathname("/proc/none").components(source, mount, below);
  EXPECT_TRUE(source.empty() && mount.empty() && below.empty());
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

TEST(FileNames, AreFoundUnderAnotherRoot) {
  if (geteuid() != 0) GTEST_SKIP() << "not root";
  auto const root = testing::TempDir() + "services_test_root";
  std::filesystem::create_directories(root + "/folder");
  pid_t const child = fork();
  if (child == 0) {
    GCL_String source;
    GCL_Pathname mount, below;
    if (chroot(root.c_str()) == 0) GCL_Pathname("/folder").components(source, mount, below);
    _exit(source == "-" && mount == "/" && below == "folder" ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  std::filesystem::remove_all(root);
}

// The time that a text stands for; -77 for none.
long read(std::string const& text, int frame = 0) {
  long t = -77;
  date_str_to_time2(text.c_str(), frame, &t);
  return t;
}

TEST(Dates, EveryLayoutReadsBackAsItself) {
  setenv("TZ", "<-04>4<-03>,M9.1.6/24,M4.1.6/24", 1);
  for (long const t : {LONG_MIN, -1L, LONG_MAX}) EXPECT_EQ(read(date_fmt_long_date_time(t)), t);
  for (std::int64_t i = -2'147'400'000; i < 2'147'483'647; i += 859'003) {
    if (std::abs(i - std::time(nullptr)) < 200 * 86'400) continue;  // shown by the clock
    // The far times have years of up to ten digits, and negative ones.
    auto const t = static_cast<long>(sizeof(long) == 8 && i % 2 == 0 ? i * 20'000'000 : i);
    EXPECT_LE(std::abs(read(date_fmt_long_date_time(t)) - t), 3600);  // one hour comes twice
    for (auto const layout :
         {date_fmt_long_date_time, date_fmt_token_date_time, date_fmt_token_short_date_time,
          date_fmt_token_date, date_fmt_ls_date_time}) {
      std::string const text = layout(t);
      EXPECT_EQ(layout(read(text)), text);
    }
  }
}

TEST(Dates, NearOnesAreShownAndReadByTheClock) {
  setenv("TZ", "UTC0", 1);
  std::time_t const now = std::time(nullptr);
  for (long const age : {15'778'536L, 15'778'416L, 3600L, -3600L}) {
    bool const shows_hour = age > 0 && age < 15'778'476;  // half a year
    long const t = now - age;
    std::string const hour = date_fmt_short_time(t), text = date_fmt_ls_date_time(t);
    EXPECT_EQ(text.find(hour) != text.npos, shows_hour) << text;
    EXPECT_EQ(read(text), t - t % (shows_hour ? 60 : 86'400));
    EXPECT_EQ(read(hour, 0), read(hour, 1) - 86'400) << hour;
  }
  EXPECT_GE(read("Feb 29 12:00", 1), now);
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

TEST(InternalErrors, TextIsPrintedAsItStands) {
  char const* const texts[] = {"100%s %n of %d\n", nullptr};
  tbs_msg_table_t const table = {"no_such_catalog", "parser", 1, 2, texts, nullptr};
  GCL_Status errors;
  GCL_ImsgRedirect const redirect(errors);
  tbs_log_int_error(nullptr, &table, 0, "a%s.cc", 42, 0);
  EXPECT_STREQ(errors.error_message().c_str(), "100%s %n of %d\nparser: a%s.cc:42\n");
  for (int const index : {-1, 1, 2}) tbs_log_int_error("gcl", &table, index, nullptr, 1, 0);
  EXPECT_NE(errors.error_message().find("message 2 is not in the table"), GCL_String::npos);
}

}  // namespace
