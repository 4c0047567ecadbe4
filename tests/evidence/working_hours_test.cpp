#include "evidence/working_hours.h"

#include <gtest/gtest.h>

namespace korvel::evidence {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

TEST(WorkingHoursText, IsReadAsItIsWritten) {
  const WorkingHours night{hours{22} + minutes{5}, hours{6}, 0b1100000};
  EXPECT_EQ(hoursText(night), "22:05-06:00");
  EXPECT_EQ(hoursOf(hoursText(night)), std::pair(night.from, night.to));
  EXPECT_EQ(daysText(night.days), "sat,sun");
  EXPECT_EQ(daysOf(daysText(night.days)), night.days);
  EXPECT_EQ(hoursOf("00:00-24:00"), std::pair(minutes{0}, minutes{hours{24}}));
  EXPECT_EQ(daysOf("MON"), std::bitset<7>(1));
  EXPECT_EQ(daysText({}), "");
}

TEST(WorkingHoursText, IsRefusedWhereItIsNone) {
  for (const char* text : {"", "06:00", "6:00-18:00", "06:00-24:01", "06:60-18:00", "06.00-18.00", "06:00-18:00 "})
    EXPECT_FALSE(hoursOf(text)) << text;
  for (const char* text : {"", "mon,", "mon tue", "monday"}) EXPECT_FALSE(daysOf(text)) << text;
}

}  // namespace
}  // namespace korvel::evidence
