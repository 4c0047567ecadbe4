#include "ui/chip_bar.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QSignalBlocker>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "ui/dialogs.h"
#include "ui/shown_text.h"
#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

constexpr int chipHeight = 22;
constexpr int chipInset = 10;
constexpr int crossWidth = 20;
constexpr int leastChipWidth = 64;

QString inOneLine(const QString& text) {
  constexpr qsizetype characters = 200;
  return visibleFormats(text.left(characters)).simplified();
}

}  // namespace

ChipButton::ChipButton(Chip chip, const QString& removeHint, QWidget* parent)
    : QAbstractButton(parent), chip_(std::move(chip)) {
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  setAttribute(Qt::WA_Hover);
  setAccessibleName(QString(chip_.column + QLatin1Char(' ') + chip_.condition).trimmed());
  setAccessibleDescription(removeHint);
  setToolTip(plainToolTip(chip_.toolTip + QLatin1Char('\n') + removeHint));
}

QSize ChipButton::sizeHint() const {
  const int column = QFontMetrics(semiBold(font())).horizontalAdvance(inOneLine(chip_.column) + QLatin1Char(' '));
  const int condition = fontMetrics().horizontalAdvance(inOneLine(chip_.condition));
  return {column + condition + px(this, chipInset) + px(this, crossWidth) + 2,
          std::max(px(this, chipHeight), fontMetrics().height() + px(this, 4))};
}

QSize ChipButton::minimumSizeHint() const {
  const QSize whole = sizeHint();
  return {std::min(whole.width(), px(this, leastChipWidth)), whole.height()};
}

QRect ChipButton::crossPlace() const {
  const int width = px(this, crossWidth);
  const QRect end(this->width() - width, 0, width, height());
  return isLeftToRight() ? end : QRect(0, 0, width, height());
}

void ChipButton::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal line = px(this, 1);
  const bool focused = hasFocus();
  const qreal stroke = focused ? 1.5 * line : line;
  const QRectF shape = QRectF(rect()).adjusted(stroke / 2, stroke / 2, -stroke / 2, -stroke / 2);
  painter.setPen(QPen(focused ? theme.accent : mixed(theme.selection, theme.accent, 0.5), stroke));
  painter.setBrush(underMouse() ? mixed(theme.selection, theme.pressed, 0.5) : theme.selection);
  painter.drawRoundedRect(shape, shape.height() / 2, shape.height() / 2);

  const int inset = px(this, chipInset);
  const int room = std::max(0, width() - inset - px(this, crossWidth));
  const QFont bold = semiBold(font());
  const QFontMetrics boldMetrics(bold);
  const QString column = boldMetrics.elidedText(inOneLine(chip_.column), Qt::ElideRight, room);
  const int columnWidth = std::min(room, boldMetrics.horizontalAdvance(column + QLatin1Char(' ')));
  const QString condition =
      fontMetrics().elidedText(inOneLine(chip_.condition), Qt::ElideMiddle, std::max(0, room - columnWidth));
  const auto placed = [this](const QRect& logical) {
    return isLeftToRight() ? logical : QRect(width() - logical.right() - 1, 0, logical.width(), logical.height());
  };
  painter.setPen(theme.onSelection);
  painter.setFont(bold);
  painter.drawText(placed({inset, 0, columnWidth, height()}), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                   column);
  painter.setFont(font());
  painter.drawText(placed({inset + columnWidth, 0, room - columnWidth, height()}),
                   Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, condition);

  constexpr int crossSide = 7;
  QRectF cross(0, 0, px(this, crossSide), px(this, crossSide));
  cross.moveCenter(QRectF(crossPlace()).center());
  painter.setPen(QPen(theme.onSelection, 1.2 * line, Qt::SolidLine, Qt::RoundCap));
  painter.drawLine(cross.topLeft(), cross.bottomRight());
  painter.drawLine(cross.topRight(), cross.bottomLeft());
}

void ChipButton::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
    Q_EMIT removeRequested();
  } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QAbstractButton::keyPressEvent(event);
  }
}

void ChipButton::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && isDown() && crossPlace().contains(event->position().toPoint())) {
    setDown(false);
    Q_EMIT removeRequested();
    return;
  }
  QAbstractButton::mouseReleaseEvent(event);
}

ChipBar::ChipBar(QWidget* parent)
    : QWidget(parent),
      row_(new QHBoxLayout(this)),
      count_(new QLabel(this)),
      pin_(new QToolButton(this)),
      clear_(new QToolButton(this)) {
  setObjectName(QStringLiteral("ChipBar"));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  row_->setContentsMargins(0, 0, 0, px(this, space::inGroup));
  row_->setSpacing(px(this, space::inside));
  count_->setObjectName(QStringLiteral("ShownCount"));
  count_->setTextFormat(Qt::PlainText);
  setMuted(*count_);
  pin_->setObjectName(QStringLiteral("PinFilters"));
  pin_->setCheckable(true);
  clear_->setObjectName(QStringLiteral("ClearFilters"));
  row_->addWidget(count_);
  for (QToolButton* button : {pin_, clear_}) {
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    button->setFocusPolicy(Qt::StrongFocus);
    setLineHeight(*button, chipHeight);
    row_->addWidget(button);
  }
  row_->addStretch(1);
  connect(pin_, &QToolButton::toggled, this, &ChipBar::pinToggled);
  connect(clear_, &QToolButton::clicked, this, &ChipBar::clearRequested);
  hide();
}

void ChipBar::setTexts(const std::function<QString(std::string_view key)>& texts) {
  texts_ = texts;
  setAccessibleName(texts("filter.bar"));
  pin_->setText(texts("filter.pin"));
  pin_->setToolTip(texts("filter.pinHint"));
  clear_->setText(texts("filter.clear"));
  clear_->setToolTip(texts("filter.clearHint"));
  for (QToolButton* button : {pin_, clear_}) button->setAccessibleDescription(button->toolTip());
}

void ChipBar::setChips(const std::vector<Chip>& chips) {
  const auto focused =
      std::find_if(buttons_.begin(), buttons_.end(), [](const auto* each) { return each->hasFocus(); });
  const bool inBar = isAncestorOf(QApplication::focusWidget());
  const auto place = focused - buttons_.begin();
  const bool onChip = focused != buttons_.end();
  for (ChipButton* button : buttons_) {
    button->hide();
    // Some of them are just being clicked.
    button->deleteLater();
  }
  buttons_.clear();
  chips_ = chips;
  const QString hint = texts_ ? texts_("filter.removeHint") : QString();
  for (std::size_t i = 0; i < chips_.size(); ++i) {
    auto* button = new ChipButton(chips_[i], hint, this);
    connect(button, &ChipButton::removeRequested, this, [this, i] { Q_EMIT removeRequested(static_cast<int>(i)); });
    connect(button, &QAbstractButton::clicked, this, [this, i] { Q_EMIT changeRequested(static_cast<int>(i)); });
    row_->insertWidget(static_cast<int>(i), button);
    button->show();
    buttons_.push_back(button);
  }
  // They go where the other buttons are, wherever the owner has put those.
  QWidget* before = pin_->previousInFocusChain();
  for (QWidget* button : buttons_) {
    setTabOrder(before, button);
    before = button;
  }
  setVisible(!chips_.empty());
  if (!inBar) return;
  if (buttons_.empty())
    Q_EMIT keyboardLeft();
  else if (onChip)
    buttons_[std::min(static_cast<std::size_t>(place), buttons_.size() - 1)]->setFocus(Qt::OtherFocusReason);
}

std::vector<QWidget*> ChipBar::focusOrder() const {
  std::vector<QWidget*> order(buttons_.begin(), buttons_.end());
  order.insert(order.end(), {pin_, clear_});
  return order;
}

void ChipBar::setCount(const QString& text, const QString& toolTip) {
  count_->setText(text);
  count_->setToolTip(toolTip.isEmpty() ? QString() : plainToolTip(toolTip));
  setAccessibleDescription(toolTip.isEmpty() ? text : text + QStringLiteral(". ") + toolTip);
}

void ChipBar::setPinned(bool pinned) {
  const QSignalBlocker quiet(pin_);
  pin_->setChecked(pinned);
}

bool ChipBar::isPinned() const {
  return pin_->isChecked();
}

void ChipBar::keyPressEvent(QKeyEvent* event) {
  const auto focused =
      std::find_if(buttons_.begin(), buttons_.end(), [](const auto* each) { return each->hasFocus(); });
  const bool back = event->key() == (isLeftToRight() ? Qt::Key_Left : Qt::Key_Right);
  const bool on = event->key() == (isLeftToRight() ? Qt::Key_Right : Qt::Key_Left);
  if (focused != buttons_.end() && back && focused != buttons_.begin()) {
    (*(focused - 1))->setFocus(Qt::TabFocusReason);
  } else if (focused != buttons_.end() && on && focused + 1 != buttons_.end()) {
    (*(focused + 1))->setFocus(Qt::TabFocusReason);
  } else {
    QWidget::keyPressEvent(event);
  }
}

}  // namespace korvel::ui
