// The behaviour of a report list: selecting, copying, type-ahead, navigation, fitting columns.
#include <gmock/gmock.h>

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include "control/row_copy.h"
#include "tests/control/list_fixture.h"
#include "tests/control/model_warnings.h"
#include "tests/support/watched_allocations.h"
#include "ui/style/viewer_style.h"

namespace korvel::test {
namespace {

using control::RowSpan;
using ::testing::ElementsAre;

class ListBehaviour : public ListView {
 protected:
  static QString clipboardText() { return QApplication::clipboard()->mimeData()->text(); }
  static QString clipboardHtml() { return QApplication::clipboard()->mimeData()->html(); }
  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&view, Qt::Key(key), modifiers);
  }
  void type(const char* keys) { QTest::keyClicks(&view, QLatin1String(keys)); }
  QString current(int column = 0) const { return view.currentIndex().siblingAtColumn(column).data().toString(); }
  void select(std::initializer_list<int> rows) {
    for (const int row : rows)
      view.selectionModel()->select(model.index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  /// Whether a cell is wide enough for its whole text.
  bool showsWhole(int row, int column) const {
    const QString text = model.index(row, column).data().toString();
    const QRect cell = view.visualRect(model.index(row, column));
    return cell.width() - 2 * 8 >= QFontMetricsF(view.font()).horizontalAdvance(text);
  }
};

// --- copying -----------------------------------------------------------------------------------------------------

TEST_F(ListBehaviour, CopyTakesTheSelectedRowsUnderTheirCaptions) {
  fill({{"1", "a"}, {"2", "b"}, {"3", "c"}});
  select({2, 0});
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(clipboardText(), "Entry ID\tArea\n1\ta\n3\tc\n");
  EXPECT_TRUE(
      clipboardHtml().contains(QStringLiteral("<tr><th align=\"left\">Entry ID</th><th align=\"left\">Area</th></tr>\n"
                                              "<tr><td>1</td><td>a</td></tr>\n<tr><td>3</td><td>c</td></tr>\n")))
      << clipboardHtml().toStdString();
}

TEST_F(ListBehaviour, CopyTakesColumnsAsTheyAreSeen) {
  fill({{"1", "a"}, {"2", "b"}});
  view.header()->moveSection(0, 1);
  view.selectAll();
  view.copySelection();
  EXPECT_EQ(clipboardText(), "Area\tEntry ID\na\t1\nb\t2\n");
  view.setColumnTwips(0, {0});
  view.copySelection();
  EXPECT_EQ(clipboardText(), "Area\na\nb\n");
}

TEST_F(ListBehaviour, CopyQuotesCellsThatWouldBreakTheLines) {
  fill({{"1", "two\nlines"},
        {"2", "a\ttab"},
        {"3", "\r"},
        {"4", "\"so\" he said"},
        {"5", "a \"word\""},
        {"6", "x\n\"y\""}});
  view.selectAll();
  view.copySelection();
  EXPECT_EQ(clipboardText(),
            "Entry ID\tArea\n"
            "1\t\"two\nlines\"\n"
            "2\t\"a\ttab\"\n"
            "3\t\"\r\"\n"
            "4\t\"\"\"so\"\" he said\"\n"
            "5\ta \"word\"\n"
            "6\t\"x\n\"\"y\"\"\"\n");
}

TEST_F(ListBehaviour, CopiedHtmlShowsTextsAndNeverMarkup) {
  fill({{"007", "<b>&\"x\"</b>\r\nnext\rlast"}});
  view.selectAll();
  view.copySelection();
  EXPECT_TRUE(clipboardHtml().contains(
      QStringLiteral("<td>007</td><td>&lt;b&gt;&amp;&quot;x&quot;&lt;/b&gt;<br>next<br>last</td>")))
      << clipboardHtml().toStdString();
  // Spreadsheets keep cells of this format as they are written.
  EXPECT_TRUE(clipboardHtml().contains(QStringLiteral("mso-number-format:\"\\@\"")));
}

TEST_F(ListBehaviour, CopyWithoutASelectionLeavesTheClipboardAlone) {
  fill({{"1", "a"}});
  QApplication::clipboard()->setText(QStringLiteral("before"));
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(clipboardText(), "before");
}

TEST_F(ListBehaviour, ACopyThatIsTooLargeIsRefusedWithAMessage) {
  fillMany(1000);
  QApplication::clipboard()->setText(QStringLiteral("before"));
  QSignalSpy refused(&view, &ResultListView::refused);
  view.setCopyLimit(5000);
  view.selectAll();
  press(Qt::Key_C, Qt::ControlModifier);
  ASSERT_EQ(refused.count(), 1);
  EXPECT_EQ(refused[0][0].toString(),
            "1000 rows are too many for the clipboard. Nothing was copied; select fewer rows.");
  EXPECT_EQ(clipboardText(), "before");
  view.selectionModel()->clearSelection();
  select({0});
  view.copySelection();
  EXPECT_EQ(clipboardText(), "Entry ID\tArea\n1\t900000\n");
}

// --- selecting ---------------------------------------------------------------------------------------------------

TEST_F(ListBehaviour, AMillionRowsAreSelectedAsOnePieceAndStaySoThroughSorts) {
  Rows rows(1000000, {"1", "a"});
  rows.front().second = "b";
  fill(rows);
  press(Qt::Key_A, Qt::ControlModifier);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 999999}));
  view.clickHeader(1);
  EXPECT_EQ(view.selectionModel()->selection().size(), 1);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 999999}));
}

TEST_F(ListBehaviour, AllButOneOfAMillionRowsFollowASort) {
  Rows rows(1000000, {"1", "a"});
  rows[500000].second = "b";
  fill(rows);
  view.selectAll();
  view.selectionModel()->select(model.index(500000, 0), QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
  view.clickHeader(1);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 999998}));
}

TEST_F(ListBehaviour, ASelectionThatASortScattersTooFarIsClearedWithAMessage) {
  // Even numbers first, then odd ones: in the order of the numbers every second row is selected.
  Rows mixed;
  for (int i = 0; i < 10000; ++i) mixed.emplace_back(std::to_string(i < 5000 ? 2 * i : 2 * (i - 5000) + 1), "x");
  fill(mixed);
  QSignalSpy scattered(&view, &ResultListView::selectionScattered);
  view.setCurrentIndex(model.index(0, 0));
  view.selectionModel()->select({model.index(0, 0), model.index(4999, 1)}, QItemSelectionModel::ClearAndSelect);
  view.clickHeader(0);
  ASSERT_EQ(scattered.count(), 1);
  EXPECT_EQ(scattered[0][0].toULongLong(), 5000U);
  EXPECT_THAT(view.selectedSpans(), ElementsAre());
  EXPECT_EQ(current(), "0");
}

TEST_F(ListBehaviour, ShiftAndControlSelectRangesAndSingleRows) {
  fillMany(20);
  view.setCurrentIndex(model.index(2, 0));
  press(Qt::Key_Down, Qt::ShiftModifier);
  press(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{2, 4}));
  const QRect far = view.visualRect(model.index(0, 0));
  QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, far.center());
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 0}, RowSpan{2, 4}));
  view.header()->moveSection(1, 0);
  press(Qt::Key_End, Qt::ShiftModifier);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 19}));
}

// --- where memory runs out ----------------------------------------------------------------------------------------

TEST_F(ListBehaviour, AColumnIsMeasuredByTheRowsInSightWhereMemoryRunsOut) {
  fill({{"1", "a text that is wider than its caption"}, {"2", "b"}});
  const QAbstractItemView& measured = view;
  const int whole = measured.sizeHintForColumn(1);
  int hint = 0;
  {
    // The first one belongs to the measurement.
    const FailingAllocations failing(0, 1);
    EXPECT_NO_THROW(hint = measured.sizeHintForColumn(1));
  }
  EXPECT_NEAR(hint, whole, 4);
}

// --- navigation --------------------------------------------------------------------------------------------------

TEST_F(ListBehaviour, HomeEndAndPagesGoThroughTheRows) {
  fillMany(500);
  view.setCurrentIndex(model.index(100, 0));
  press(Qt::Key_End);
  EXPECT_EQ(current(), "500");
  press(Qt::Key_Home);
  EXPECT_EQ(current(), "1");
  press(Qt::Key_PageDown);
  const int page = view.currentIndex().row();
  EXPECT_GT(page, 1);
  EXPECT_LT(page, 20);
  press(Qt::Key_PageDown);
  press(Qt::Key_PageUp);
  press(Qt::Key_PageUp);
  EXPECT_EQ(current(), "1");
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 0}));
}

TEST_F(ListBehaviour, LeftAndRightGoByColumnsAndUpAndDownStayInThem) {
  fillMany(50);
  view.resize(200, 200);
  view.setColumnWidth(0, 300);
  view.setColumnWidth(1, 400);
  view.setCurrentIndex(model.index(3, 0));
  press(Qt::Key_Right);
  EXPECT_EQ(view.currentIndex(), model.index(3, 1));
  EXPECT_EQ(view.horizontalScrollBar()->value(), 300);
  view.horizontalScrollBar()->setValue(120);
  press(Qt::Key_Down);
  press(Qt::Key_End);
  EXPECT_EQ(view.currentIndex(), model.index(49, 1));
  EXPECT_EQ(view.horizontalScrollBar()->value(), 120);
  press(Qt::Key_Left);
  EXPECT_EQ(view.horizontalScrollBar()->value(), 0);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{49, 49}));
}

TEST_F(ListBehaviour, KeysReachRowsWhoseCurrentCellIsHidden) {
  fillMany(500);
  view.setCurrentIndex(model.index(0, 0));
  view.setColumnTwips(0, {0});
  press(Qt::Key_End);
  EXPECT_EQ(current(), "500");
  EXPECT_TRUE(view.viewport()->rect().intersects(view.visualRect(view.currentIndex())));
}

TEST_F(ListBehaviour, ColumnsAreDraggedToOtherPlacesAndSortAsBefore) {
  fill({{"2", "b"}, {"1", "a"}});
  view.header()->moveSection(1, 0);
  EXPECT_EQ(view.columnViewportPosition(1), 0);
  view.clickHeader(1);
  EXPECT_EQ(shown(), "1 2");
  view.applyColumnWidths();
  EXPECT_EQ(view.columnViewportPosition(0), 0);
}

// --- typing ahead ------------------------------------------------------------------------------------------------

TEST_F(ListBehaviour, TypingFindsRowsByTheSortColumn) {
  fill({{"1", "delta"}, {"2", "Charlie"}, {"3", "bravo two"}, {"4", "bravo one"}, {"5", "alpha"}});
  view.clickHeader(1);
  type("ch");
  EXPECT_EQ(current(1), "Charlie");
  press(Qt::Key_Home);
  type("bravo t");
  EXPECT_EQ(current(1), "bravo two");
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{2, 2}));
  // A text that no row begins with selects nothing.
  type("zzz");
  EXPECT_EQ(current(1), "bravo two");
}

TEST_F(ListBehaviour, TheSameLetterGoesThroughItsRows) {
  fill({{"1", "a1"}, {"2", "b"}, {"3", "a2"}, {"4", "a3"}});
  view.clickHeader(1);
  type("a");
  EXPECT_EQ(current(1), "a1");
  type("aa");
  EXPECT_EQ(current(1), "a3");
  type("a");
  EXPECT_EQ(current(1), "a1");
}

TEST_F(ListBehaviour, ABlankSelectsUnlessSomethingIsBeingTyped) {
  fill({{"1", "x"}, {"2", "y"}});
  view.setCurrentIndex(model.index(0, 0));
  view.selectionModel()->clearSelection();
  press(Qt::Key_Space);
  EXPECT_THAT(view.selectedSpans(), ElementsAre(RowSpan{0, 0}));
}

TEST_F(ListBehaviour, TypingFindsNumbersInTheOrderOfTheirValues) {
  fillMany(5000);
  view.clickHeader(0);  // already the sort key: descending
  view.setCurrentIndex(model.index(0, 0));
  type("4711");
  EXPECT_EQ(current(), "4711");
  EXPECT_TRUE(view.viewport()->rect().intersects(view.visualRect(view.currentIndex())));
}

TEST_F(ListBehaviour, TypingUsesTheFirstColumnOfAListThatIsNotSorted) {
  fill({{"3", "a"}, {"1", "b"}, {"2", "c"}});
  type("2");
  EXPECT_EQ(current(1), "c");
  view.setColumnTwips(0, {0});
  press(Qt::Key_Home);
  type("b");
  EXPECT_EQ(current(1), "b");
}

// --- fitting columns ---------------------------------------------------------------------------------------------

TEST_F(ListBehaviour, AColumnBecomesAsWideAsItsWidestEntry) {
  fill({{"1", "short"}, {"2", "a much longer text than all of the others, W"}, {"3", "medium length"}});
  view.autoSizeColumn(1);
  EXPECT_TRUE(showsWhole(1, 1));
  const int fitting = view.columnWidth(1);
  view.setColumnWidth(1, fitting - 3);
  EXPECT_FALSE(showsWhole(1, 1));
  // Also for rows that are out of sight.
  Rows rows(5000, {"1", "short"});
  rows.back().second = "a much longer text than all of the others, W";
  fill(rows);
  view.autoSizeColumn(1);
  EXPECT_EQ(view.columnWidth(1), fitting);
}

TEST_F(ListBehaviour, AColumnOfShortTextsFitsItsCaptionWithAnArrow) {
  ui::applyStyle(view);
  fill({{"1", "a"}});
  view.autoSizeColumn(0);
  const int width = view.columnWidth(0);
  QFont semiBold = view.header()->font();
  semiBold.setWeight(QFont::DemiBold);
  EXPECT_GE(width, QFontMetrics(semiBold).horizontalAdvance(QStringLiteral("Entry ID")) + 8 + 5 + 8 + 7);
  view.clickHeader(0);
  view.autoSizeColumn(0);
  EXPECT_EQ(view.columnWidth(0), width);
  model.clear();
  view.autoSizeColumn(0);
  EXPECT_EQ(view.columnWidth(0), width);
}

TEST_F(ListBehaviour, AFitIgnoresRowsOfOtherLists) {
  auto store = std::make_shared<results::RowStore>();
  const std::vector<db::Field> fields{{"Nr"}, {"TableName"}};
  store->beginResult(fields);
  store->append(std::vector<db::Cell>{{"1"}, {"a"}});
  store->append(std::vector<db::Cell>{{"2"}, {"a text of another list, and a long one"}});
  {
    const ResultListModel::RowsChange change(model);
    list.setRows(store, {RowId{0}});
  }
  view.autoSizeColumn(1);
  const int alone = view.columnWidth(1);
  {
    const ResultListModel::RowsChange change(model);
    list.setRows(store, {RowId{0}, RowId{1}});
  }
  view.autoSizeColumn(1);
  EXPECT_GT(view.columnWidth(1), alone + 50);
}

TEST_F(ListBehaviour, AHiddenColumnStaysHiddenAndOthersAreNotTouched) {
  fill({{"1", "a"}});
  view.setColumnTwips(0, {0});
  const int other = view.columnWidth(1);
  view.autoSizeColumn(0);
  view.autoSizeColumn(-1);
  view.autoSizeColumn(2);
  EXPECT_TRUE(view.isColumnHidden(0));
  EXPECT_EQ(view.columnWidth(1), other);
}

TEST_F(ListBehaviour, ADoubleClickOnAHeadersEdgeAsksForAFitAndDoesNothingElse) {
  fill({{"1", "a rather long text that needs more than an inch"}});
  QSignalSpy asked(&view, &ResultListView::fitRequested);
  const int width = view.columnWidth(1);
  const int edge = view.header()->sectionViewportPosition(1) + width - 1;
  QTest::mouseDClick(view.header()->viewport(), Qt::LeftButton, {}, {edge, view.header()->height() / 2});
  ASSERT_EQ(asked.size(), 1);
  EXPECT_EQ(asked[0][0].toInt(), 1);
  EXPECT_EQ(view.columnWidth(1), width);
}

// --- records -----------------------------------------------------------------------------------------------------

TEST_F(ListBehaviour, EnterAndADoubleClickAskForTheRecord) {
  fillMany(10);
  QSignalSpy requested(&view, &ResultListView::recordRequested);
  press(Qt::Key_Return);
  EXPECT_EQ(requested.count(), 0);  // no current record
  view.setCurrentIndex(model.index(3, 0));
  press(Qt::Key_Return);
  press(Qt::Key_Enter, Qt::KeypadModifier);
  const QPoint place = view.visualRect(model.index(5, 1)).center();
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
  QTest::mouseDClick(view.viewport(), Qt::RightButton, {}, place);
  ASSERT_EQ(requested.count(), 3);
  EXPECT_EQ(requested[0][0], 3);
  EXPECT_EQ(requested[1][0], 3);
  EXPECT_EQ(requested[2][0], 5);
}

TEST_F(ListBehaviour, ACutCellHasATooltipWithItsWholeText) {
  const std::string whole = "a text that is far too long for a column of one inch";
  fill({{"1", whole}, {"2", "short"}});
  const auto hover = [&](int row) {
    const QPoint place = view.visualRect(model.index(row, 1)).center();
    QHelpEvent help(QEvent::ToolTip, place, view.viewport()->mapToGlobal(place));
    QApplication::sendEvent(view.viewport(), &help);
  };
  hover(1);
  EXPECT_EQ(QToolTip::text(), "");
  hover(0);
  EXPECT_TRUE(QToolTip::text().contains(QString::fromStdString(whole)));
  QToolTip::hideText();
}

TEST_F(ListBehaviour, ObeysTheRulesOfModelsInAllOfThis) {
  const ModelWatch watch(&model);
  fillMany(300);
  view.selectAll();
  view.clickHeader(1);
  type("900");
  press(Qt::Key_End, Qt::ShiftModifier);
  view.clickHeader(0);
  view.autoSizeColumn(0);
  model.clear();
  press(Qt::Key_End);
  type("9");
  view.copySelection();
  EXPECT_FALSE(view.currentIndex().isValid());
}

}  // namespace
}  // namespace korvel::test
