// The text export and the exchange file, from the command to the file and the messages about it.
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDir>
#include <QMenu>
#include <QTest>
#include <algorithm>

#include "base/error.h"
#include "base/system_errors.h"
#include "tests/control/exports_fixture.h"

namespace korvel::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ui::MessageIcon;
using ui::Pointer;

const ShownMessage nothing{MessageIcon::information, "KorvelAudit Viewer Message", "Nothing to Export"};

TEST_F(TextExport, WritesTheListAndOpensIt) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->pointers.clear();
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(recorder->edited, QStringList{path("velview.txt")});
  EXPECT_THAT(recorder->pointers, ElementsAre(Pointer::hourglass, Pointer::standard));
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_FALSE(progressBar(*viewer)->isVisible());
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path("velview.txt"));
}

TEST_F(TextExport, OfAnEmptyListSaysSoAndWritesNothing) {
  const auto viewer = shownViewer();
  viewer->ExportNotepad();
  EXPECT_THAT(recorder->messages, ElementsAre(nothing));
  EXPECT_TRUE(folderIsEmpty());
  EXPECT_THAT(recorder->edited, IsEmpty());
}

TEST_F(TextExport, SaysThatThereIsNothingInTheCurrentLanguage) {
  settings.values["Language"] = "10000";
  const auto viewer = shownViewer();
  viewer->ExportNotepad();
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_NE(recorder->messages[0].text, nothing.text);
  EXPECT_FALSE(recorder->messages[0].text.isEmpty());
}

TEST_F(TextExport, QuotesNothing) {
  const auto viewer = viewerWith({{"a,b", "\"c\"", "d\ne"}});
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,\"c\",d\ne\r\n");
}

TEST_F(TextExport, TakesTheListOfTheCurrentPage) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  server.answer = nullptr;
  server.resultSets = {{record("7", "CS")}};
  selectTab(*viewer, 0);
  click(*viewer, "btQuery");
  viewer->ExportNotepad();
  const std::string text = written("velview.txt");
  EXPECT_EQ(text.substr(0, 19), "Entry ID,Date Time,");
  EXPECT_NE(text.find("\r\n7,x,x,x,x,Area,"), std::string::npos);
  // The last two columns of a standard list are empty, deliberately.
  EXPECT_EQ(text.substr(text.size() - 6), "CS,,\r\n");
}

TEST_F(TextExport, ASecondOneTakesTheFirstOnesPlace) {
  const auto viewer = viewerWith({{"a", "b", "c"}, {"1", "2", "3"}});
  viewer->ExportNotepad();
  server.answer = [](db::ResultSink& sink) {
    const std::vector<db::Field> fields{{"X"}};
    const std::vector<db::Cell> cells{{"y"}};
    sink.beginResult(fields);
    sink.row(cells);
    sink.endResult();
  };
  click(*viewer, "btQuery");
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt"), "X,\r\ny\r\n");
}

TEST_F(TextExport, SaysHowManyCharactersTheFileCannotHold) {
  const auto viewer = viewerWith({{"\xCE\xB1\xCE\xB2", "\xC3\xA4", "c"}});
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\n??,\xE4,c\r\n");
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path("velview.txt") +
                                      ". Characters that the file cannot hold: 2; each is written as \"?\"");
}

// The pointer and the progress bar deliberately stay as they were when it failed.
TEST_F(TextExport, AMissingFolderIsAnErrorWithItsNumber) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  {
    const EnvironmentVariable gone("windir", (folder / "gone").string());
    recorder->pointers.clear();
    viewer->ExportNotepad();
  }
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                       "76:Error in ExportNotpad.  Error Message: Path not found"}));
  EXPECT_THAT(recorder->pointers, ElementsAre(Pointer::hourglass));
  EXPECT_TRUE(progressBar(*viewer)->isVisible());
  EXPECT_THAT(recorder->edited, IsEmpty());
  // The next one works.
  viewer->ExportNotepad();
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);
  EXPECT_FALSE(progressBar(*viewer)->isVisible());
}

TEST_F(TextExport, AMissingEditorIsAnErrorAndTheFileStays) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->onEditor = [] { throw fileError(FileError::fileNotFound); };
  viewer->ExportNotepad();
  EXPECT_THAT(
      recorder->messages,
      ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                               "53:Error in ExportNotpad.  Error Message: The text was exported to " +
                                   path("velview.txt") + ", but no program opened it. Open the file yourself."}));
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n");
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path("velview.txt"));
}

TEST_F(TextExport, TheProgressBarGoesFromTheFirstRowToTheLast) {
  std::vector<std::array<std::string, 3>> rows(2500, {"a", "b", "c"});
  const auto viewer = viewerWith(rows);
  QSignalSpy values(progressBar(*viewer), &QProgressBar::valueChanged);
  viewer->ExportNotepad();
  ASSERT_GE(values.count(), 3);
  EXPECT_EQ(progressBar(*viewer)->maximum(), 2500);
  EXPECT_EQ(values.last()[0].toInt(), 2500);
}

/// The number of times that a widget was painted so far.
class PaintCount final : public QObject {
 public:
  explicit PaintCount(QWidget& watched) { watched.installEventFilter(this); }
  int count = 0;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    // At its place in the window, not where it was created.
    if (event->type() == QEvent::Paint && !qobject_cast<QWidget*>(watched)->pos().isNull()) ++count;
    return false;
  }
};

TEST_F(TextExport, TheProgressBarIsPaintedWithoutTheEventLoop) {
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(3500, {"a", "b", "c"}));
  const PaintCount paintings(*progressBar(*viewer));
  viewer->ExportNotepad();
  EXPECT_GE(paintings.count, 4);
}

TEST_F(TextExport, TheWholeWindowIsPaintedNowAndThen) {
  const std::vector<std::array<std::string, 3>> rows(120000, {"a", "b", "c"});
  const auto viewer = viewerWith(rows);
  QCoreApplication::processEvents();
  const PaintCount paintings(*element(*viewer, "frameTools"));
  viewer->ExportNotepad();
  EXPECT_EQ(paintings.count, 2);
}

TEST_F(TextExport, WhatTheHostHasQueuedComesAfterTheFile) {
  const auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(2500, {"a", "b", "c"}));
  QMetaObject::invokeMethod(
      viewer.get(), [&] { click(*viewer, "btClear"); }, Qt::QueuedConnection);
  viewer->ExportNotepad();
  std::string whole = "A,B,C,\r\n";
  for (int i = 0; i < 2500; ++i) whole += "a,b,c\r\n";
  EXPECT_EQ(written("velview.txt"), whole);
  QCoreApplication::processEvents();
  EXPECT_EQ(list(*viewer, 5)->model()->rowCount(), 0);
}

TEST_F(TextExport, ARemovalThatIsQueuedComesAfterTheFile) {
  auto viewer = viewerWith(std::vector<std::array<std::string, 3>>(2500, {"a", "b", "c"}));
  QMetaObject::invokeMethod(
      qApp, [&] { viewer.reset(); }, Qt::QueuedConnection);
  viewer->ExportNotepad();
  EXPECT_EQ(recorder->edited, QStringList{path("velview.txt")});
  QCoreApplication::processEvents();
  EXPECT_EQ(viewer, nullptr);
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(TextExport, TheEditorMayFailAfterTheControlsDeath) {
  auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->onEditor = [&] {
    viewer.reset();
    throw fileError(FileError::fileNotFound);
  };
  viewer->ExportNotepad();
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(TextExport, AControlThatDiesWhileTheEditorStartsGivesThePointerBack) {
  auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->onEditor = [&] { viewer.reset(); };
  viewer->ExportNotepad();
  EXPECT_EQ(recorder->pointers.back(), Pointer::standard);
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(TextExport, ByNameAndByTheToolbarsKey) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "ExportNotepad"));
  EXPECT_EQ(recorder->edited.size(), 1);
}

TEST_F(SpreadsheetExport, AsksForAFolderAndWritesTheExchangeFile) {
  const auto viewer = viewerWith({{"a", "b|", "c"}});
  choose(*viewer, "TOOLS/EXPORTEXCEL");
  EXPECT_EQ(recorder->folderQuestions, (QList<std::pair<QString, bool>>{{"Browse for Export Path", false}}));
  EXPECT_EQ(written("velviewex.log"), "A|B|C|\r\na|b||c\r\n");
  EXPECT_THAT(recorder->messages, IsEmpty());
  EXPECT_THAT(recorder->edited, IsEmpty());
}

TEST_F(SpreadsheetExport, ByItsButtons) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  click(*viewer, "btExcel");
  EXPECT_EQ(written("velviewex.log"), "A|B|C|\r\na|b|c\r\n");
  std::filesystem::remove(folder / "velviewex.log");
  press(*viewer, "EXPORTEXCEL");
  EXPECT_EQ(written("velviewex.log"), "A|B|C|\r\na|b|c\r\n");
}

TEST_F(SpreadsheetExport, ACancelledDialogWritesNothing) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->chosenFolder.reset();
  recorder->pointers.clear();
  viewer->ExportExcel();
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::information, "KorvelAudit Viewer Message", "No path selected!"}));
  EXPECT_TRUE(folderIsEmpty());
  EXPECT_THAT(recorder->pointers, IsEmpty());
}

TEST_F(SpreadsheetExport, OfAnEmptyListAsksForNoFolder) {
  const auto viewer = shownViewer();
  viewer->ExportExcel();
  EXPECT_THAT(recorder->messages, ElementsAre(nothing));
  EXPECT_THAT(recorder->folderQuestions, IsEmpty());
}

TEST_F(SpreadsheetExport, TakesTheListOfTheCurrentPage) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  selectTab(*viewer, 0);
  viewer->ExportExcel();
  EXPECT_THAT(recorder->messages, ElementsAre(nothing));
  selectTab(*viewer, 5);
  viewer->ExportExcel();
  EXPECT_EQ(written("velviewex.log"), "A|B|C|\r\na|b|c\r\n");
}

TEST_F(SpreadsheetExport, AndTheOtherOutputsAreInTheMenuOfARecord) {
  const auto viewer = viewerWith({{"a", "b", "c"}, {"1", "2", "3"}});
  QTableView* const rows = list(*viewer, 5);
  rows->selectRow(0);
  const auto choose = [&](const QString& text) {
    const QPoint place = rows->visualRect(rows->model()->index(0, 1)).center();
    QContextMenuEvent rightClick(QContextMenuEvent::Mouse, place, rows->viewport()->mapToGlobal(place));
    QApplication::sendEvent(rows->viewport(), &rightClick);
    auto* const menu = element<QMenu>(*viewer, "SmartPopup");
    const QList<QAction*> entries = menu->actions();
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const QAction* each) { return each->text() == text; });
    ASSERT_NE(found, entries.end()) << text.toStdString();
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(*found).center());
  };
  choose("Export as exchange file...");
  EXPECT_EQ(written("velviewex.log"), "A|B|C|\r\na|b|c\r\n1|2|3\r\n");
  choose("Export as text...");
  EXPECT_EQ(written("velview.txt"), "A,B,C,\r\na,b,c\r\n1,2,3\r\n");
  choose("Print preview");
  QCoreApplication::processEvents();
  EXPECT_EQ(recorder->previewedPages, QList<int>{1});
  choose("Copy");
  EXPECT_THAT(QApplication::clipboard()->text().toStdString(), testing::HasSubstr("a\tb\tc"));
  choose("Show record");
  const auto* const record = viewer->findChild<QDialog*>("frmRecordView");
  ASSERT_NE(record, nullptr);
  EXPECT_TRUE(record->isVisible());
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(SpreadsheetExport, AControlThatDiesInTheFolderDialogWritesNothing) {
  auto viewer = viewerWith({{"a", "b", "c"}});
  recorder->onFolder = [&] { viewer.reset(); };
  viewer->ExportExcel();
  EXPECT_TRUE(folderIsEmpty());
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(SpreadsheetExport, IntoAFolderWithAForeignName) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  const std::string foreign =
      "Pr\xC3\xBC"
      "fung \xE7\x9B\xA3\xE6\x9F\xBB #%20";
  std::filesystem::create_directory(folder / pathFromUtf8(foreign));
  recorder->chosenFolder = path(foreign);
  viewer->ExportExcel();
  EXPECT_EQ(written(foreign + "/velviewex.log"), "A|B|C|\r\na|b|c\r\n");
  EXPECT_EQ(statusPanel(*viewer), "Exported to " + path(foreign) + QDir::separator() + "velviewex.log");
}

TEST_F(SpreadsheetExport, AFailureShowsItsNumberAndTheHint) {
  const auto viewer = viewerWith({{"a", "b", "c"}});
  // A folder in the file's place.
  std::filesystem::create_directory(folder / "velviewex.log");
  viewer->ExportExcel();
  EXPECT_THAT(recorder->messages,
              ElementsAre(ShownMessage{MessageIcon::critical, QString(),
                                       "75:Error in ExportExcel.  Error Message: Path/File access error\r\n"
                                       "Make sure Excel 10.0 or above is installed"}));
  EXPECT_TRUE(std::filesystem::is_empty(folder / "velviewex.log"));
}

}  // namespace
}  // namespace korvel::test
