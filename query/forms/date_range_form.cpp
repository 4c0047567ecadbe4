#include "query/forms/date_range_form.h"

#include <QCalendarWidget>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSpinBox>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <initializer_list>
#include <utility>

#include "ui/buttons.h"
#include "ui/calendar.h"
#include "ui/card_frame.h"
#include "ui/dialogs.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::query {
namespace {

using ui::named;

// What a server's date can hold.
const QDate earliestDay(1753, 1, 1);
const QDate latestDay(9999, 12, 31);
constexpr int monthsOfYear = 12;

bool isMovementKey(int key) {
  return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down ||
         key == Qt::Key_Home || key == Qt::Key_End || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

/// Keys move from the selected day: where the page shows another month, the same day of that month is selected first.
void chooseOnPage(QCalendarWidget& calendar) {
  const QDate chosen = calendar.selectedDate();
  const QDate page(calendar.yearShown(), calendar.monthShown(), 1);
  if (chosen.year() == page.year() && chosen.month() == page.month()) return;
  calendar.setSelectedDate(page.addDays(std::min(chosen.day(), page.daysInMonth()) - 1));
}

QDate toQDate(const std::chrono::year_month_day& day) {
  return QDate(int(day.year()), static_cast<int>(unsigned(day.month())), static_cast<int>(unsigned(day.day())));
}

std::chrono::year_month_day toDay(const QDate& date) {
  return {std::chrono::year(date.year()), std::chrono::month(static_cast<unsigned>(date.month())),
          std::chrono::day(static_cast<unsigned>(date.day()))};
}

}  // namespace

frmAdvancedFilters::frmAdvancedFilters(DateRangeContext context, QWidget* owner)
    : QDialog(owner), context_(std::move(context)), btOK_(named(new ui::PrimaryButton, "btOK")) {
  setObjectName(QStringLiteral("frmAdvancedFilters"));
  // Deliberately English in every language, as the captions of the frames and of the button are.
  setWindowTitle(QStringLiteral("Date Range Filter"));
  setModal(true);
  ui::applyStyle(*this);
  QVBoxLayout* column = ui::styleDialog(*this);

  from_ = buildSide("Frame1", "FromDate", "txtFromDate", QStringLiteral("From Date"), &DateRange::RangeFromDate);
  to_ = buildSide("Frame2", "ToDate", "txtToDate", QStringLiteral("To Date"), &DateRange::RangeToDate);
  auto* sides = new QHBoxLayout;
  sides->setSpacing(ui::px(this, ui::space::between));
  sides->addWidget(from_.frame);
  sides->addWidget(to_.frame);
  column->addLayout(sides);

  btOK_->setText(QStringLiteral("OK"));
  connect(btOK_, &QPushButton::clicked, this, &QDialog::accept);
  auto* buttons = new QDialogButtonBox;
  buttons->addButton(btOK_, QDialogButtonBox::AcceptRole);
  ui::addButtons(*this, buttons);
  btOK_->setDefault(true);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

frmAdvancedFilters::Side frmAdvancedFilters::buildSide(const char* frameName, const char* calendarName,
                                                       const char* textName, const QString& caption,
                                                       std::chrono::year_month_day DateRange::*day) {
  Side side;
  side.day = day;
  side.frame = named(new ui::CardFrame(caption), frameName);
  side.calendar = named(new QCalendarWidget, calendarName);
  side.calendar->setLocale(context_.locale);
  side.calendar->setFirstDayOfWeek(context_.locale.firstDayOfWeek());
  side.calendar->setDateRange(earliestDay, latestDay);
  // Typed digits would change the day after a delay, without a click.
  side.calendar->setDateEditEnabled(false);
  side.calendar->setAccessibleName(caption);
  ui::styleCalendar(*side.calendar);
  ui::addYearArrows(*side.calendar, text("dates.previousYear"), text("dates.nextYear"));
  const ui::CalendarParts parts = ui::calendarParts(*side.calendar);
  for (QWidget* const part : std::initializer_list<QWidget*>{parts.days, parts.yearField})
    if (part != nullptr) part->installEventFilter(this);
  if (parts.days != nullptr) parts.days->setAccessibleName(caption);

  side.text = named(new QLineEdit, textName);
  side.text->setReadOnly(true);
  side.text->setAlignment(Qt::AlignHCenter);
  side.text->setAccessibleName(caption);

  connect(side.calendar, &QCalendarWidget::clicked, this, [this, side](const QDate& date) { DateClick(side, date); });
  connect(side.calendar, &QCalendarWidget::activated, this, [this, side](const QDate& date) { DateClick(side, date); });

  auto* column = new QVBoxLayout(side.frame);
  column->setContentsMargins({});
  column->setSpacing(ui::px(this, ui::space::inside));
  column->addWidget(side.calendar);
  column->addWidget(side.text);
  return side;
}

void frmAdvancedFilters::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  // Only when the dialog opens, not when it is activated again, as after a refusal: the picked days stay.
  if (!event->spontaneous()) Form_Activate();
}

void frmAdvancedFilters::Form_Activate() {
  const QDate today = context_.today();
  for (const Side& side : {from_, to_}) {
    const QDate stored = toQDate(context_.range.*side.day);
    side.calendar->setSelectedDate(context_.range.DateRangeActive && stored.isValid() ? stored : today);
    side.calendar->showSelectedDate();
    // The days stay today's: only the visible page changes, to the month of the newest records.
    if (!context_.range.DateRangeActive && context_.newestDay) {
      const QDate newest = std::clamp(toQDate(*context_.newestDay), earliestDay, latestDay);
      side.calendar->setCurrentPage(newest.year(), newest.month());
    }
    store(side, side.calendar->selectedDate());
  }
  btOK_->setFocus();
}

QString frmAdvancedFilters::text(const char* key) const {
  return ui::ownText(key, context_.language);
}

void frmAdvancedFilters::store(const Side& side, const QDate& date) {
  side.text->setText(context_.locale.toString(date, QLocale::ShortFormat));
  context_.range.*side.day = toDay(date);
}

void frmAdvancedFilters::DateClick(const Side& side, const QDate& date) {
  if (date.isValid()) store(side, date);
}

bool frmAdvancedFilters::Form_QueryUnload() {
  constexpr settings::TextId wrongOrder{10059};
  // Deliberately also for two dates of the same day, although the message speaks of "greater".
  if (isInOrder(context_.range)) return true;
  const std::shared_ptr<ui::DialogServices> services = context_.services;
  services->messageBox(this, ui::MessageIcon::information, QStringLiteral("KorvelAudit Viewer"),
                       ui::fromUtf8(settings::loadText(wrongOrder, context_.language)));
  return false;
}

void frmAdvancedFilters::done(int result) {
  if (Form_QueryUnload()) QDialog::done(result);
}

bool frmAdvancedFilters::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto* press = static_cast<QKeyEvent*>(event);
    const bool enter = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
    for (const Side& side : {from_, to_}) {
      const ui::CalendarParts parts = ui::calendarParts(*side.calendar);
      if (watched == parts.days && calendarKey(side, press->key(), press->modifiers())) return true;
      if (watched == parts.yearField && enter) {
        // Losing the focus enters the year. The key itself would reach the dialog and close it.
        side.calendar->setFocus();
        return true;
      }
    }
  }
  return QDialog::eventFilter(watched, event);
}

bool frmAdvancedFilters::calendarKey(const Side& side, int key, Qt::KeyboardModifiers modifiers) {
  if (isMovementKey(key)) chooseOnPage(*side.calendar);
  if (key == Qt::Key_Space) {
    DateClick(side, side.calendar->selectedDate());
    return true;
  }
  const bool pageKey = key == Qt::Key_PageUp || key == Qt::Key_PageDown;
  if (!pageKey || !modifiers.testFlag(Qt::ControlModifier)) return false;
  const QDate moved = side.calendar->selectedDate().addMonths(key == Qt::Key_PageDown ? monthsOfYear : -monthsOfYear);
  side.calendar->setSelectedDate(moved);
  side.calendar->showSelectedDate();
  return true;
}

}  // namespace korvel::query
