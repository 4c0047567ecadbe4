#include <QHBoxLayout>

#include "tests/control/command_surfaces.h"

namespace korvel::test {
namespace {

using Keyboard = CommandTest;

TEST_F(Keyboard, MnemonicsOpenTheirMenus) {
  const auto viewer = shownViewer();
  activate(*viewer);
  element(*viewer, "tvTreeView")->setFocus();
  const std::pair<Qt::Key, const char*> menus[] = {{Qt::Key_T, "TOOLS"}, {Qt::Key_V, "VIEW"}, {Qt::Key_H, "HELP"}};
  for (const auto& row : menus) {
    QTest::keyClick(viewer.get(), row.first, Qt::AltModifier);
    QMenu* menu = entry(*viewer, row.second)->menu();
    EXPECT_TRUE(menu->isVisible()) << row.second;
    menu->close();
  }
}

TEST_F(Keyboard, F10OpensTheFirstMenuAndArrowsGoOn) {
  const auto viewer = shownViewer();
  activate(*viewer);
  element(*viewer, "tvTreeView")->setFocus();
  QTest::keyClick(element(*viewer, "tvTreeView"), Qt::Key_F10);
  QMenu* file = entry(*viewer, "FILE")->menu();
  ASSERT_TRUE(file->isVisible());
  EXPECT_EQ(file->activeAction(), entry(*viewer, "FILE/SELECT"));
  QTest::keyClick(file, Qt::Key_Right);
  EXPECT_FALSE(file->isVisible());
  EXPECT_TRUE(entry(*viewer, "TOOLS")->menu()->isVisible());
  entry(*viewer, "TOOLS")->menu()->close();
}

TEST_F(Keyboard, AltXLeaves) {
  const auto viewer = shownViewer();
  QSignalSpy exit(viewer.get(), &AuditViewer::ExitApp);
  activate(*viewer);
  element(*viewer, "tvTreeView")->setFocus();
  QTest::keyClick(element(*viewer, "tvTreeView"), Qt::Key_X, Qt::AltModifier);
  EXPECT_EQ(exit.count(), 1);
}

TEST_F(Keyboard, KeysBelongToTheControlThatHasTheFocus) {
  QWidget window;
  auto* row = new QHBoxLayout(&window);
  AuditViewer* controls[2];
  std::vector<std::unique_ptr<QSignalSpy>> exits;
  for (AuditViewer*& control : controls) {
    control = new AuditViewer(&window);
    control->setDefaultSQLServer("S");
    row->addWidget(control);
    exits.push_back(std::make_unique<QSignalSpy>(control, &AuditViewer::ExitApp));
  }
  window.resize(1800, 800);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  // More than once: a key that two of them share goes to each in turn.
  for (int round = 1; round <= 3; ++round) {
    for (const std::size_t mine : {std::size_t{0}, std::size_t{1}}) {
      SCOPED_TRACE(QStringLiteral("round %1, control %2").arg(round).arg(mine).toStdString());
      element(*controls[mine], "tvTreeView")->setFocus();
      QTest::keyClick(element(*controls[mine], "tvTreeView"), Qt::Key_X, Qt::AltModifier);
      EXPECT_EQ(exits[mine]->count(), round);
      EXPECT_EQ(exits[1 - mine]->count(), mine == 0 ? round - 1 : round);
      QTest::keyClick(element(*controls[mine], "tvTreeView"), Qt::Key_T, Qt::AltModifier);
      QMenu* menu = entry(*controls[mine], "TOOLS")->menu();
      EXPECT_TRUE(menu->isVisible());
      EXPECT_FALSE(entry(*controls[1 - mine], "TOOLS")->menu()->isVisible());
      menu->close();
      entry(*controls[1 - mine], "TOOLS")->menu()->close();
      menuBar(*controls[mine])->setActiveAction(nullptr);
      menuBar(*controls[1 - mine])->setActiveAction(nullptr);
    }
  }
}

TEST_F(Keyboard, TabReachesTheToolbarBeforeTheTree) {
  const auto viewer = shownViewer();
  activate(*viewer);
  button(*viewer, "SELECT")->setFocus();
  QStringList visited;
  for (int i = 0; i < 11; ++i) {
    visited.append(viewer->focusWidget()->objectName().remove("SmartToolbar_"));
    QTest::keyClick(viewer->focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ(visited.join(' '),
            "SELECT INFO QUERY CLEAR SELECTALLFILTERS CLEARALLFILTERS EXPORTEXCEL ADJUSTCOL TOOLS PRINT tvTreeView");
}

TEST_F(Keyboard, SpacePressesAToolbarButton) {
  const auto viewer = shownViewer();
  activate(*viewer);
  button(*viewer, "CLEARALLFILTERS")->setFocus();
  QTest::keyClick(button(*viewer, "CLEARALLFILTERS"), Qt::Key_Space);
  EXPECT_FALSE(treeText(*viewer).contains("[x]"));
}

}  // namespace
}  // namespace korvel::test
