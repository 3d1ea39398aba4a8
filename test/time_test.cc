// Dates and periods: what is asked of their services, and the layouts on this machine.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <limits>
#include <string>

#include "miroxgcl/gcl_time_period.h"
#include "miroxplat/date_fmt.h"
#include "miroxplat/kel_utl.h"
#include "support/replaced.h"

namespace {

std::function<int(char const*, int, long*)> s_parse;
std::function<unsigned int(double)> s_to_duration;
int s_days_calls = 0;

std::string text(GCL_String const& s) { return {s.c_str(), s.length()}; }

}  // namespace

extern "C" {

int date_str_to_time2(char const* t, int frame, long* time) {
  return (s_parse ? s_parse : replaced(date_str_to_time2, "date_str_to_time2"))(t, frame, time);
}

unsigned int kel_utl_days_to_duration(double days) {
  return (s_to_duration ? s_to_duration
                        : replaced(kel_utl_days_to_duration, "kel_utl_days_to_duration"))(days);
}

double kel_utl_duration_to_days(unsigned int duration) {
  ++s_days_calls;
  return replaced(kel_utl_duration_to_days, "kel_utl_duration_to_days")(duration);
}
}

namespace {

using Layout = GCL_String (GCL_DateTime::*)() const;
constexpr Layout layouts[] = {&GCL_DateTime::token_date,      &GCL_DateTime::token_short_date_time,
                              &GCL_DateTime::token_date_time, &GCL_DateTime::ls_date_time,
                              &GCL_DateTime::short_time,      &GCL_DateTime::short_date,
                              &GCL_DateTime::short_date_time, &GCL_DateTime::long_date_time};

class Time : public testing::TestWithParam<char const*> {
 protected:
  Time() { setenv("TZ", GetParam(), 1); }
  ~Time() override {
    s_parse = nullptr;
    s_to_duration = nullptr;
    unsetenv("TZ");
  }
};
INSTANTIATE_TEST_SUITE_P(Zones, Time, testing::Values("UTC0", "CET-1CEST,M3.5.0,M10.5.0/3"));

TEST_P(Time, LayoutsAreTheServices) {
  std::tm tm{};
  tm.tm_year = 126, tm.tm_mon = 10, tm.tm_mday = 5, tm.tm_hour = 14, tm.tm_min = 5, tm.tm_sec = 9;
  tm.tm_isdst = -1;
  tzset();
  GCL_DateTime const t(std::mktime(&tm));
  char const* const expected[] = {"2026-11-05",
                                  "2026-11-05.14:05",
                                  "2026-11-05.14:05:09",
                                  nullptr,
                                  "14:05",
                                  "11/05/26",
                                  "11/05/26 14:05",
                                  "Thursday, November 5, 2026 14:05:09"};
  for (std::size_t i = 0; i < std::size(layouts); ++i) {
    EXPECT_EQ((GCL_DateTime().*layouts[i])().length(), 0u);
    EXPECT_EQ((GCL_DateTime(0).*layouts[i])().length(), 0u);
    if (expected[i] == nullptr) continue;
    EXPECT_EQ(text((t.*layouts[i])()), expected[i]);
  }
  EXPECT_EQ(text(t.ls_date_time()), date_fmt_ls_date_time(t.time()));
  GCL_Status status;
  EXPECT_EQ(GCL_DateTime(status, t.long_date_time(), GCL_DateTime::past).time(), t.time());
  EXPECT_TRUE(status.is_ok());
}

TEST_P(Time, ParsingReportsAndKeepsWhatTheServiceWrote) {
  GCL_Status status;
  status.add_message("old");
  s_parse = [](char const* t, int frame, long* time) {
    EXPECT_STREQ(t, "text");
    EXPECT_EQ(*time, 0);
    *time = 40 + frame;
    return frame == 1 ? 0 : 7;
  };
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::past).time(), 40);
  EXPECT_TRUE(status == 1001 && status.get_message_stack() != nullptr);
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::TimeFrame{5}).time(), 41);
  EXPECT_TRUE(status.is_ok() && status.get_message_stack() == nullptr);
  s_parse = nullptr;
  for (char const* nonsense : {"", "2026-02-30", "2026-11-22 ", "@99999999999999999999", "soon"}) {
    EXPECT_EQ(GCL_DateTime(status, nonsense, GCL_DateTime::past).time(), 0);
    EXPECT_TRUE(status == 1001) << nonsense;
  }
  bool const has_2040 = GCL_DateTime(status, "2040-01-01", GCL_DateTime::future).time() > 0;
  EXPECT_EQ(has_2040, sizeof(long) == 8);
}

TEST(Period, HoldsThreeThingsSideBySide) {
  GCL_TimePeriod p;
  EXPECT_EQ(p.begin().time() + p.end().time(), 0);
  EXPECT_EQ(p.duration(), 4294967295u);
  p = GCL_TimePeriod(GCL_DateTime(9), GCL_DateTime(5), 86400u);
  float days = 0;
  p.duration(days);
  EXPECT_EQ(days, 1.0f);
  p.set_end(GCL_DateTime(7));
  p.set_begin(GCL_DateTime(8));
  EXPECT_EQ(p.begin().time() * 10 + p.end().time(), 87);
  EXPECT_EQ(p.duration(), 86400u);
  EXPECT_EQ(GCL_TimePeriod(p.begin(), p.end(), 0.5f).duration(), 43200u);
}

TEST(Period, OnlyTheMarkerItselfIsTheMarker) {
  GCL_TimePeriod p;
  float days = 0;
  s_days_calls = 0;
  p.duration(days);
  EXPECT_EQ(days, 4294967296.0f);
  EXPECT_EQ(s_days_calls, 0);
  p.set_duration(1u);
  p.set_duration(days);
  EXPECT_EQ(p.duration(), 4294967295u);
  int calls = 0;
  s_to_duration = [&](double) { return static_cast<unsigned int>(++calls); };
  float const infinity = std::numeric_limits<float>::infinity();
  for (float other : {std::nextafter(4294967296.0f, 0.0f), std::nextafter(4294967296.0f, infinity),
                      infinity, -infinity, std::nanf(""), 0.0f, -1.0f}) {
    p.set_duration(other);
  }
  EXPECT_EQ(calls, 7);
  EXPECT_EQ(p.duration(), 7u);
  s_to_duration = nullptr;
  for (unsigned int whole = 0; whole < 4000; ++whole) {
    p.set_duration(whole);
    p.duration(days);
    p.set_duration(days);
    ASSERT_EQ(p.duration(), whole);
  }
}

}  // namespace
