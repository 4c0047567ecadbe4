#include "control/activity_strip.h"

#include <QAccessible>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "control/activity_legend.h"
#include "control/activity_words.h"
#include "control/elided_label.h"
#include "control/filter_condition.h"
#include "control/texts.h"
#include "ui/dialogs.h"
#include "ui/icons/icons.h"
#include "ui/style/theme.h"

namespace korvel::control {
namespace {

using query::ActivityStep;
using ui::named;

constexpr std::array<const char*, 4> stepKeys = {"activity.hour", "activity.day", "activity.week", "activity.month"};
constexpr std::array<const char*, 4> stepNames = {"StepHour", "StepDay", "StepWeek", "StepMonth"};
constexpr int buttonHeight = 24;

}  // namespace

ActivityStrip::ActivityStrip(QWidget* parent)
    : QFrame(parent),
      kinds_(named(new QComboBox(this), "ActivityKinds")),
      readout_(named(new ElidedLabel(this), "ActivityReadout")),
      close_(named(new QToolButton(this), "ActivityClose")),
      bars_(new ActivityBars(this)),
      legend_(new ActivityLegend(this)) {
  setObjectName(QStringLiteral("ActivityStrip"));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  const int inside = ui::px(this, ui::space::inside);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(inside, ui::px(this, ui::space::inGroup), inside, ui::px(this, ui::space::inGroup));
  column->setSpacing(ui::px(this, ui::space::inGroup));
  auto* row = new QHBoxLayout;
  row->setSpacing(ui::px(this, ui::space::inGroup));
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    auto* button = named(new QToolButton(this), stepNames.at(i));
    button->setCheckable(true);
    button->setAutoExclusive(true);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    connect(button, &QToolButton::clicked, this, [this, i] { Q_EMIT stepChosen(static_cast<ActivityStep>(i)); });
    steps_.at(i) = button;
    row->addWidget(button);
  }
  for (QToolButton* button : {steps_[0], steps_[1], steps_[2], steps_[3], close_}) {
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    ui::setLineHeight(*button, buttonHeight);
  }
  row->addSpacing(inside);
  ui::setLineHeight(*kinds_, buttonHeight);
  row->addWidget(kinds_);
  row->addSpacing(inside);
  readout_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  readout_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  row->addWidget(readout_, 1);
  close_->setIcon(ui::icon(ui::IconName::Close));
  close_->setIconSize({ui::px(this, ui::space::icon), ui::px(this, ui::space::icon)});
  row->addWidget(close_);
  column->addLayout(row);
  column->addWidget(bars_, 1);
  column->addWidget(legend_);

  connect(kinds_, &QComboBox::activated, this, &ActivityStrip::kindChosen);
  connect(close_, &QToolButton::clicked, this, &ActivityStrip::closeRequested);
  connect(bars_, &ActivityBars::spokenOfChanged, this, [this] { showReadout(); });
  connect(bars_, &ActivityBars::sightChanged, this, [this] { showLegend(); });
  connect(bars_, &ActivityBars::stepWanted, this, [this](int direction) { changeStep(direction); });
  connect(bars_, &ActivityBars::leaveWanted, this, &ActivityStrip::leaveRequested);
  bars_->setToolTips([this](int bar) { return tipOf(bar); });
  hide();
}

QSize ActivityStrip::sizeHint() const {
  // As with the names of the parts, which may be hidden just now.
  const QMargins margins = layout()->contentsMargins();
  return {bars_->sizeHint().width(), margins.top() + margins.bottom() + close_->maximumHeight() +
                                         bars_->sizeHint().height() + legend_->sizeHint().height() +
                                         2 * layout()->spacing()};
}

void ActivityStrip::setTexts(const std::function<QString(std::string_view key)>& texts) {
  texts_ = texts;
  setAccessibleName(texts("activity.title"));
  bars_->setAccessibleName(texts("activity.title"));
  for (std::size_t i = 0; i < steps_.size(); ++i) {
    steps_.at(i)->setText(texts(stepKeys.at(i)));
    steps_.at(i)->setToolTip(texts("activity.stepHint"));
    steps_.at(i)->setAccessibleDescription(texts("activity.stepHint"));
  }
  kinds_->setAccessibleName(texts("activity.stackedBy"));
  kinds_->setToolTip(texts("activity.stackedBy"));
  close_->setAccessibleName(texts("activity.close"));
  close_->setToolTip(texts("activity.close"));
  showReadout();
  showLegend();
}

void ActivityStrip::setKinds(const QStringList& captions) {
  kinds_->setVisible(!captions.isEmpty());
  QStringList shown;
  for (int i = 0; i < kinds_->count(); ++i) shown << kinds_->itemText(i);
  if (shown == captions) return;
  const QString chosen = kinds_->currentText();
  kinds_->clear();
  kinds_->addItems(captions);
  kinds_->setCurrentIndex(std::max(0, static_cast<int>(captions.indexOf(chosen))));
  if (captions.isEmpty()) kinds_->setCurrentIndex(-1);
}

int ActivityStrip::kind() const {
  return kinds_->currentIndex();
}

void ActivityStrip::showActivity(query::Activity activity, std::optional<ActivityStep> asked) {
  asked_ = asked;
  for (QToolButton* button : steps_) button->setEnabled(true);
  steps_.at(static_cast<std::size_t>(activity.step))->setChecked(true);
  totals_.assign(activity.kindCount(), 0);
  for (const query::ActivityBar& bar : activity.bars)
    for (std::size_t kind = 0; kind < bar.counts.size(); ++kind) totals_[kind] += bar.counts[kind];
  bars_->setMessage({});
  bars_->setActivity(std::move(activity));
  showLegend();
}

void ActivityStrip::showMessage(const QString& text) {
  asked_.reset();
  for (QToolButton* button : steps_) button->setEnabled(false);
  totals_.clear();
  bars_->setMessage(text);
  bars_->setActivity({});
  showLegend();
  bars_->setAccessibleDescription(text);
}

void ActivityStrip::changeStep(int direction) {
  if (bars_->activity().bars.empty()) return;
  // Where there were too many bars for a step, the longer one that is shown is the shortest.
  const int step = static_cast<int>(bars_->activity().step) + direction;
  if (step >= 0 && step < static_cast<int>(steps_.size())) Q_EMIT stepChosen(static_cast<ActivityStep>(step));
}

QString ActivityStrip::kindName(std::size_t kind) const {
  const query::Activity& activity = bars_->activity();
  if (kind < activity.kinds.size()) {
    constexpr int mostCharacters = 60;
    const QString name = valueName(activity.kinds[kind]).simplified();
    return name.size() > mostCharacters ? name.left(mostCharacters) + QChar(0x2026) : name;
  }
  return texts_ ? texts_(activity.kinds.empty() ? "activity.all" : "activity.others") : QString();
}

QString ActivityStrip::readout() const {
  if (!texts_ || bars_->activity().bars.empty()) return {};
  const auto spoken = bars_->spokenOf();
  if (!spoken) return texts_("activity.hint");
  std::size_t rows = 0;
  const auto& shown = bars_->activity().bars;
  for (int bar = spoken->first; bar <= spoken->second; ++bar) rows += shown[static_cast<std::size_t>(bar)].total();
  const QString text = texts_("activity.readout").arg(spanName(bars_->spanOfBars(*spoken)), countText(rows));
  return bars_->isSelecting() ? texts_("activity.selected").arg(text) : text;
}

QString ActivityStrip::tipOf(int bar) const {
  const query::ActivityBar& shown = bars_->activity().bars.at(static_cast<std::size_t>(bar));
  QStringList lines{
      texts_("activity.readout").arg(periodName(shown.begin, bars_->activity().step), countText(shown.total()))};
  for (std::size_t kind = 0; kind < shown.counts.size(); ++kind)
    if (shown.counts[kind] > 0) lines << kindName(kind) + QStringLiteral(": ") + countText(shown.counts[kind]);
  return lines.join(QLatin1Char('\n'));
}

void ActivityStrip::showReadout() {
  const QString text = readout();
  readout_->setContent(text);
  update();  // the frame, which shows where the keyboard is
  if (bars_->activity().bars.empty()) return;
  // The kinds in a bar are told apart by shades, and by a tooltip of the pointer: here they are said.
  const auto spoken = bars_->spokenOf();
  const bool isOneBar = texts_ && spoken && spoken->first == spoken->second && !bars_->isSelecting();
  const QString said = isOneBar ? tipOf(spoken->first).replace(QLatin1Char('\n'), QStringLiteral("; ")) : text;
  if (said == bars_->accessibleDescription()) return;
  bars_->setAccessibleDescription(said);
  QAccessibleEvent changed(bars_, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&changed);
}

QString ActivityStrip::remark() const {
  const query::Activity& activity = bars_->activity();
  if (!texts_ || activity.bars.empty()) return {};
  QStringList parts;
  const auto captionOf = [this](ActivityStep step) { return texts_(stepKeys.at(static_cast<std::size_t>(step))); };
  if (asked_ && *asked_ != activity.step)
    parts << texts_("activity.coarser").arg(captionOf(*asked_), captionOf(activity.step));
  if (activity.bars.size() > bars_->room()) {
    const auto [first, last] = bars_->inSight();
    parts << texts_("activity.inSight")
                 .arg(countText(static_cast<std::size_t>(first) + 1), countText(static_cast<std::size_t>(last) + 1),
                      countText(activity.bars.size()));
  }
  if (activity.undated > 0) parts << texts_("activity.undated").arg(countText(activity.undated));
  return parts.join(QStringLiteral(". "));
}

void ActivityStrip::showLegend() {
  const query::Activity& activity = bars_->activity();
  std::vector<ActivityLegend::Entry> entries;
  if (!activity.bars.empty())
    for (std::size_t kind = 0; kind < totals_.size(); ++kind)
      entries.push_back({output::pictures::kindColor(bars_->colors(), kind, totals_.size()),
                         kindName(kind) + QStringLiteral("  ") + countText(totals_[kind])});
  legend_->setEntries(std::move(entries), remark());
}

std::vector<QWidget*> ActivityStrip::focusOrder() const {
  return {steps_[0], steps_[1], steps_[2], steps_[3], kinds_, close_, bars_};
}

void ActivityStrip::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Plus) {
    changeStep(-1);
  } else if (event->key() == Qt::Key_Minus) {
    changeStep(1);
  } else if (event->key() == Qt::Key_Escape) {
    Q_EMIT leaveRequested();
  } else {
    QFrame::keyPressEvent(event);
  }
}

void ActivityStrip::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
    showLegend();
    update();
  }
}

void ActivityStrip::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  // In a small window the bars come before their names, which tooltips have too.
  const QMargins margins = layout()->contentsMargins();
  const int rest = height() - margins.top() - margins.bottom() - close_->maximumHeight() - layout()->spacing();
  legend_->setVisible(rest >= bars_->minimumSizeHint().height() + layout()->spacing() + legend_->sizeHint().height());
}

void ActivityStrip::paintEvent(QPaintEvent* /*event*/) {
  const ui::Theme& theme = ui::Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal line = ui::px(this, 1);
  const qreal radius = ui::px(this, ui::space::cardRadius);
  painter.setPen(QPen(bars_->hasFocus() ? theme.accent : theme.border, line));
  painter.setBrush(theme.surface);
  painter.drawRoundedRect(QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
}

}  // namespace korvel::control
