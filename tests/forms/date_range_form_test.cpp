#include "query/forms/date_range_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCalendarWidget>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <stdexcept>

#include "control/library_state.h"
#include "control/qt_control_services.h"
#include "tests/control/recorder.h"
#include "ui/card_frame.h"

namespace korvel::test {
namespace {

using query::DateRange;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ui::MessageIcon;

class DateRangeForm : public ::testing::Test {
 protected:
  query::frmAdvancedFilters& form() {
    if (!form_) {
      form_ = std::make_unique<query::frmAdvancedFilters>(
          query::DateRangeContext{range, language, recorder, locale, [this] { return today; }, newest}, nullptr);
      form_->setModal(true);
      form_->show();
      QApplication::setActiveWindow(form_.get());
    }
    return *form_;
  }
  template <typename Element = QWidget>
  Element& element(const char* name) {
    auto* found = form().findChild<Element*>(name);
    if (found == nullptr) throw std::runtime_error(name);
    return *found;
  }
  QCalendarWidget& calendar(const char* name) { return element<QCalendarWidget>(name); }
  QTableView& days(const char* name) { return *calendar(name).findChild<QTableView*>(); }
  QString text(const char* name) { return element<QLineEdit>(name).text(); }
  /// Clicks on a day of the month that the calendar shows.
  void clickDay(const char* name, int day) {
    QTableView& grid = days(name);
    bool inMonth = false;
    for (int row = 1; row < grid.model()->rowCount(); ++row)
      for (int column = 0; column < grid.model()->columnCount(); ++column) {
        const QModelIndex index = grid.model()->index(row, column);
        inMonth = inMonth || index.data().toInt() == 1;
        if (!inMonth || index.data().toInt() != day) continue;
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(index).center());
        return;
      }
    ADD_FAILURE() << "no day " << day;
  }
  void key(const char* name, Qt::Key code, Qt::KeyboardModifiers modifiers = {}) {
    days(name).setFocus();
    QTest::keyClick(&days(name), code, modifiers);
  }
  void pressOk() { QTest::mouseClick(&element("btOK"), Qt::LeftButton); }
  QString from() { return shown(range.RangeFromDate); }
  QString to() { return shown(range.RangeToDate); }
  static QString shown(const std::chrono::year_month_day& day) {
    return QStringLiteral("%1-%2-%3").arg(int(day.year())).arg(unsigned(day.month())).arg(unsigned(day.day()));
  }
  void activeRange(std::chrono::year_month_day first, std::chrono::year_month_day last) { range = {first, last, true}; }

  DateRange range;
  settings::LanguageOffset language;
  QLocale locale = QLocale(QLocale::English, QLocale::UnitedStates);
  QDate today{2004, 3, 7};
  std::optional<std::chrono::year_month_day> newest;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::unique_ptr<query::frmAdvancedFilters> form_;
};

using namespace std::chrono_literals;
using std::chrono::year_month_day;

TEST_F(DateRangeForm, CaptionsAreFixedEnglishInEveryLanguage) {
  language = settings::LanguageOffset("10000");
  EXPECT_EQ(form().windowTitle(), "Date Range Filter");
  EXPECT_EQ(element<ui::CardFrame>("Frame1").title(), "From Date");
  EXPECT_EQ(element<ui::CardFrame>("Frame2").title(), "To Date");
  EXPECT_EQ(element<QPushButton>("btOK").text(), "OK");
}

TEST_F(DateRangeForm, TheFirstOpeningShowsTodayAndOkGivesOneDay) {
  form();
  for (const char* name : {"FromDate", "ToDate"}) EXPECT_EQ(calendar(name).selectedDate(), today) << name;
  EXPECT_EQ(text("txtFromDate"), "3/7/04");
  EXPECT_EQ(text("txtToDate"), "3/7/04");
  EXPECT_TRUE(element("btOK").hasFocus());
  pressOk();
  EXPECT_FALSE(form().isVisible());
  EXPECT_EQ(from(), "2004-3-7");
  EXPECT_EQ(to(), "2004-3-7");
  // The code that opened the dialog applies it.
  EXPECT_FALSE(range.DateRangeActive);
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(DateRangeForm, AnActiveRangeIsShownAgain) {
  activeRange(year_month_day{2003y / 6 / 1}, year_month_day{2003y / 12 / 31});
  EXPECT_EQ(form().findChild<QCalendarWidget*>("FromDate")->selectedDate(), QDate(2003, 6, 1));
  EXPECT_EQ(calendar("FromDate").monthShown(), 6);
  EXPECT_EQ(calendar("ToDate").monthShown(), 12);
  EXPECT_EQ(text("txtFromDate"), "6/1/03");
  EXPECT_EQ(text("txtToDate"), "12/31/03");
}

TEST_F(DateRangeForm, AClearedRangeStartsFromTodayAgain) {
  activeRange(year_month_day{2003y / 6 / 1}, year_month_day{2003y / 12 / 31});
  range.DateRangeActive = false;
  form();
  EXPECT_EQ(from(), "2004-3-7");
  EXPECT_EQ(to(), "2004-3-7");
  EXPECT_EQ(text("txtFromDate"), "3/7/04");
}

TEST_F(DateRangeForm, EveryShowingIsAnActivation) {
  form();
  clickDay("ToDate", 20);
  pressOk();
  range.DateRangeActive = true;
  form().show();
  EXPECT_EQ(calendar("ToDate").selectedDate(), QDate(2004, 3, 20));
  form().accept();
  range.DateRangeActive = false;
  form().show();
  EXPECT_EQ(calendar("ToDate").selectedDate(), today);
}

TEST_F(DateRangeForm, AnActiveRangeWithoutDaysIsToday) {
  range.DateRangeActive = true;
  form();
  EXPECT_EQ(from(), "2004-3-7");
}

TEST_F(DateRangeForm, AClickOnADayIsStoredAtOnce) {
  form();
  clickDay("FromDate", 2);
  EXPECT_EQ(from(), "2004-3-2");
  EXPECT_EQ(text("txtFromDate"), "3/2/04");
  EXPECT_EQ(to(), "2004-3-7");
  clickDay("ToDate", 31);
  EXPECT_EQ(to(), "2004-3-31");
  EXPECT_EQ(text("txtToDate"), "3/31/04");
}

TEST_F(DateRangeForm, MovingThroughTheCalendarStoresNothing) {
  form();
  for (const Qt::Key code : {Qt::Key_Left, Qt::Key_Up, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_2}) key("FromDate", code);
  key("FromDate", Qt::Key_PageUp, Qt::ControlModifier);
  QTest::mouseClick(calendar("FromDate").findChild<QToolButton*>("qt_calendar_prevmonth"), Qt::LeftButton);
  EXPECT_NE(calendar("FromDate").selectedDate(), today);
  EXPECT_EQ(from(), "2004-3-7");
  EXPECT_EQ(text("txtFromDate"), "3/7/04");
  pressOk();
  EXPECT_EQ(from(), "2004-3-7");
}

TEST_F(DateRangeForm, SpaceAndEnterPickTheDayOfTheKeyboard) {
  form();
  key("FromDate", Qt::Key_Left);
  key("FromDate", Qt::Key_Space);
  EXPECT_EQ(from(), "2004-3-6");
  key("FromDate", Qt::Key_Left);
  key("FromDate", Qt::Key_Return);
  EXPECT_EQ(from(), "2004-3-5");
  key("ToDate", Qt::Key_Right);
  key("ToDate", Qt::Key_Enter);
  EXPECT_EQ(to(), "2004-3-8");
  // The calendar handled Enter, not the button.
  EXPECT_TRUE(form().isVisible());
}

TEST_F(DateRangeForm, CtrlWithAPageKeyMovesByAYear) {
  form();
  key("FromDate", Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(calendar("FromDate").selectedDate(), QDate(2003, 3, 7));
  EXPECT_EQ(calendar("FromDate").yearShown(), 2003);
  key("FromDate", Qt::Key_PageDown, Qt::ControlModifier);
  key("FromDate", Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(calendar("FromDate").selectedDate(), QDate(2005, 3, 7));
}

TEST_F(DateRangeForm, YearsMoveByArrowsAsMonthsDo) {
  language = settings::LanguageOffset("10000");
  form();
  auto& back = *calendar("FromDate").findChild<QToolButton*>("previousYear");
  auto& forth = *calendar("FromDate").findChild<QToolButton*>("nextYear");
  EXPECT_EQ(back.toolTip(), "Voriges Jahr");
  EXPECT_EQ(forth.accessibleName(), "Nächstes Jahr");
  const auto page = [&](const char* name) {
    return QStringLiteral("%1-%2").arg(calendar(name).yearShown()).arg(calendar(name).monthShown());
  };
  const auto press = [](QToolButton& button) { QTest::mouseClick(&button, Qt::LeftButton); };
  press(back);
  press(back);
  EXPECT_EQ(page("FromDate"), "2002-3");
  EXPECT_EQ(page("ToDate"), "2004-3");
  press(forth);
  EXPECT_EQ(page("FromDate"), "2003-3");
  // They turn pages and choose nothing.
  EXPECT_EQ(calendar("FromDate").selectedDate(), today);
  EXPECT_EQ(from(), "2004-3-7");
  clickDay("FromDate", 31);
  EXPECT_EQ(from(), "2003-3-31");
  // They are on both sides of the arrows of the months, and stop at the calendar's limits.
  const QWidget& month = *calendar("FromDate").findChild<QToolButton*>("qt_calendar_prevmonth");
  EXPECT_LE(back.geometry().right(), month.geometry().left());
  EXPECT_GE(forth.geometry().left(),
            calendar("FromDate").findChild<QToolButton*>("qt_calendar_nextmonth")->geometry().right());
  calendar("FromDate").setCurrentPage(1753, 1);
  press(back);
  EXPECT_EQ(page("FromDate"), "1753-1");
  calendar("FromDate").setCurrentPage(9999, 12);
  press(forth);
  EXPECT_EQ(page("FromDate"), "9999-12");
}

TEST_F(DateRangeForm, WithoutARangeTheNewestMonthWithRecordsIsShownAndTheDaysAreTodays) {
  today = QDate(2026, 11, 22);
  newest = year_month_day{2004y / 3 / 31};
  form();
  for (const char* name : {"FromDate", "ToDate"}) {
    EXPECT_EQ(calendar(name).yearShown(), 2004) << name;
    EXPECT_EQ(calendar(name).monthShown(), 3) << name;
    EXPECT_EQ(calendar(name).selectedDate(), today) << name;
  }
  EXPECT_EQ(text("txtFromDate"), "11/22/26");
  EXPECT_EQ(from(), "2026-11-22");
  EXPECT_EQ(to(), "2026-11-22");
  clickDay("FromDate", 7);
  EXPECT_EQ(from(), "2004-3-7");
}

TEST_F(DateRangeForm, KeysGoOnFromTheMonthThatIsShown) {
  today = QDate(2026, 11, 30);
  newest = year_month_day{2004y / 2 / 1};
  form();
  key("FromDate", Qt::Key_Left);
  EXPECT_EQ(calendar("FromDate").selectedDate(), QDate(2004, 2, 28));
  key("FromDate", Qt::Key_Space);
  EXPECT_EQ(from(), "2004-2-28");
  key("ToDate", Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(calendar("ToDate").selectedDate(), QDate(2003, 2, 28));
  EXPECT_EQ(to(), "2026-11-30");
}

TEST_F(DateRangeForm, AnActiveRangeComesBeforeTheNewestMonth) {
  activeRange(year_month_day{2003y / 6 / 1}, year_month_day{2003y / 12 / 31});
  newest = year_month_day{2004y / 3 / 31};
  form();
  EXPECT_EQ(calendar("FromDate").monthShown(), 6);
  EXPECT_EQ(calendar("ToDate").monthShown(), 12);
  EXPECT_EQ(calendar("ToDate").yearShown(), 2003);
}

TEST_F(DateRangeForm, RecordsOfYearsThatNoCalendarHasAreNoReasonToFail) {
  newest = year_month_day{100y / 1 / 1};
  form();
  EXPECT_EQ(calendar("FromDate").yearShown(), 1753);
  EXPECT_EQ(from(), "2004-3-7");
}

TEST_F(DateRangeForm, ATypedYearIsEnteredWithoutClosingTheDialog) {
  form();
  QTest::mouseClick(calendar("FromDate").findChild<QToolButton*>("qt_calendar_yearbutton"), Qt::LeftButton);
  auto* year = calendar("FromDate").findChild<QSpinBox*>("qt_calendar_yearedit");
  ASSERT_TRUE(year->isVisible());
  year->selectAll();
  QTest::keyClicks(year, "2001");
  QTest::keyClick(year, Qt::Key_Return);
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(calendar("FromDate").yearShown(), 2001);
  EXPECT_EQ(from(), "2004-3-7");
}

TEST_F(DateRangeForm, TheKeyboardReachesBothCalendars) {
  form();
  QSet<QString> reached;
  for (int i = 0; i < 20; ++i) {
    QTest::keyClick(form().focusWidget(), Qt::Key_Tab);
    for (QWidget* at = form().focusWidget(); at != nullptr; at = at->parentWidget()) reached.insert(at->objectName());
  }
  for (const char* name : {"FromDate", "txtFromDate", "ToDate", "txtToDate", "btOK"})
    EXPECT_TRUE(reached.contains(name)) << name;
  for (const char* name : {"FromDate", "ToDate"}) {
    EXPECT_NE(calendar(name).accessibleName(), "") << name;
    EXPECT_NE(days(name).accessibleName(), "") << name;
  }
  EXPECT_EQ(element("txtFromDate").accessibleName(), "From Date");
}

TEST_F(DateRangeForm, TheTextsOnlyDisplay) {
  form();
  for (const char* name : {"txtFromDate", "txtToDate"}) {
    QTest::keyClicks(&element(name), "12");
    EXPECT_EQ(text(name), "3/7/04") << name;
  }
}

TEST_F(DateRangeForm, TheSystemsShortDatesAndFirstDayOfTheWeek) {
  locale = QLocale(QLocale::German, QLocale::Germany);
  form();
  EXPECT_EQ(text("txtFromDate"), "07.03.04");
  EXPECT_EQ(calendar("FromDate").firstDayOfWeek(), Qt::Monday);
  form_.reset();
  locale = QLocale(QLocale::English, QLocale::UnitedStates);
  form();
  EXPECT_EQ(calendar("FromDate").firstDayOfWeek(), Qt::Sunday);
  EXPECT_EQ(query::DateRangeContext({range, language, recorder}).locale, QLocale::system());
}

TEST_F(DateRangeForm, TheSameDayOnBothSidesPasses) {
  form();
  clickDay("FromDate", 9);
  clickDay("ToDate", 9);
  pressOk();
  EXPECT_FALSE(form().isVisible());
  EXPECT_THAT(recorder->messages, IsEmpty());
}

struct WayOfClosing {
  const char* name;
  std::function<void(query::frmAdvancedFilters&)> close;
};
const WayOfClosing waysOfClosing[] = {
    {"button",
     [](query::frmAdvancedFilters& form) { QTest::mouseClick(form.findChild<QPushButton*>("btOK"), Qt::LeftButton); }},
    {"enter",
     [](query::frmAdvancedFilters& form) { QTest::keyClick(form.findChild<QPushButton*>("btOK"), Qt::Key_Return); }},
    {"escape", [](query::frmAdvancedFilters& form) { QTest::keyClick(&form, Qt::Key_Escape); }},
    // What the close box and Alt+F4 send.
    {"closeBox", [](query::frmAdvancedFilters& form) { form.close(); }},
    {"reject", [](query::frmAdvancedFilters& form) { form.reject(); }},
    {"done", [](query::frmAdvancedFilters& form) { form.done(7); }},
};

TEST_F(DateRangeForm, ALastDayBeforeTheFirstIsRefusedHoweverItIsClosed) {
  for (const WayOfClosing& way : waysOfClosing) {
    form_.reset();
    recorder->messages.clear();
    form();
    clickDay("FromDate", 8);
    way.close(form());
    EXPECT_THAT(recorder->messages, ElementsAre(ShownMessage{MessageIcon::information, "KorvelAudit Viewer",
                                                             "(To) date must be greater than (From) date"}))
        << way.name;
    EXPECT_TRUE(form().isVisible()) << way.name;
    EXPECT_EQ(text("txtFromDate"), "3/8/04") << way.name;

    clickDay("ToDate", 8);
    way.close(form());
    EXPECT_FALSE(form().isVisible()) << way.name;
    EXPECT_EQ(recorder->messages.size(), 1U) << way.name;
  }
}

TEST_F(DateRangeForm, WhatWasClickedIsKeptWhenTheClosingIsRefused) {
  form();
  clickDay("ToDate", 6);
  pressOk();
  // The window comes to the front again behind the message.
  QApplication::setActiveWindow(nullptr);
  QApplication::setActiveWindow(&form());
  EXPECT_TRUE(form().isVisible());
  EXPECT_EQ(to(), "2004-3-6");
  EXPECT_EQ(text("txtToDate"), "3/6/04");
  EXPECT_EQ(calendar("ToDate").selectedDate(), QDate(2004, 3, 6));
  EXPECT_EQ(recorder->owners.back(), &form());
}

TEST_F(DateRangeForm, TheRefusalIsInTheLanguage) {
  language = settings::LanguageOffset("10000");
  form();
  clickDay("ToDate", 6);
  form().reject();
  const std::string_view german = settings::loadTextByIdentifier(20059);
  EXPECT_EQ(recorder->messages.at(0).text.toStdString(), german);
  EXPECT_EQ(recorder->messages.at(0).title, "KorvelAudit Viewer");
}

TEST_F(DateRangeForm, TheMessageMayTakeTheDialogAlong) {
  form();
  clickDay("ToDate", 6);
  recorder->onMessage = [this] { form_.reset(); };
  form_->reject();
  EXPECT_EQ(form_, nullptr);
}

TEST(DateRangeService, TheFormIsThereAndBoundToTheSharedRange) {
  control::libraryState() = control::LibraryState();
  control::QtControlServices services;
  ASSERT_TRUE(services.hasForm("frmAdvancedFilters"));
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (auto* form = qobject_cast<query::frmAdvancedFilters*>(QApplication::activeModalWidget())) {
      watch.stop();
      form->accept();
    }
  });
  watch.start(0);
  services.showForm(nullptr, "frmAdvancedFilters");
  EXPECT_TRUE(control::libraryState().dateRange.RangeFromDate.ok());
  control::libraryState() = control::LibraryState();
}

}  // namespace
}  // namespace korvel::test
