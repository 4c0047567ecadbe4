// Reviewing the records of lists: files, marks, the column, progress, the filter and the report.
#include <gmock/gmock.h>

#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <filesystem>
#include <fstream>

#include "base/atomic_file.h"
#include "control/mark_header.h"
#include "control/result_list_view.h"
#include "tests/control/command_surfaces.h"
#include "tests/support/temporary_folder.h"
#include "ui/style/theme.h"

namespace korvel::test {
namespace {

using control::MarkHeader;
using control::ResultListView;
using evidence::MarkKind;
using evidence::NewMark;
using evidence::ReviewFile;
using evidence::ReviewMark;
using testing::HasSubstr;

class ReviewOfLists : public CommandTest {
 protected:
  ReviewOfLists() {
    server.resultSets = {{record("1", "CS"), record("2", "CS"), record("3", "RT")}};
    viewer = shownViewer();
    viewer->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(viewer.get()));
    query();
  }
  void query() {
    click(*viewer, "btQuery");
    QTest::qWait(0);  // what follows the rows is queued
  }
  [[nodiscard]] ResultListView& rows(int page = 0) const { return *qobject_cast<ResultListView*>(list(*viewer, page)); }
  [[nodiscard]] MarkHeader& marksColumn() const { return *qobject_cast<MarkHeader*>(rows().verticalHeader()); }
  [[nodiscard]] std::filesystem::path file() const { return folder / "batch.review"; }
  /// Chooses an entry of the submenu of the list's context menu.
  bool choose(const QString& text) const {
    QMetaObject::invokeMethod(&rows(), "customContextMenuRequested",
                              Q_ARG(QPoint, rows().visualRect(cell(0)).center()));
    auto* const menu = element<QMenu>(*viewer, "SmartPopup");
    bool isDone = false;
    for (QAction* entry : menu->actions()) {
      if (entry->menu() == nullptr || entry->text() != "Review") continue;
      for (QAction* each : entry->menu()->actions())
        if (each->text() == text && each->isEnabled()) {
          each->trigger();
          isDone = true;
          break;
        }
    }
    menu->close();
    return isDone;
  }
  bool openNew() {
    recorder->chosenFile = QString::fromStdString(file().string());
    return choose(QString::fromUtf8("New review file…"));
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
    // The menu that was closed becomes the active window once more.
    EXPECT_TRUE(QTest::qWaitFor([&] {
      viewer->activateWindow();
      rows().setFocus();
      QCoreApplication::sendPostedEvents();
      return QApplication::activeWindow() == viewer.get() && rows().hasFocus();
    }));
    QTest::keyClick(&rows(), key, modifiers);
  }
  [[nodiscard]] QModelIndex cell(int row) const { return rows().model()->index(row, 1); }
  void select(int row) const { rows().showCell(row, 1); }
  [[nodiscard]] std::vector<ReviewMark> marks() const {
    return ReviewFile(file(), std::nullopt, ReviewFile::Use::read).takeNewMarks();
  }
  [[nodiscard]] QString lastMessage() const {
    return recorder->messages.empty() ? QString() : recorder->messages.back().text;
  }
  [[nodiscard]] QString rowText(int row) const {
    return rows().model()->headerData(row, Qt::Vertical, Qt::AccessibleTextRole).toString();
  }
  bool waitForStatus(const QString& beginning) const {
    return QTest::qWaitFor([&] { return statusPanel(*viewer).startsWith(beginning); });
  }

  TemporaryFolder folder;
  std::unique_ptr<AuditViewer> viewer;
};

TEST_F(ReviewOfLists, BeginsWithAFileOfTheTrail) {
  EXPECT_FALSE(marksColumn().isVisible());
  ASSERT_TRUE(openNew());
  EXPECT_TRUE(marksColumn().isVisible());
  EXPECT_TRUE(waitForStatus("0 of 3 reviewed")) << statusPanel(*viewer).toStdString();
  const ReviewFile made(file(), std::nullopt, ReviewFile::Use::read);
  EXPECT_EQ(made.facts().trail.server, "S");
  EXPECT_EQ(made.facts().trail.database, "Korvel_Audit");
  EXPECT_EQ(server.commands.size(), 1U);  // the server is not asked, and nothing is written to it
}

TEST_F(ReviewOfLists, KeysMarkTheCurrentRowAndGoOn) {
  ASSERT_TRUE(openNew());
  select(0);
  press(Qt::Key_F7);
  EXPECT_TRUE(waitForStatus("1 of 3 reviewed"));
  EXPECT_EQ(rows().currentIndex().row(), 1);
  recorder->typedText = "who was it?";
  press(Qt::Key_F8);
  EXPECT_TRUE(waitForStatus("1 of 3 reviewed. Open questions: 1"));
  ASSERT_FALSE(recorder->inputQuestions.isEmpty()) << statusPanel(*viewer).toStdString() << lastMessage().toStdString();
  EXPECT_EQ(recorder->inputQuestions.last().first, "What has to be answered?");
  recorder->typedText = "odd";
  press(Qt::Key_F9);
  const auto found = marks();
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].number, 1);
  EXPECT_EQ(found[0].kind, MarkKind::reviewed);
  EXPECT_EQ(found[1].kind, MarkKind::question);
  EXPECT_EQ(found[1].comment, "who was it?");
  EXPECT_EQ(found[2].kind, MarkKind::comment);
  EXPECT_EQ(found[2].number, 3);
  EXPECT_TRUE(QTest::qWaitFor([&] { return rowText(1).startsWith("Question\nQuestion, "); }))
      << rowText(1).toStdString();
  EXPECT_TRUE(rowText(1).endsWith(": who was it?"));
  EXPECT_TRUE(rowText(0).startsWith("Reviewed\n"));
  EXPECT_TRUE(rowText(2).startsWith("Not reviewed\nComment, "));
}

TEST_F(ReviewOfLists, AMarkWithoutATextIsNotWritten) {
  ASSERT_TRUE(openNew());
  select(0);
  recorder->typedText = "  ";
  press(Qt::Key_F8);
  press(Qt::Key_F9);
  EXPECT_TRUE(marks().empty());
  EXPECT_EQ(rows().currentIndex().row(), 0);
}

TEST_F(ReviewOfLists, MarksAllSelectedRowsAtOnce) {
  ASSERT_TRUE(openNew());
  rows().selectAll();
  press(Qt::Key_F7);
  EXPECT_TRUE(waitForStatus("3 of 3 reviewed"));
  const auto found = marks();
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].time, found[2].time);
}

TEST_F(ReviewOfLists, MarksAllShownRowsAfterAQuestion) {
  ASSERT_TRUE(openNew());
  recorder->confirmed = false;
  ASSERT_TRUE(choose(QString::fromUtf8("Mark all rows shown as reviewed…")));
  EXPECT_EQ(recorder->questions.last().second, "Mark all 3 rows that the list shows as reviewed?");
  EXPECT_TRUE(marks().empty());
  recorder->confirmed = true;
  ASSERT_TRUE(choose(QString::fromUtf8("Mark all rows shown as reviewed…")));
  EXPECT_EQ(marks().size(), 3U);
}

TEST_F(ReviewOfLists, ARecordThatChangedIsToldFromTheOneThatWasReviewed) {
  ASSERT_TRUE(openNew());
  select(0);
  press(Qt::Key_F7);
  ASSERT_TRUE(waitForStatus("1 of 3 reviewed"));
  server.resultSets[0][0][10] = "another value";
  query();
  EXPECT_TRUE(waitForStatus("0 of 3 reviewed. Changed since reviewed: 1")) << statusPanel(*viewer).toStdString();
  EXPECT_TRUE(rowText(0).startsWith("Changed since reviewed\nReviewed, "));
}

TEST_F(ReviewOfLists, ShowsWhatOthersMarked) {
  ASSERT_TRUE(openNew());
  select(0);
  press(Qt::Key_F7);
  ASSERT_TRUE(waitForStatus("1 of 3 reviewed"));
  const ReviewMark mine = marks().front();
  const NewMark theirs = {mine.number, mine.row, MarkKind::question, "and this?"};
  ReviewFile(file(), std::nullopt, ReviewFile::Use::mark).add({&theirs, 1});
  select(1);
  press(Qt::Key_F7);
  EXPECT_TRUE(waitForStatus("1 of 3 reviewed. Open questions: 1")) << statusPanel(*viewer).toStdString();
}

TEST_F(ReviewOfLists, LooksForMarksOfOthersWhenTheProgramIsActivated) {
  ASSERT_TRUE(openNew());
  select(0);
  press(Qt::Key_F7);
  ASSERT_TRUE(waitForStatus("1 of 3 reviewed"));
  // The row that was marked: the other reviewer asks about it.
  const ReviewMark mine = marks().front();
  const NewMark theirs = {mine.number, mine.row, MarkKind::question, "and this?"};
  ReviewFile(file(), std::nullopt, ReviewFile::Use::mark).add({&theirs, 1});
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  EXPECT_TRUE(waitForStatus("0 of 3 reviewed. Open questions: 1")) << statusPanel(*viewer).toStdString();
}

TEST_F(ReviewOfLists, TheRecordWindowSaysWhoMarkedIt) {
  ASSERT_TRUE(openNew());
  select(0);
  recorder->typedText = "who was it?";
  press(Qt::Key_F8);
  ASSERT_TRUE(waitForStatus("0 of 3 reviewed. Open questions: 1"));
  select(0);
  press(Qt::Key_Return);
  const auto* const shown = viewer->findChild<QPlainTextEdit*>("txtReview");
  ASSERT_NE(shown, nullptr);
  EXPECT_TRUE(shown->toPlainText().startsWith("Question\nQuestion, ")) << shown->toPlainText().toStdString();
  EXPECT_TRUE(shown->toPlainText().endsWith(": who was it?"));
  // Another reviewer answers.
  const ReviewMark mine = marks().front();
  const NewMark theirs = {mine.number, mine.row, MarkKind::reviewed, {}};
  ReviewFile(file(), std::nullopt, ReviewFile::Use::mark).add({&theirs, 1});
  Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
  EXPECT_TRUE(QTest::qWaitFor([&] { return shown->toPlainText().startsWith("Reviewed\nQuestion, "); }))
      << shown->toPlainText().toStdString();
}

TEST_F(ReviewOfLists, TheRoomBelowTheRowsIsThatOfTheList) {
  ASSERT_TRUE(openNew());
  QWidget* const room = marksColumn().viewport();
  ASSERT_GT(room->height(), marksColumn().length() + 10);
  const QPoint below(room->width() / 2, room->height() - 5);
  EXPECT_EQ(room->grab().toImage().pixelColor(below), ui::Theme::of(marksColumn()).surface);
}

TEST_F(ReviewOfLists, IsClosedWhereTheRecordsAreOfAnotherTrail) {
  ASSERT_TRUE(openNew());
  viewer->setDatabaseType(1);
  viewer->OpenDefaultSQLServer();
  query();
  EXPECT_TRUE(waitForStatus("The review of database Korvel_Audit on S was closed"))
      << statusPanel(*viewer).toStdString();
  EXPECT_FALSE(marksColumn().isVisible());
  press(Qt::Key_F7);
  EXPECT_TRUE(lastMessage().startsWith("No review file is open.")) << lastMessage().toStdString();
  EXPECT_TRUE(marks().empty());
}

TEST_F(ReviewOfLists, KeepsWhatIsOpenWhereAnotherFileCannotBeOpened) {
  ASSERT_TRUE(openNew());
  writeFileAtomically(folder / "other", "no review at all, but longer than the head of any database file would be");
  recorder->chosenFile = QString::fromStdString((folder / "other").string());
  ASSERT_TRUE(choose(QString::fromUtf8("Open review file…")));
  EXPECT_TRUE(lastMessage().contains("is no review file"));
  select(0);
  press(Qt::Key_F7);
  EXPECT_EQ(marks().size(), 1U);
}

TEST_F(ReviewOfLists, ReplacesNoFile) {
  writeFileAtomically(file(), "somebody's work");
  ASSERT_TRUE(openNew());
  EXPECT_TRUE(lastMessage().contains("exists already and is not replaced"));
  EXPECT_EQ(readFile(file()), "somebody's work");
  EXPECT_FALSE(marksColumn().isVisible());
}

TEST_F(ReviewOfLists, WritesAReport) {
  ASSERT_TRUE(openNew());
  select(0);
  press(Qt::Key_F7);
  recorder->chosenFile = QString::fromStdString((folder / "report.json").string());
  ASSERT_TRUE(choose(QString::fromUtf8("Review report…")));
  EXPECT_THAT(readFile(folder / "report.json"), HasSubstr(R"("reviewed": 1)"));
  recorder->chosenFile = QString::fromStdString((folder / "report.pdf").string());
  ASSERT_TRUE(choose(QString::fromUtf8("Review report…")));
  EXPECT_THAT(readFile(folder / "report.pdf"), testing::StartsWith("%PDF"));
}

TEST_F(ReviewOfLists, ShowsOnlyWhatIsNotReviewed) {
  ASSERT_TRUE(openNew());
  ASSERT_TRUE(waitForStatus("0 of 3 reviewed"));
  press(Qt::Key_F7, Qt::ShiftModifier);
  EXPECT_EQ(rows().model()->rowCount(), 3);
  select(1);
  press(Qt::Key_F7);
  EXPECT_TRUE(QTest::qWaitFor([&] { return rows().model()->rowCount() == 2; }));
  EXPECT_EQ(column(*viewer, 0), "1 3");
  // The row after the one that went is looked at now.
  EXPECT_EQ(rows().currentIndex().row(), 1);
  EXPECT_TRUE(waitForStatus("1 of 3 reviewed"));
  press(Qt::Key_F7, Qt::ShiftModifier);
  EXPECT_EQ(rows().model()->rowCount(), 3);
}

TEST_F(ReviewOfLists, ClosingItsFileShowsAllRows) {
  ASSERT_TRUE(openNew());
  ASSERT_TRUE(waitForStatus("0 of 3 reviewed"));
  select(0);
  press(Qt::Key_F7);
  ASSERT_TRUE(waitForStatus("1 of 3 reviewed"));
  ASSERT_TRUE(choose("Only what is not reviewed"));
  ASSERT_EQ(rows().model()->rowCount(), 2);
  ASSERT_TRUE(choose("Close review file"));
  EXPECT_EQ(rows().model()->rowCount(), 3);
}

TEST_F(ReviewOfLists, ChangesNoOutput) {
  ASSERT_TRUE(openNew());
  EXPECT_EQ(rows().shownColumns().size(), 18U);
  EXPECT_EQ(rows().model()->columnCount(), 18);
}

TEST_F(ReviewOfLists, EndsWithItsFile) {
  ASSERT_TRUE(openNew());
  ASSERT_TRUE(choose("Close review file"));
  EXPECT_FALSE(marksColumn().isVisible());
  EXPECT_EQ(rowText(0), "");
  EXPECT_FALSE(statusPanel(*viewer).contains("reviewed"));
}

TEST_F(ReviewOfLists, IsNotOfferedWithoutRecordsOfATrail) {
  selectTab(*viewer, 5);
  answerWithOneRow();
  query();
  rows(5).setFocus();
  QTest::keyClick(&rows(5), Qt::Key_F7);
  EXPECT_TRUE(lastMessage().startsWith("No review file is open."));
}

}  // namespace
}  // namespace korvel::test
