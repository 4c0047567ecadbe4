// The strip of activity over a list.
#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>
#include <map>
#include <random>

#include "settings/registry.h"
#include "tests/control/activity_fixture.h"
#include "ui/style/palettes.h"

namespace korvel::test {
namespace {

class ActivityShown : public ActivityWork {};

constexpr const char* byDay = "2004-03-07 2; 2004-03-08 1; 2004-03-09 1; 2004-04-01 2";

TEST_F(ActivityShown, IsOffUntilAKeyTheMenuOrItsButtonSwitchesIt) {
  const auto viewer = filledViewer();
  EXPECT_EQ(stripOf(*viewer), nullptr);
  toggle(*viewer);
  ASSERT_NE(stripOf(*viewer), nullptr);
  EXPECT_TRUE(stripOf(*viewer)->isVisible());
  EXPECT_TRUE(list(*viewer, 0)->hasFocus()) << "the list keeps the keyboard";
  // The switch is that of all lists.
  EXPECT_FALSE(stripOf(*viewer, 1)->isHidden());
  stripOf(*viewer)->findChild<QToolButton*>("ActivityClose")->setFocus();
  press(Qt::Key_Space);
  EXPECT_TRUE(stripOf(*viewer)->isHidden());
  EXPECT_TRUE(stripOf(*viewer, 1)->isHidden());
  EXPECT_TRUE(list(*viewer, 0)->hasFocus()) << "the keyboard goes back to the list";

  QTableView* view = list(*viewer, 0);
  const QPoint place = view->visualRect(view->model()->index(2, area)).center();
  QContextMenuEvent rightClick(QContextMenuEvent::Mouse, place, view->viewport()->mapToGlobal(place));
  QApplication::sendEvent(view->viewport(), &rightClick);
  QMenu* menu = element<QMenu>(*viewer, "SmartPopup");
  const QList<QAction*> entries = menu->actions();
  const auto entry = std::find_if(entries.begin(), entries.end(),
                                  [](const QAction* each) { return each->text() == "Activity over time"; });
  ASSERT_NE(entry, entries.end());
  EXPECT_EQ((*entry)->shortcut(), QKeySequence("Ctrl+Shift+A"));
  EXPECT_FALSE((*entry)->isChecked());
  QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(*entry).center());
  EXPECT_TRUE(stripOf(*viewer)->isVisible());
  toggle(*viewer);
  EXPECT_TRUE(stripOf(*viewer)->isHidden());
}

TEST_F(ActivityShown, CountsTheRowsOfEachStepByKind) {
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepDay", ActivityStep::day);
  EXPECT_EQ(told(*viewer), byDay);
  EXPECT_EQ(bars(*viewer).activity().bars.size(), 26U) << "days without a record have a place";
  EXPECT_EQ(stripOf(*viewer)->tipOf(0), "2004-03-07: records 2\nUPDATE: 1\nINSERT: 1");
  chooseStep(*viewer, "StepHour", ActivityStep::hour);
  EXPECT_TRUE(told(*viewer).startsWith("2004-03-07 03:00 1; 2004-03-07 04:00 1; 2004-03-08 03:00 1"));
  EXPECT_EQ(stripOf(*viewer)->tipOf(1), "2004-03-07 04:00 \u2013 05:00: records 1\nINSERT: 1");
  chooseStep(*viewer, "StepWeek", ActivityStep::week);
  EXPECT_EQ(told(*viewer), "2004-03-01 2; 2004-03-08 2; 2004-03-29 2");
  chooseStep(*viewer, "StepMonth", ActivityStep::month);
  EXPECT_EQ(told(*viewer), "2004-03 4; 2004-04 2");
  const auto& legend = *stripOf(*viewer)->findChild<ActivityLegend*>();
  QStringList names;
  for (const auto& entry : legend.entries()) names << entry.text;
  EXPECT_EQ(names.join("; "), "UPDATE  4; DELETE  1; INSERT  1");
  EXPECT_NE(legend.entries()[0].color, legend.entries()[1].color);

  auto* kinds = stripOf(*viewer)->findChild<QComboBox*>("ActivityKinds");
  EXPECT_EQ(kinds->currentText(), "Event");
  kinds->setFocus();
  press(Qt::Key_Down);
  EXPECT_EQ(kinds->currentText(), "Audit Type");
  waitFor([&] { return bars(*viewer).activity().kinds.size() == 1; });
  EXPECT_EQ(stripOf(*viewer)->tipOf(0), "2004-03: records 4\nCS: 4");
}

TEST_F(ActivityShown, HasTheCountsOfCountingRowByRow) {
  std::mt19937 random(7);
  std::map<QString, int> byDays;
  std::map<QString, int> byHours;
  std::vector<CannedRow> rows;
  for (int i = 0; i < 700; ++i) {
    const auto drawn = [&](unsigned from, unsigned count) {
      return QStringLiteral("%1").arg(from + random() % count, 2, 10, QLatin1Char('0'));
    };
    const QString day = "2004-0" + QString::number(1 + random() % 3) + '-' + drawn(1, 28);
    const QString hour = drawn(0, 24);
    ++byDays[day];
    ++byHours[day + ' ' + hour + ":00"];
    rows.push_back(row(std::to_string(i + 1), (day + ' ' + hour + ":59:59.999").toStdString(), "Tags", "1", "Luca"));
  }
  server.resultSets = {rows};
  const auto toldBy = [](const std::map<QString, int>& counts) {
    QStringList texts;
    for (const auto& [begin, count] : counts) texts << begin + ' ' + QString::number(count);
    return texts.join("; ");
  };
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepDay", ActivityStep::day);
  EXPECT_EQ(told(*viewer), toldBy(byDays));
  chooseStep(*viewer, "StepHour", ActivityStep::hour);
  EXPECT_EQ(told(*viewer), toldBy(byHours));
}

TEST_F(ActivityShown, KeysChooseASpanAndTheChipSaysIt) {
  server.resultSets[0].push_back(row("7", "2004-03-09 23:59:59.999", "Tags", "1", "Luca"));
  server.resultSets[0].push_back(row("8", "2004-03-10 00:00:00.000", "Tags", "1", "Luca"));
  server.resultSets[0].push_back(row("9", "2004-03-08", "Tags", "1", "Luca"));
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepDay", ActivityStep::day);
  bars(*viewer).setFocus();
  press(Qt::Key_Home);
  EXPECT_EQ(readout(*viewer), "2004-03-07: records 2");
  EXPECT_EQ(bars(*viewer).accessibleDescription(), "2004-03-07: records 2; UPDATE: 1; INSERT: 1");
  EXPECT_EQ(bars(*viewer).accessibleName(), "Activity over time");
  press(Qt::Key_Right);
  press(Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(readout(*viewer), QString::fromUtf8("2004-03-08 – 2004-03-09: records 4. Enter filters, Esc cancels"));
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "3 4 7 9");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Date Time 2004-03-08 – 2004-03-09"));
  EXPECT_EQ(shownCount(*viewer), "4 of 9 shown");
  // One bar alone takes the place of the span.
  press(Qt::Key_Left);
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "3 9");
  EXPECT_EQ(chips(*viewer), "Date Time 2004-03-08");
  press(Qt::Key_Delete);
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 9);
  EXPECT_TRUE(bars(*viewer).hasFocus());
}

TEST_F(ActivityShown, HoursAreExactInBothFormsOfATime) {
  server.resultSets = {
      {row("1", "2004-03-07 09:59:59.999", "T", "1", "Luca"), row("2", "2004-03-07T10:00:00", "T", "1", "Luca"),
       row("3", "2004-03-07 11:59:59.999", "T", "1", "Luca"), row("4", "2004-03-07T12:00:00", "T", "1", "Luca"),
       row("5", "2004-03-07", "T", "1", "Luca"), row("6", "2004-03-07 23:30:00", "T", "1", "Luca")}};
  const auto viewer = viewerWithStrip();
  ASSERT_EQ(bars(*viewer).activity().step, ActivityStep::hour) << "a day has room for its hours";
  ActivityBars& shown = bars(*viewer);
  drag(shown, middleOf(shown, "2004-03-07 11:00"), middleOf(shown, "2004-03-07 10:00"));
  EXPECT_EQ(column(*viewer, 0), "2 3");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Date Time 2004-03-07 10:00 – 12:00"));
  drag(shown, middleOf(shown, "2004-03-07 00:00"), middleOf(shown, "2004-03-07 09:00"));
  EXPECT_EQ(column(*viewer, 0), "1 5");
  drag(shown, middleOf(shown, "2004-03-07 12:00"), middleOf(shown, "2004-03-07 23:00"));
  EXPECT_EQ(column(*viewer, 0), "4 6");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Date Time 2004-03-07 12:00 – 24:00"));
}

TEST_F(ActivityShown, DraggingFiltersAClickDoesNot) {
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepDay", ActivityStep::day);
  ActivityBars& shown = bars(*viewer);
  QTest::mouseClick(shown.viewport(), Qt::LeftButton, {}, middleOf(shown, "2004-03-08"));
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_EQ(readout(*viewer), "2004-03-08: records 1");
  const QPoint place = middleOf(shown, "2004-03-08");
  drag(shown, place, middleOf(shown, "2004-03-09"));
  EXPECT_EQ(column(*viewer, 0), "3 4");
  EXPECT_EQ(middleOf(shown, "2004-03-08"), place) << "chips that come do not move the bars";
  QTest::mouseDClick(shown.viewport(), Qt::LeftButton, {}, middleOf(shown, "2004-04-01"));
  EXPECT_EQ(column(*viewer, 0), "5 6");
  // Esc ends a drag, and then goes back to the list.
  QTest::mousePress(shown.viewport(), Qt::LeftButton, {}, middleOf(shown, "2004-03-07"));
  move(shown, middleOf(shown, "2004-03-20"), Qt::LeftButton);
  EXPECT_TRUE(shown.isSelecting());
  press(Qt::Key_Escape);
  QTest::mouseRelease(shown.viewport(), Qt::LeftButton, {}, middleOf(shown, "2004-03-20"));
  EXPECT_EQ(column(*viewer, 0), "5 6");
  EXPECT_TRUE(shown.hasFocus());
  press(Qt::Key_Escape);
  EXPECT_TRUE(list(*viewer, 0)->hasFocus());
}

TEST_F(ActivityShown, ShowsTheRowsThatOtherFiltersLeaveAndMarksItsSpan) {
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepDay", ActivityStep::day);
  goTo(*viewer, 0, area);
  press(Qt::Key_K, Qt::ControlModifier);  // Screen
  waitFor([&] { return told(*viewer) == "2004-03-07 2; 2004-04-01 2"; });
  ActivityBars& shown = bars(*viewer);
  drag(shown, middleOf(shown, "2004-03-07"), middleOf(shown, "2004-03-08"));
  EXPECT_EQ(column(*viewer, 0), "1 2");
  ASSERT_TRUE(shown.marked());
  EXPECT_EQ(control::spanName(*shown.marked()), QString::fromUtf8("2004-03-07 – 2004-03-08"));
  // Without the other filter the bars around the span are those of all rows.
  const auto chipButtons = chipBar(*viewer).findChildren<ui::ChipButton*>();
  (*std::find_if(chipButtons.begin(), chipButtons.end(), [](const auto* each) {
    return each->isVisible();
  }))->setFocus();
  press(Qt::Key_Delete);
  EXPECT_EQ(column(*viewer, 0), "1 2 3");
  waitFor([&] { return told(*viewer) == byDay; });
  EXPECT_TRUE(shown.marked());
  // Without the span nothing is marked.
  press(Qt::Key_Delete);
  EXPECT_EQ(chips(*viewer), "");
  waitFor([&] { return !shown.marked(); });
  EXPECT_EQ(told(*viewer), byDay);
}

TEST_F(ActivityShown, FollowsANewQueryAndClearing) {
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepMonth", ActivityStep::month);
  drag(bars(*viewer), middleOf(bars(*viewer), "2004-03"), middleOf(bars(*viewer), "2004-04"));
  server.resultSets = {{row("1", "2003-07-07 03:10:44.310", "Tags", "1", "Luca"),
                        row("2", "2003-07-08 03:10:44.310", "Tags", "1", "Luca")}};
  click(*viewer, "btQuery");
  waitFor([&] { return told(*viewer) == "2003-07-07 03:00 1; 2003-07-08 03:00 1"; });
  EXPECT_FALSE(bars(*viewer).marked()) << "the filter went with the old answer";
  EXPECT_EQ(bars(*viewer).activity().step, ActivityStep::hour) << "the step is chosen anew";
  click(*viewer, "btClear");
  EXPECT_EQ(told(*viewer), "");
  EXPECT_EQ(bars(*viewer).accessibleDescription(), "There are no records to count.");
}

TEST_F(ActivityShown, FollowsThePageInFront) {
  server.resultSets[0][0][15] = "RT";
  const auto viewer = viewerWithStrip();
  EXPECT_TRUE(bars(*viewer, 2).activity().bars.empty()) << "nothing is counted that is not in sight";
  selectTab(*viewer, 2);
  waitFor([&] { return told(bars(*viewer, 2)) == "2004-03-07 03:00 1"; });
}

TEST_F(ActivityShown, FollowsTheLanguage) {
  const auto viewer = viewerWithStrip();
  control::libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_EQ(stripOf(*viewer)->accessibleName(), QString::fromUtf8("Aktivität im Zeitverlauf"));
  EXPECT_EQ(stripOf(*viewer)->findChild<QToolButton*>("StepWeek")->text(), "Woche");
  EXPECT_EQ(readout(*viewer), QString::fromUtf8("Über Balken ziehen filtert nach der Zeit"));
  EXPECT_EQ(stripOf(*viewer)->tipOf(0), QString::fromUtf8("2004-03-07: Datensätze 2\nUPDATE: 1\nINSERT: 1"));
  click(*viewer, "btClear");
  EXPECT_EQ(bars(*viewer).accessibleDescription(), QString::fromUtf8("Es gibt keine Datensätze zu zählen."));
  control::libraryState().language = settings::LanguageOffset("0");
  viewer->SwitchLanguage();
  EXPECT_EQ(bars(*viewer).accessibleDescription(), "There are no records to count.");
}

TEST_F(ActivityShown, SaysWhereThereIsNoDate) {
  const auto viewer = filledViewer();
  selectTab(*viewer, 5);
  answerWithOneRow();
  click(*viewer, "btQuery");
  list(*viewer, 5)->setFocus();
  press(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
  const auto said = [&] { return bars(*viewer, 5).accessibleDescription(); };
  waitFor([&] { return said().startsWith("This list has no column \"Date Time\""); });
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"DateTime"}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"yesterday"}});
    sink.endResult();
  };
  click(*viewer, "btQuery");
  waitFor([&] { return said() == "No record of this list has a date."; });
  // Dates without anything to tell rows apart by.
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"DateTime"}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"2004-03-07"}});
    sink.row(std::vector<db::Cell>{{"never"}});
    sink.endResult();
  };
  click(*viewer, "btQuery");
  waitFor([&] { return told(bars(*viewer, 5)) == "2004-03-07 00:00 1"; });
  EXPECT_TRUE(stripOf(*viewer, 5)->findChild<QComboBox*>("ActivityKinds")->isHidden());
  EXPECT_EQ(stripOf(*viewer, 5)->tipOf(0), QString::fromUtf8("2004-03-07 00:00 – 01:00: records 1\nall records: 1"));
  EXPECT_EQ(stripOf(*viewer, 5)->findChild<ActivityLegend*>()->remark(), "Records without a date, in no bar: 1");
}

TEST_F(ActivityShown, KeysButtonsAndTheWheelChangeTheStep) {
  const auto viewer = viewerWithStrip();
  chooseStep(*viewer, "StepDay", ActivityStep::day);
  EXPECT_TRUE(stripOf(*viewer)->findChild<QToolButton*>("StepDay")->isChecked());
  ActivityBars& shown = bars(*viewer);
  shown.setFocus();
  press(Qt::Key_Minus);
  waitFor([&] { return shown.activity().step == ActivityStep::week; });
  EXPECT_TRUE(stripOf(*viewer)->findChild<QToolButton*>("StepWeek")->isChecked());
  EXPECT_EQ(shown.current(), barOf(shown, "2004-03-29")) << "the current bar is the one at the same time";
  press(Qt::Key_Plus);
  waitFor([&] { return shown.activity().step == ActivityStep::day; });
  const QPoint place = middleOf(shown, "2004-03-09");
  turnWheel(shown, place, 120, Qt::ControlModifier);
  waitFor([&] { return shown.activity().step == ActivityStep::hour; });
  const QRectF kept = shown.barPlace(barOf(shown, "2004-03-09 00:00"), true);
  EXPECT_NEAR(kept.left(), place.x(), 30) << "what is under the pointer stays there";
  EXPECT_GT(shown.horizontalScrollBar()->value(), 0);
  turnWheel(shown, place, -60, Qt::ControlModifier);
  turnWheel(shown, place, -60, Qt::ControlModifier);
  waitFor([&] { return shown.activity().step == ActivityStep::day; });
  // Beyond the shortest and the longest step there is none.
  chooseStep(*viewer, "StepMonth", ActivityStep::month);
  press(Qt::Key_Minus);
  chooseStep(*viewer, "StepHour", ActivityStep::hour);
  shown.setFocus();
  press(Qt::Key_Plus);
  press(Qt::Key_Minus);
  waitFor([&] { return shown.activity().step == ActivityStep::day; });
}

TEST_F(ActivityShown, BarsShareNoDotAndSayWhereNotAllAreInSight) {
  const auto viewer = viewerWithStrip();
  ActivityBars& shown = bars(*viewer);
  const auto areApart = [&] {
    for (int bar = 1; bar < static_cast<int>(shown.activity().bars.size()); ++bar) {
      const QRectF one = shown.barPlace(bar - 1, true);
      if (one.width() < 3 || one.right() >= shown.barPlace(bar, true).left()) return false;
    }
    return true;
  };
  EXPECT_EQ(shown.activity().step, ActivityStep::day) << "600 hours have no room";
  EXPECT_TRUE(areApart());
  EXPECT_EQ(remark(*viewer), "");
  EXPECT_EQ(shown.horizontalScrollBar()->maximum(), 0);
  chooseStep(*viewer, "StepHour", ActivityStep::hour);
  EXPECT_TRUE(areApart());
  ASSERT_GT(shown.activity().bars.size(), shown.room());
  EXPECT_EQ(remark(*viewer), QStringLiteral("Bars 1 to %1 of 602 in sight").arg(shown.inSight().second + 1));
  shown.setFocus();
  press(Qt::Key_End);
  EXPECT_TRUE(remark(*viewer).endsWith(" to 602 of 602 in sight")) << remark(*viewer).toStdString();
  EXPECT_TRUE(QRectF(shown.viewport()->rect()).contains(shown.barPlace(601, true)));
  turnWheel(shown, QPoint(100, 20), 12000, Qt::NoModifier);
  EXPECT_TRUE(remark(*viewer).startsWith("Bars 1 to "));
  // More hours than can be shown at all.
  server.resultSets = {
      {row("1", "1904-03-07 03:10:44.310", "T", "1", "Luca"), row("2", "2004-03-07 03:10:44.310", "T", "1", "Luca")}};
  click(*viewer, "btQuery");
  waitFor([&] { return shown.activity().step == ActivityStep::month && told(*viewer).startsWith("1904"); });
  EXPECT_TRUE(areApart());
  stripOf(*viewer)->findChild<QToolButton*>("StepHour")->click();
  waitFor([&] { return shown.activity().step == ActivityStep::day; });
  EXPECT_TRUE(remark(*viewer).startsWith("\"Hour\" would be too many bars; this is \"Day\". Bars "));
}

TEST_F(ActivityShown, TheStepFollowsTheWidthUntilItIsChosen) {
  const auto viewer = viewerWithStrip();
  ASSERT_EQ(bars(*viewer).activity().step, ActivityStep::day);
  viewer->resize(4000, 800);
  waitFor([&] { return bars(*viewer).activity().step == ActivityStep::hour; });
  viewer->resize(1280, 800);
  waitFor([&] { return bars(*viewer).activity().step == ActivityStep::day; });
  chooseStep(*viewer, "StepWeek", ActivityStep::week);
  viewer->resize(4000, 800);
  QCoreApplication::processEvents();
  EXPECT_EQ(bars(*viewer).activity().step, ActivityStep::week);
}

TEST_F(ActivityShown, TakesItsRoomFromTheListAndStaysInIt) {
  const auto viewer = filledViewer();
  const QRect alone = list(*viewer, 0)->geometry();
  toggle(*viewer);
  const QWidget* strip = stripOf(*viewer);
  EXPECT_EQ(strip->geometry().topLeft(), alone.topLeft());
  EXPECT_EQ(strip->width(), alone.width());
  EXPECT_LT(strip->geometry().bottom(), list(*viewer, 0)->geometry().top());
  EXPECT_EQ(list(*viewer, 0)->geometry().bottom(), alone.bottom());
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_LT(strip->geometry().bottom(), chipBar(*viewer).geometry().top());
  const QSize size = viewer->size();
  viewer->resize(size.width(), 360);
  EXPECT_LE(strip->height(), (strip->height() + list(*viewer, 0)->height() + chipBar(*viewer).height()) / 2 + 8);
  EXPECT_TRUE(stripOf(*viewer)->findChild<ActivityLegend*>()->isHidden()) << "the bars come first";
  viewer->resize(size);
  EXPECT_FALSE(stripOf(*viewer)->findChild<ActivityLegend*>()->isHidden());
  toggle(*viewer);
  press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(list(*viewer, 0)->geometry(), alone);
}

TEST_F(ActivityShown, TabGoesThroughItBeforeTheList) {
  const auto viewer = viewerWithStrip();
  stripOf(*viewer)->findChild<QToolButton*>("StepHour")->setFocus();
  press(Qt::Key_Right);
  waitFor([&] { return bars(*viewer).activity().step == ActivityStep::day; });
  QStringList names;
  for (int i = 0; i < 5; ++i) {
    names << QApplication::focusWidget()->objectName();
    press(Qt::Key_Tab);
  }
  EXPECT_EQ(names.join(' ').toStdString(), "StepDay ActivityKinds ActivityClose ActivityBars lvListView0");
}

TEST_F(ActivityShown, ColoursFollowTheThemeAndBarsStayInTheirPlot) {
  for (const bool dark : {false, true}) {
    const auto viewer = viewerWithStrip();
    chooseStep(*viewer, "StepHour", ActivityStep::hour);
    viewer->setPalette(dark ? ui::darkPalette({}) : ui::lightPalette({}));
    ActivityBars& shown = bars(*viewer);
    const QColor color = output::pictures::kindColor(shown.colors(), 0, 3);
    EXPECT_EQ(color,
              dark ? output::pictures::ActivityColors::dark().bar : output::pictures::ActivityColors::light().bar);
    shown.horizontalScrollBar()->setValue(2);  // the first bar is cut
    const QImage image = shown.viewport()->grab().toImage();
    const QRectF first = shown.barPlace(0, true);
    int inside = 0;
    int outside = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        if (image.pixelColor(x, y).rgb() == color.rgb())
          ++(x >= first.left() + 2 && y < first.bottom() ? inside : outside);
    EXPECT_GT(inside, 0) << dark;
    EXPECT_EQ(outside, 0) << dark;
    const QColor ground = image.pixelColor(1, image.height() - 1);
    EXPECT_EQ(ground.lightness() < 128, dark);
  }
}

}  // namespace
}  // namespace korvel::test
