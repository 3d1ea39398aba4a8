// Dates and periods: what is asked of their services, and the layouts on this machine.
#include <gtest/gtest.h>

#include <cmath>

#include "miroxgcl/gcl_time_period.h"
#include "miroxplat/date_fmt.h"

// Knows only times to come.
int date_str_to_time2(char const* text, int frame, long* time) {
  EXPECT_EQ(text + std::to_string(std::exchange(*time, 40 + frame)), "text0");
  return frame == 1 ? 0 : 7;
}

namespace {

TEST(Time, LayoutsAreTheServices) {
  std::pair<GCL_String (GCL_DateTime::*)() const, char const*> const table[] = {
      {&GCL_DateTime::token_date, "2026-07-05"},
      {&GCL_DateTime::token_short_date_time, "2026-07-05.14:05"},
      {&GCL_DateTime::token_date_time, "2026-07-05.14:05:09"},
      {&GCL_DateTime::ls_date_time, nullptr},
      {&GCL_DateTime::short_time, "14:05"},
      {&GCL_DateTime::short_date, "07/05/26"},
      {&GCL_DateTime::short_date_time, "07/05/26 14:05"},
      {&GCL_DateTime::long_date_time, "Sunday, July 5, 2026 14:05:09"}};
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  GCL_DateTime const t(1783253109);
  for (auto const& [layout, text] : table) {
    EXPECT_EQ((GCL_DateTime().*layout)(), "");
    EXPECT_EQ((t.*layout)(), text != nullptr ? text : date_fmt_ls_date_time(t.time()));
  }
}

TEST(Time, ParsingReportsAndKeepsWhatTheServiceWrote) {
  GCL_Status status;
  status.add_message("old");
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::past).time(), 40);
  EXPECT_TRUE(status == 1001 && status.error_message() == "old");
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::TimeFrame{5}).time(), 41);
  EXPECT_TRUE(status.is_ok() && status.get_message_stack() == nullptr);
}

TEST(Period, HoldsThreeThingsSideBySide) {
  GCL_TimePeriod p;
  EXPECT_TRUE(p.begin().time() == 0 && p.end().time() == 0 && p.duration() == 4294967295u);
  p = GCL_TimePeriod(GCL_DateTime(9), GCL_DateTime(5), 0.5f);
  p.set_end(GCL_DateTime(7));
  EXPECT_TRUE(p.begin().time() == 9 && p.end().time() == 7 && p.duration() == 43200u);
  p = GCL_TimePeriod(p.end(), p.begin(), 86400u);
  p.set_begin(GCL_DateTime(8));
  float days = 0;
  p.duration(days);
  EXPECT_TRUE(p.begin().time() == 8 && p.end().time() == 9 && days == 1.0f);
}

TEST(Period, OnlyTheMarkerItselfIsTheMarker) {
  GCL_TimePeriod p;
  float marker = 0, days = 0;
  p.duration(marker);
  EXPECT_EQ(marker, 4294967296.0f);
  for (float const other :
       {std::nextafter(marker, 0.0f), std::nextafter(marker, INFINITY), INFINITY, NAN, -marker}) {
    p.set_duration(marker);
    EXPECT_EQ(p.duration(), 4294967295u);
    p.set_duration(other);
    EXPECT_EQ(p.duration(), other > 0 ? 4294967294u : 0u);
  }
  for (unsigned int whole = 0; whole < 4000; ++whole) {
    p.set_duration(whole);
    p.duration(days);
    p.set_duration(days);
    ASSERT_EQ(p.duration(), whole);
  }
}

}  // namespace
