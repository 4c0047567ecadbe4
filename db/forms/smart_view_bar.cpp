#include "db/forms/smart_view_bar.h"

#include <QKeyEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/dialogs.h"
#include "ui/icons/icons.h"
#include "ui/screen_measure.h"
#include "ui/style/theme.h"

namespace korvel::db {
namespace {

/// Around the items of the group.
constexpr Twips groupSpacing{75};
/// What kind of item it is.
constexpr int markerRole = Qt::UserRole;
const QString serverMarker = QStringLiteral("SERVER");

/// The items, with a text in the middle of an empty group.
class ItemList final : public QListWidget {
 public:
  using QListWidget::QListWidget;
  QString emptyText;

 protected:
  void paintEvent(QPaintEvent* event) override {
    QListWidget::paintEvent(event);
    if (count() == 0) ui::paintEmptyMessage(*this, emptyText);
  }
};

}  // namespace

SmartViewBar::SmartViewBar(const QString& group, QWidget* parent) : CardFrame(group, parent), items_(new ItemList) {
  items_->setObjectName(group);
  items_->setAccessibleName(group);
  items_->setFrameShape(QFrame::NoFrame);
  items_->setUniformItemSizes(true);
  items_->setTextElideMode(Qt::ElideRight);
  items_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  items_->setMouseTracking(true);
  const int side = ui::px(this, ui::space::icon);
  items_->setIconSize({side, side});
  items_->installEventFilter(this);

  auto* column = new QVBoxLayout(this);
  const ui::ScreenMeasure measure(*this);
  const int across = measure.horizontal(groupSpacing);
  const int down = measure.vertical(groupSpacing);
  column->setContentsMargins(across, down, across, down);
  column->addWidget(items_);

  connect(items_, &QListWidget::itemClicked, this, &SmartViewBar::itemClicked);
  connect(items_, &QListWidget::itemSelectionChanged, this, &SmartViewBar::selectionMoved);
}

void SmartViewBar::clear() {
  items_->clear();
}

void SmartViewBar::addItem(const QString& caption) {
  auto* item = new QListWidgetItem(ui::icon(ui::IconName::Server), caption, items_);
  item->setData(markerRole, serverMarker);
  // Marked up so that a name that looks like markup is shown as it is.
  item->setToolTip(QStringLiteral("<span>%1</span>").arg(caption.toHtmlEscaped()));
}

void SmartViewBar::highlightItems() {
  // Semi-bold on the ground of the bar, which is white in the light theme.
  const QFont highlighted = ui::semiBold(items_->font());
  for (int i = 0; i < items_->count(); ++i) items_->item(i)->setFont(highlighted);
}

void SmartViewBar::select(int index) {
  items_->setCurrentRow(index);
  items_->scrollToItem(items_->item(index));
}

QString SmartViewBar::selectedCaption() const {
  const QList<QListWidgetItem*> selected = items_->selectedItems();
  return selected.isEmpty() ? QString() : selected.first()->text();
}

void SmartViewBar::setEmptyText(const QString& text) {
  static_cast<ItemList*>(items_)->emptyText = text;
  items_->viewport()->update();
}

bool SmartViewBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    // Enter chooses the item instead of pressing the dialog's default button.
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
      if (QListWidgetItem* current = items_->currentItem()) {
        current->setSelected(true);
        Q_EMIT itemClicked();
      }
      return true;
    }
    // The first arrow key selects the item that has the focus, not the one after it.
    if ((key == Qt::Key_Down || key == Qt::Key_Up) && items_->selectedItems().isEmpty() && items_->count() > 0) {
      items_->setCurrentRow(std::max(0, items_->currentRow()));
      return true;
    }
  }
  return CardFrame::eventFilter(watched, event);
}

}  // namespace korvel::db
