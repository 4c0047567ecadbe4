#include "control/layout.h"

#include <algorithm>

namespace korvel::control {
namespace {

constexpr Twips tabLeftBesideStrip{3720};
constexpr Twips tabLeftAlone{50};
constexpr Twips rightMargin{100};
constexpr Twips verticalAllowance{150};
constexpr Twips listInsetWidth{250};
constexpr Twips listInsetHeight{600};
constexpr Twips customListInsetHeight{1700};
constexpr Twips queryTextAllowance{2300};
constexpr Twips buttonMargin{100};
constexpr Twips buttonColumnStep{150};
constexpr std::size_t customPage = 5;

// Left inset of the lists: half of the difference between the widths of a page and its list.
constexpr Twips listLeft{125};
// Half of the difference between the heights of a page, without its tabs, and its list.
constexpr Twips listGap{90};
// Between the two frames of the strip.
constexpr Twips frameGap{120};

/// An element refuses a negative length and keeps the one it has.
void assignLength(Twips& length, Twips wanted) noexcept {
  if (wanted >= Twips{0}) length = wanted;
}

}  // namespace

SurfaceBoxes designTimeBoxes() noexcept {
  constexpr Twips buttonWidth{1000};
  constexpr Twips buttonHeight{420};
  constexpr Twips firstRow{90};
  constexpr Twips secondRow{545};

  SurfaceBoxes boxes;
  boxes.SSTab1 = {tabLeftBesideStrip, barGap, {6300}, {4500}};
  boxes.frameTools = {{0}, {0}, stripWidth, {1500}};
  const Twips listTop = tabStripHeight + listGap;
  boxes.lvListView.fill(
      {listLeft, listTop, boxes.SSTab1.width - listInsetWidth, boxes.SSTab1.height - listInsetHeight});
  // The custom list leaves the height between the two insets to the query frame above it.
  boxes.lvListView[customPage].top = listTop + (customListInsetHeight - listInsetHeight);
  boxes.lvListView[customPage].height = boxes.SSTab1.height - customListInsetHeight;
  boxes.frameAdvQry = {listLeft, listTop, boxes.lvListView[customPage].width, {1025}};
  boxes.txtAdvancedQuery = {{100}, firstRow, boxes.frameAdvQry.width - queryTextAllowance, {875}};
  boxes.btOpen = {{0}, firstRow, buttonWidth, buttonHeight};
  boxes.btSave = {{0}, secondRow, buttonWidth, buttonHeight};
  boxes.btClearAdvQuery = {{0}, firstRow, buttonWidth, buttonHeight};
  boxes.btEmunFields = {{0}, secondRow, buttonWidth, buttonHeight};
  return boxes;
}

SurfaceBoxes layoutControl(const LayoutInput& input, SurfaceBoxes boxes) noexcept {
  Box& tabs = boxes.SSTab1;
  if (input.viewSideTools) {
    tabs.left = tabLeftBesideStrip;
    assignLength(tabs.width, input.innerWidth - boxes.frameTools.width - rightMargin);
  } else {
    tabs.left = tabLeftAlone;
    assignLength(tabs.width, input.innerWidth - rightMargin);
  }
  assignLength(tabs.height,
               input.innerHeight - input.statusBarHeight - input.toolbarHeight - verticalAllowance - input.menuHeight);

  for (std::size_t page = 0; page < boxes.lvListView.size(); ++page) {
    Box& list = boxes.lvListView.at(page);
    assignLength(list.width, tabs.width - listInsetWidth);
    assignLength(list.height, tabs.height - (page == customPage ? customListInsetHeight : listInsetHeight));
  }

  const Box& customList = boxes.lvListView[customPage];
  assignLength(boxes.frameAdvQry.width, customList.width);
  assignLength(boxes.txtAdvancedQuery.width, customList.width - queryTextAllowance);

  // A left edge may be negative: only lengths are refused.
  const Twips frameWidth = boxes.frameAdvQry.width;
  boxes.btOpen.left = frameWidth - boxes.btOpen.width - buttonMargin;
  boxes.btSave.left = frameWidth - boxes.btSave.width - buttonMargin;
  boxes.btClearAdvQuery.left = frameWidth - boxes.btOpen.width - boxes.btClearAdvQuery.width - buttonColumnStep;
  boxes.btEmunFields.left = frameWidth - boxes.btSave.width - boxes.btEmunFields.width - buttonColumnStep;
  return boxes;
}

StripBoxes layoutStrip(Twips top, Twips bottom, Twips toolsHeight, Twips filterMinimum) noexcept {
  StripBoxes strip;
  const Twips filterHeight = std::max(filterMinimum, bottom - top - toolsHeight - frameGap);
  strip.frameFilter = {{0}, top, stripWidth, filterHeight};
  strip.frameTools = {{0}, top + filterHeight + frameGap, stripWidth, toolsHeight};
  return strip;
}

}  // namespace korvel::control
