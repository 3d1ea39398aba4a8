// Dates and periods: what is asked of their services, and the layouts on this machine.
#include <gtest/gtest.h>

#include <cmath>

#include "miroxgcl/gcl.h"
#include "miroxplat/date_fmt.h"

// Knows only times to come.
int date_str_to_time2(char const* text, int frame, long* time) {
  EXPECT_EQ(text + std::to_string(std::exchange(*time, 40 + frame)), "text0");
  return frame == 1 ? 0 : 7;
}

namespace {

TEST(Time, LayoutsAreTheServices) {
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  GCL_StringList texts;
  for (auto const layout :
       {&GCL_DateTime::token_date, &GCL_DateTime::token_short_date_time,
        &GCL_DateTime::token_date_time, &GCL_DateTime::ls_date_time, &GCL_DateTime::short_time,
        &GCL_DateTime::short_date, &GCL_DateTime::short_date_time, &GCL_DateTime::long_date_time}) {
    EXPECT_EQ((GCL_DateTime().*layout)(), "");
    texts.Append((GCL_DateTime(994334709).*layout)());
  }
  EXPECT_EQ(join(texts, "|"),
            "2001-07-05|2001-07-05.14:05|2001-07-05.14:05:09|Jul  5  2001|14:05|07/05/01|"
            "07/05/01 14:05|Thursday, July 5, 2001 14:05:09");
}

TEST(Time, ParsingReportsAndKeepsWhatTheServiceWrote) {
  GCL_Status status;
  status.add_message("old");
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::past).time(), 40);
  EXPECT_TRUE(status == 1001 && status.error_message() == "old");
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::TimeFrame{5}).time(), 41);
  EXPECT_EQ(GCL_DateTime(status, "text", GCL_DateTime::future).time(), 41);
  EXPECT_TRUE(status.is_ok() && status.get_message_stack() == nullptr);
}

TEST(Period, HoldsThreeThingsSideBySide) {
  GCL_TimePeriod p(GCL_DateTime(9), GCL_DateTime(5), 1u);
  p.set_end(GCL_DateTime(7));
  EXPECT_EQ(p.begin().time(), 9);
  EXPECT_EQ(p.end().time(), 7);
  EXPECT_EQ(p.duration(), 1u);
}

TEST(Period, OnlyTheMarkerItselfIsTheMarker) {
  GCL_TimePeriod p;
  float const marker = 4294967296.0f;
  for (float const days : {std::nextafter(marker, 0.0f), marker, std::nextafter(marker, INFINITY),
                           INFINITY, NAN, -marker}) {
    p.set_duration(days);
    EXPECT_EQ(p.duration(), days == marker ? 4294967295u : days > 0 ? 4294967294u : 0u);
  }
}

}  // namespace
