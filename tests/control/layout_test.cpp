#include "control/layout.h"

#include <gtest/gtest.h>

#include "ui/screen_measure.h"

namespace korvel::control {
namespace {

LayoutInput control(int width, int height, bool sideTools = true) {
  return {{width}, {height}, sideTools, {375}, {600}, {330}};
}

constexpr int bars = 375 + 600 + 330;

SurfaceBoxes laidOut(int width, int height, bool sideTools = true) {
  return layoutControl(control(width, height, sideTools), designTimeBoxes());
}

TEST(Layout, SideToolsTakeTheirStripFromTheTabs) {
  const SurfaceBoxes beside = laidOut(20000, 12000, true);
  EXPECT_EQ(beside.SSTab1.left, Twips{3720});
  EXPECT_EQ(beside.SSTab1.width, Twips{20000 - 3720 - 100});

  const SurfaceBoxes alone = layoutControl(control(20000, 12000, false), beside);
  EXPECT_EQ(alone.SSTab1.left, Twips{50});
  EXPECT_EQ(alone.SSTab1.width, beside.SSTab1.width + beside.frameTools.width);

  EXPECT_EQ(layoutControl(control(20000, 12000, true), alone), beside);
}

TEST(Layout, WidthFollowsTheToolsFrameNotTheTabsLeftEdge) {
  SurfaceBoxes boxes = designTimeBoxes();
  boxes.frameTools.width = {3600};
  boxes = layoutControl(control(10000, 9000), boxes);
  EXPECT_EQ(boxes.SSTab1.left, Twips{3720});
  EXPECT_EQ(boxes.SSTab1.width, Twips{6300});
  for (const Box& list : boxes.lvListView) EXPECT_EQ(list.width, Twips{6050});
}

TEST(Layout, HeightIsWhatTheThreeBarsAndTheAllowanceLeave) {
  EXPECT_EQ(laidOut(20000, 12000).SSTab1.height, Twips{12000 - bars - 150});
}

TEST(Layout, ListsAreNarrowerAndLowerThanTheirPage) {
  const SurfaceBoxes boxes = laidOut(20000, 12000);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(boxes.lvListView[i].width, boxes.SSTab1.width - Twips{250}) << i;
    EXPECT_EQ(boxes.lvListView[i].height, boxes.SSTab1.height - Twips{600}) << i;
  }
  EXPECT_EQ(boxes.lvListView[5].width, boxes.SSTab1.width - Twips{250});
  EXPECT_EQ(boxes.lvListView[5].height, boxes.SSTab1.height - Twips{1700});
  EXPECT_EQ(boxes.lvListView[0].height - boxes.lvListView[5].height, Twips{1100});
}

TEST(Layout, QueryFrameAndItsTextFollowTheCustomList) {
  const SurfaceBoxes boxes = laidOut(20000, 12000);
  EXPECT_EQ(boxes.frameAdvQry.width, boxes.lvListView[5].width);
  EXPECT_EQ(boxes.txtAdvancedQuery.width, boxes.lvListView[5].width - Twips{2300});
}

TEST(Layout, QueryButtonsFormTwoColumnsAtTheRightEdge) {
  SurfaceBoxes boxes = designTimeBoxes();
  boxes.btOpen.width = {1000};
  boxes.btSave.width = {1200};
  boxes.btClearAdvQuery.width = {900};
  boxes.btEmunFields.width = {1100};
  boxes = layoutControl(control(20000, 12000), boxes);
  const int frame = boxes.frameAdvQry.width.value;
  EXPECT_EQ(boxes.btOpen.left, Twips{frame - 1000 - 100});
  EXPECT_EQ(boxes.btSave.left, Twips{frame - 1200 - 100});
  EXPECT_EQ(boxes.btClearAdvQuery.left, Twips{frame - 1000 - 900 - 150});
  EXPECT_EQ(boxes.btEmunFields.left, Twips{frame - 1200 - 1100 - 150});
  EXPECT_EQ(boxes.btOpen.left - (boxes.btClearAdvQuery.left + boxes.btClearAdvQuery.width), Twips{50});
  EXPECT_EQ(boxes.btSave.left - (boxes.btEmunFields.left + boxes.btEmunFields.width), Twips{50});
}

TEST(Layout, TopEdgesAreNotTouched) {
  const SurfaceBoxes design = designTimeBoxes();
  const SurfaceBoxes boxes = laidOut(20000, 12000);
  EXPECT_EQ(boxes.SSTab1.top, design.SSTab1.top);
  EXPECT_EQ(boxes.frameAdvQry.top, design.frameAdvQry.top);
  EXPECT_EQ(boxes.btClearAdvQuery.top, boxes.btOpen.top);
  EXPECT_EQ(boxes.btEmunFields.top, boxes.btSave.top);
  EXPECT_EQ(boxes.frameTools, design.frameTools);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(boxes.lvListView[i].top, design.lvListView[i].top) << i;
}

TEST(Layout, TooLowLeavesTheLastValidHeightUntilItFitsAgain) {
  const SurfaceBoxes before = laidOut(20000, 12000);
  const SurfaceBoxes tooLow = layoutControl(control(20000, bars + 150 - 1), before);
  EXPECT_EQ(tooLow.SSTab1.height, before.SSTab1.height);
  EXPECT_EQ(tooLow.lvListView[0].height, before.lvListView[0].height);

  EXPECT_EQ(layoutControl(control(20000, bars + 150), before).SSTab1.height, Twips{0});
  EXPECT_EQ(layoutControl(control(20000, 12000), tooLow), before);
}

TEST(Layout, EachRefusalStandsAlone) {
  const SurfaceBoxes before = laidOut(20000, 12000);
  // Too narrow for the tabs, but not too low: the height is still assigned.
  const SurfaceBoxes narrow = layoutControl(control(3000, 9000), before);
  EXPECT_EQ(narrow.SSTab1.width, before.SSTab1.width);
  EXPECT_EQ(narrow.SSTab1.height, Twips{9000 - bars - 150});
  EXPECT_EQ(narrow.SSTab1.left, Twips{3720});

  // High enough for the standard lists, too low for the custom one.
  const SurfaceBoxes low = layoutControl(control(20000, bars + 150 + 1000), before);
  EXPECT_EQ(low.lvListView[4].height, Twips{400});
  EXPECT_EQ(low.lvListView[5].height, before.lvListView[5].height);

  // Wide enough for list and frame, too narrow for the text; left edges may be negative.
  const SurfaceBoxes slim = layoutControl(control(3720 + 100 + 250 + 800, 9000), before);
  EXPECT_EQ(slim.frameAdvQry.width, Twips{800});
  EXPECT_EQ(slim.txtAdvancedQuery.width, before.txtAdvancedQuery.width);
  EXPECT_EQ(slim.btOpen.left, Twips{800 - slim.btOpen.width.value - 100});
  EXPECT_LT(slim.btClearAdvQuery.left, Twips{0});
}

TEST(Layout, ListsStartAndEndInsideTheirPage) {
  const SurfaceBoxes boxes = laidOut(20000, 12000);
  for (const Box& list : boxes.lvListView) {
    EXPECT_GE(list.top, tabStripHeight);
    EXPECT_LE(list.top + list.height, boxes.SSTab1.height);
    EXPECT_EQ(boxes.SSTab1.width - (list.left + list.width), list.left);
  }
  EXPECT_GE(boxes.lvListView[5].top, boxes.frameAdvQry.top + boxes.frameAdvQry.height);
}

TEST(Layout, QueryFrameHoldsItsChildren) {
  const SurfaceBoxes boxes = laidOut(20000, 12000);
  for (const Box* child : {&boxes.txtAdvancedQuery, &boxes.btOpen, &boxes.btSave}) {
    EXPECT_LE(child->top + child->height, boxes.frameAdvQry.height);
    EXPECT_LE(child->left + child->width, boxes.frameAdvQry.width);
  }
  EXPECT_LT(boxes.txtAdvancedQuery.left + boxes.txtAdvancedQuery.width, boxes.btClearAdvQuery.left);
  EXPECT_LE(boxes.btOpen.top + boxes.btOpen.height, boxes.btSave.top);
}

TEST(Strip, FilterFrameTakesWhatTheToolsLeave) {
  const StripBoxes strip = layoutStrip({75}, {10000}, {1500}, {3000});
  EXPECT_EQ(strip.frameFilter.top, Twips{75});
  EXPECT_EQ(strip.frameTools.top + strip.frameTools.height, Twips{10000});
  EXPECT_EQ(strip.frameTools.top - (strip.frameFilter.top + strip.frameFilter.height), Twips{120});
  EXPECT_EQ(strip.frameFilter.width, Twips{3720});
  EXPECT_EQ(strip.frameTools.width, Twips{3720});
}

TEST(Strip, FramesNeverOverlapHoweverLowTheControlIs) {
  for (int bottom = -500; bottom < 6000; bottom += 100) {
    const StripBoxes strip = layoutStrip({75}, {bottom}, {1500}, {3000});
    EXPECT_GE(strip.frameFilter.height, Twips{3000}) << bottom;
    EXPECT_EQ(strip.frameTools.top, strip.frameFilter.top + strip.frameFilter.height + Twips{120}) << bottom;
  }
}

TEST(ScreenMeasure, TwipsFollowTheResolution) {
  EXPECT_EQ(ui::ScreenMeasure(96, 96).horizontal({1440}), 96);
  EXPECT_EQ(ui::ScreenMeasure(144, 144).horizontal({3720}), 372);
  EXPECT_EQ(ui::ScreenMeasure(96, 120).vertical({1440}), 120);
  EXPECT_EQ(ui::ScreenMeasure(96, 96).horizontalTwips(100), Twips{1500});
}

TEST(ScreenMeasure, PixelsSurviveTheWayThereAndBack) {
  for (const int dpi : {72, 96, 110, 120, 144, 192, 288}) {
    const ui::ScreenMeasure measure(dpi, dpi);
    for (int pixels = 0; pixels < 4000; pixels += 7)
      ASSERT_EQ(measure.vertical(measure.verticalTwips(pixels)), pixels) << dpi;
  }
}

TEST(ScreenMeasure, NeighboursShareTheirEdge) {
  for (const int dpi : {96, 110, 144}) {
    const ui::ScreenMeasure measure(dpi, dpi);
    const Box left{{0}, {0}, {3720}, {100}};
    const Box right{{3720}, {0}, {1001}, {100}};
    EXPECT_EQ(measure.rectangle(left).right() + 1, measure.rectangle(right).left()) << dpi;
  }
}

}  // namespace
}  // namespace korvel::control
