#include "ui/find_bar.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSignalBlocker>
#include <QToolButton>
#include <utility>

#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/shown_text.h"
#include "ui/style/theme.h"
#include "ui/texts.h"

namespace korvel::ui {

void FindHistory::remember(const QString& text) {
  if (text.isEmpty()) return;
  texts_.removeAll(text);
  texts_.prepend(text);
  while (texts_.size() > size) texts_.removeLast();
  if (used) used(text);
}

FindBar::FindBar(FindHistory& history, QWidget* parent)
    : QFrame(parent), history_(history), text_(new QComboBox(this)), count_(new QLabel(this)) {
  setObjectName(QStringLiteral("FindBar"));
  auto* row = new QHBoxLayout(this);
  const int inside = px(this, space::inside);
  const int inGroup = px(this, space::inGroup);
  row->setContentsMargins(inside, inGroup, inside, inGroup);
  row->setSpacing(inGroup);

  constexpr int leastTextWidth = 120;
  constexpr int textWidth = 240;
  text_->setObjectName(QStringLiteral("FindText"));
  text_->setEditable(true);
  text_->setInsertPolicy(QComboBox::NoInsert);
  text_->setCompleter(nullptr);
  text_->setMaxVisibleItems(FindHistory::size);
  text_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  text_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  text_->setMinimumWidth(px(this, leastTextWidth));
  text_->setMaximumWidth(px(this, textWidth));
  text_->lineEdit()->setClearButtonEnabled(false);
  row->addWidget(text_, 2);

  count_->setObjectName(QStringLiteral("FindCount"));
  count_->setTextFormat(Qt::PlainText);
  count_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  setMuted(*count_);
  row->addSpacing(inGroup);
  row->addWidget(count_, 1);

  const auto iconButton = [this, row](IconName name, const char* objectName) {
    auto* button = new IconButton(name, this);
    button->setObjectName(QLatin1String(objectName));
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    row->addWidget(button);
    return button;
  };
  previous_ = iconButton(IconName::PreviousHit, "FindPrevious");
  next_ = iconButton(IconName::NextHit, "FindNext");
  row->addSpacing(inGroup);
  exactCase_ = addToggle(QStringLiteral("Aa"), "FindExactCase");
  wholeValue_ = addToggle(QStringLiteral("W"), "FindWholeValue");
  regularExpression_ = addToggle(QStringLiteral(".*"), "FindRegularExpression");
  row->addSpacing(inGroup);
  filter_ = iconButton(IconName::FilterRows, "FindFilter");
  close_ = iconButton(IconName::Close, "FindClose");
  const std::vector<QWidget*> order = focusOrder();
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);

  connect(text_, &QComboBox::editTextChanged, this, [this] { Q_EMIT requestChanged(request()); });
  for (const QToolButton* toggle : {exactCase_, wholeValue_, regularExpression_})
    connect(toggle, &QToolButton::toggled, this, [this] { Q_EMIT requestChanged(request()); });
  connect(previous_, &QToolButton::clicked, this, &FindBar::previousRequested);
  connect(next_, &QToolButton::clicked, this, &FindBar::nextRequested);
  connect(filter_, &QToolButton::clicked, this, &FindBar::filterRequested);
  connect(close_, &QToolButton::clicked, this, &FindBar::closeRequested);
  for (const auto& use :
       {&FindBar::nextRequested, &FindBar::previousRequested, &FindBar::filterRequested, &FindBar::closeRequested})
    connect(this, use, this, [this] { history_.remember(text_->currentText()); });
  for (QObject* taker : {static_cast<QObject*>(text_), static_cast<QObject*>(text_->lineEdit())})
    taker->installEventFilter(this);
  enableSteps(false);
}

QToolButton* FindBar::addToggle(const QString& caption, const char* name) {
  auto* toggle = new QToolButton(this);
  toggle->setObjectName(QLatin1String(name));
  toggle->setText(caption);
  toggle->setCheckable(true);
  toggle->setAutoRaise(true);
  toggle->setFocusPolicy(Qt::StrongFocus);
  setLineHeight(*toggle, space::field);
  layout()->addWidget(toggle);
  return toggle;
}

void FindBar::setTexts(const std::function<QString(std::string_view key)>& texts) {
  texts_ = texts;
  setAccessibleName(texts("find.bar"));
  text_->setAccessibleName(texts("find.text"));
  text_->lineEdit()->setAccessibleName(texts("find.text"));
  text_->lineEdit()->setPlaceholderText(texts("find.text"));
  text_->setToolTip(texts("find.textHint"));
  const std::pair<QToolButton*, const char*> buttons[] = {
      {previous_, "find.previous"},
      {next_, "find.next"},
      {exactCase_, "find.exactCase"},
      {wholeValue_, "find.wholeValue"},
      {regularExpression_, "find.regularExpression"},
      {filter_, "find.filter"},
      {close_, "find.close"},
  };
  for (const auto& [button, key] : buttons) {
    button->setToolTip(texts(key));
    button->setAccessibleName(texts(key));
  }
  if (shown_) shown_();
}

void FindBar::open(const std::optional<FindRequest>& request) {
  show();
  if (request) {
    const QSignalBlocker quiet(this);
    text_->setEditText(request->text);
    exactCase_->setChecked(request->exactCase);
    wholeValue_->setChecked(request->wholeValue);
    regularExpression_->setChecked(request->regularExpression);
  }
  text_->setFocus(Qt::ShortcutFocusReason);
  text_->lineEdit()->selectAll();
}

FindRequest FindBar::request() const {
  return {text_->currentText(), exactCase_->isChecked(), wholeValue_->isChecked(), regularExpression_->isChecked()};
}

std::vector<QWidget*> FindBar::focusOrder() const {
  return {text_, previous_, next_, exactCase_, wholeValue_, regularExpression_, filter_, close_};
}

void FindBar::showCountText(const QString& text) {
  count_->setText(text);
  count_->setToolTip(text.isEmpty() ? QString() : plainToolTip(text));
  // The keyboard is on the text: what it finds is said with it.
  text_->lineEdit()->setAccessibleDescription(text);
}

void FindBar::enableSteps(bool enabled) {
  for (QToolButton* button : {previous_, next_, filter_}) button->setEnabled(enabled);
}

void FindBar::showCount(std::size_t current, std::size_t hits) {
  shown_ = [this, current, hits] {
    if (!texts_) return;
    if (hits == 0)
      showCountText(texts_("find.noHits"));
    else if (current == 0)
      showCountText(texts_(hits == 1 ? "find.oneHit" : "find.hits").arg(countText(hits)));
    else
      showCountText(texts_("find.count").arg(countText(current), countText(hits)));
  };
  shown_();
  enableSteps(hits > 0);
}

void FindBar::showSearching() {
  shown_ = [this] {
    if (texts_) showCountText(texts_("find.searching"));
  };
  shown_();
  filter_->setEnabled(true);
}

void FindBar::showProblem(const std::function<QString()>& text) {
  shown_ = [this, text] { showCountText(text()); };
  shown_();
  enableSteps(false);
}

void FindBar::showNothing() {
  showProblem([] { return QString(); });
}

void FindBar::enableFilter(bool enabled) {
  filter_->setEnabled(enabled);
}

void FindBar::offerHistory() {
  const QSignalBlocker quiet(text_);
  const QString typed = text_->currentText();
  text_->clear();
  text_->addItems(history_.texts());
  text_->setCurrentIndex(static_cast<int>(history_.texts().indexOf(typed)));
  text_->setEditText(typed);
}

bool FindBar::handleKey(int key, Qt::KeyboardModifiers modifiers, bool onlyAsked) {
  modifiers &= ~Qt::KeypadModifier;
  const bool plain = modifiers == Qt::NoModifier;
  const bool shifted = modifiers == Qt::ShiftModifier;
  const bool alternative = modifiers == Qt::AltModifier;
  std::function<void()> action;
  switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (modifiers == Qt::ControlModifier)
        action = [this] {
          if (filter_->isEnabled()) Q_EMIT filterRequested();
        };
      // On a button it presses the button.
      if (!action && !text_->hasFocus() && !text_->lineEdit()->hasFocus()) return false;
      [[fallthrough]];
    case Qt::Key_F3:
      if (plain) action = [this] { Q_EMIT nextRequested(); };
      if (shifted) action = [this] { Q_EMIT previousRequested(); };
      break;
    case Qt::Key_Escape:
      if (plain) action = [this] { Q_EMIT closeRequested(); };
      break;
    case Qt::Key_C:
      if (alternative) action = [this] { exactCase_->toggle(); };
      break;
    case Qt::Key_W:
      if (alternative) action = [this] { wholeValue_->toggle(); };
      break;
    case Qt::Key_R:
      if (alternative) action = [this] { regularExpression_->toggle(); };
      break;
    default:
      break;
  }
  if (!action) return false;
  if (!onlyAsked) action();
  return true;
}

bool FindBar::event(QEvent* event) {
  // Keys that the field or a button has passed on. The bar's keys come before the letters of menus.
  if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (handleKey(key->key(), key->modifiers(), event->type() == QEvent::ShortcutOverride)) {
      event->accept();
      return true;
    }
  }
  return QFrame::event(event);
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool asked = event->type() == QEvent::ShortcutOverride;
    if (handleKey(key->key(), key->modifiers(), asked)) {
      event->accept();
      return true;
    }
    const bool opens = key->key() == Qt::Key_Up || key->key() == Qt::Key_Down || key->key() == Qt::Key_F4;
    if (!asked && opens) offerHistory();
  }
  if (event->type() == QEvent::MouseButtonPress && watched == text_) offerHistory();
  return QFrame::eventFilter(watched, event);
}

void FindBar::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) update();
}

void FindBar::paintEvent(QPaintEvent* event) {
  Q_UNUSED(event)
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal line = px(this, 1);
  painter.setPen(QPen(theme.border, line));
  painter.setBrush(theme.surface);
  const qreal radius = px(this, space::cardRadius);
  painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
}

}  // namespace korvel::ui
