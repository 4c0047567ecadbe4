#include "control/forms/record_view.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <algorithm>
#include <map>

#include "control/forms/value_field.h"
#include "control/texts.h"
#include "tests/control/list_fixture.h"
#include "tests/control/viewer_fixture.h"
#include "tests/support/watched_allocations.h"

namespace korvel::test {
namespace {

using control::RecordView;
using control::ValueField;
using ::testing::ElementsAre;

/// The values of the visible fields, by their captions.
QString fieldsOf(const RecordView& view) {
  QString text;
  for (int i = 0;; ++i) {
    const auto* field = view.findChild<ValueField*>(QStringLiteral("value%1").arg(i));
    if (field == nullptr) return text;
    text += field->accessibleName() + QLatin1Char('=') + field->toPlainText() + QLatin1Char(';');
  }
}

ValueField* field(const RecordView& view, const QString& caption) {
  for (auto* each : view.findChildren<ValueField*>())
    if (each->accessibleName() == caption) return each;
  ADD_FAILURE() << "no field " << caption.toStdString();
  return nullptr;
}

/// A custom list with fields of its own, one of them null.
class RecordOfAList : public ListView {
 protected:
  void fillRecords(const std::vector<std::vector<std::optional<std::string>>>& records) {
    const ResultListModel::RowsChange change(model);
    auto store = std::make_shared<results::RowStore>();
    std::vector<db::Field> fields;
    for (std::size_t i = 0; i < records.front().size(); ++i) fields.push_back({"F" + std::to_string(i)});
    store->beginResult(fields);
    std::vector<RowId> ids;
    for (const auto& values : records) {
      std::vector<db::Cell> cells;
      for (const auto& value : values) cells.push_back({value ? std::string_view(*value) : "", !value.has_value()});
      ids.push_back(store->append(cells));
    }
    list.setRows(store, ids);
  }
  /// One store with a result set for each of these records.
  void fillAnswers(const std::vector<std::vector<std::string>>& records) {
    const ResultListModel::RowsChange change(model);
    auto store = std::make_shared<results::RowStore>();
    std::vector<RowId> ids;
    for (const auto& values : records) {
      std::vector<db::Field> fields;
      std::vector<db::Cell> cells;
      for (const std::string& value : values) {
        fields.push_back({"F" + std::to_string(fields.size())});
        cells.push_back({value});
      }
      store->beginResult(fields);
      ids.push_back(store->append(cells));
    }
    list.setRows(store, ids);
  }
  /// What a right click on a field offers.
  static QString menuOf(ValueField& field) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(1, 1), field.mapToGlobal(QPoint(1, 1)));
    QCoreApplication::sendEvent(field.viewport(), &event);
    auto* const menu = field.findChild<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    if (menu == nullptr) return {};
    QStringList texts;
    for (const QAction* action : menu->actions()) texts.append(action->text());
    menu->close();
    delete menu;
    return texts.join(QLatin1Char(','));
  }
  QPushButton* button(const char* name) const { return record.findChild<QPushButton*>(QLatin1String(name)); }
  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : &record, Qt::Key(key),
                    modifiers);
  }
  RecordView record{&view};
};

TEST_F(RecordOfAList, ShowsEveryFieldOfTheAnswerAsItIsStored) {
  fillRecords({{" 007 ", "two\nlines", "", std::nullopt}});
  record.showRecord(view, 0);
  EXPECT_TRUE(record.isVisible());
  // Two columns have captions in the list; the other fields have their names.
  EXPECT_EQ(fieldsOf(record), "Entry ID= 007 ;Area=two\nlines;F2=;F3=;");
  EXPECT_EQ(field(record, "F2")->placeholderText(), "Empty text");
  EXPECT_EQ(field(record, "F3")->placeholderText(), "No value (NULL)");
  EXPECT_EQ(record.windowTitle(), "Record 1 of 1");
}

/// What the form shows of the record's review; empty where it shows nothing.
QString reviewIn(const RecordView& view) {
  const auto* const marks = view.findChild<ValueField*>("txtReview");
  return marks->isVisible() ? marks->toPlainText() : QString();
}

TEST_F(RecordOfAList, ShowsTheMarksOfItsReview) {
  fillRecords({{"1", "A"}, {"2", "B"}, {"3", "C"}});
  std::map<int, QString> marks = {{0, "Question\nQuestion, eva, 16:05: who was it?"}, {1, "Not reviewed"}};
  model.setRowTexts([&marks](int row) { return marks[row]; });
  record.showRecord(view, 0);
  EXPECT_EQ(reviewIn(record), "Question\nQuestion, eva, 16:05: who was it?");
  const auto* const caption = record.findChild<QLabel*>("lblReview");
  EXPECT_TRUE(caption->isVisible());
  EXPECT_EQ(caption->text(), "Review");
  EXPECT_EQ(record.findChild<ValueField*>("txtReview")->accessibleName(), "Review");
  record.showNext();
  EXPECT_EQ(reviewIn(record), "Not reviewed");
  // Another reviewer marks it meanwhile.
  marks[1] = "Reviewed\nReviewed, max, 16:07";
  Q_EMIT model.headerDataChanged(Qt::Vertical, 0, 2);
  EXPECT_EQ(reviewIn(record), "Reviewed\nReviewed, max, 16:07");
  record.findChild<ValueField*>("txtReview")->setFocus();
  record.showNext();
  EXPECT_EQ(reviewIn(record), "");
  EXPECT_FALSE(caption->isVisible());
  // What is hidden does not keep the focus.
  EXPECT_EQ(record.focusWidget(), button("btClose"));
}

TEST_F(RecordOfAList, CopiesNoMarks) {
  fillRecords({{"1", "A"}});
  model.setRowTexts([](int) { return QStringLiteral("Reviewed"); });
  record.showRecord(view, 0);
  record.copyRecord();
  EXPECT_FALSE(QGuiApplication::clipboard()->text().contains("Reviewed"));
}

/// What is said under the value of a field; empty where nothing is.
QString noteUnder(const RecordView& view, int place) {
  const auto* const note = view.findChild<QLabel*>(QStringLiteral("note%1").arg(place));
  return note->isVisible() ? note->text() : QString();
}

TEST_F(RecordOfAList, SaysWhatClockATimeStampIsOf) {
  {
    const ResultListModel::RowsChange change(model);
    auto store = std::make_shared<results::RowStore>();
    const std::vector<db::Field> fields{{"Nr"}, {"DateTime"}, {"T1"}};
    store->beginResult(fields);
    std::vector<RowId> ids;
    const std::vector<std::vector<std::string>> rows = {
        {"1", "2003-10-26 02:40:00.000", "1"},        {"2", "2003-10-26 02:20:00.000", "0"},
        {"3", "2003-10-26 02:30:00.000", "0"},        {"4", "2003-10-26 03:30:00.000", "0"},
        {"5", "2004-07-01 03:30:00.000", "1"},        {"6", "2004-07-01 03:30:00.000", ""},
        {"7", "2004-07-01 03:30:00.000 +02:00", "1"}, {"8", "unknown", "1"}};
    for (const auto& row : rows) {
      const std::vector<db::Cell> cells{{row[0]}, {row[1]}, {row[2]}};
      ids.push_back(store->append(cells));
    }
    list.setRows(store, ids);
  }
  const QString twice = QStringLiteral("The clock was set back and showed this time twice on this day; this is the ");
  const QStringList expected = {
      QStringLiteral("Plant's local time, summer time. ") + twice + QStringLiteral("first one"),
      QStringLiteral("Plant's local time, standard time. ") + twice + QStringLiteral("second one"),
      QStringLiteral("Plant's local time, standard time. ") + twice + QStringLiteral("second one"),
      QStringLiteral("Plant's local time, standard time"),
      QStringLiteral("Plant's local time, summer time"),
      QStringLiteral("Plant's local time; the record does not say whether summer time"),
      QStringLiteral("Time with its offset: UTC+02:00"),
      QString()};
  for (int row = 0; row < expected.size(); ++row) {
    record.showRecord(view, row);
    EXPECT_EQ(noteUnder(record, 1), expected[row]);
    if (!expected[row].isEmpty()) {
      EXPECT_EQ(record.findChild<ValueField*>(QStringLiteral("value1"))->accessibleDescription(), expected[row]);
    }
    EXPECT_EQ(noteUnder(record, 0), QString());
    EXPECT_EQ(noteUnder(record, 2), QString());
  }
}

TEST_F(RecordOfAList, FollowsTheOrderOfTheList) {
  fill({{"1", "b"}, {"2", "a"}, {"3", "c"}});
  view.clickHeader(1);  // 2 1 3
  record.showRecord(view, 0);
  EXPECT_EQ(fieldsOf(record), "Entry ID=2;Area=a;");
  EXPECT_FALSE(button("btPrevious")->isEnabled());
  button("btNext")->click();
  EXPECT_EQ(fieldsOf(record), "Entry ID=1;Area=b;");
  EXPECT_EQ(record.windowTitle(), "Record 2 of 3");
  EXPECT_EQ(view.currentIndex().row(), 1);
  EXPECT_TRUE(view.selectionModel()->isRowSelected(1));
  button("btNext")->click();
  EXPECT_EQ(record.row(), 2);
  EXPECT_FALSE(button("btNext")->isEnabled());
  record.showNext();
  EXPECT_EQ(record.row(), 2);
  button("btPrevious")->click();
  EXPECT_EQ(record.row(), 1);
  // The list in another order: the record stays, its neighbours are others.
  view.clickHeader(0);  // 1 2 3
  EXPECT_EQ(fieldsOf(record), "Entry ID=1;Area=b;");
  EXPECT_EQ(record.windowTitle(), "Record 1 of 3");
  EXPECT_FALSE(button("btPrevious")->isEnabled());
  record.showNext();
  EXPECT_EQ(fieldsOf(record), "Entry ID=2;Area=a;");
}

TEST_F(RecordOfAList, SeveralSelectedRowsStaySelected) {
  fillMany(10);
  view.selectionModel()->select({model.index(2, 0), model.index(5, 1)}, QItemSelectionModel::ClearAndSelect);
  record.showRecord(view, 2);
  record.showNext();
  EXPECT_EQ(view.currentIndex().row(), 3);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(control::RowSpan{2, 5}));
}

TEST_F(RecordOfAList, GoesOnByKeyboardAndClosesByEscape) {
  fillMany(10);
  record.showRecord(view, 4);
  QApplication::setActiveWindow(&record);
  press(Qt::Key_PageDown, Qt::ControlModifier);
  press(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(record.row(), 6);
  // Also while a value has the focus.
  field(record, "Area")->setFocus();
  press(Qt::Key_PageUp, Qt::ControlModifier);
  press(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(record.row(), 4);
  press(Qt::Key_Escape);
  EXPECT_FALSE(record.isVisible());
}

TEST_F(RecordOfAList, ClosesWhenTheListGetsOtherRows) {
  fillMany(3);
  record.showRecord(view, 1);
  fillMany(2);
  EXPECT_FALSE(record.isVisible());
  EXPECT_EQ(record.row(), -1);
  record.showNext();
  EXPECT_EQ(record.row(), -1);
  record.showRecord(view, 7);
  EXPECT_FALSE(record.isVisible());
}

TEST_F(RecordOfAList, AnotherListHasOtherFields) {
  fillRecords({{"1", "a", "b"}});
  record.showRecord(view, 0);
  record.close();
  fillRecords({{"2", "c"}});
  record.showRecord(view, 0);
  EXPECT_EQ(fieldsOf(record), "Entry ID=2;Area=c;");
}

TEST_F(RecordOfAList, SteppingIntoAnotherAnswerKeepsTheKeyboardAndTheMenus) {
  fillAnswers({{"1", "a", "b"}, {"2", "c"}});
  for (const bool reading : {true, false}) {
    SCOPED_TRACE(reading);
    record.showRecord(view, 0);
    QApplication::setActiveWindow(&record);
    EXPECT_EQ(menuOf(*field(record, "Area")), "Copy,Select all");
    if (reading)
      field(record, "F2")->setFocus();
    else
      button("btNext")->setFocus();
    press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(fieldsOf(record), "Entry ID=2;Area=c;");
    EXPECT_EQ(menuOf(*field(record, "Area")), "Copy,Select all");
    // At the last record the focus moves from the disabled button to the next widget, as always.
    EXPECT_EQ(record.focusWidget(), button(reading ? "btClose" : "btPrevious"));
    press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(fieldsOf(record), "Entry ID=1;Area=a;F2=b;");
    EXPECT_EQ(menuOf(*field(record, "F2")), "Copy,Select all");
    EXPECT_EQ(record.focusWidget(), button(reading ? "btClose" : "btNext"));
    record.close();
  }
}

TEST_F(RecordOfAList, CopiesTheWholeRecord) {
  fillRecords({{" 7", "two\nlines", std::nullopt, "<b>"}});
  record.showRecord(view, 0);
  button("btCopy")->click();
  const QMimeData& copied = *QApplication::clipboard()->mimeData();
  EXPECT_EQ(copied.text(), "Entry ID:  7\nArea: two\n  lines\nF2 (NULL)\nF3: <b>\n");
  EXPECT_TRUE(copied.html().contains(QStringLiteral("<td>two<br>lines</td>")));
  EXPECT_TRUE(copied.html().contains(QStringLiteral("<td>&lt;b&gt;</td>")));
}

TEST_F(RecordOfAList, CopiesByKeyWhereverTheFocusIs) {
  fillRecords({{"1", "a"}});
  record.showRecord(view, 0);
  QApplication::setActiveWindow(&record);
  for (QWidget* const focused :
       {static_cast<QWidget*>(field(record, "Area")), static_cast<QWidget*>(button("btClose"))}) {
    QApplication::clipboard()->clear();
    focused->setFocus();
    press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "Entry ID: 1\nArea: a\n");
  }
}

TEST_F(RecordOfAList, EveryButtonSaysItsKeyAndHasAName) {
  fillMany(1);
  record.showRecord(view, 0);
  EXPECT_EQ(button("btPrevious")->toolTip(), "Previous record (Ctrl+PgUp)");
  EXPECT_EQ(button("btNext")->toolTip(), "Next record (Ctrl+PgDown)");
  EXPECT_EQ(button("btCopy")->toolTip(), "Copy the whole record as text (Ctrl+Shift+C)");
  EXPECT_EQ(button("btClose")->toolTip(), "Close (Esc)");
  EXPECT_EQ(button("btNext")->accessibleName(), "Next");
  EXPECT_EQ(button("btCopy")->accessibleName(), "Copy record");
}

TEST_F(RecordOfAList, AByteOrderMarkIsPartOfAValue) {
  fillRecords({{"1", "\uFEFF7"}});
  record.showRecord(view, 0);
  EXPECT_EQ(field(record, "Area")->value().size(), 2);
  record.copyRecord();
  EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Entry ID: 1\nArea: \uFEFF7\n"));
}

TEST_F(RecordOfAList, TextsAreSelectedAndCopiedByMouseAndKeyboard) {
  fillRecords({{"1", "to be copied"}});
  record.showRecord(view, 0);
  ValueField* const area = field(record, "Area");
  EXPECT_TRUE(area->isReadOnly());
  area->setFocus();
  QTest::keyClick(area, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClick(area, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "to be copied");
  QTest::keyClick(area, Qt::Key_X);
  EXPECT_EQ(area->toPlainText(), "to be copied");
}

TEST_F(RecordOfAList, LongAndManyLinedValuesAreReadable) {
  std::string lines;
  for (int i = 0; i < 50; ++i) lines += "line " + std::to_string(i) + '\n';
  fillRecords({{"1", "short", "one\ntwo\nthree", lines, std::string(3000, 'w')}});
  record.showRecord(view, 0);
  const int one = field(record, "Area")->height();
  const int lineHeight = field(record, "Area")->fontMetrics().lineSpacing();
  EXPECT_EQ(field(record, "F2")->height(), one + 2 * lineHeight);
  EXPECT_EQ(field(record, "F3")->height(), one + 5 * lineHeight);
  EXPECT_EQ(field(record, "F3")->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
  EXPECT_EQ(field(record, "F4")->height(), one + 5 * lineHeight);
  EXPECT_EQ(field(record, "F4")->toPlainText().size(), 3000);
  // A short value takes little room again.
  record.close();
  fillRecords({{"1", "short", "one", "x", "y"}});
  record.showRecord(view, 0);
  EXPECT_EQ(field(record, "F3")->height(), one);
  EXPECT_EQ(field(record, "F3")->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

TEST_F(RecordOfAList, AHugeValueIsCutInPlainWordsAndCopiedWhole) {
  const std::string huge(3000000, 'x');
  fillRecords({{"1", huge}});
  record.showRecord(view, 0);
  EXPECT_EQ(field(record, "Area")->toPlainText().size(), ValueField::mostCharacters + 1);
  bool said = false;
  for (const auto* label : record.findChildren<QLabel*>())
    said = said ||
           (label->isVisible() &&
            label->text() == "The first 100000 of 3000000 characters are shown. Copying the record takes all of them.");
  EXPECT_TRUE(said);
  record.copyRecord();
  EXPECT_EQ(QApplication::clipboard()->text().size(),
            qsizetype(huge.size()) + QStringLiteral("Entry ID: 1\nArea: \n").size());
}

TEST_F(RecordOfAList, LongWordsAreBrokenAnywhere) {
  fillRecords({{"1", std::string(2000, 'x') + " some words"}, {"2", "some words"}});
  record.showRecord(view, 0);
  EXPECT_EQ(field(record, "Area")->wordWrapMode(), QTextOption::WrapAnywhere);
  EXPECT_EQ(field(record, "Area")->toPlainText().size(), 2011);
  record.showNext();
  EXPECT_EQ(field(record, "Area")->wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);
  EXPECT_EQ(field(record, "Area")->toPlainText(), "some words");
}

TEST_F(RecordOfAList, ValuesOfVeryManyLinesAreCutToo) {
  std::string lines;
  for (int i = 0; i < 6000; ++i) lines += "a\n";
  fillRecords({{"1", lines}});
  record.showRecord(view, 0);
  EXPECT_EQ(field(record, "Area")->blockCount(), ValueField::mostLineBreaks + 1);
  EXPECT_EQ(field(record, "Area")->shown(), 2 * ValueField::mostLineBreaks);
  const auto labels = record.findChildren<QLabel*>();
  EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
    return label->text().startsWith(QStringLiteral("The first 10000 of 12000 characters are shown."));
  }));
}

TEST_F(RecordOfAList, NoCharacterIsCutInTwo) {
  const std::string beginning(ValueField::mostCharacters - 1, 'x');
  fillRecords({{"1", beginning + "😀"}, {"2", beginning + "\r\n"}, {"3", beginning + "yz"}});
  record.showRecord(view, 0);
  EXPECT_EQ(field(record, "Area")->toPlainText().right(2), QStringLiteral("x…"));
  record.showNext();
  EXPECT_EQ(field(record, "Area")->toPlainText().right(2), QStringLiteral("x…"));
  record.showNext();
  EXPECT_EQ(field(record, "Area")->toPlainText().right(3), QStringLiteral("xy…"));
}

TEST_F(RecordOfAList, TheDirectionOfWritingIsSoughtOnlyWhereItIsInDoubt) {
  fillRecords({{"1", "12 bar"}, {"2", "אבג"}, {"3", "12"}});
  const auto direction = [&] { return field(record, "Area")->document()->defaultTextOption().textDirection(); };
  record.showRecord(view, 0);
  EXPECT_EQ(direction(), Qt::LeftToRight);
  record.showNext();
  EXPECT_EQ(direction(), Qt::LayoutDirectionAuto);
  EXPECT_EQ(field(record, "Area")->document()->firstBlock().textDirection(), Qt::RightToLeft);
  record.showNext();
  EXPECT_EQ(direction(), Qt::LeftToRight);
}

class RecordOfTheTrail : public ViewerTest {
 protected:
  RecordOfTheTrail() {
    auto first = test::record("1", "CS");
    first[9] = "before";
    first[10] = "after";
    first[17] = "summer";
    server.resultSets = {{first, test::record("2", "RT")}};
  }
  static RecordView* open(const AuditViewer& viewer, int listIndex, int row) {
    QTableView* const table = list(viewer, listIndex);
    table->setCurrentIndex(table->model()->index(row, 0));
    QTest::keyClick(table, Qt::Key_Return);
    return viewer.findChild<RecordView*>();
  }
};

TEST_F(RecordOfTheTrail, ShowsAllEighteenColumnsAlsoThoseThatTheListLeavesEmpty) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  EXPECT_EQ(column(*viewer, 0, 16), " ");  // both empty
  const RecordView* const record = open(*viewer, 0, 0);
  ASSERT_NE(record, nullptr);
  EXPECT_TRUE(record->isVisible());
  EXPECT_EQ(fieldsOf(*record),
            "Entry ID=1;Date Time=x;Project GUID=x;Database Name=x;Application Name=x;Area=Area;Item=x;Event=x;"
            "Item ID=x;Old Value=before;New Value=after;PC Name=x;OS User=x;Application User=x;User Name=x;"
            "Audit Type=CS;Comments=comment;Summer Time=summer;");
}

TEST_F(RecordOfTheTrail, OldAndNewValueStandSideBySide) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  const RecordView* const record = open(*viewer, 0, 0);
  ASSERT_NE(record, nullptr);
  const QRect before = field(*record, "Old Value")->geometry();
  const QRect after = field(*record, "New Value")->geometry();
  EXPECT_EQ(before.top(), after.top());
  EXPECT_LT(before.right(), after.left());
  EXPECT_NEAR(before.width(), after.width(), 1);
  // All others are below each other, in the order of the record.
  EXPECT_LT(field(*record, "Item ID")->mapTo(record, QPoint()).y(),
            field(*record, "Old Value")->mapTo(record, QPoint()).y());
  EXPECT_LT(field(*record, "Old Value")->mapTo(record, QPoint()).y(),
            field(*record, "PC Name")->mapTo(record, QPoint()).y());
}

TEST_F(RecordOfTheTrail, OldAndNewValueStandOneUnderTheOtherInANarrowWindow) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  RecordView* const record = open(*viewer, 0, 0);
  ASSERT_NE(record, nullptr);
  const auto placeOf = [&](const char* caption) {
    return field(*record, QString::fromLatin1(caption))->mapTo(record, QPoint());
  };
  const int wide = record->width();
  record->resize(record->minimumSizeHint().width(), record->height());
  QCoreApplication::processEvents();
  EXPECT_EQ(placeOf("Old Value").x(), placeOf("New Value").x());
  EXPECT_LT(placeOf("Old Value").y(), placeOf("New Value").y());
  EXPECT_LT(placeOf("New Value").y(), placeOf("PC Name").y());
  record->showNext();
  QCoreApplication::processEvents();
  EXPECT_EQ(placeOf("Old Value").x(), placeOf("New Value").x());
  record->resize(wide, record->height());
  QCoreApplication::processEvents();
  EXPECT_EQ(placeOf("Old Value").y(), placeOf("New Value").y());
}

TEST_F(RecordOfTheTrail, OpensWithoutScrolling) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  const RecordView* const record = open(*viewer, 0, 0);
  ASSERT_NE(record, nullptr);
  QCoreApplication::processEvents();
  const auto* const area = record->findChild<QScrollArea*>();
  EXPECT_EQ(area->verticalScrollBar()->maximum(), 0);
  EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
}

TEST_F(RecordOfTheTrail, OneDialogServesAllListsAndAQueryClosesIt) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  RecordView* const record = open(*viewer, 0, 1);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->windowTitle(), "Record 2 of 2");
  record->close();
  selectTab(*viewer, 1);
  EXPECT_EQ(open(*viewer, 1, 0), record);
  EXPECT_EQ(record->windowTitle(), "Record 1 of 1");
  viewer->TriggerQuery();
  EXPECT_FALSE(record->isVisible());
}

TEST_F(RecordOfTheTrail, SpeaksTheLanguageWithLettersOfItsOwnForEveryButton) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    control::libraryState().language = settings::LanguageOffset(offset);
    RecordView* const record = open(*viewer, 0, 0);
    ASSERT_NE(record, nullptr);
    QString letters;
    for (const char* name : {"btPrevious", "btNext", "btCopy", "btClose"}) {
      const auto* const button = record->findChild<QPushButton*>(QLatin1String(name));
      const QString text = button->text();
      ASSERT_EQ(text.count('&'), 1) << text.toStdString();
      letters += text.at(text.indexOf('&') + 1).toLower();
      EXPECT_GE(button->width(), button->sizeHint().width()) << text.toStdString();
    }
    std::sort(letters.begin(), letters.end());
    EXPECT_EQ(std::adjacent_find(letters.begin(), letters.end()), letters.end()) << letters.toStdString();
    EXPECT_EQ(record->windowTitle(), control::ownText("record.place").arg(1).arg(2));
    record->close();
  }
}

TEST_F(RecordOfTheTrail, ARefusedCopyIsReportedInABox) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  auto* const table = element<control::ResultListView>(*viewer, "lvListView0");
  table->setCopyLimit(10);
  table->selectAll();
  table->copySelection();
  EXPECT_THAT(
      recorder->messages,
      ElementsAre(ShownMessage{ui::MessageIcon::information, "KorvelAudit Viewer Message",
                               "2 rows are too many for the clipboard. Nothing was copied; select fewer rows."}));
}

TEST_F(RecordOfTheTrail, ACopyWithoutMemoryIsReportedInABox) {
  const auto viewer = shownViewer();
  viewer->TriggerQuery();
  RecordView* const record = open(*viewer, 0, 0);
  ASSERT_NE(record, nullptr);
  QApplication::clipboard()->setText(QStringLiteral("before"));
  {
    const FailingAllocations failing(0, 1);
    record->copyRecord();
  }
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{ui::MessageIcon::information, "KorvelAudit Viewer Message",
                                       "There is not enough memory to copy this record. Nothing was copied."}));
  EXPECT_EQ(QApplication::clipboard()->text(), "before");
  record->copyRecord();
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith(QStringLiteral("Entry ID: 1\n")));
  EXPECT_EQ(recorder->messages.size(), 1U);
}

}  // namespace
}  // namespace korvel::test
