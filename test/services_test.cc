// The services that the product's own would replace: file names, dates, durations, storage areas,
// administrative handles and the logging of internal errors.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "miroxplat/adm.h"
#include "miroxplat/date_fmt.h"
#include "miroxplat/fileutl.h"
#include "miroxplat/imsg.h"
#include "miroxplat/kel_utl.h"
#include "miroxplat/stg.h"
#include "miroxplat/tbs.h"

namespace {

constexpr int buffer_size = 1024;
constexpr bool has_wide_time = sizeof(long) == 8;

// Holds back, while it lives, what the message service prints as errors.
class error_capture {
 public:
  error_capture() {
    imsg_get_redirect_procs(IMSG_PROC_COUNT, m_saved, &m_saved_arg);
    imsg_redirect_proc procs[IMSG_PROC_COUNT] = {};
    procs[6] = [](void* self, char* text) {
      static_cast<error_capture*>(self)->messages.emplace_back(text);
    };
    imsg_set_redirect_procs(procs, IMSG_PROC_COUNT, this);
  }
  ~error_capture() { imsg_set_redirect_procs(m_saved, IMSG_PROC_COUNT, m_saved_arg); }

  std::vector<std::string> messages;

 private:
  imsg_redirect_proc m_saved[IMSG_PROC_COUNT] = {};
  void* m_saved_arg = nullptr;
};

// What a command prints, without the last line feed.
std::string output_of(std::string const& command) {
  std::string result;
  FILE* const pipe = popen(command.c_str(), "r");
  for (int c; (c = std::fgetc(pipe)) != EOF;) result += static_cast<char>(c);
  pclose(pipe);
  if (!result.empty()) result.pop_back();
  return result;
}

// Whether `body` answers true in a child process, which may change its directory.
template <class Body>
bool in_child(Body body) {
  pid_t const child = fork();
  if (child == 0) _exit(body() ? 0 : 1);
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

struct file_names {
  int code = 0;
  std::string first, second, third;
};

file_names absolute(std::string const& path, int size = buffer_size) {
  char out[buffer_size + 1] = "old";
  int const code = fileutl_abspn(path.c_str(), out, size);
  return {code, out, "", ""};
}

file_names split(std::string const& path, int dir_size = buffer_size, int leaf_size = buffer_size) {
  char dir[buffer_size] = "old", leaf[buffer_size] = "old";
  int const code = fileutl_strip_leaf(path.c_str(), dir_size, dir, leaf_size, leaf);
  return {code, dir, leaf, ""};
}

file_names locate(std::string const& path) {
  char source[buffer_size] = "old", mount[buffer_size] = "old", below[buffer_size] = "old";
  int const code = fileutl_path_locate(path.c_str(), source, buffer_size, mount, buffer_size, below,
                                       buffer_size);
  return {code, source, mount, below};
}

TEST(FileNames, SplitLikeTheCommands) {
  for (std::string const path :
       {"/",      "//",  "///",  "a",     "a/",   "a//",      "/a",    "//a",
        "///a//", "a/b", "a//b", "a/b//", "/a/b", "//a//b//", ".",     "..",
        "./",     "a/.", "a/..", "/.",    " ",    "a b/ c",   "-x/-y", "\xC3\xA4/\xFF"}) {
    SCOPED_TRACE(path);
    file_names const parts = split(path);
    EXPECT_EQ(parts.code, 0);
    EXPECT_EQ(parts.first, output_of("dirname -- '" + path + "'"));
    EXPECT_EQ(parts.second, output_of("basename -- '" + path + "'"));
  }
}

TEST(FileNames, AbsoluteFormIsMadeOfTheTextAlone) {
  std::string const here = output_of("pwd -P");
  EXPECT_EQ(absolute("/no-such//./dir/../file/").first, "/no-such/file");
  EXPECT_EQ(absolute("//../..").first, "/");
  EXPECT_EQ(absolute("...").first, here + "/...");
  EXPECT_EQ(absolute("./a/.b").first, here + "/a/.b");
  EXPECT_EQ(absolute(".").first, here);
}

TEST(FileNames, ResultsFitWholeOrFail) {
  std::string const longest = "/" + std::string(1022, 'x');
  EXPECT_EQ(absolute(longest).first, longest);
  EXPECT_EQ(split(longest + "/leaf").first, longest);
  for (auto const& failed :
       {absolute(longest + "x"), absolute(longest + "x", buffer_size + 1), absolute("/abc", 4),
        absolute(""), split(longest + "x/leaf"), split("dir/leaf", 3), split("dir/leaf", 4, 4),
        split(""), locate(""), locate("/no/such/file")}) {
    EXPECT_NE(failed.code, 0);
    EXPECT_EQ(failed.first + failed.second + failed.third, "");
  }
  EXPECT_EQ(split("dir/leaf", 4, 5).first, "dir");
  char own[buffer_size] = "a/../b/leaf", leaf[buffer_size] = "";
  EXPECT_EQ(fileutl_strip_leaf(own, buffer_size, own, buffer_size, leaf), 0);
  EXPECT_STREQ(own, "a/../b");
  EXPECT_NE(fileutl_abspn("/", nullptr, buffer_size), 0);
  EXPECT_NE(fileutl_abspn(nullptr, own, buffer_size), 0);
}

TEST(FileNames, CurrentDirectoryMayBeDeepOrGone) {
  char scratch[] = "/tmp/services_test_XXXXXX";
  ASSERT_NE(mkdtemp(scratch), nullptr);
  EXPECT_TRUE(in_child([&] {
    std::string const step(200, 'd');
    if (chdir(scratch) != 0) return false;
    for (int i = 0; i < 30; ++i) {
      if (mkdir(step.c_str(), 0700) != 0 || chdir(step.c_str()) != 0) return false;
    }
    std::string up = "x";
    for (int i = 0; i < 30; ++i) up.insert(0, "../");
    return absolute(up).first == scratch + std::string("/x") && absolute("x").code != 0;
  }));
  EXPECT_TRUE(in_child([&] {
    output_of("rm -rf " + std::string(scratch) + "/*");
    return chdir(scratch) == 0 && rmdir(scratch) == 0 && absolute("x").code != 0 &&
           absolute("/x").code == 0;
  }));
}

TEST(FileNames, LocatedWhereDfShowsThem) {
  for (std::string const path : {"/", ".", "/proc", "/proc/version", "/dev/null", "/bin/sh"}) {
    SCOPED_TRACE(path);
    file_names const parts = locate(path);
    EXPECT_EQ(parts.code, 0);
    EXPECT_EQ(parts.first, output_of("df --output=source " + path + " | tail -n 1"));
    EXPECT_EQ(parts.second, output_of("df --output=target " + path + " | tail -n 1"));
    std::string const joined = parts.second + '/' + parts.third;
    EXPECT_EQ(absolute(joined).first, output_of("realpath " + path));
    EXPECT_NE(parts.third[0], '/');
  }
}

long read(std::string const& text, int frame = 0) {
  long t = -77;
  EXPECT_EQ(date_str_to_time2(text.c_str(), frame, &t), 0) << text;
  return t;
}

bool refuses(std::string const& text) {
  long t = -77;
  return date_str_to_time2(text.c_str(), 0, &t) != 0 && t == -77;
}

void set_zone(std::string const& zone) { setenv("TZ", zone.c_str(), 1); }

TEST(Dates, EveryLayoutReadsBackAsItself) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> int_times(-2'147'483'647, 2'147'483'646);
  for (char const* zone :
       {"UTC0", "CET-1CEST,M3.5.0,M10.5.0/3", "XXX11:30", "<-04>4<-03>,M9.1.6/24,M4.1.6/24"}) {
    set_zone(zone);
    for (int i = 0; i < 5000; ++i) {
      // The far times have years of up to eleven digits, and negative ones.
      long const stretch = has_wide_time && i % 2 == 0 ? 20'000'000 : 1;
      long const t = i == 1 ? -1 : int_times(random) * stretch;
      std::string const whole = date_fmt_long_date_time(t), token = date_fmt_token_date_time(t);
      // The hour that comes twice is read as either.
      EXPECT_LE(std::abs(read(whole) - t), 3600) << whole;
      EXPECT_EQ(date_fmt_long_date_time(read(whole)), whole);
      EXPECT_EQ(date_fmt_token_date_time(read(token)), token);
      for (auto const layout :
           {date_fmt_token_date, date_fmt_token_short_date_time, date_fmt_ls_date_time}) {
        if (!has_wide_time && t < -2'147'400'000) continue;  // its midnight lies outside
        // What `ls` prints of a later hour of today is the same as of its midnight, which is past.
        bool const is_near = std::abs(std::int64_t{t} - std::time(nullptr)) < 2 * 86'400;
        if (layout == date_fmt_ls_date_time && is_near) continue;
        std::string const text = layout(t);
        EXPECT_EQ(layout(read(text)), text) << whole;
      }
      long const recent = int_times(random) & 0x7fffffff;  // its year has two digits
      for (auto const layout : {date_fmt_short_date, date_fmt_short_date_time}) {
        std::string const text = layout(recent);
        EXPECT_EQ(layout(read(text)), text);
      }
    }
  }
}

TEST(Dates, LayoutsAreExact) {
  set_zone("UTC0");
  long const t = 1795356309 - 17 * 86400;
  EXPECT_STREQ(date_fmt_token_date(t), "2026-11-05");
  EXPECT_STREQ(date_fmt_token_short_date_time(t), "2026-11-05.14:05");
  EXPECT_STREQ(date_fmt_token_date_time(t), "2026-11-05.14:05:09");
  EXPECT_STREQ(date_fmt_short_time(t), "14:05");
  EXPECT_STREQ(date_fmt_short_date(t), "11/05/26");
  EXPECT_STREQ(date_fmt_short_date_time(t), "11/05/26 14:05");
  EXPECT_STREQ(date_fmt_long_date_time(t), "Thursday, November 5, 2026 14:05:09");
  set_zone("XXX11:30");
  EXPECT_STREQ(date_fmt_token_short_date_time(t), "2026-11-05.02:35") << "TZ has changed";
  if (has_wide_time) {
    EXPECT_STREQ(date_fmt_long_date_time(std::numeric_limits<long>::max()), "");
  }
}

TEST(Dates, LsLayoutIsWhatLsPrints) {
  set_zone("CET-1CEST,M3.5.0,M10.5.0/3");
  char file[] = "/tmp/services_test_XXXXXX";
  ASSERT_GE(mkstemp(file), 0);
  long const half_a_year = 15'778'476;
  for (long const age : {10L, 9 * 86'400L, half_a_year - 60, half_a_year + 60, -3600L}) {
    long const t = std::time(nullptr) - age;
    std::string const line =
        output_of("touch -d @" + std::to_string(t) + " " + file + "; LC_ALL=C ls -l " + file);
    EXPECT_EQ(date_fmt_ls_date_time(t), line.substr(line.size() - sizeof file - 12, 12));
  }
  std::remove(file);
}

TEST(Dates, OpenPartsComeFromTheFrame) {
  set_zone("UTC0");
  for (long const distance : {-80'000L, -3600L, 3600L, 80'000L}) {
    long const now = std::time(nullptr);
    std::string const text = date_fmt_short_time(now + distance);
    EXPECT_LE(read(text, 0), now);
    EXPECT_EQ(read(text, 0), read(text, 1) - 86'400) << text;
  }
  long const now = std::time(nullptr), past = read("Feb 29 12:00"), next = read("Feb 29 12:00", 7);
  EXPECT_LT(past, now);
  EXPECT_GT(next, now);
  EXPECT_EQ(std::string(date_fmt_token_date_time(next)).substr(4), "-02-29.12:00:00");
  EXPECT_LE(std::abs(read("now") - now), 2);

  // A zone in which today, or once its noon has come yesterday, has 23 hours.
  int const day = std::gmtime(&now)->tm_yday;
  set_zone("AAA0BBB," + std::to_string(day) + "/12," + std::to_string((day + 100) % 365));
  EXPECT_EQ(read("tomorrow") - read("yesterday"), 47 * 3600);
  EXPECT_EQ(std::string(date_fmt_token_date_time(read("today"))).substr(10), ".00:00:00");
}

TEST(Dates, EndsOfTimeAndSkippedHours) {
  set_zone("UTC0");
  EXPECT_EQ(read("1969-12-31.23:59:59"), -1);
  EXPECT_EQ(read("2038-01-19.03:14:07"), 2'147'483'647);
  EXPECT_EQ(read("@-2147483648"), -2'147'483'647 - 1);
  EXPECT_EQ(read("01/01/69"), -31'536'000);
  for (std::string const beyond :
       {"2038-01-19.03:14:08", "12/31/68", "@2147483648", "2040-02-29"}) {
    EXPECT_EQ(refuses(beyond), !has_wide_time) << beyond;
    EXPECT_TRUE(!has_wide_time || read(beyond) > 2'147'483'647) << beyond;
  }
  set_zone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_LE(std::abs(read("2026-03-29.02:30") - 1'774'746'000), 3600);
  set_zone("<-04>4<-03>,M9.1.6/24,M4.1.6/24");
  EXPECT_LE(std::abs(read("Sunday, September 6, 2026 00:30:00") - 1'788'667'200), 3600);
}

TEST(Dates, NonsenseIsRefused) {
  set_zone("UTC0");
  for (char const* text : {"",
                           " ",
                           "2026-02-30",
                           "2025-02-29",
                           "2100-02-29",
                           "2026-00-10",
                           "2026-13-10",
                           "2026-11-00",
                           "2026-11-22 ",
                           " 2026-11-22",
                           "2026-11-22x",
                           "2026-11-22.14:05\n",
                           "2026-11-22.24:00",
                           "12:60",
                           "12:5",
                           "-5:00",
                           "2026-11-22.14:05:60",
                           "26-11-22",
                           "00/10/26",
                           "11/31/26",
                           "Nov 22",
                           "Nov 31 10:00",
                           "Monday, November 22, 2026 14:05:09",
                           "2147485548-01-01",
                           "4294969322-11-22",
                           "99999999999999999999-01-01",
                           "@",
                           "@x",
                           "@1x",
                           "@ 1",
                           "@+1",
                           "@9223372036854775808",
                           "@-9223372036854775809",
                           "@99999999999999999999999",
                           "todayx"}) {
    EXPECT_TRUE(refuses(text)) << text;
  }
  long t = 0;
  EXPECT_NE(date_str_to_time2(nullptr, 0, &t), 0);
}

TEST(Durations, SaturateAndKeepWholeSeconds) {
  double const infinity = std::numeric_limits<double>::infinity();
  for (double const none : {std::nan(""), -infinity, -1.0, -1e300, 0.0, 0.4 / 86'400}) {
    EXPECT_EQ(kel_utl_days_to_duration(none), 0u) << none;
  }
  for (double const much : {infinity, 1e300, 4294967040.0, 4294967808.0, 4294967295 / 86'400.0}) {
    EXPECT_EQ(kel_utl_days_to_duration(much), 4294967294u) << much;
  }
  EXPECT_EQ(kel_utl_days_to_duration(1.6 / 86'400), 2u);
  std::mt19937 random(1);
  for (int i = 0; i < 100'000; ++i) {
    unsigned int const seconds = i < 1000 ? 4294967294u - static_cast<unsigned int>(i)
                                          : static_cast<unsigned int>(random()) - 1;
    if (seconds == 4294967295u) continue;
    EXPECT_EQ(kel_utl_days_to_duration(kel_utl_duration_to_days(seconds)), seconds);
  }
}

TEST(StorageAreas, DeletingTwiceOrAStaleCopyDoesNothing) {
  error_capture errors;
  stg_area_t first = stg_create_area(100), copy = first;
  EXPECT_NE(first, 0u);
  stg_delete_area(&first);
  EXPECT_EQ(first, 0u);
  stg_area_t second = stg_create_area(0);
  EXPECT_NE(second, copy) << "reused";
  stg_delete_area(&first);
  stg_delete_area(&copy);
  stg_delete_area(nullptr);
  stg_create_area(10);  // left to the table
  stg_delete_area(&second);
  EXPECT_TRUE(errors.messages.empty());
#ifndef __SANITIZE_ADDRESS__  // which ends the process at such a request
  stg_area_t largest = stg_create_area(4294967295u);
  EXPECT_EQ(errors.messages.size(), largest == 0 ? 1u : 0u);
  EXPECT_TRUE(sizeof(void*) == 8 || largest == 0);
  stg_delete_area(&largest);
#endif
}

TEST(AdministrativeHandles, TableIsBoundedAndStaleCopiesFreeNothing) {
  error_capture errors;
  std::vector<adm_handle_t> handles(ADM_MAX_HANDLES);
  for (adm_handle_t& handle : handles) ASSERT_EQ(adm_get_handle("name", &handle), 0);
  adm_handle_t extra = 7, stale = handles[5];
  EXPECT_EQ(adm_get_handle("extra", &extra), ADM_TABLE_FULL);
  EXPECT_EQ(extra, 0u);
  adm_free_handle(&handles[5]);
  EXPECT_EQ(handles[5], 0u);
  EXPECT_EQ(adm_get_handle("again", &handles[5]), 0);
  EXPECT_GT(handles[5], handles.back()) << "reused";
  adm_free_handle(&stale);
  adm_free_handle(&extra);
  EXPECT_EQ(adm_get_handle("extra", &extra), ADM_TABLE_FULL) << "a stale copy freed a handle";
  for (adm_handle_t& handle : handles) adm_free_handle(&handle);

  EXPECT_EQ(adm_get_handle(std::string(255, 'n').c_str(), &extra), 0);
  adm_free_handle(&extra);
  adm_free_handle(nullptr);
  errors.messages.clear();
  EXPECT_EQ(adm_get_handle(std::string(256, 'n').c_str(), &extra), ADM_LONG_NAME);
  EXPECT_EQ(adm_get_handle("", &extra), ADM_EMPTY_NAME);
  EXPECT_EQ(adm_get_handle(nullptr, &extra), ADM_EMPTY_NAME);
  EXPECT_EQ(adm_get_handle("name", nullptr), ADM_NO_PLACE);
  EXPECT_EQ(errors.messages.size(), 4u);
}

TEST(InternalErrors, TextIsPrintedAsItStands) {
  char const* const texts[] = {"100%s %n of %d\n", "no line end", nullptr, "beyond"};
  short const numbers[] = {1, 2, 3, 4};
  tbs_msg_table_t const table = {"no_such_catalog", "parser", 1, 3, texts, numbers};
  error_capture errors;
  tbs_log_int_error("gcl", &table, 0, "a%s.cc", 42, 0);
  tbs_log_int_error(nullptr, &table, 1, nullptr, -1, 0);
  EXPECT_EQ(errors.messages,
            (std::vector<std::string>{"100%s %n of %d\ngcl: a%s.cc:42\n",
                                      "no line end\nparser: (unknown file):-1\n"}));
  for (int const index : {-1, 2, 3}) tbs_log_int_error("gcl", &table, index, "a.cc", 1, 0);
  tbs_log_int_error(nullptr, nullptr, 0, "a.cc", 1, 0);
  ASSERT_EQ(errors.messages.size(), 6u);
  EXPECT_NE(errors.messages[4].find("message 3 is not in the table"), std::string::npos);
}

}  // namespace
