#include "control/list_area.h"

#include <QEvent>
#include <QHeaderView>
#include <algorithm>

#include "control/activity_strip.h"
#include "ui/style/theme.h"

namespace korvel::control {

ListArea::ListArea(ResultListView& shownList, ui::FindHistory& history)
    : QObject(shownList.parentWidget()),
      list(shownList),
      chips(new ui::ChipBar(shownList.parentWidget())),
      find(new ui::FindBar(history, shownList.parentWidget())) {
  find->hide();
  chips->installEventFilter(this);
  find->installEventFilter(this);
  connect(chips, &ui::ChipBar::keyboardLeft, &list, [this] { list.setFocus(Qt::OtherFocusReason); });
}

void ListArea::setGeometry(const QRect& place) {
  place_ = place;
  arrange();
}

std::vector<QWidget*> ListArea::focusOrder() const {
  std::vector<QWidget*> order = activity != nullptr ? activity->focusOrder() : std::vector<QWidget*>();
  const std::vector<QWidget*> filters = chips->focusOrder();
  order.insert(order.end(), filters.begin(), filters.end());
  order.push_back(&list);
  const std::vector<QWidget*> finding = find->focusOrder();
  order.insert(order.end(), finding.begin(), finding.end());
  return order;
}

ActivityStrip& ListArea::activityStrip() {
  if (activity == nullptr) {
    activity = new ActivityStrip(list.parentWidget());
    activity->installEventFilter(this);
  }
  return *activity;
}

bool ListArea::eventFilter(QObject* watched, QEvent* event) {
  // Also while the page is not in front.
  const auto type = event->type();
  if (type == QEvent::ShowToParent || type == QEvent::HideToParent || type == QEvent::FontChange) arrange();
  return QObject::eventFilter(watched, event);
}

void ListArea::arrange() {
  QRect room = place_;
  const auto take = [&](const QWidget& bar, int gap) {
    return bar.isHidden() ? 0 : std::min(bar.sizeHint().height() + gap, std::max(0, room.height()));
  };
  const int gap = ui::px(&list, ui::space::inGroup);
  // Over the chips, so that it stays where it is when they come and go; never more than half of the room.
  if (activity != nullptr && !activity->isHidden()) {
    const int height = std::min(activity->sizeHint().height(), std::max(0, room.height() / 2 - gap));
    activity->setGeometry(room.left(), room.top(), room.width(), height);
    room.setTop(room.top() + height + gap);
  }
  if (const int height = take(*chips, 0); height > 0) {
    chips->setGeometry(room.left(), room.top(), room.width(), height);
    room.setTop(room.top() + height);
  }
  if (const int height = take(*find, gap); height > 0) {
    // At the right end, as wide as it needs to be.
    constexpr int mostWidth = 720;
    const int width = std::min(room.width(), ui::px(&list, mostWidth));
    const int left = list.isLeftToRight() ? room.right() + 1 - width : room.left();
    find->setGeometry(left, room.bottom() + 1 - height + gap, width, height - gap);
    room.setBottom(room.bottom() - height);
  }
  list.setGeometry(room);
}

}  // namespace korvel::control
