#include "ui/buttons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QStyle>
#include <QStyleOptionButton>
#include <algorithm>

#include "ui/style/theme.h"

namespace korvel::ui {
namespace {

void setUpIcon(QAbstractButton& button) {
  const int side = px(&button, space::icon);
  button.setIconSize({side, side});
}

}  // namespace

bool isPrimary(const QWidget& button) {
  return qobject_cast<const PrimaryButton*>(&button) != nullptr;
}

PrimaryButton::PrimaryButton(QWidget* parent) : QPushButton(parent) {
  setUpIcon(*this);
}

PrimaryButton::PrimaryButton(IconName name, const QString& text, QWidget* parent) : PrimaryButton(parent) {
  setIcon(ui::icon(name, IconTone::OnFill));
  setText(text);
}

SecondaryButton::SecondaryButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
  setUpIcon(*this);
}

SecondaryButton::SecondaryButton(IconName name, const QString& text, QWidget* parent) : SecondaryButton(text, parent) {
  setIcon(ui::icon(name));
}

IconButton::IconButton(IconName name, QWidget* parent) : QToolButton(parent) {
  setIcon(ui::icon(name));
  setUpIcon(*this);
  setFocusPolicy(Qt::StrongFocus);  // by default tool buttons are not in the tab order
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize IconButton::sizeHint() const {
  return {px(this, space::button), px(this, space::button)};
}

QSize IconButton::minimumSizeHint() const {
  return {iconSize().width() + px(this, 8), px(this, space::button)};
}

bool IconButton::event(QEvent* event) {
  const bool done = QToolButton::event(event);
  if (event->type() == QEvent::ToolTipChange) setAccessibleName(toolTip());
  return done;
}

IconRow::IconRow(QWidget* parent) : QWidget(parent) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(px(this, space::inGroup));
}

void IconRow::add(QAbstractButton* button) {
  static_cast<QHBoxLayout*>(layout())->addWidget(button, 1);
}

namespace {

/// The width at which the button's text is not cut, without the margin that the style adds.
int minWidth(const QWidget& button) {
  const QSize hint = button.sizeHint();
  QStyleOptionButton option;
  option.initFrom(&button);
  option.rect = QRect(QPoint(), hint);
  const int frame =
      hint.width() - button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button).width();
  const int comfort = 2 * px(&button, 4);
  return hint.width() - std::max(0, comfort - frame);
}

}  // namespace

TextRow::TextRow(QWidget* parent) : QWidget(parent), layout_(new QBoxLayout(QBoxLayout::LeftToRight, this)) {
  layout_->setContentsMargins(0, 0, 0, 0);
  layout_->setSpacing(px(this, space::inGroup));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void TextRow::add(QAbstractButton* button) {
  button->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
  layout_->addWidget(button, 1);
  arrange();
}

QSize TextRow::minimumSizeHint() const {
  return {px(this, 64), QWidget::minimumSizeHint().height()};
}

bool TextRow::event(QEvent* event) {
  const bool done = QWidget::event(event);
  // A button whose text or font changes sends a layout request.
  if (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest || event->type() == QEvent::Show) {
    arrange();
  }
  return done;
}

void TextRow::arrange() {
  int widest = 0;
  int shown = 0;
  for (int i = 0; i < layout_->count(); ++i) {
    const QWidget* button = layout_->itemAt(i)->widget();
    if (button == nullptr || button->isHidden()) continue;
    widest = std::max(widest, minWidth(*button));
    ++shown;
  }
  const bool fits = widest * shown + layout_->spacing() * (shown - 1) <= width();
  const auto wanted = fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (layout_->direction() != wanted) {
    layout_->setDirection(wanted);
    updateGeometry();
  }
}

void setButtonText(QAbstractButton& button, const QString& text) {
  button.setText(text);
  button.setAccessibleName(QString(text).remove(QLatin1Char('&')));
}

}  // namespace korvel::ui
