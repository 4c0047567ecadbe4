// Filtering the lists by value, by keys.
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QMenu>
#include <algorithm>

#include "settings/registry.h"
#include "tests/control/list_work_fixture.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;

class Filtering : public ListWork {
 protected:
  static void open(const AuditViewer& viewer, int columnNumber) {
    goTo(viewer, 0, columnNumber);
    press(Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(values(viewer).isVisible());
  }
};

TEST_F(Filtering, AColumnsValuesOpenWithTheirCounts) {
  const auto viewer = filledViewer();
  open(*viewer, userName);
  EXPECT_THAT(lines(*viewer), ElementsAre(QString("[x] Luca Rossi 3"), QString::fromUtf8("[x] Heike Bäuerle 1"),
                                          QString::fromUtf8("[x] José Núñez 1"), QString("[x] (empty) 1")));
  press(Qt::Key_Escape);
  EXPECT_FALSE(values(*viewer).isVisible());
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 6);
}

TEST_F(Filtering, KeysChooseAValueAndTheChipRemovesIt) {
  const auto viewer = filledViewer();
  open(*viewer, userName);
  type("luca");
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1 2 4");
  EXPECT_EQ(chips(*viewer), "User Name = Luca Rossi");
  EXPECT_EQ(shownCount(*viewer), "3 of 6 shown");
  EXPECT_EQ(recordsPanel(*viewer), "3 Records on current tab");
  const auto& header = *static_cast<ui::ResultHeader*>(list(*viewer, 0)->horizontalHeader());
  EXPECT_TRUE(header.isFiltered(userName));
  EXPECT_FALSE(header.isFiltered(area));
  // Its own column still offers what it hides; others count what is shown.
  open(*viewer, userName);
  EXPECT_EQ(lines(*viewer).size(), 4);
  EXPECT_EQ(lines(*viewer)[1], QString::fromUtf8("[ ] Heike Bäuerle 1"));
  press(Qt::Key_Escape);
  open(*viewer, area);
  EXPECT_THAT(lines(*viewer), ElementsAre(QString("[x] Screen 2"), QString("[x] Alarm 1")));
  press(Qt::Key_Escape);
  chipBar(*viewer).findChild<ui::ChipButton*>()->setFocus();
  press(Qt::Key_Delete);
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_EQ(recordsPanel(*viewer), "6 Records on current tab");
  EXPECT_TRUE(list(*viewer, 0)->hasFocus()) << "the keyboard goes back to the list";
}

TEST_F(Filtering, SeveralValuesAndAllButSome) {
  const auto viewer = filledViewer();
  open(*viewer, userName);
  press(Qt::Key_Down);
  press(Qt::Key_Space);  // without Luca Rossi
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "3 5 6");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("User Name ≠ Luca Rossi"));
  open(*viewer, userName);
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Space);  // nor Heike
  press(Qt::Key_Down);
  press(Qt::Key_Down);
  press(Qt::Key_Space);  // nor nobody
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  press(Qt::Key_Up);
  press(Qt::Key_Space);  // but Luca
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1 2 4 6");
  EXPECT_EQ(chips(*viewer), "User Name = 2 values");
  EXPECT_TRUE(chipBar(*viewer).chips()[0].toolTip.contains("Luca Rossi\n"));
  // All of them again: no filter.
  open(*viewer, userName);
  values(*viewer).findChild<QAbstractButton*>("AllValues")->click();
  press(Qt::Key_Return);
  EXPECT_EQ(chips(*viewer), "");
}

TEST_F(Filtering, DatesByYearMonthAndDay) {
  const auto viewer = filledViewer();
  open(*viewer, time);
  QTreeView& tree = *values(*viewer).findChild<QTreeView*>("Values");
  EXPECT_THAT(lines(*viewer), ElementsAre(QString("[x] 2004 6")));
  const QModelIndex year = tree.model()->index(0, 0);
  const QModelIndex april = tree.model()->index(1, 0, year);
  EXPECT_EQ(april.data().toString(), "2004-04");
  EXPECT_EQ(tree.model()->index(0, 0, april).data().toString(), "2004-04-01");
  tree.setFocus();
  tree.expandAll();
  tree.setCurrentIndex(april);
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Date Time ≠ 2004-04-01"));
  // Days without a gap are said as such.
  open(*viewer, time);
  values(*viewer).findChild<QAbstractButton*>("AllValues")->click();
  values(*viewer).findChild<QAbstractButton*>("AllValues")->click();
  ASSERT_TRUE(values(*viewer).listed(true).empty());
  tree.setFocus();
  tree.expandAll();
  tree.setCurrentIndex(tree.model()->index(0, 0, tree.model()->index(0, 0)));
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Date Time 2004-03-07 – 2004-03-09"));
}

TEST_F(Filtering, ADayOfWhichSomeTimesAreShownKeepsThemUnlessItIsTicked) {
  const auto viewer = filledViewer();
  goTo(*viewer, 0, time);
  press(Qt::Key_K, Qt::ControlModifier);
  ASSERT_EQ(column(*viewer, 0), "1");
  open(*viewer, time);
  QTreeView& tree = *values(*viewer).findChild<QTreeView*>("Values");
  const auto dayAt = [&](int month, int day) {
    return tree.model()->index(day, 0, tree.model()->index(month, 0, tree.model()->index(0, 0)));
  };
  const auto state = [&](int month, int day) { return dayAt(month, day).data(Qt::CheckStateRole).toInt(); };
  ASSERT_EQ(dayAt(0, 0).data().toString(), "2004-03-07");
  EXPECT_EQ(state(0, 0), Qt::PartiallyChecked);
  EXPECT_EQ(state(0, 1), Qt::Unchecked);
  EXPECT_EQ(values(*viewer).findChild<QCheckBox*>("AllValues")->checkState(), Qt::PartiallyChecked);
  const auto tick = [&](int month, int day) {
    tree.setFocus();
    tree.expandAll();
    tree.setCurrentIndex(dayAt(month, day));
    press(Qt::Key_Space);
  };
  // As it is, it stays.
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1");
  EXPECT_EQ(chips(*viewer), "Date Time = 2004-03-07 03:10:44.310");
  open(*viewer, time);
  tick(0, 1);
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1 3") << "another day beside the time";
  open(*viewer, time);
  EXPECT_EQ(state(0, 0), Qt::PartiallyChecked);
  tick(0, 0);
  EXPECT_EQ(state(0, 0), Qt::Checked);
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "1 2 3") << "the whole day";
}

TEST_F(Filtering, ATimeThatIsLeftOutStaysSoBesideAnotherDay) {
  const auto viewer = filledViewer();
  goTo(*viewer, 0, time);
  press(Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
  ASSERT_EQ(column(*viewer, 0), "2 3 4 5 6");
  open(*viewer, time);
  QTreeView& tree = *values(*viewer).findChild<QTreeView*>("Values");
  tree.setFocus();
  tree.expandAll();
  tree.setCurrentIndex(tree.model()->index(1, 0, tree.model()->index(0, 0)));
  press(Qt::Key_Space);  // without April
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "2 3 4");
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Date Time ≠ 2 values"));
  open(*viewer, time);
  values(*viewer).findChild<QAbstractButton*>("AllValues")->click();
  press(Qt::Key_Return);
  EXPECT_EQ(chips(*viewer), "") << "all of every day";
}

TEST_F(Filtering, OnlyThisValueAndWithoutItByKeys) {
  const auto viewer = filledViewer();
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "3 4");
  EXPECT_EQ(chips(*viewer), "Area = Alarm");
  EXPECT_EQ(currentCell(*viewer), "Alarm") << "the list stays on its record";
  list(*viewer, 0)->setCurrentIndex(list(*viewer, 0)->model()->index(0, userName));
  press(Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(column(*viewer, 0), "4") << "filters combine";
  EXPECT_EQ(chips(*viewer), QString::fromUtf8("Area = Alarm; User Name ≠ Heike Bäuerle"));
  press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
  // Empty is a value too.
  goTo(*viewer, 4, userName);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "5");
  EXPECT_EQ(chips(*viewer), "User Name = (empty)");
}

/// The next key is for the same column, and the list does not jump to its beginning.
TEST_F(Filtering, ARecordThatIsHiddenLeavesItsPlaceToTheNextOne) {
  const auto viewer = filledViewer();
  const auto place = [&] {
    return std::pair(list(*viewer, 0)->currentIndex().row(), list(*viewer, 0)->currentIndex().column());
  };
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(column(*viewer, 0), "1 2 5 6");
  EXPECT_EQ(place(), (std::pair<int, int>(2, area))) << "on record 5";
  press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(place(), (std::pair<int, int>(4, area))) << "still on record 5";
  goTo(*viewer, 5, userName);
  press(Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(place().first, list(*viewer, 0)->model()->rowCount() - 1) << "behind the last record there is none";
  EXPECT_EQ(place().second, userName);
}

TEST_F(Filtering, ByTheContextMenuBelowItsOwnEntry) {
  const auto viewer = filledViewer();
  QTableView* view = list(*viewer, 0);
  const QPoint place = view->visualRect(view->model()->index(2, area)).center();
  QContextMenuEvent rightClick(QContextMenuEvent::Mouse, place, view->viewport()->mapToGlobal(place));
  QApplication::sendEvent(view->viewport(), &rightClick);
  QMenu* menu = element<QMenu>(*viewer, "SmartPopup");
  ASSERT_TRUE(menu->isVisible());
  QStringList texts;
  for (const QAction* entry : menu->actions()) texts.append(entry->isSeparator() ? "-" : entry->text());
  EXPECT_THAT(texts, ElementsAre("Change Font", "-", "Show record", "Copy", "-", "Only this value",
                                 "Without this value", "Filter...", "Find...", "-", "Show history of this item",
                                 "Summary of the list", "Activity over time", "-", "Review", "Take a snapshot...",
                                 "Compare with a snapshot...", "-", "Print preview", "Export as text...",
                                 "Export as exchange file...", "Manifest beside the file"));
  const QMenu* review = menu->actions()[texts.indexOf("Review")]->menu();
  ASSERT_NE(review, nullptr);
  EXPECT_EQ(review->actions()[0]->text(), "Review by exception");
  EXPECT_TRUE(review->actions()[1]->isSeparator());
  QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[5]).center());
  EXPECT_EQ(chips(*viewer), "Area = Alarm");
  EXPECT_EQ(column(*viewer, 0), "3 4");
}

TEST_F(Filtering, ByTheSignOfTheHeaderWhichDoesNotSort) {
  const auto viewer = filledViewer();
  auto& header = *static_cast<ui::ResultHeader*>(list(*viewer, 0)->horizontalHeader());
  QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, header.signPlace(area).center());
  ASSERT_TRUE(values(*viewer).isVisible());
  EXPECT_EQ(header.sortIndicatorSection(), 0);
  type("alarm");
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "3 4");
  // Sorting keeps the filter.
  goTo(*viewer, 0, number);
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "4 3");
}

TEST_F(Filtering, ByTheTextThatIsSearchedFor) {
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  type("TIC-1");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "1 3");
  EXPECT_EQ(chips(*viewer), "Any column contains \"TIC-1\"");
  EXPECT_EQ(findCount(*viewer), "1 of 2");
  goTo(*viewer, 0, userName);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "1");
  EXPECT_EQ(findCount(*viewer), "1 of 1") << "hits are those of the rows that are shown";
}

TEST_F(Filtering, AChipOfATextOpensItsHitsAndItsChangeTakesItsPlace) {
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  press(Qt::Key_C, Qt::AltModifier);
  type("TIC-1");
  press(Qt::Key_Return, Qt::ControlModifier);
  goTo(*viewer, 0, userName);
  press(Qt::Key_K, Qt::ControlModifier);
  press(Qt::Key_Escape);
  press(Qt::Key_F, Qt::ControlModifier);
  press(Qt::Key_C, Qt::AltModifier);
  findText(*viewer).setText("something else");
  press(Qt::Key_Escape);
  EXPECT_EQ(chips(*viewer), "Any column contains \"TIC-1\"; User Name = Luca Rossi");
  const auto openChip = [&] {
    const auto buttons = chipBar(*viewer).findChildren<ui::ChipButton*>();
    const auto shown =
        std::find_if(buttons.begin(), buttons.end(), [](const ui::ChipButton* each) { return !each->isHidden(); });
    ASSERT_NE(shown, buttons.end());
    (*shown)->setFocus();
    press(Qt::Key_Return);
  };
  openChip();
  EXPECT_EQ(bar(*viewer).request(), (ui::FindRequest{.text = "TIC-1", .exactCase = true}));
  EXPECT_EQ(findCount(*viewer), "1 of 1");
  ASSERT_TRUE(findText(*viewer).hasFocus());
  // Rows that the filter hides can be asked for, too.
  type("WIC");
  EXPECT_EQ(findCount(*viewer), "No hits");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer), "Any column contains \"WIC\"; User Name = Luca Rossi");
  EXPECT_EQ(column(*viewer, 0), "2");
  EXPECT_EQ(findCount(*viewer), "1 hit");
  findText(*viewer).setText("tic");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer), "Any column contains \"tic\"; User Name = Luca Rossi");
  // A text that occurs nowhere is no change.
  findText(*viewer).setText("nowhere");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer), "Any column contains \"tic\"; User Name = Luca Rossi");
  press(Qt::Key_Escape);
  // Searched for by itself, a text is a condition of its own.
  press(Qt::Key_F, Qt::ControlModifier);
  findText(*viewer).setText("-7");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(chipBar(*viewer).chips().size(), 3U);
}

TEST_F(Filtering, ValuesCloseWhenTheListGetsOtherRows) {
  const auto viewer = filledViewer();
  open(*viewer, userName);
  ASSERT_TRUE(values(*viewer).isVisible());
  viewer->TriggerQuery();
  ASSERT_FALSE(values(*viewer).isVisible());
  viewer->activateWindow();
  QApplication::processEvents();
  open(*viewer, number);
  static_cast<control::ResultListView*>(list(*viewer, 0))->clickHeader(number);
  EXPECT_FALSE(values(*viewer).isVisible()) << "entry numbers are shown otherwise";
  EXPECT_EQ(chips(*viewer), "");
}

TEST_F(Filtering, FollowsEntryNumbersThatSortingRewrites) {
  server.resultSets[0][0][number] = "0007";
  const auto viewer = filledViewer();
  selectTab(*viewer, 1);
  auto* view = static_cast<control::ResultListView*>(list(*viewer, 1));
  const auto go = [&](int columnNumber) {
    view->setFocus();
    view->setCurrentIndex(view->model()->index(0, columnNumber));
  };
  go(number);
  ASSERT_EQ(view->currentIndex().data().toString(), "0007");
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer, 1), "Entry ID = 0007");
  view->clickHeader(number);
  EXPECT_EQ(chips(*viewer, 1), "Entry ID = 7");
  go(area);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 1), "7");
  chipBar(*viewer, 1).findChild<QToolButton*>("PinFilters")->click();
  click(*viewer, "btQuery");
  EXPECT_EQ(column(*viewer, 1), "7") << "the sorted list goes on rewriting them";
}

TEST_F(Filtering, APinnedTextIsLookedForInTheColumnsOfTheNextAnswer) {
  const auto viewer = shownViewer();
  viewer->activateWindow();
  selectTab(*viewer, 5);
  const auto answer = [&](std::vector<std::string> columns, std::vector<std::vector<std::string>> rows) {
    server.answer = [=](db::ResultSink& sink) {
      std::vector<db::Field> fields;
      for (const std::string& name : columns) fields.push_back({name});
      sink.beginResult(fields);
      for (const auto& values : rows) {
        std::vector<db::Cell> cells;
        for (const std::string& value : values) cells.push_back({value});
        sink.row(cells);
      }
      sink.endResult();
    };
    click(*viewer, "btQuery");
  };
  answer({"a"}, {{"pump"}, {"valve"}});
  list(*viewer, 5)->setFocus();
  press(Qt::Key_F, Qt::ControlModifier);
  type("pump");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 5), "pump");
  chipBar(*viewer, 5).findChild<QToolButton*>("PinFilters")->click();
  answer({"n", "text"}, {{"1", "valve"}, {"2", "the pump"}});
  EXPECT_EQ(chips(*viewer, 5), "Any column contains \"pump\"");
  EXPECT_EQ(column(*viewer, 5), "2");
}

TEST_F(Filtering, SaysWhereNoRowIsLeft) {
  const auto viewer = filledViewer();
  goTo(*viewer, 0, userName);
  press(Qt::Key_K, Qt::ControlModifier);
  press(Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 0);
  EXPECT_EQ(static_cast<ui::ResultTable*>(list(*viewer, 0))->emptyText(), "No row passes the filters.");
  EXPECT_EQ(shownCount(*viewer), "0 of 6 shown");
  EXPECT_EQ(recordsPanel(*viewer), "0 Records on current tab");
  chipBar(*viewer).findChild<QToolButton*>("ClearFilters")->click();
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
}

TEST_F(Filtering, ANewQueryDropsTheFiltersUnlessTheyArePinned) {
  const auto viewer = filledViewer();
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  click(*viewer, "btQuery");
  EXPECT_EQ(chips(*viewer), "");
  EXPECT_EQ(column(*viewer, 0), "1 2 3 4 5 6");
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  chipBar(*viewer).findChild<QToolButton*>("PinFilters")->click();
  server.resultSets[0].push_back(row("7", "", "Alarm", "x", "y"));
  click(*viewer, "btQuery");
  EXPECT_EQ(chips(*viewer), "Area = Alarm");
  EXPECT_EQ(column(*viewer, 0), "3 4 7");
  EXPECT_EQ(shownCount(*viewer), "3 of 7 shown");
  EXPECT_EQ(recordsPanel(*viewer), "3 Records on current tab");
  chipBar(*viewer).findChild<QToolButton*>("ClearFilters")->click();
  click(*viewer, "btQuery");
  EXPECT_EQ(chips(*viewer), "") << "the pin went with them";
}

TEST_F(Filtering, EachListHasFiltersOfItsOwn) {
  const auto viewer = filledViewer();
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  selectTab(*viewer, 1);
  EXPECT_EQ(chips(*viewer, 1), "");
  EXPECT_EQ(recordsPanel(*viewer), "6 Records on current tab");
  selectTab(*viewer, 0);
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
}

TEST_F(Filtering, ThePinOfACustomListKeepsWhatFitsItsColumns) {
  const auto viewer = shownViewer();
  selectTab(*viewer, 5);
  answerWithOneRow();
  click(*viewer, "btQuery");
  QTableView* view = list(*viewer, 5);
  view->setFocus();
  view->setCurrentIndex(view->model()->index(0, 0));
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer, 5), "a = 1");
  chipBar(*viewer, 5).findChild<QToolButton*>("PinFilters")->click();
  click(*viewer, "btQuery");
  EXPECT_EQ(chips(*viewer, 5), "a = 1");
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"other"}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"9"}});
    sink.endResult();
  };
  click(*viewer, "btQuery");
  EXPECT_EQ(chips(*viewer, 5), "");
  EXPECT_EQ(column(*viewer, 5), "9");
}

TEST_F(Filtering, NullAndEmptyAreTwoValues) {
  const auto viewer = shownViewer();
  selectTab(*viewer, 5);
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"a"}};
    sink.beginResult(fields);
    sink.row(std::vector<db::Cell>{{"", true}});
    sink.row(std::vector<db::Cell>{{""}});
    sink.row(std::vector<db::Cell>{{""}});
    sink.endResult();
  };
  click(*viewer, "btQuery");
  QTableView* view = list(*viewer, 5);
  view->setFocus();
  view->setCurrentIndex(view->model()->index(0, 0));
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer, 5), "a = (no value)");
  EXPECT_EQ(view->model()->rowCount(), 1);
  chipBar(*viewer, 5).findChild<QToolButton*>("ClearFilters")->click();
  view->setCurrentIndex(view->model()->index(1, 0));
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer, 5), "a = (empty)");
  EXPECT_EQ(view->model()->rowCount(), 2);
}

TEST_F(Filtering, FollowsTheLanguage) {
  const auto viewer = filledViewer();
  open(*viewer, userName);
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  press(Qt::Key_Return);
  EXPECT_EQ(shownCount(*viewer), "2 of 6 shown");
  control::libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_EQ(shownCount(*viewer), "2 von 6 angezeigt");
  EXPECT_EQ(chips(*viewer), "User Name = 2 Werte");
  EXPECT_EQ(chipBar(*viewer).findChild<QToolButton*>("PinFilters")->text(), "Anheften");
  EXPECT_EQ(column(*viewer, 0), "5 6");
}

TEST_F(Filtering, ChipsStandOverTheListAndTakeTheirRoomFromIt) {
  const auto viewer = filledViewer();
  QTableView* view = list(*viewer, 0);
  const QRect before = view->geometry();
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(chipBar(*viewer).geometry().top(), before.top());
  EXPECT_EQ(view->geometry().top(), chipBar(*viewer).geometry().bottom() + 1);
  EXPECT_EQ(view->geometry().bottom(), before.bottom());
  viewer->resize(viewer->width() + 50, viewer->height());
  EXPECT_EQ(chipBar(*viewer).width(), view->width());
  // Tab goes through it before the list.
  chipBar(*viewer).findChild<QToolButton*>("ClearFilters")->setFocus();
  press(Qt::Key_Tab);
  EXPECT_TRUE(view->hasFocus());
  press(Qt::Key_Backtab);
  press(Qt::Key_Backtab);
  press(Qt::Key_Backtab);
  EXPECT_NE(qobject_cast<ui::ChipButton*>(QApplication::focusWidget()), nullptr);
  press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
}

TEST_F(Filtering, ChipsOpenWhatTheyStandFor) {
  const auto viewer = filledViewer();
  goTo(*viewer, 2, area);
  press(Qt::Key_K, Qt::ControlModifier);
  chipBar(*viewer).findChild<ui::ChipButton*>()->setFocus();
  press(Qt::Key_Return);
  EXPECT_TRUE(values(*viewer).isVisible());
  EXPECT_THAT(lines(*viewer), ElementsAre(QString("[ ] Screen 4"), QString("[x] Alarm 2")));
  press(Qt::Key_Escape);
}

TEST_F(Filtering, ManyValuesAreSearchedFor) {
  server.resultSets = {{}};
  for (int i = 0; i < 50'001; ++i)
    server.resultSets[0].push_back(row(std::to_string(i), "", "Screen", "ID-" + std::to_string(i), "u"));
  const auto viewer = filledViewer();
  open(*viewer, itemId);
  EXPECT_TRUE(lines(*viewer).isEmpty());
  EXPECT_TRUE(values(*viewer).findChild<QLabel*>("MoreValues")->isVisible());
  press(Qt::Key_Return);
  EXPECT_TRUE(values(*viewer).isVisible()) << "nothing is chosen yet";
  type("id-49999");
  EXPECT_THAT(lines(*viewer), ElementsAre(QString("[x] ID-49999 1")));
  press(Qt::Key_Return);
  EXPECT_EQ(column(*viewer, 0), "49999");
}

}  // namespace
}  // namespace korvel::test
