#pragma once

#include <QDate>
#include <QDialog>
#include <QLocale>
#include <functional>
#include <memory>
#include <optional>

#include "query/date_range.h"
#include "settings/string_table.h"
#include "ui/dialog_services.h"

class QCalendarWidget;
class QLineEdit;
class QPushButton;

namespace korvel::ui {
class CardFrame;
}

namespace korvel::query {

/// What the date range dialog needs; references outlive the dialog.
struct DateRangeContext {
  DateRange& range;
  const settings::LanguageOffset& language;
  std::shared_ptr<ui::DialogServices> services;
  /// Short dates, names of months, first day of the week.
  QLocale locale = QLocale::system();
  std::function<QDate()> today = &QDate::currentDate;
  /// The last day of which records are shown, where that is known: without a range in force the calendars show its
  /// month.
  std::optional<std::chrono::year_month_day> newestDay{};
};

/// The dialog in which the first and the last day of the date range are picked. It writes days into the range as they
/// are picked; the caller activates the range. It does not close while the last day is before the first.
class frmAdvancedFilters final : public QDialog {
  Q_OBJECT

 public:
  frmAdvancedFilters(DateRangeContext context, QWidget* owner);

  /// Called for every way of closing, which may be refused.
  void done(int result) override;

 protected:
  void showEvent(QShowEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  /// A frame with a calendar and the line that shows the day picked in it.
  struct Side {
    std::chrono::year_month_day DateRange::*day = nullptr;
    ui::CardFrame* frame = nullptr;
    QCalendarWidget* calendar = nullptr;
    QLineEdit* text = nullptr;
  };

  Side buildSide(const char* frameName, const char* calendarName, const char* textName, const QString& caption,
                 std::chrono::year_month_day DateRange::*day);
  void Form_Activate();
  [[nodiscard]] bool Form_QueryUnload();
  /// A day was clicked, or chosen by key.
  void DateClick(const Side& side, const QDate& date);
  void store(const Side& side, const QDate& date);
  [[nodiscard]] QString text(const char* key) const;
  /// Keys that the calendar itself does not handle: space picks a day, Ctrl with a page key moves by a year.
  bool calendarKey(const Side& side, int key, Qt::KeyboardModifiers modifiers);

  DateRangeContext context_;
  Side from_;
  Side to_;
  QPushButton* btOK_;
};

}  // namespace korvel::query
