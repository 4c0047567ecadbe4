#include "ui/value_list.h"

#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "ui/buttons.h"
#include "ui/check_tree.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/texts.h"

namespace korvel::ui {
namespace {

/// Rows of one weight; a click anywhere on a row ticks it, as in other lists of check boxes.
class ValueDelegate final : public CheckTreeDelegate {
 public:
  using CheckTreeDelegate::CheckTreeDelegate;

  bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
    auto* values = qobject_cast<ValueChoiceModel*>(model);
    if (values == nullptr) return CheckTreeDelegate::editorEvent(event, model, option, index);
    if (event->type() == QEvent::MouseButtonRelease) {
      const auto* mouse = static_cast<QMouseEvent*>(event);
      if (mouse->button() != Qt::LeftButton || !option.rect.contains(mouse->position().toPoint())) return false;
      values->toggle(index);
      return true;
    }
    // The second click of two has been a click already.
    if (event->type() == QEvent::MouseButtonDblClick) return true;
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space) {
      values->toggle(index);
      return true;
    }
    return false;
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): years are no headings, which a check tree shows semi-bold.
    QStyledItemDelegate::initStyleOption(option, index);
    option->textElideMode = Qt::ElideRight;
  }
};

}  // namespace

ValueList::ValueList(QWidget* parent)
    : QFrame(parent, Qt::Popup),
      search_(new QLineEdit(this)),
      all_(new QCheckBox(this)),
      allCount_(new QLabel(this)),
      list_(new QTreeView(this)),
      more_(new QLabel(this)),
      cancel_(new SecondaryButton({}, this)),
      ok_(new PrimaryButton(this)) {
  setObjectName(QStringLiteral("ValueList"));
  auto* column = new QVBoxLayout(this);
  const int inside = px(this, space::inside);
  const int inGroup = px(this, space::inGroup);
  column->setContentsMargins(inside, inside, inside, inside);
  column->setSpacing(inGroup);

  search_->setObjectName(QStringLiteral("ValueSearch"));
  search_->setClearButtonEnabled(true);
  column->addWidget(search_);

  all_->setObjectName(QStringLiteral("AllValues"));
  setMuted(*allCount_);
  auto* allRow = new QHBoxLayout;
  allRow->setContentsMargins(inGroup, inGroup, inGroup, 0);
  allRow->addWidget(all_, 1);
  allRow->addWidget(allCount_);
  column->addLayout(allRow);

  list_->setObjectName(QStringLiteral("Values"));
  list_->setModel(&model_);
  styleCheckTree(*list_);
  list_->setItemDelegate(new ValueDelegate(list_));
  list_->setSelectionBehavior(QAbstractItemView::SelectRows);
  list_->setAllColumnsShowFocus(true);
  list_->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  list_->setTabKeyNavigation(false);
  column->addWidget(list_);

  more_->setObjectName(QStringLiteral("MoreValues"));
  more_->setTextFormat(Qt::PlainText);
  more_->setWordWrap(true);
  setMuted(*more_);
  column->addWidget(more_);

  auto* buttons = new QHBoxLayout;
  buttons->setContentsMargins(0, inGroup, 0, 0);
  buttons->setSpacing(inGroup);
  buttons->addStretch(1);
  cancel_->setObjectName(QStringLiteral("CancelValues"));
  ok_->setObjectName(QStringLiteral("ChooseValues"));
  ok_->setText(QStringLiteral("OK"));
  cancel_->setAutoDefault(true);
  ok_->setAutoDefault(true);
  buttons->addWidget(cancel_);
  buttons->addWidget(ok_);
  column->addLayout(buttons);

  connect(search_, &QLineEdit::textChanged, this, &ValueList::searchFor);
  connect(all_, &QCheckBox::clicked, this, [this] { model_.checkListed(model_.listedState() != Qt::Checked); });
  connect(&model_, &ValueChoiceModel::checksChanged, this, &ValueList::showChecks);
  connect(ok_, &QPushButton::clicked, this, &ValueList::accept);
  connect(cancel_, &QPushButton::clicked, this, &QWidget::close);
  search_->installEventFilter(this);
  list_->installEventFilter(this);
}

void ValueList::setTexts(const std::function<QString(std::string_view key)>& texts) {
  texts_ = texts;
  setAccessibleName(texts("filter.values"));
  search_->setPlaceholderText(texts("filter.search"));
  search_->setAccessibleName(texts("filter.search"));
  all_->setText(texts("filter.all"));
  list_->setAccessibleName(texts("filter.values"));
  cancel_->setText(texts("filter.cancel"));
}

int ValueList::rowHeight() const {
  return std::max(px(list_, space::treeRow), list_->fontMetrics().height() + px(list_, 4));
}

void ValueList::showContent(ValueListContent content) {
  moreThan_ = content.moreThan;
  const auto widest =
      std::max_element(content.values.begin(), content.values.end(),
                       [](const ListedValue& one, const ListedValue& other) { return one.count < other.count; });
  const std::size_t largest = widest == content.values.end() ? 0 : widest->count;
  list_->setRootIsDecorated(content.isTree);
  model_.setQuietColor(Theme::of(*this).muted);
  model_.setValues(std::move(content.values));
  QHeaderView* const header = list_->header();
  header->setStretchLastSection(false);
  header->setMinimumSectionSize(1);
  header->setSectionResizeMode(0, QHeaderView::Stretch);
  header->setSectionResizeMode(1, QHeaderView::Fixed);
  header->resizeSection(1, fontMetrics().horizontalAdvance(countText(largest)) + px(this, 16));
  more_->setText(moreThan_ > 0 && texts_ ? texts_("filter.more").arg(countText(moreThan_)) : QString());
  more_->setVisible(moreThan_ > 0);
}

void ValueList::open(ValueListContent content, const QRect& header, Source source) {
  source_ = nullptr;
  search_->clear();
  wasEmptied_ = false;
  const auto lines = static_cast<int>(std::min<std::size_t>(content.values.size(), linesAtMost));
  // The longest of the first values; the rest is cut, and its tooltip has it all.
  constexpr std::size_t measured = 200;
  constexpr int leastWidth = 240;
  constexpr int mostWidth = 420;
  int text = 0;
  for (std::size_t i = 0; i < std::min(content.values.size(), measured); ++i)
    text = std::max(text, fontMetrics().horizontalAdvance(content.values[i].text.left(100)));
  showContent(std::move(content));
  wasMore_ = moreThan_ > 0;
  source_ = std::move(source);
  list_->setFixedHeight(std::max(1, lines) * rowHeight() + 2 * list_->frameWidth() + px(this, 8));
  const int margins = px(this, 16 + 24 + 24) + list_->header()->sectionSize(1) + px(this, 12);
  const int width = std::clamp(text + margins, px(this, leastWidth), px(this, mostWidth));
  // The layout knows how little a button can be, not what its text needs.
  const int buttons = cancel_->sizeHint().width() + px(this, space::inGroup) + ok_->sizeHint().width();
  const QMargins around = layout()->contentsMargins();
  setFixedWidth(
      std::max({width, layout()->minimumSize().width(), buttons + around.left() + around.right() + 2 * lineWidth()}));
  adjustSize();

  // Under the header where there is room, else over it; never beyond the screen.
  QPoint place = header.bottomLeft() + QPoint(0, 1);
  if (const QScreen* const shownOn = parentWidget() != nullptr ? parentWidget()->screen() : screen()) {
    const QRect room = shownOn->availableGeometry();
    if (place.y() + height() > room.bottom() && header.top() - height() >= room.top())
      place.setY(header.top() - height());
    place.setX(std::clamp(place.x(), room.left(), std::max(room.left(), room.right() + 1 - this->width())));
    place.setY(std::clamp(place.y(), room.top(), std::max(room.top(), room.bottom() + 1 - height())));
  }
  move(place);
  show();
  search_->setFocus(Qt::PopupFocusReason);
}

bool ValueList::isSearching() const {
  return !search_->text().isEmpty();
}

void ValueList::searchFor(const QString& text) {
  // Where only some values are listed, the rest is searched by the owner.
  if (source_ && wasMore_) {
    showContent(source_(text));
  } else {
    model_.search(text);
  }
  if (!text.isEmpty()) list_->expandAll();
}

void ValueList::showChecks() {
  list_->viewport()->update();
  const Qt::CheckState state = model_.listedState();
  if (state != Qt::PartiallyChecked && !isSearching()) wasEmptied_ = state == Qt::Unchecked;
  all_->setTristate(state == Qt::PartiallyChecked);
  all_->setCheckState(state);
  allCount_->setText(countText(model_.listedRecords()));
  // Nothing would be left to show.
  ok_->setEnabled(state != Qt::Unchecked);
}

void ValueList::accept() {
  if (!ok_->isEnabled()) return;
  close();
  Q_EMIT chosen();
}

void ValueList::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    close();
  } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    accept();
  } else {
    QFrame::keyPressEvent(event);
  }
}

bool ValueList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (watched == search_ && key == Qt::Key_Down) {
      if (!list_->currentIndex().isValid()) list_->setCurrentIndex(model_.index(0, 0));
      list_->setFocus(Qt::TabFocusReason);
      return true;
    }
    if (watched == list_ && key == Qt::Key_Up && list_->currentIndex() == model_.index(0, 0)) {
      search_->setFocus(Qt::TabFocusReason);
      return true;
    }
    if (watched == list_ && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
      accept();
      return true;
    }
  }
  return QFrame::eventFilter(watched, event);
}

void ValueList::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.fillRect(rect(), theme.surface);
  painter.setPen(QPen(theme.border, px(this, 1)));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace korvel::ui
