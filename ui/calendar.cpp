#include "ui/calendar.h"

#include <QBoxLayout>
#include <QCalendarWidget>
#include <QDate>
#include <QSpinBox>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>
#include <algorithm>

#include "ui/icons/icons.h"
#include "ui/style/system_appearance.h"
#include "ui/style/theme.h"

namespace korvel::ui {

CalendarParts calendarParts(const QCalendarWidget& calendar) {
  CalendarParts parts;
  parts.days = calendar.findChild<QTableView*>();
  parts.yearField = calendar.findChild<QSpinBox*>();
  // The bar has four tool buttons: the two arrows can only be told apart by the names that the toolkit gives them for
  // style sheets.
  parts.previousMonth = calendar.findChild<QToolButton*>(QStringLiteral("qt_calendar_prevmonth"));
  parts.nextMonth = calendar.findChild<QToolButton*>(QStringLiteral("qt_calendar_nextmonth"));
  if (parts.previousMonth != nullptr) parts.navigation = parts.previousMonth->parentWidget();
  return parts;
}

void styleCalendar(QCalendarWidget& calendar) {
  calendar.setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  calendar.setHorizontalHeaderFormat(QCalendarWidget::ShortDayNames);
  calendar.setGridVisible(false);
  // By default week-ends are red and the names of days bright; the theme has one accent colour.
  const QTextCharFormat plain;
  for (const auto day : {Qt::Saturday, Qt::Sunday}) calendar.setWeekdayTextFormat(day, plain);
  QTextCharFormat today;
  today.setFontWeight(QFont::DemiBold);
  calendar.setDateTextFormat(QDate::currentDate(), today);
  const CalendarParts parts = calendarParts(calendar);
  const int side = px(&calendar, space::icon);
  const auto setIcon = [side](QToolButton* button, IconName name) {
    if (button == nullptr) return;
    button->setIcon(icon(name));
    button->setIconSize({side, side});
  };
  setIcon(parts.previousMonth, IconName::PreviousPage);
  setIcon(parts.nextMonth, IconName::NextPage);
  if (parts.navigation != nullptr) parts.navigation->setBackgroundRole(QPalette::Base);
  if (parts.days == nullptr) return;
  parts.days->setFrameShape(QFrame::NoFrame);
  if (systemAppearance().keepsPlatform()) return;
  // The toolkit draws days of other months in the palette's disabled colour and the chosen day in its highlight, which
  // few palettes make readable.
  const Theme& theme = Theme::of(calendar);
  QPalette palette;
  palette.setColor(QPalette::Disabled, QPalette::Text, theme.disabled);
  for (const auto group : {QPalette::Active, QPalette::Inactive}) {
    palette.setColor(group, QPalette::Highlight, theme.fill);
    palette.setColor(group, QPalette::HighlightedText, theme.onFill);
  }
  parts.days->setPalette(palette);
}

void addYearArrows(QCalendarWidget& calendar, const QString& previous, const QString& next) {
  const CalendarParts parts = calendarParts(calendar);
  auto* row = parts.navigation != nullptr ? qobject_cast<QBoxLayout*>(parts.navigation->layout()) : nullptr;
  if (row == nullptr) return;
  const auto add = [&](int place, const char* name, IconName drawing, const QString& text, int years) {
    auto* button = new QToolButton(parts.navigation);
    button->setObjectName(QLatin1String(name));
    button->setAutoRaise(true);
    button->setAutoRepeat(true);
    button->setFocusPolicy(parts.previousMonth->focusPolicy());
    button->setIcon(icon(drawing));
    button->setIconSize(parts.previousMonth->iconSize());
    button->setToolTip(text);
    button->setAccessibleName(text);
    QObject::connect(button, &QToolButton::clicked, &calendar, [&calendar, years] {
      const int year =
          std::clamp(calendar.yearShown() + years, calendar.minimumDate().year(), calendar.maximumDate().year());
      calendar.setCurrentPage(year, calendar.monthShown());
    });
    row->insertWidget(place, button);
  };
  add(0, "previousYear", IconName::PreviousYear, previous, -1);
  add(row->count(), "nextYear", IconName::NextYear, next, 1);
}

}  // namespace korvel::ui
