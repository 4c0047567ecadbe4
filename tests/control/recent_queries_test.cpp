// Queries, query files, databases and find texts that a person used, in the next control of the next start.
#include <QMenu>

#include "tests/control/list_work_fixture.h"
#include "tests/control/query_files_fixture.h"

namespace korvel::test {
namespace {

using control::libraryState;

class RecentQueries : public QueryFiles {
 protected:
  RecentQueries() { remember(control::Remembered::Extent::all); }

  void remember(control::Remembered::Extent extent) {
    libraryState().remembered = {QString::fromStdString((own / "remembered.json").string()), extent};
  }
  /// Writes a query over the one that is there and runs it.
  static void run(const AuditViewer& viewer, const QString& text) {
    editor(viewer).setQueryText(text);
    QTest::keyClick(&editor(viewer), Qt::Key_F5);
  }
  /// The menu of earlier queries, opened by its key.
  static QMenu& openMenu(const AuditViewer& viewer) {
    QTest::keyClick(&editor(viewer), Qt::Key_Down, Qt::AltModifier);
    auto* const menu = viewer.findChild<QMenu*>("RecentQueries");
    if (menu == nullptr) throw std::runtime_error("no menu");
    return *menu;
  }
  static QStringList entries(const QMenu& menu) {
    QStringList texts;
    for (const QAction* const entry : menu.actions()) texts.append(entry->isSeparator() ? "-" : entry->text());
    return texts;
  }
  static void choose(QMenu& menu, const QString& text) {
    for (QAction* const entry : menu.actions()) {
      if (entry->text() != text) continue;
      entry->trigger();
      menu.close();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      return;
    }
    ADD_FAILURE() << "no entry " << text.toStdString();
  }

  TemporaryFolder own;
};

TEST_F(RecentQueries, AreOfferedAgainTheLastOneFirst) {
  answerWith({"a"}, {{"1"}});
  {
    const auto viewer = customPage();
    run(*viewer, "Select 1\nas a & b");
    run(*viewer, "Select 2");
    // A query that fails was typed, too.
    server.failure = Error(5, "refused");
    run(*viewer, "Select wrong");
  }
  const auto viewer = customPage();
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails") << "the page starts as ever";
  QMenu& menu = openMenu(*viewer);
  EXPECT_TRUE(menu.isVisible());
  EXPECT_EQ(entries(menu), (QStringList{"Select wrong", "Select 2", "Select 1 as a && b", "-", "Forget these"}));
  const std::size_t asked = server.commands.size();
  choose(menu, "Select 1 as a && b");
  EXPECT_EQ(editor(*viewer).queryText(), "Select 1\r\nas a & b");
  EXPECT_EQ(server.commands.size(), asked) << "nothing is run";
  QTest::keyClick(&editor(*viewer), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(editor(*viewer).queryText(), "Select * from Korvel_Audit_Trails");
}

TEST_F(RecentQueries, AreOnlyThoseThatAPersonRan) {
  answerWith({"a"}, {{"1"}});
  const auto viewer = customPage();
  viewer->TriggerAdvancedQuery("Select 'by the host'");
  EXPECT_EQ(entries(openMenu(*viewer)), QStringList{"No query has been run yet"});
}

TEST_F(RecentQueries, HaveTheFilesThatWereOpenedAndSaved) {
  {
    const auto viewer = customPage();
    editor(*viewer).setQueryText("Select saved");
    click(*viewer, "btSave");
    ASSERT_EQ(saved(), "Select saved\r\n");
  }
  const auto viewer = customPage();
  QMenu& menu = openMenu(*viewer);
  EXPECT_EQ(entries(menu), (QStringList{"Query files", "My query.vqf", "-", "Forget these"}));
  choose(menu, "My query.vqf");
  EXPECT_EQ(editor(*viewer).queryText(), "Select saved\r\n");
  std::filesystem::remove(folder / "My query.vqf");
  recorder->messages.clear();
  choose(openMenu(*viewer), "My query.vqf");
  EXPECT_EQ(recorder->messages.size(), 1U) << "what is wrong with the file is said";
  EXPECT_EQ(editor(*viewer).queryText(), "Select saved\r\n");
}

TEST_F(RecentQueries, AreForgottenWhereThatIsWanted) {
  answerWith({"a"}, {{"1"}});
  const auto viewer = customPage();
  run(*viewer, "Select 1");
  choose(openMenu(*viewer), "Forget these");
  EXPECT_EQ(entries(openMenu(*viewer)), QStringList{"No query has been run yet"});
}

TEST_F(RecentQueries, HaveNoButtonWhereNothingIsRemembered) {
  remember(control::Remembered::Extent::layout);
  const auto viewer = customPage();
  EXPECT_TRUE(element(*viewer, "btRecentQueries")->isHidden());
  QTest::keyClick(&editor(*viewer), Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(viewer->findChild<QMenu*>("RecentQueries"), nullptr);
}

TEST_F(RecentQueries, HaveTheirButtonBesideTheText) {
  const auto viewer = customPage();
  const QWidget& button = *element(*viewer, "btRecentQueries");
  EXPECT_TRUE(button.isVisible());
  EXPECT_FALSE(button.geometry().intersects(editor(*viewer).viewport()->geometry()));
  EXPECT_TRUE(editor(*viewer).rect().contains(button.geometry()));
}

class RecentWork : public ListWork {
 protected:
  RecentWork() {
    libraryState().remembered = {QString::fromStdString((own / "remembered.json").string()),
                                 control::Remembered::Extent::all};
  }
  TemporaryFolder own;
};

TEST_F(RecentWork, TextsThatWereSearchedForAreOfferedAgain) {
  {
    const auto viewer = filledViewer();
    press(Qt::Key_F, Qt::ControlModifier);
    type("tic-");
    press(Qt::Key_Return);
  }
  const auto viewer = filledViewer();
  press(Qt::Key_F, Qt::ControlModifier);
  const auto& texts = *bar(*viewer).findChild<QComboBox*>();
  press(Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(texts.count(), 1);
  EXPECT_EQ(texts.itemText(0), "tic-");
}

TEST_F(RecentWork, DatabasesThatWereSelectedAreKnown) {
  const auto viewer = newViewer();
  viewer->show();
  viewer->OpenDatabase("PLANT2", "Korvel_Audit_Old");
  EXPECT_EQ(libraryState().remembered.databases(), (QList<RecentDatabase>{{"PLANT2", "Korvel_Audit_Old"}}));
  EXPECT_EQ(viewer->DefaultSQLServer(), "(None)") << "the next start connects to nothing by itself";
}

TEST_F(RecentWork, ADatabaseIsSelectedByItsNamesWithoutAskingTheServer) {
  libraryState().connection.CurrentDatabaseLocation = "C:\\of another database.mdf";
  const auto viewer = newViewer();
  viewer->show();
  QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  viewer->OpenDatabase("PLANT2", "Korvel_Audit_Old");
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected[0][0].toString(), "PLANT2 - [Korvel_Audit_Old]");
  EXPECT_TRUE(server.connectionStrings.empty());
  EXPECT_EQ(libraryState().connection.CurrentDatabaseLocation, "") << "not known";
}

}  // namespace
}  // namespace korvel::test
