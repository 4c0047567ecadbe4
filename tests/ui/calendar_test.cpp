#include "ui/calendar.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QBoxLayout>
#include <QCalendarWidget>
#include <QSpinBox>
#include <QStyle>
#include <QStyleFactory>
#include <QTableView>
#include <QTextCharFormat>
#include <QToolButton>
#include <memory>

#include "tests/ui/painted.h"
#include "ui/style/viewer_style.h"

namespace korvel::ui {
namespace {

TEST(CalendarParts, TheToolkitsCalendarHasAllOfThem) {
  const QCalendarWidget calendar;
  const CalendarParts parts = calendarParts(calendar);
  ASSERT_NE(parts.days, nullptr);
  ASSERT_NE(parts.navigation, nullptr);
  ASSERT_NE(parts.yearField, nullptr);
  ASSERT_NE(parts.previousMonth, nullptr);
  ASSERT_NE(parts.nextMonth, nullptr);
  // By type alone these two could be others.
  EXPECT_EQ(calendar.findChildren<QTableView*>().size(), 1);
  EXPECT_EQ(calendar.findChildren<QSpinBox*>().size(), 1);
  EXPECT_EQ(calendar.focusProxy(), parts.days);
}

TEST(CalendarParts, DoWhatTheirNamesSay) {
  QCalendarWidget calendar;
  const CalendarParts parts = calendarParts(calendar);
  ASSERT_TRUE(parts.previousMonth && parts.nextMonth && parts.yearField && parts.navigation);
  calendar.setCurrentPage(2004, 3);
  parts.previousMonth->click();
  EXPECT_EQ(calendar.monthShown(), 2);
  parts.nextMonth->click();
  parts.nextMonth->click();
  EXPECT_EQ(calendar.monthShown(), 4);
  EXPECT_EQ(parts.yearField->value(), 2004);
  EXPECT_EQ(parts.navigation, parts.nextMonth->parentWidget());
  EXPECT_NE(qobject_cast<QBoxLayout*>(parts.navigation->layout()), nullptr);
}

TEST(CalendarLook, ChosenDayStandsOutAndWeekEndsAreNotRed) {
  QCalendarWidget calendar;
  applyStyle(calendar);
  calendar.setPalette(lightPalette());
  styleCalendar(calendar);
  calendar.setSelectedDate(QDate(2004, 3, 7));
  calendar.show();
  QApplication::processEvents();
  const QImage image = painted(calendar);
  EXPECT_GT(count(image, Theme::of(calendar).accent), 100);
  EXPECT_EQ(count(image, Qt::red), 0);
  EXPECT_EQ(calendarParts(calendar).navigation->backgroundRole(), QPalette::Base);
  EXPECT_EQ(calendar.weekdayTextFormat(Qt::Sunday).foreground().style(), Qt::NoBrush);
}

TEST(CalendarLook, DaysAreReadableInAnyPalette) {
  // The toolkit's own palette has pale disabled texts and a highlight that white is hardly readable on.
  const std::unique_ptr<QStyle> fusion(QStyleFactory::create("Fusion"));
  for (const QPalette& palette : {fusion->standardPalette(), lightPalette(), darkPalette()}) {
    QWidget window;
    window.setPalette(palette);
    applyStyle(window);
    QCalendarWidget calendar(&window);
    styleCalendar(calendar);
    const CalendarParts parts = calendarParts(calendar);
    ASSERT_NE(parts.days, nullptr);
    const QPalette& days = parts.days->palette();
    const std::string name = palette.color(QPalette::Window).name().toStdString();
    EXPECT_GE(contrastRatio(days.color(QPalette::Disabled, QPalette::Text), days.color(QPalette::Base)), 3.0) << name;
    for (const auto group : {QPalette::Active, QPalette::Inactive})
      EXPECT_GE(contrastRatio(days.color(group, QPalette::HighlightedText), days.color(group, QPalette::Highlight)),
                4.5)
          << name;
  }
}

}  // namespace
}  // namespace korvel::ui
