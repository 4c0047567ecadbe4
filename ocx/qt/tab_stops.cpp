#include "ocx/qt/tab_stops.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QWidget>
#include <vector>

namespace korvel::ocx {
namespace {

/// What the Tab key reaches, in order.
std::vector<QWidget*> tabStops(const QWidget& viewer) {
  std::vector<QWidget*> stops;
  for (QWidget* each = viewer.nextInFocusChain(); each != nullptr && each != &viewer; each = each->nextInFocusChain())
    if (viewer.isAncestorOf(each) && each->isVisibleTo(&viewer) && each->isEnabled() && each->focusProxy() == nullptr &&
        (each->focusPolicy() & Qt::TabFocus) != 0)
      stops.push_back(each);
  return stops;
}

bool writesTabs(const QWidget* element) {
  const auto* const text = qobject_cast<const QPlainTextEdit*>(element);
  return text != nullptr && !text->tabChangesFocus() && !text->isReadOnly();
}

}  // namespace

bool tabLeaves(const QWidget& viewer, bool backwards) {
  const std::vector<QWidget*> stops = tabStops(viewer);
  const QWidget* const focused = QApplication::focusWidget();
  if (stops.empty() || focused == nullptr || !viewer.isAncestorOf(focused)) return true;
  if (!backwards && writesTabs(focused)) return false;
  return focused == (backwards ? stops.front() : stops.back());
}

void focusEnd(QWidget& viewer, bool last) {
  const std::vector<QWidget*> stops = tabStops(viewer);
  if (stops.empty()) return;
  (last ? stops.back() : stops.front())->setFocus(last ? Qt::BacktabFocusReason : Qt::TabFocusReason);
}

}  // namespace korvel::ocx
