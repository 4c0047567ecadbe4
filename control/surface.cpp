#include "control/surface.h"

#include <QLabel>
#include <QTabBar>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>
#include <utility>

#include "control/report_viewer.h"
#include "control/texts.h"
#include "ui/dialogs.h"
#include "ui/screen_measure.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

using ui::named;

// The card of a strip frame is drawn this far inside of the frame, which is as wide as the strip.
constexpr Twips cardInset{120};

/// A page of the strip that reports its resizes: the tabs follow the font, and the elements on the pages follow the
/// tabs.
class Page final : public QWidget {
 public:
  std::function<void()> onResize;

 protected:
  void resizeEvent(QResizeEvent* event) override {
    QWidget::resizeEvent(event);
    if (onResize) onResize();
  }
};

}  // namespace

Surface::Surface(QWidget& owner, query::ResultLists& lists, query::FilterTree& tree) : owner_(owner) {
  buildCommandSurfaces();
  buildFilterFrame(tree);
  buildToolsFrame();
  buildPages(lists);
  StatusBar1 = named(new StatusPanels(&owner_), "StatusBar1");
  // Where the control is too small for everything, the status bar stays readable.
  StatusBar1->setAutoFillBackground(true);
  StatusBar1->raise();
  WebBrowser1 = named(new ReportViewer(owner_), "WebBrowser1");
  orderFocus();
}

void Surface::buildCommandSurfaces() {
  SmartMenu = named(new CommandMenuBar(&owner_), "SmartMenu");
  SmartToolbar = named(new CommandToolbar(&owner_), "SmartToolbar");
  SmartPopup = named(new CommandPopup(&owner_), "SmartPopup");
  mnupopup = named(new QMenu(QStringLiteral("Popup"), &owner_), "mnupopup");
  mnupopupitem = named(mnupopup->addAction(QStringLiteral("Change Font")), "mnupopupitem");
  mnupopupitem->setData(0);
}

void Surface::buildFilterFrame(query::FilterTree& tree) {
  frameFilter = named(new ui::CardFrame(&owner_), "frameFilter");
  tvTreeView = named(new FilterTreeView(tree), "tvTreeView");
  btDateRangeFilter = named(new ui::SecondaryButton(ui::IconName::DateRange, QString()), "btDateRangeFilter");
  btClearDateRange = named(new ui::SecondaryButton(ui::IconName::ClearDate, QString()), "btClearDateRange");
  lblDateRange = named(new QLabel, "lblDateRange");
  lblDateRange->setTextFormat(Qt::PlainText);
  lblDateRange->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  lblDateRange->setWordWrap(true);
  ui::setMuted(*lblDateRange);

  auto* dates = new ui::TextRow;
  dates->add(btDateRangeFilter);
  dates->add(btClearDateRange);

  auto* column = new QVBoxLayout(frameFilter);
  column->setContentsMargins({});
  column->setSpacing(ui::px(&owner_, ui::space::inside));
  column->addWidget(tvTreeView, 1);
  column->addWidget(dates);
  column->addWidget(lblDateRange);
}

void Surface::buildToolsFrame() {
  frameTools = named(new ui::CardFrame(&owner_), "frameTools");
  btQuery = named(new ui::PrimaryButton(ui::IconName::Query, QString()), "btQuery");
  auto* row = new ui::IconRow;
  const auto iconButton = [row](ui::IconName icon, const char* objectName) {
    auto* button = named(new ui::IconButton(icon), objectName);
    row->add(button);
    return button;
  };
  btSelectDB = iconButton(ui::IconName::Select, "btSelectDB");
  btDBInfo = iconButton(ui::IconName::Info, "btDBInfo");
  btClear = iconButton(ui::IconName::Clear, "btClear");
  btSelectALL = iconButton(ui::IconName::SelectAll, "btSelectALL");
  btUnselectALL = iconButton(ui::IconName::UnselectAll, "btUnselectALL");
  btExcel = iconButton(ui::IconName::Export, "btExcel");
  btPrint = iconButton(ui::IconName::Print, "btPrint");

  auto* column = new QVBoxLayout(frameTools);
  column->setContentsMargins({});
  column->setSpacing(ui::px(&owner_, ui::space::inside));
  column->addWidget(btQuery);
  column->addWidget(row);
}

void Surface::buildPages(query::ResultLists& lists) {
  SSTab1 = named(new ui::PageStrip(&owner_), "SSTab1");
  for (std::size_t i = 0; i < query::listCount; ++i) {
    models.at(i) = std::make_unique<ResultListModel>(lists.at(i));
    auto* page = new Page;
    auto* list = new ResultListView(*models.at(i), page);
    list->setObjectName(QStringLiteral("lvListView%1").arg(i));
    const QString caption = fromUtf8(query::pageCaptions.at(i));
    list->setAccessibleName(caption);
    lvListView.at(i) = list;
    areas.at(i) = new ListArea(*list, findHistory);
    if (i == query::customList) buildQueryFrame(*page);
    // The captions are fixed texts, no mnemonics.
    SSTab1->addTab(page, caption);
    page->onResize = [this] { placeLists(); };
  }
}

void Surface::buildQueryFrame(QWidget& page) {
  frameAdvQry = named(new ui::CardFrame(&page), "frameAdvQry");
  txtAdvancedQuery = new query::SqlEditor(frameAdvQry);
  const auto iconButton = [this](ui::IconName icon, const char* objectName) {
    return named(new ui::IconButton(icon, frameAdvQry), objectName);
  };
  btOpen = iconButton(ui::IconName::Open, "btOpen");
  btSave = iconButton(ui::IconName::Save, "btSave");
  btClearAdvQuery = iconButton(ui::IconName::Clear, "btClearAdvQuery");
  btEmunFields = iconButton(ui::IconName::Fields, "btEmunFields");
}

void Surface::orderFocus() const {
  std::vector<QWidget*> order = SmartToolbar->buttons();
  order.insert(order.end(), {tvTreeView, btDateRangeFilter, btClearDateRange, btQuery, btSelectDB, btDBInfo, btClear,
                             btSelectALL, btUnselectALL, btExcel, btPrint, SSTab1->tabBar()});
  for (std::size_t i = 0; i < areas.size(); ++i) {
    // On their page they come before the list, in the visible order.
    if (i == query::customList)
      order.insert(order.end(), {txtAdvancedQuery, btClearAdvQuery, btOpen, btEmunFields, btSave});
    const std::vector<QWidget*> area = areas.at(i)->focusOrder();
    order.insert(order.end(), area.begin(), area.end());
  }
  for (std::size_t i = 1; i < order.size(); ++i) QWidget::setTabOrder(order[i - 1], order[i]);
}

int Surface::menuHeight() const {
  return std::max(0, SmartMenu->heightForWidth(owner_.width()));
}

int Surface::toolbarHeight() const {
  return SmartToolbar->isHidden() ? 0 : SmartToolbar->sizeHint().height();
}

void Surface::arrange(bool viewSideTools) {
  const ui::ScreenMeasure measure(owner_);
  const int statusHeight = StatusBar1->sizeHint().height();

  LayoutInput input;
  input.innerWidth = measure.horizontalTwips(owner_.width());
  input.innerHeight = measure.verticalTwips(owner_.height());
  input.viewSideTools = viewSideTools;
  input.statusBarHeight = measure.verticalTwips(statusHeight);
  input.toolbarHeight = measure.verticalTwips(toolbarHeight());
  input.menuHeight = measure.verticalTwips(menuHeight());
  const Twips bars = input.toolbarHeight + input.menuHeight;
  boxes_.SSTab1.top = bars + barGap;
  boxes_ = layoutControl(input, boxes_);

  const Twips bottom = input.innerHeight - input.statusBarHeight - barGap;
  const StripBoxes strip =
      layoutStrip(boxes_.SSTab1.top, bottom, measure.verticalTwips(frameTools->sizeHint().height()),
                  measure.verticalTwips(frameFilter->minimumSizeHint().height()));
  const std::pair<ui::CardFrame*, const Box&> frames[] = {{frameFilter, strip.frameFilter},
                                                          {frameTools, strip.frameTools}};
  for (const auto& [frame, box] : frames) {
    frame->setSideInset(measure.horizontal(cardInset));
    frame->setGeometry(measure.rectangle(box));
  }

  SSTab1->setGeometry(measure.rectangle(boxes_.SSTab1));
  placeLists();
  SmartMenu->setGeometry(0, 0, owner_.width(), menuHeight());
  SmartToolbar->setGeometry(0, menuHeight(), owner_.width(), SmartToolbar->sizeHint().height());
  StatusBar1->setGeometry(0, owner_.height() - statusHeight, owner_.width(), statusHeight);
}

void Surface::placeLists() {
  const ui::ScreenMeasure measure(owner_);
  // Boxes are counted from the corner of SSTab1, the lists lie in its pages. The page in front stands for all of them:
  // the others take its size when they come forward.
  const QWidget* const page = SSTab1->currentWidget();
  const QPoint pageCorner = page->mapTo(SSTab1, QPoint(0, 0));
  for (std::size_t i = 0; i < lvListView.size(); ++i) {
    const Box& box = boxes_.lvListView.at(i);
    QRect place = measure.rectangle(box).translated(-pageCorner);
    // Tabs in a large font are higher than the boxes assume.
    place.setTop(std::max(place.top(), i == query::customList ? placeQueryFrame(pageCorner) : 0));
    // A list that refused the height of its page keeps its own.
    if (box.height < boxes_.SSTab1.height) place.setBottom(std::min(place.bottom(), page->height() - 1));
    areas.at(i)->setGeometry(place);
  }
}

int Surface::placeQueryFrame(const QPoint& pageCorner) {
  const ui::ScreenMeasure measure(owner_);
  QRect frame = measure.rectangle(boxes_.frameAdvQry).translated(-pageCorner);
  frame.moveTop(std::max(frame.top(), 0));
  frameAdvQry->setGeometry(frame);
  const std::pair<QWidget*, const Box&> inside[] = {{txtAdvancedQuery, boxes_.txtAdvancedQuery},
                                                    {btOpen, boxes_.btOpen},
                                                    {btSave, boxes_.btSave},
                                                    {btClearAdvQuery, boxes_.btClearAdvQuery},
                                                    {btEmunFields, boxes_.btEmunFields}};
  for (const auto& [element, box] : inside) element->setGeometry(measure.rectangle(box));
  const Twips between = boxes_.lvListView[query::customList].top - boxes_.frameAdvQry.top - boxes_.frameAdvQry.height;
  return frame.bottom() + 1 + measure.vertical(between);
}

std::size_t Surface::currentTab() const {
  return static_cast<std::size_t>(std::max(0, SSTab1->currentIndex()));
}

ResultListView& Surface::currentList() const {
  return *lvListView.at(currentTab());
}

QSize Surface::preferredSize() const {
  return {ui::px(&owner_, 1280), ui::px(&owner_, 800)};
}

QSize Surface::minimumSize(bool viewSideTools) const {
  constexpr int pagesWidth = 320;
  constexpr int pagesHeight = 200;
  const int barsHeight = menuHeight() + toolbarHeight() + StatusBar1->sizeHint().height() + ui::px(&owner_, 24);
  QSize size(ui::px(&owner_, pagesWidth), ui::px(&owner_, pagesHeight));
  if (viewSideTools) {
    size.rwidth() += ui::ScreenMeasure(owner_).horizontal(stripWidth);
    const int strip = frameFilter->minimumSizeHint().height() + frameTools->sizeHint().height();
    size.setHeight(std::max(size.height(), strip));
  }
  return size + QSize(0, barsHeight);
}

}  // namespace korvel::control
