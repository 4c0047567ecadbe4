#include "ui/page_strip.h"

#include <QTabBar>

#include "ui/icons/icons.h"

namespace korvel::ui {
namespace {

/// A transparent icon: a tab without an icon would be narrower, and the tabs after it would move with each change.
QIcon emptyMark(const QSize& size) {
  QPixmap nothing(size);
  nothing.fill(Qt::transparent);
  return nothing;
}

}  // namespace

PageStrip::PageStrip(QWidget* parent) : QTabWidget(parent) {
  setUsesScrollButtons(true);
  setElideMode(Qt::ElideNone);
  tabBar()->setExpanding(false);
  tabBar()->setDrawBase(false);
  tabBar()->setFocusPolicy(Qt::TabFocus);
  // The bar is a stop of the Tab key by itself. The strip with the bar as its proxy would be another one, behind the
  // lists, from where Tab leads back to the bar for ever.
  setFocusProxy(nullptr);
  setFocusPolicy(Qt::NoFocus);
  connect(this, &QTabWidget::currentChanged, this, &PageStrip::markCurrent);
}

void PageStrip::tabInserted(int index) {
  QTabWidget::tabInserted(index);
  markCurrent();
}

void PageStrip::markCurrent() {
  for (int page = 0; page < count(); ++page)
    setTabIcon(page, page == currentIndex() ? icon(IconName::PageMark, IconTone::Accent) : emptyMark(iconSize()));
}

}  // namespace korvel::ui
