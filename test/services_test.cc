// The services that the product's own would replace: file names, dates, durations, storage areas,
// administrative handles and the logging of internal errors.
#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <random>
#include <sstream>
#include <string>

#include "miroxgcl/gcl_imsg_redirect.h"
#include "miroxplat/adm.h"
#include "miroxplat/date_fmt.h"
#include "miroxplat/fileutl.h"
#include "miroxplat/kel_utl.h"
#include "miroxplat/stg.h"
#include "miroxplat/tbs.h"

namespace {

// What is stored, also when the service fails.
std::string split(std::string const& path, int dir_size = 1024, int leaf_size = 1024) {
  char dir[1025] = "old", leaf[1024] = "old";
  int const code = fileutl_strip_leaf(path.c_str(), dir_size, dir, leaf_size, leaf);
  return (code == 0 ? "" : "failed") + std::string(dir) + ',' + leaf;
}

TEST(FileNames, AreGivenWholeOrNotAtAll) {
  std::string const longest = "/" + std::string(1022, 'x');
  EXPECT_EQ(split(longest + "/leaf"), longest + ",leaf");
  EXPECT_EQ(split(longest + "x/leaf", 1025), "failed,");
  EXPECT_EQ(split("//a//b", 4, 2), "//a,b");
  for (int const dir_size : {3, 4}) EXPECT_EQ(split("dir/leaf", dir_size, 4), "failed,");
  char text[1024] = "a/../b/leaf", other[1024] = "";
  fileutl_strip_leaf(text, 1024, text, 1024, other);
  EXPECT_STREQ(text, "a/../b");
  EXPECT_EQ(fileutl_abspn("//a/../../b/", text, 3), 0);
  EXPECT_STREQ(text, "/b");
  EXPECT_NE(fileutl_path_locate("/no/such", text, 1024, other, 1024, other, 1024), 0);
}

// The time that a text stands for; -77 for none.
long read(std::string const& text, int frame = 0) {
  long t = -77;
  date_str_to_time2(text.c_str(), frame, &t);
  return t;
}

TEST(Dates, EveryLayoutReadsBackAsItself) {
  setenv("TZ", "<-04>4<-03>,M9.1.6/24,M4.1.6/24", 1);
  std::mt19937 random(1);
  std::uniform_int_distribution<int> int_times(-2'147'400'000, 2'147'483'646);
  for (int i = 0; i < 5000; ++i) {
    // The far times have years of up to eleven digits, and negative ones.
    long const t = int_times(random) * (sizeof(long) == 8 && i % 2 == 0 ? 20'000'000L : 1L);
    EXPECT_LE(std::abs(read(date_fmt_long_date_time(t)) - t), 3600);  // one hour comes twice
    // What `ls` prints of the last half year and of today depends on the clock.
    bool const is_near = std::abs(std::int64_t{t} - std::time(nullptr)) < 200 * 86'400;
    for (auto const layout :
         {date_fmt_long_date_time, date_fmt_token_date_time, date_fmt_token_short_date_time,
          date_fmt_token_date, is_near ? date_fmt_token_date : date_fmt_ls_date_time}) {
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
  // A zone in which today, or once its noon has come yesterday, has 23 hours.
  int const day = std::gmtime(&now)->tm_yday;
  auto const zone = "AAA0BBB," + std::to_string(day) + "/12," + std::to_string((day + 100) % 365);
  setenv("TZ", zone.c_str(), 1);
  EXPECT_EQ(read("tomorrow") - read("yesterday"), 47 * 3600);
}

TEST(Dates, HaveEndsAndNoNonsense) {
  setenv("TZ", "UTC0", 1);
  EXPECT_EQ(read("1969-12-31.23:59:59"), -1);
  EXPECT_EQ(read("12/31/68") == -77, sizeof(long) == 4);
  std::istringstream nonsense(
      " |2100-02-29|2026-00-10|2026-13-10|2026-11-00| 2026-11-22|Nov 22|todayx|@|@1x|@+1|-5:00|"
      "2026-11-22.14:05\n|2026-11-22.24:00|2026-11-22.14:05:60|12:60|12:5|2147485548-01-01|"
      "Monday, November 22, 2026 14:05:09|4294969322-11-22|@9223372036854775808");
  for (std::string text; std::getline(nonsense, text, '|');) EXPECT_EQ(read(text), -77);
}

TEST(Durations, SaturateAndKeepWholeSeconds) {
  for (double const none : {std::nan(""), -1.0}) EXPECT_EQ(kel_utl_days_to_duration(none), 0u);
  EXPECT_EQ(kel_utl_days_to_duration(4294967295 / 86'400.0), 4294967294u);
  for (unsigned int seconds = 4294967294u; seconds > 100'000; seconds -= 65'537) {
    EXPECT_EQ(kel_utl_days_to_duration(kel_utl_duration_to_days(seconds)), seconds);
  }
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
  stg_area_t area = stg_create_area(100), stale_area = area;
  stg_delete_area(&area);
  EXPECT_NE(stg_create_area(10), stale_area) << "reused";
  stg_delete_area(&stale_area);
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
