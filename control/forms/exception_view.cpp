#include "control/forms/exception_view.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimeEdit>
#include <QTreeWidget>
#include <chrono>
#include <initializer_list>
#include <utility>

#include "control/texts.h"
#include "ui/buttons.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

using evidence::exceptionRuleCount;
using evidence::exceptionRules;
using ui::named;

constexpr int firstWidth = 560;
constexpr int firstHeight = 520;
constexpr int ruleColumn = 0;
constexpr int countColumn = 1;

constexpr std::array<const char*, 7> dayTexts = {"exceptions.monday",   "exceptions.tuesday", "exceptions.wednesday",
                                                 "exceptions.thursday", "exceptions.friday",  "exceptions.saturday",
                                                 "exceptions.sunday"};

QTime timeOf(std::chrono::minutes time) {
  constexpr std::chrono::minutes day = std::chrono::hours{24};
  return QTime::fromMSecsSinceStartOfDay(static_cast<int>(std::chrono::milliseconds(time % day).count()));
}

std::chrono::minutes minutesOf(const QTime& time) {
  return std::chrono::hours{time.hour()} + std::chrono::minutes{time.minute()};
}

}  // namespace

ExceptionView::ExceptionView(QWidget* owner)
    : QDialog(owner),
      lines_(exceptionRuleCount),
      lblState_(named(new QLabel, "lblState")),
      lblNote_(named(new QLabel, "lblNote")) {
  setObjectName(QStringLiteral("frmExceptions"));
  ui::applyStyle(*this);
  auto* column = ui::styleDialog(*this);
  for (QLabel* label : {lblState_, lblNote_}) {
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    ui::setMuted(*label);
  }
  buildRules();
  column->addWidget(lblState_);
  column->addWidget(rules_, 1);
  column->addWidget(lblNote_);
  buildHours();
  btClose_ = named(new ui::SecondaryButton, "btClose");
  // Enter in a field ends its change.
  btClose_->setAutoDefault(false);
  connect(btClose_, &QPushButton::clicked, this, &QDialog::reject);
  auto* foot = new QHBoxLayout;
  foot->addStretch(1);
  foot->addWidget(btClose_);
  column->addLayout(foot);
  rules_->setFocus();
  ui::setFirstSize(*this, firstWidth, firstHeight);
}

void ExceptionView::buildRules() {
  rules_ = named(new QTreeWidget, "lvRules");
  rules_->setColumnCount(2);
  rules_->setRootIsDecorated(false);
  rules_->setUniformRowHeights(true);
  rules_->setAllColumnsShowFocus(true);
  rules_->setTabKeyNavigation(false);
  rules_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  rules_->header()->setStretchLastSection(false);
  rules_->header()->setSectionsMovable(false);
  rules_->header()->setSectionResizeMode(ruleColumn, QHeaderView::Stretch);
  rules_->header()->setSectionResizeMode(countColumn, QHeaderView::ResizeToContents);
  for (std::size_t i = 0; i < exceptionRuleCount; ++i)
    (new QTreeWidgetItem(rules_))->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
  rules_->setCurrentItem(rules_->topLevelItem(0));
  rules_->installEventFilter(this);
  connect(rules_, &QTreeWidget::itemClicked, this,
          [this](QTreeWidgetItem* item) { choose(rules_->indexOfTopLevelItem(item)); });
}

void ExceptionView::buildHours() {
  lblHours_ = named(new QLabel, "lblHours");
  lblTo_ = named(new QLabel, "lblTo");
  timeFrom_ = named(new QTimeEdit, "timeFrom");
  timeTo_ = named(new QTimeEdit, "timeTo");
  lblHours_->setBuddy(timeFrom_);
  lblTo_->setBuddy(timeTo_);
  auto* hours = new QHBoxLayout;
  hours->setSpacing(ui::px(this, ui::space::inside));
  for (QWidget* each : std::initializer_list<QWidget*>{lblHours_, timeFrom_, lblTo_, timeTo_}) hours->addWidget(each);
  hours->addStretch(1);
  for (QTimeEdit* time : {timeFrom_, timeTo_}) {
    time->setDisplayFormat(QStringLiteral("HH:mm"));
    // A time is judged by when it is whole.
    time->setKeyboardTracking(false);
    connect(time, &QTimeEdit::timeChanged, this, [this] { sayHours(); });
  }
  auto* days = new QHBoxLayout;
  days->setSpacing(ui::px(this, ui::space::inside));
  for (std::size_t i = 0; i < days_.size(); ++i) {
    days_.at(i) = new QCheckBox;
    days_.at(i)->setObjectName(QStringLiteral("chkDay%1").arg(i));
    days->addWidget(days_.at(i));
    connect(days_.at(i), &QCheckBox::toggled, this, [this] { sayHours(); });
  }
  days->addStretch(1);
  auto* column = static_cast<QVBoxLayout*>(layout());
  column->addLayout(hours);
  column->addLayout(days);
}

void ExceptionView::setTexts() {
  setWindowTitle(ownText("exceptions.title"));
  rules_->setHeaderLabels({ownText("exceptions.rule"), ownText("exceptions.count")});
  rules_->setAccessibleName(ownText("exceptions.title"));
  rules_->setAccessibleDescription(ownText("exceptions.hint"));
  for (std::size_t i = 0; i < exceptionRuleCount; ++i)
    rules_->topLevelItem(static_cast<int>(i))->setText(ruleColumn, ownText(exceptionRules().at(i).textKey));
  lblHours_->setText(ownText("exceptions.hours"));
  lblTo_->setText(ownText("exceptions.to"));
  timeFrom_->setAccessibleName(lblHours_->text());
  timeTo_->setAccessibleName(ownText("exceptions.until"));
  for (std::size_t i = 0; i < days_.size(); ++i) days_.at(i)->setText(ownText(dayTexts.at(i)));
  ui::setButtonText(*btClose_, ownText("record.close"));
  showLines(std::vector<Line>(lines_));
}

void ExceptionView::showLines(const std::vector<Line>& lines) {
  lines_ = lines;
  const QString hint = ownText("exceptions.hint");
  const QColor quiet = ui::Theme::of(*this).muted;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const Line& line = lines_[i];
    QTreeWidgetItem& item = *rules_->topLevelItem(static_cast<int>(i));
    item.setText(countColumn, line.count);
    // Also what cannot be chosen has a box: the names of all rules begin at one line.
    item.setCheckState(ruleColumn, line.isChosen ? Qt::Checked : Qt::Unchecked);
    for (const int each : {ruleColumn, countColumn}) {
      item.setToolTip(each, line.canBeChosen ? hint : QString());
      item.setData(each, Qt::ForegroundRole, line.canBeChosen ? QVariant() : QVariant(quiet));
    }
    const QString said = item.text(ruleColumn) + QStringLiteral(": ") + line.count;
    item.setData(ruleColumn, Qt::AccessibleTextRole,
                 line.isChosen ? said + QStringLiteral(", ") + ownText("exceptions.chosen") : said);
  }
}

void ExceptionView::showState(const QString& state, const QString& note) {
  lblState_->setText(state);
  lblNote_->setText(note);
  lblNote_->setVisible(!note.isEmpty());
  ui::growToTexts(*this);
}

void ExceptionView::showHours(const evidence::WorkingHours& hours) {
  const bool before = std::exchange(isShowingHours_, true);
  timeFrom_->setTime(timeOf(hours.from));
  timeTo_->setTime(timeOf(hours.to));
  for (std::size_t i = 0; i < days_.size(); ++i) days_.at(i)->setChecked(hours.days[i]);
  isShowingHours_ = before;
}

evidence::WorkingHours ExceptionView::hours() const {
  evidence::WorkingHours hours{minutesOf(timeFrom_->time()), minutesOf(timeTo_->time()), {}};
  for (std::size_t i = 0; i < days_.size(); ++i) hours.days[i] = days_.at(i)->isChecked();
  return hours;
}

void ExceptionView::sayHours() {
  if (!isShowingHours_) Q_EMIT hoursChosen(hours());
}

void ExceptionView::choose(int row) {
  if (row < 0 || !lines_.at(static_cast<std::size_t>(row)).canBeChosen) return;
  Q_EMIT ruleChosen(row);
}

bool ExceptionView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == rules_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
      choose(rules_->indexOfTopLevelItem(rules_->currentItem()));
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace korvel::control
