// Query files that are dropped on the custom page.
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <filesystem>
#include <fstream>

#include "tests/control/custom_page_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class QueryFileDrop : public CustomPage {
 protected:
  QUrl file(const std::string& name, const std::string& text = "select 1\r\n") {
    std::ofstream(folder.path() / name, std::ios::binary) << text;
    return QUrl::fromLocalFile(QString::fromStdString((folder.path() / name).string()));
  }
  /// Drags onto a widget and drops there, as the system does; whether the drop was accepted.
  static bool drop(QWidget& on, const QList<QUrl>& urls, Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction) {
    QMimeData data;
    data.setUrls(urls);
    const QPoint place = on.rect().center();
    QDragEnterEvent enter(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&on, &enter);
    if (!enter.isAccepted()) return false;
    // The following events go to the widget that accepted it.
    QDragMoveEvent move(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&on, &move);
    EXPECT_TRUE(move.isAccepted());
    QDropEvent dropped(place, actions, &data, Qt::LeftButton, Qt::NoModifier);
    dropped.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&on, &dropped);
    EXPECT_EQ(dropped.dropAction(), Qt::CopyAction) << "the file stays where it is";
    return dropped.isAccepted();
  }

  TemporaryFolder folder;
};

TEST_F(QueryFileDrop, OpensWhereverOnThePageItIsDropped) {
  const auto viewer = customPage();
  int number = 0;
  for (QWidget* place : {static_cast<QWidget*>(editor(*viewer).viewport()), element(*viewer, "lvListView5"),
                         static_cast<QWidget*>(list(*viewer, 5)->viewport()), element(*viewer, "frameAdvQry"),
                         element(*viewer, "lvListView5")->parentWidget()}) {
    const std::string text = "select " + std::to_string(++number) + "\r\n";
    EXPECT_TRUE(drop(*place, {file(number % 2 == 0 ? "a.vqf" : "B.VQF", text)})) << number;
    EXPECT_EQ(editor(*viewer).queryText().toStdString(), text) << number;
  }
  // It is opened, not run, and can be undone.
  EXPECT_THAT(server.commands, IsEmpty());
  editor(*viewer).undo();
  EXPECT_EQ(editor(*viewer).queryText(), "select 4\r\n");
}

TEST_F(QueryFileDrop, OtherFilesAndOtherPagesTakeNone) {
  const auto viewer = customPage();
  QWidget& page = *element(*viewer, "lvListView5")->parentWidget();
  const QUrl query = file("a.vqf");
  EXPECT_FALSE(drop(page, {file("a.txt")}));
  EXPECT_FALSE(drop(page, {query, file("b.vqf")}));
  EXPECT_FALSE(drop(page, {QUrl("http://example.com/a.vqf")}));
  EXPECT_FALSE(drop(page, {query}, Qt::MoveAction));
  std::filesystem::create_directory(folder.path() / "folder.vqf");
  EXPECT_FALSE(drop(page, {QUrl::fromLocalFile(QString::fromStdString((folder.path() / "folder.vqf").string()))}));
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
  selectTab(*viewer, 0);
  EXPECT_FALSE(drop(*element(*viewer, "lvListView0"), {query}));
}

TEST_F(QueryFileDrop, AHostOpensAFileFromWhateverPage) {
  const auto viewer = shownViewer();
  const QUrl query = file("a.vqf");
  viewer->OpenQueryFile(query.toLocalFile());
  EXPECT_EQ(element<QTabWidget>(*viewer, "SSTab1")->currentIndex(), 5);
  EXPECT_EQ(editor(*viewer).queryText(), "select 1\r\n");
  EXPECT_THAT(server.commands, IsEmpty());
  // An empty file is an empty text, not the query that an empty page offers.
  selectTab(*viewer, 0);
  viewer->OpenQueryFile(file("empty.vqf", "").toLocalFile());
  EXPECT_EQ(editor(*viewer).queryText(), "");
  EXPECT_THAT(recorder->messages, IsEmpty());
}

TEST_F(QueryFileDrop, AHostHearsOfAFileThatCannotBeRead) {
  const auto viewer = shownViewer();
  viewer->OpenQueryFile(QString::fromStdString((folder.path() / "missing.vqf").string()));
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_TRUE(recorder->messages[0].text.contains(":Error in OpenQueryFile.  Error Message: "));
  EXPECT_EQ(element<QTabWidget>(*viewer, "SSTab1")->currentIndex(), 0);
  EXPECT_THAT(server.commands, IsEmpty());
}

TEST_F(QueryFileDrop, AFileThatCannotBeReadIsReportedAndLeavesTheText) {
  const auto viewer = customPage();
  const QUrl missing = file("a.vqf");
  std::filesystem::remove(folder.path() / "a.vqf");
  EXPECT_TRUE(drop(editor(*viewer), {missing}));
  ASSERT_THAT(recorder->messages, SizeIs(1));
  EXPECT_TRUE(recorder->messages[0].text.contains(":Error in btOpen_Click.  Error Message: "));
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
}

}  // namespace
}  // namespace korvel::test
