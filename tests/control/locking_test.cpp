#include "control/commands/command_tables.h"
#include "tests/control/command_surfaces.h"

namespace korvel::test {
namespace {

using Locking = CommandTest;

/// The elements that are locked, in order.
const QStringList lockedElements = {"frameFilter",       "btQuery",          "btClear",     "btSelectALL",
                                    "btUnselectALL",     "btExcel",          "btPrint",     "tvTreeView",
                                    "btDateRangeFilter", "btClearDateRange", "lvListView0", "lvListView1",
                                    "lvListView2",       "lvListView3",      "lvListView4", "lvListView5"};
const QStringList neverLocked = {"frameTools", "btSelectDB", "btDBInfo",    "SSTab1",
                                 "StatusBar1", "SmartMenu",  "SmartToolbar"};

const char* const unlockedToolbar =
    "| SELECT INFO | QUERY CLEAR | SELECTALLFILTERS CLEARALLFILTERS _ EXPORTEXCEL _ | ADJUSTCOL TOOLS | _ PRINT";
const char* const lockedToolbar =
    "| SELECT (INFO) | (QUERY) (CLEAR) | (SELECTALLFILTERS) (CLEARALLFILTERS) _ (EXPORTEXCEL) _ | (ADJUSTCOL) (TOOLS) "
    "| _ (PRINT)";

class LockStates : public CommandTest {
 protected:
  LockStates() { recorder->forms = {"frmAdvancedFilters", "frmPrintFont"}; }

  static void expectState(const AuditViewer& viewer, bool locked) {
    for (const QString& name : lockedElements)
      EXPECT_EQ(element(viewer, name)->isEnabled(), !locked) << name.toStdString();
    for (const QString& name : neverLocked) EXPECT_TRUE(element(viewer, name)->isEnabled()) << name.toStdString();
    EXPECT_EQ(printedToolbar(viewer), locked ? lockedToolbar : unlockedToolbar);

    const std::pair<const char*, bool> entries[] = {
        {"FILE", true},
        {"FILE/SELECT", true},
        {"FILE/PAGESETUP", !locked},
        {"FILE/PRINT", !locked},
        {"FILE/EXIT", true},
        {"TOOLS", !locked},
        {"Language", true},
        {"Language/LANGUAGE", true},
        {"Language/LANGUAGE/ENGLISH", true},
        {"Language/LANGUAGE/ITALIAN", true},
        {"VIEW", true},
        {"VIEW/TOOLS", true},
        {"VIEW/KEY", true},
        {"HELP", true},
        {"HELP/ABOUT", true},
    };
    for (const auto& row : entries) EXPECT_EQ(entry(viewer, row.first)->isEnabled(), row.second) << row.first;
  }
};

TEST_F(LockStates, ANewViewerIsLockedAndASelectionUnlocksIt) {
  const auto viewer = newViewer();
  viewer->resize(1200, 800);
  viewer->show();
  expectState(*viewer, true);
  viewer->setDefaultSQLServer("S");
  viewer->OpenDefaultSQLServer();
  expectState(*viewer, false);
}

TEST_F(LockStates, LockAndUnlockAreMirrorImages) {
  const auto viewer = shownViewer();
  expectState(*viewer, false);
  viewer->LockControls();
  expectState(*viewer, true);
  viewer->LockControls();
  expectState(*viewer, true);
  viewer->UnlockControls();
  expectState(*viewer, false);
}

TEST_F(LockStates, ACancelledFirstSelectionLocks) {
  const auto viewer = newViewer();
  viewer->resize(1200, 800);
  viewer->show();
  viewer->UnlockControls();
  viewer->SelectDatabase();
  expectState(*viewer, true);
}

TEST_F(Locking, SelectingADatabaseStillWorks) {
  recorder->forms = {"frmSQLServerBrowser"};
  const auto viewer = newViewer();
  viewer->resize(1200, 800);
  viewer->show();
  press(*viewer, "SELECT");
  choose(*viewer, "FILE/SELECT");
  EXPECT_EQ(recorder->shownForms, (QStringList{"frmSQLServerBrowser", "frmSQLServerBrowser"}));
  press(*viewer, "INFO");
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Locking, OfCommandsThatWereNeverBuiltSaysSo) {
  settings.openFailure = Win32Error::accessDenied;
  const auto viewer = newViewer();
  recorder->messages.clear();
  viewer->LockControls();
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_TRUE(recorder->messages[0].text.startsWith("91:Error in LockControls.  Error Message: "))
      << recorder->messages[0].text.toStdString();
}

TEST_F(Locking, TheToolbarIsReachedFromItsThirdItemToItsLast) {
  const auto viewer = shownViewer();
  viewer->LockControls();
  const QList<QAction*> items = toolBar(*viewer)->actions();
  ASSERT_EQ(items.size(), 18);
  for (qsizetype i = 0; i < items.size(); ++i) EXPECT_EQ(items[i]->isEnabled(), i < 2) << i + 1;
}

}  // namespace
}  // namespace korvel::test
