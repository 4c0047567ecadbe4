// What a screen reader is told of each window, in five languages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTest>

#include "control/qt_control_services.h"
#include "tests/control/viewer_fixture.h"
#include "tests/control/when_modal.h"
#include "tests/support/accessible_tree.h"

namespace korvel::test {
namespace {

using control::libraryState;
using control::WhenModal;

class Accessibility : public ViewerTest, public testing::WithParamInterface<const char*> {
 protected:
  Accessibility() { libraryState().language = settings::LanguageOffset(GetParam()); }

  /// Number of elements that can be used, in all windows that are shown.
  static int shownElements() {
    int count = 0;
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible()) count += AccessibleTree::usable(*window);
    return count;
  }
  static std::string nameOf(const QWidget& window) {
    return std::string(window.metaObject()->className()) + ' ' + window.objectName().toStdString();
  }
  static void expectNothingMissing(QWidget& window, const std::string& what) {
    EXPECT_GT(AccessibleTree::usable(window), 0) << what;
    const QStringList missing = AccessibleTree::missing(window);
    EXPECT_TRUE(missing.isEmpty()) << what << ":\n" << missing.join(QLatin1Char('\n')).toStdString();
  }
};

TEST_P(Accessibility, OfTheControlNamesEachElement) {
  const auto viewer = shownViewer();
  for (int page = 0; page < 6; ++page) {
    selectTab(*viewer, page);
    expectNothingMissing(*viewer, "page " + std::to_string(page));
  }
}

TEST_P(Accessibility, OfEachToolOfAListNamesEachElement) {
  struct Tool {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
  };
  const std::vector<Tool> tools = {{"find", Qt::Key_F, Qt::ControlModifier},
                                   {"filter", Qt::Key_Down, Qt::AltModifier},
                                   {"summary", Qt::Key_G, Qt::ControlModifier},
                                   {"history", Qt::Key_H, Qt::ControlModifier},
                                   {"activity", Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier},
                                   {"exceptions", Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier},
                                   {"record", Qt::Key_Return, Qt::NoModifier}};
  CannedRow early = record("1", "CS");
  CannedRow late = record("2", "RT");
  early[1] = "2004-03-07 12:00:00.000";
  late[1] = "2004-03-09 12:00:00.000";
  // Numbers, so that the history has a plot.
  early[9] = late[9] = "4";
  early[10] = late[10] = "5";
  server.resultSets = {{early, late}};
  const auto viewer = shownViewer();
  viewer->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(viewer.get()));
  click(*viewer, "btQuery");
  QTableView* const rows = list(*viewer, 0);
  ASSERT_EQ(rows->model()->rowCount(), 2);
  rows->setFocus();
  QTest::keyClick(rows, Qt::Key_F, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "x");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier);
  expectNothingMissing(*viewer, "chips");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  for (const Tool& tool : tools) {
    const auto before = shownElements();
    rows->setFocus();
    rows->setCurrentIndex(rows->model()->index(0, 7));
    QTest::keyClick(rows, tool.key, tool.modifiers);
    EXPECT_TRUE(QTest::qWaitFor([&] { return shownElements() != before; })) << tool.name;
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible()) expectNothingMissing(*window, std::string(tool.name) + " in " + nameOf(*window));
    for (QWidget* window : QApplication::topLevelWidgets())
      if (window->isVisible() && window != viewer.get()) window->close();
  }
}

TEST_P(Accessibility, OfEachDialogNamesEachElement) {
  control::QtControlServices services;
  QWidget owner;
  owner.show();
  for (const QString& name :
       {control::form_name::serverBrowser, control::form_name::dateRange, control::form_name::fields,
        control::form_name::fileList, control::form_name::printFont, control::form_name::about}) {
    bool wasShown = false;
    const WhenModal answer([&](QWidget* dialog) {
      wasShown = true;
      expectNothingMissing(*dialog, name.toStdString());
      dialog->close();
    });
    services.showForm(&owner, name);
    EXPECT_TRUE(wasShown) << name.toStdString();
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, Accessibility, testing::Values("0", "10000", "20000", "30000", "40000"));

}  // namespace
}  // namespace korvel::test
