#pragma once

class QCalendarWidget;
class QSpinBox;
class QString;
class QTableView;
class QToolButton;
class QWidget;

namespace korvel::ui {

/// The parts of a calendar, which the toolkit has no functions for. Null where a version of the toolkit builds its
/// calendar otherwise; the tests fail then.
struct CalendarParts {
  QTableView* days = nullptr;     ///< the grid of days, which has the focus
  QWidget* navigation = nullptr;  ///< the bar above it
  QSpinBox* yearField = nullptr;  ///< replaces the year in the bar while another one is typed
  QToolButton* previousMonth = nullptr;
  QToolButton* nextMonth = nullptr;
};
[[nodiscard]] CalendarParts calendarParts(const QCalendarWidget& calendar);

/// A calendar without grid in the colours of the theme: chosen day filled, today semi-bold, week-ends not red.
void styleCalendar(QCalendarWidget& calendar);

/// Adds two arrow buttons beside those of the months, which move the page by a year and select nothing. The texts are
/// their names.
void addYearArrows(QCalendarWidget& calendar, const QString& previous, const QString& next);

}  // namespace korvel::ui
