// Finding and filtering by regular expressions, which are searched for on another thread.
#include "settings/registry.h"
#include "tests/control/list_work_fixture.h"

namespace korvel::test {
namespace {

class RegexSearch : public ListWork {
 protected:
  static constexpr auto searching = "Searching...";
  static constexpr auto applying = "The filter is being applied...";

  static void open(const AuditViewer& viewer) {
    list(viewer, 0)->setFocus();
    press(Qt::Key_F, Qt::ControlModifier);
    press(Qt::Key_R, Qt::AltModifier);
  }
  /// Waits until the hits are known.
  static QString settledCount(const AuditViewer& viewer) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return findCount(viewer) != searching; }, 20'000));
    return findCount(viewer);
  }
  static QString settledFilter(const AuditViewer& viewer) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownCount(viewer) != applying; }, 20'000));
    return shownCount(viewer);
  }
  /// Filters by an expression that is searched for, and pins it.
  static void pinFilter(const AuditViewer& viewer, const char* expression) {
    open(viewer);
    findText(viewer).setText(QString::fromUtf8(expression));
    settledCount(viewer);
    press(Qt::Key_Return, Qt::ControlModifier);
    chipBar(viewer).findChild<QToolButton*>("PinFilters")->click();
    press(Qt::Key_Escape);
  }
  /// An expression for which a long text is too much.
  static constexpr auto expensive = "^(\\w|\\w\\w)*!$";
  static std::string tooMuch() { return std::string(200, 'a') + "!x"; }
};

TEST_F(RegexSearch, TheWindowDoesNotWaitForTheHits) {
  const auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("^(T|W)IC-[12]\\d+$");
  EXPECT_EQ(findCount(*viewer), searching);
  EXPECT_EQ(settledCount(*viewer), "1 of 3");
  EXPECT_EQ(currentCell(*viewer), "TIC-1901");
  press(Qt::Key_Return);
  EXPECT_EQ(findCount(*viewer), "2 of 3");
  EXPECT_EQ(currentCell(*viewer), "WIC-2008");
}

TEST_F(RegexSearch, TheNextKeyStopsIt) {
  const auto viewer = filledViewer();
  goTo(*viewer, 0, number);
  open(*viewer);
  QStringList visited;
  QObject::connect(list(*viewer, 0)->selectionModel(), &QItemSelectionModel::currentChanged, viewer.get(),
                   [&](const QModelIndex& current) { visited.append(current.data().toString()); });
  findText(*viewer).setText("TIC-1901");
  findText(*viewer).setText("TIC-1926");
  findText(*viewer).setText("PIC-\\d");
  EXPECT_EQ(settledCount(*viewer), "1 of 2");
  EXPECT_EQ(visited, QStringList{"PIC-4020"});
}

TEST_F(RegexSearch, EnterWaitsForTheHits) {
  const auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("TIC-1");
  press(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(findCount(*viewer), searching);
  EXPECT_EQ(settledCount(*viewer), "2 of 2") << "the one before the first row";
}

TEST_F(RegexSearch, EscStopsIt) {
  const auto viewer = filledViewer();
  goTo(*viewer, 0, number);
  open(*viewer);
  findText(*viewer).setText("PIC");
  press(Qt::Key_Escape);
  press(Qt::Key_F, Qt::ControlModifier);
  findText(*viewer).setText("WIC");
  EXPECT_EQ(settledCount(*viewer), "1 of 1");
  press(Qt::Key_Escape);
  EXPECT_EQ(currentCell(*viewer), "WIC-2008") << "and nothing comes of the first one";
}

TEST_F(RegexSearch, SortingAndOtherRowsStartItAgain) {
  const auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("TIC-\\d");
  click(*viewer, "btQuery");
  EXPECT_EQ(findCount(*viewer), searching);
  EXPECT_EQ(settledCount(*viewer), "3 hits");
  server.resultSets = {{row("9", "", "Screen", "TIC-1", "")}};
  findText(*viewer).setText("TIC-.");
  click(*viewer, "btQuery");
  EXPECT_EQ(settledCount(*viewer), "1 hit");
  // Sorting shows the same records: nothing is searched for again.
  list(*viewer, 0)->setFocus();
  list(*viewer, 0)->setCurrentIndex(list(*viewer, 0)->model()->index(0, area));
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(findCount(*viewer), "1 hit");
}

TEST_F(RegexSearch, AClosedViewerStopsIt) {
  auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("TIC-\\d");
  ASSERT_EQ(findCount(*viewer), searching);
  viewer.reset();
  QApplication::processEvents();
}

TEST_F(RegexSearch, AFilterOnWhatWasFoundShowsItsRowsAtOnce) {
  const auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("^TIC-1");
  settledCount(*viewer);
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(column(*viewer, 0), "1 3");
  EXPECT_EQ(chips(*viewer), "Any column matches \"^TIC-1\"");
  EXPECT_EQ(findCount(*viewer), "1 of 2") << "nothing is searched for again";
}

TEST_F(RegexSearch, AFilterThatIsAskedForWhileItIsSearchedForWaits) {
  const auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("^WIC");
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(chips(*viewer), "");
  settledCount(*viewer);
  EXPECT_EQ(column(*viewer, 0), "2");
}

TEST_F(RegexSearch, APinnedFilterShowsNoRowsUntilItIsEvaluated) {
  const auto viewer = filledViewer();
  pinFilter(*viewer, "^TIC-1");
  server.resultSets[0].push_back(row("7", "", "Alarm", "TIC-12", "y"));
  click(*viewer, "btQuery");
  EXPECT_EQ(shownCount(*viewer), applying);
  EXPECT_EQ(list(*viewer, 0)->model()->rowCount(), 0);
  EXPECT_EQ(static_cast<ui::ResultTable*>(list(*viewer, 0))->emptyText(), applying);
  // Nobody knows which rows an export would take.
  viewer->ExportNotepad();
  EXPECT_EQ(recorder->messages.back().text, applying);
  EXPECT_TRUE(recorder->questions.isEmpty());
  EXPECT_EQ(settledFilter(*viewer), "3 of 7 shown");
  EXPECT_EQ(column(*viewer, 0), "1 3 7");
  // The next condition needs no other evaluation.
  goTo(*viewer, 0, area);
  press(Qt::Key_K, Qt::ControlModifier);
  EXPECT_EQ(shownCount(*viewer), "1 of 7 shown");
}

TEST_F(RegexSearch, TheNextQueryStopsTheEvaluationOfAFilter) {
  const auto viewer = filledViewer();
  pinFilter(*viewer, "^TIC-1");
  click(*viewer, "btQuery");
  ASSERT_EQ(shownCount(*viewer), applying);
  server.resultSets = {{row("8", "", "Alarm", "TIC-15", "y"), row("9", "", "Alarm", "x", "y")}};
  click(*viewer, "btQuery");
  EXPECT_EQ(settledFilter(*viewer), "1 of 2 shown");
  EXPECT_EQ(column(*viewer, 0), "8");
  // Without it, everything is shown at once.
  click(*viewer, "btQuery");
  ASSERT_EQ(shownCount(*viewer), applying);
  chipBar(*viewer).findChild<QToolButton*>("ClearFilters")->click();
  EXPECT_EQ(column(*viewer, 0), "8 9");
  QApplication::processEvents();
  EXPECT_EQ(column(*viewer, 0), "8 9");
}

TEST_F(RegexSearch, AFilterSaysThatValuesWereTooMuch) {
  server.resultSets[0][1][itemId] = "ab!";
  const auto viewer = filledViewer();
  pinFilter(*viewer, expensive);
  EXPECT_EQ(shownCount(*viewer), "1 of 6 shown");
  server.resultSets[0][3][itemId] = tooMuch();
  click(*viewer, "btQuery");
  const QString said = settledFilter(*viewer);
  EXPECT_TRUE(said.endsWith("of 6 shown, some values undecided")) << said.toStdString();
  EXPECT_TRUE(chipBar(*viewer).findChild<QLabel*>("ShownCount")->toolTip().contains("count as not matching"));
  EXPECT_TRUE(chipBar(*viewer).chips()[0].toolTip.endsWith("count as not matching"));
  EXPECT_TRUE(chipBar(*viewer).accessibleDescription().endsWith("count as not matching"));
  control::libraryState().language = settings::LanguageOffset("10000");
  viewer->SwitchLanguage();
  EXPECT_TRUE(shownCount(*viewer).endsWith("manche Werte unentschieden")) << shownCount(*viewer).toStdString();
  // With other rows it is decided anew.
  server.resultSets[0][3][itemId] = "cd!";
  click(*viewer, "btQuery");
  EXPECT_TRUE(QTest::qWaitFor([&] { return list(*viewer, 0)->model()->rowCount() == 2; }, 20'000));
  EXPECT_EQ(shownCount(*viewer), "2 von 6 angezeigt");
}

TEST_F(RegexSearch, ProblemsFollowTheLanguage) {
  server.resultSets[0][3][itemId] = tooMuch();
  const auto viewer = filledViewer();
  open(*viewer);
  findText(*viewer).setText("(unclosed");
  EXPECT_EQ(findCount(*viewer), "Not a regular expression: missing closing parenthesis");
  const auto speak = [&](const char* language) {
    control::libraryState().language = settings::LanguageOffset(language);
    viewer->SwitchLanguage();
  };
  speak("10000");
  EXPECT_EQ(findCount(*viewer), QString::fromUtf8("Kein regulärer Ausdruck: missing closing parenthesis"));
  speak("0");
  findText(*viewer).setText(expensive);
  EXPECT_EQ(settledCount(*viewer), "Some values are too much for this expression and were left out");
  speak("10000");
  EXPECT_TRUE(findCount(*viewer).startsWith(QString::fromUtf8("Für manche Werte"))) << findCount(*viewer).toStdString();
}

}  // namespace
}  // namespace korvel::test
