// Finding in the lists, by keys.
#include <QDialog>
#include <QScrollBar>
#include <QVBoxLayout>

#include "control/find_matcher.h"
#include "tests/control/list_work_fixture.h"
#include "tests/ui/painted.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;

class Finding : public ListWork {};

TEST_F(Finding, TypingFindsInAllColumnsAndKeysGoFromHitToHit) {
  const auto viewer = filledViewer();
  EXPECT_TRUE(bar(*viewer).isHidden());
  press(Qt::Key_F, Qt::ControlModifier);
  ASSERT_FALSE(bar(*viewer).isHidden());
  ASSERT_TRUE(findText(*viewer).hasFocus());
  type("tic-");
  EXPECT_EQ(findCount(*viewer), "1 of 3");
  EXPECT_EQ(currentCell(*viewer), "TIC-1901");
  press(Qt::Key_Return);
  EXPECT_EQ(findCount(*viewer), "2 of 3");
  EXPECT_EQ(currentCell(*viewer), "TIC-1926");
  press(Qt::Key_F3);
  press(Qt::Key_F3);
  EXPECT_EQ(findCount(*viewer), "1 of 3") << "from the last one to the first";
  press(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(findCount(*viewer), "3 of 3");
  EXPECT_EQ(currentCell(*viewer), "tic-7");
  // In the list, too.
  list(*viewer, 0)->setFocus();
  press(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(currentCell(*viewer), "TIC-1926");
  press(Qt::Key_Escape);
  EXPECT_TRUE(bar(*viewer).isHidden());
  EXPECT_TRUE(list(*viewer, 0)->hasFocus());
}

TEST_F(Finding, ExactCaseWholeValuesAndRegularExpressions) {
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  type("tic-");
  press(Qt::Key_C, Qt::AltModifier);
  EXPECT_EQ(findCount(*viewer), "1 of 1");
  EXPECT_EQ(currentCell(*viewer), "tic-7");
  press(Qt::Key_W, Qt::AltModifier);
  EXPECT_EQ(findCount(*viewer), "No hits");
  type("7");
  EXPECT_EQ(findCount(*viewer), "1 of 1");
  press(Qt::Key_W, Qt::AltModifier);
  press(Qt::Key_C, Qt::AltModifier);
  press(Qt::Key_R, Qt::AltModifier);
  findText(*viewer).setText("^(T|W)IC-[12]\\d+$");
  EXPECT_TRUE(QTest::qWaitFor([&] { return findCount(*viewer) == "1 of 3"; }, 20'000));
  findText(*viewer).setText("(unclosed");
  EXPECT_TRUE(findCount(*viewer).startsWith("Not a regular expression")) << findCount(*viewer).toStdString();
  findText(*viewer).setText("");
  EXPECT_EQ(findCount(*viewer), "");
}

TEST_F(Finding, MarksTheHitsWhileTheBarIsOpen) {
  const auto viewer = filledViewer();
  QTableView* view = list(*viewer, 0);
  const ui::Theme& theme = ui::Theme::of(*view);
  press(Qt::Key_F, Qt::ControlModifier);
  type("TIC-");
  view->scrollTo(view->model()->index(0, itemId));
  const auto marked = [&](int rowNumber, const QColor& color) {
    return ui::count(ui::painted(*view->viewport()), color, view->visualRect(view->model()->index(rowNumber, itemId)));
  };
  EXPECT_GT(marked(0, theme.foundCurrent), 20);
  EXPECT_GT(marked(2, theme.found), 20);
  EXPECT_EQ(marked(1, theme.found), 0);
  press(Qt::Key_Escape);
  EXPECT_EQ(marked(0, theme.foundCurrent) + marked(2, theme.found), 0);
}

TEST_F(Finding, MarksStandWhereAValueIsWrittenOutDifferently) {
  server.resultSets[0][0][itemId] = "a\u202E TIC-1 " + std::string(5000, 'x') + " TIC-2";
  const auto viewer = filledViewer();
  auto* view = static_cast<control::ResultListView*>(list(*viewer, 0));
  view->setColumnWidth(itemId, 3000);
  press(Qt::Key_F, Qt::ControlModifier);
  type("TIC-1 ");
  const QModelIndex cell = view->model()->index(0, itemId);
  ASSERT_EQ(view->currentIndex(), cell);
  // Painted alone, the marked characters are those of the text as it is shown.
  const QString shown = ui::RowDelegate::shownText(cell.data().toString());
  ASSERT_TRUE(shown.startsWith("a\\u202E TIC-1 "));
  view->horizontalScrollBar()->setValue(view->horizontalHeader()->sectionPosition(itemId));
  const QImage image = ui::painted(*view->viewport()).copy(view->visualRect(cell));
  const int begin = 8 + view->fontMetrics().horizontalAdvance("a\\u202E ");
  const ui::Theme& theme = ui::Theme::of(*view);
  EXPECT_EQ(ui::count(image, theme.foundCurrent, QRect(0, 0, begin - 3, image.height())), 0);
  EXPECT_GT(ui::count(image, theme.foundCurrent, QRect(begin, 0, 30, image.height())), 20);
}

TEST_F(Finding, FollowsSortingAndOtherRows) {
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  type("TIC-1");
  EXPECT_EQ(findCount(*viewer), "1 of 2");
  goTo(*viewer, 0, number);
  press(Qt::Key_Return, Qt::ControlModifier);  // the other direction
  bar(*viewer).open();
  EXPECT_EQ(findCount(*viewer), "2 of 2") << "the same record, in another order";
  press(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(currentCell(*viewer), "TIC-1926");
  EXPECT_EQ(findCount(*viewer), "1 of 2") << "in the order of the list";
  goTo(*viewer, 0, number);
  EXPECT_EQ(findCount(*viewer), "2 hits") << "the list stands elsewhere";
  server.resultSets = {{row("9", "", "Screen", "TIC-1", "")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(findCount(*viewer), "1 hit");
  click(*viewer, "btClear");
  EXPECT_EQ(findCount(*viewer), "No hits");
}

TEST_F(Finding, SearchesTheColumnsThatAreShown) {
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  type("TIC-1");
  EXPECT_EQ(findCount(*viewer), "1 of 2");
  list(*viewer, 0)->setColumnHidden(itemId, true);
  press(Qt::Key_F3);
  EXPECT_EQ(findCount(*viewer), "No hits");
}

TEST_F(Finding, EachListHasABarOfItsOwnAndAllShareTheLastTexts) {
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  type("TIC");
  press(Qt::Key_Return);
  selectTab(*viewer, 1);
  EXPECT_TRUE(bar(*viewer, 1).isHidden());
  list(*viewer, 1)->setFocus();
  press(Qt::Key_F, Qt::ControlModifier);
  EXPECT_FALSE(bar(*viewer, 1).isHidden());
  EXPECT_EQ(bar(*viewer, 1).request().text, "");
  press(Qt::Key_Down);
  EXPECT_EQ(bar(*viewer, 1).request().text, "TIC");
  selectTab(*viewer, 0);
  EXPECT_EQ(bar(*viewer).request().text, "TIC");
}

TEST_F(Finding, TheBarHidesNoRow) {
  const auto viewer = filledViewer();
  QTableView* view = list(*viewer, 0);
  const QRect before = view->geometry();
  press(Qt::Key_F, Qt::ControlModifier);
  EXPECT_LT(view->geometry().bottom(), bar(*viewer).geometry().top());
  EXPECT_EQ(view->geometry().top(), before.top());
  EXPECT_LE(bar(*viewer).geometry().bottom(), before.bottom() + 4);
  press(Qt::Key_Escape);
  EXPECT_EQ(view->geometry(), before);
}

TEST_F(Finding, AsksForATextWhereNothingIsSearchedForYet) {
  const auto viewer = filledViewer();
  press(Qt::Key_F3);
  EXPECT_FALSE(bar(*viewer).isHidden());
  EXPECT_TRUE(findText(*viewer).hasFocus());
  type("WIC");
  press(Qt::Key_Escape);
  goTo(*viewer, 5, number);
  press(Qt::Key_F3);
  EXPECT_EQ(currentCell(*viewer), "WIC-2008") << "the last text is searched for again";
}

TEST_F(Finding, EscIsTheHostsWhileThereIsNoBar) {
  QDialog host;
  auto column = std::make_unique<QVBoxLayout>(&host);
  const auto viewer = newViewer();
  column->addWidget(viewer.get());
  host.show();
  host.activateWindow();
  QApplication::processEvents();
  list(*viewer, 0)->setEnabled(true);
  list(*viewer, 0)->setFocus();
  press(Qt::Key_F3);
  press(Qt::Key_Escape);
  EXPECT_TRUE(host.isVisible()) << "it closes the bar";
  EXPECT_TRUE(bar(*viewer).isHidden());
  press(Qt::Key_Escape);
  EXPECT_FALSE(host.isVisible());
}

TEST(FindMatcher, FindsWhatTheToolkitsExpressionsMatch) {
  const auto spans = [](const char* pattern, const char* text, bool whole = false) {
    const control::FindMatcher made =
        control::findMatcher({.text = QString::fromUtf8(pattern), .wholeValue = whole, .regularExpression = true});
    EXPECT_TRUE(made.problem.isEmpty());
    std::vector<results::TextSpan> found = made.matcher->spansIn(text);
    EXPECT_FALSE(*made.gaveUp);
    return found;
  };
  using results::TextSpan;
  // Places are counted in bytes, across characters of two and four of them.
  EXPECT_THAT(spans("b.", "Bä bä"), ElementsAre(TextSpan{0, 3}, TextSpan{4, 7}));
  EXPECT_THAT(spans("x", "\U0001F600x"), ElementsAre(TextSpan{4, 5}));
  EXPECT_THAT(spans("x*", "yxxy"), ElementsAre(TextSpan{1, 3})) << "an empty match is none";
  EXPECT_THAT(spans("x*", "\U0001F600x"), ElementsAre(TextSpan{4, 5}));
  EXPECT_TRUE(spans("a|ab", "ab", true).size() == 1);
  EXPECT_TRUE(spans("a", "ab", true).empty());
}

}  // namespace
}  // namespace korvel::test
