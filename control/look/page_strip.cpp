#include "control/look/page_strip.h"

#include <QTabBar>

namespace korvel::look {

PageStrip::PageStrip(QWidget* parent) : QTabWidget(parent) {
  setUsesScrollButtons(true);
  setElideMode(Qt::ElideNone);
  tabBar()->setExpanding(false);
  tabBar()->setDrawBase(false);
  tabBar()->setFocusPolicy(Qt::TabFocus);
}

}  // namespace korvel::look
