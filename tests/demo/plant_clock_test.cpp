#include "demo/plant_clock.h"

#include <gmock/gmock.h>

namespace korvel::demo {
namespace {

using namespace std::chrono_literals;
using std::chrono::sys_days;

std::string shown(Moment moment) {
  std::string text;
  const WallTime wall = wallTimeOf(moment);
  writeTimeText(wall, text);
  return text + (wall.summer ? " S" : " W");
}

TEST(PlantClock, ShowsEveryDigit) {
  EXPECT_EQ(shown(sys_days{2004y / 3 / 7} + 12h + 45min + 59s + 123ms), "2004-03-07 13:45:59.123 W");
  EXPECT_EQ(shown(sys_days{2004y / 7 / 1} + 22h + 5ms), "2004-07-02 00:00:00.005 S");
}

TEST(PlantClock, JumpsFromTwoToThreeInSpring) {
  const Moment change = sys_days{2004y / 3 / 28} + 1h;
  EXPECT_EQ(shown(change - 1ms), "2004-03-28 01:59:59.999 W");
  EXPECT_EQ(shown(change), "2004-03-28 03:00:00.000 S");
}

TEST(PlantClock, ShowsAnHourTwiceInAutumn) {
  const Moment change = sys_days{2003y / 10 / 26} + 1h;
  EXPECT_EQ(shown(change - 30min), "2003-10-26 02:30:00.000 S");
  EXPECT_EQ(shown(change + 30min), "2003-10-26 02:30:00.000 W");
}

TEST(PlantClock, FindsTheMomentBehindAWallTime) {
  for (const Moment moment : {Moment{sys_days{2003y / 10 / 26} + 30min}, Moment{sys_days{2003y / 10 / 26} + 90min},
                              Moment{sys_days{2005y / 1 / 1}}, Moment{sys_days{2004y / 6 / 30} + 17h + 1ms}})
    EXPECT_EQ(momentOf(wallTimeOf(moment)), moment) << shown(moment);
}

}  // namespace
}  // namespace korvel::demo
