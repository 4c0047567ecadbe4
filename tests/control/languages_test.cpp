#include "tests/control/command_surfaces.h"

namespace korvel::test {
namespace {

using control::libraryState;
using Languages = CommandTest;

TEST_F(Languages, ARebuildSetsTheMarksAndUnlocksWhereADatabaseIsSelected) {
  const auto viewer = shownViewer();
  choose(*viewer, "VIEW/KEY");
  choose(*viewer, "VIEW/TOOLS");
  choose(*viewer, "Language/LANGUAGE/SPANISH");
  EXPECT_TRUE(entry(*viewer, "VIEW/KEY")->isChecked());
  EXPECT_TRUE(entry(*viewer, "VIEW/TOOLS")->isChecked());
  // Only the language's mark changes; the captions do not.
  EXPECT_FALSE(viewer->ViewSideTools());
  EXPECT_TRUE(list(*viewer, 0)->isColumnHidden(0));
  EXPECT_TRUE(entry(*viewer, "TOOLS")->isEnabled());
  EXPECT_TRUE(button(*viewer, "INFO")->isEnabled());
}

TEST_F(Languages, WithoutADatabaseEverythingStaysLocked) {
  const auto viewer = newViewer();
  viewer->resize(1200, 800);
  viewer->show();
  choose(*viewer, "Language/LANGUAGE/ITALIAN");
  EXPECT_FALSE(entry(*viewer, "TOOLS")->isEnabled());
  EXPECT_FALSE(button(*viewer, "INFO")->isEnabled());
  EXPECT_FALSE(element(*viewer, "btQuery")->isEnabled());
  EXPECT_TRUE(button(*viewer, "SELECT")->isEnabled());
  EXPECT_EQ(entry(*viewer, "FILE")->text(), "File");
}

TEST_F(Languages, WhatTheStoreGivesBackCounts) {
  const auto viewer = shownViewer();
  settings.storesInstead = "20000";
  choose(*viewer, "Language/LANGUAGE/GERMAN");
  EXPECT_EQ(libraryState().language.text(), "20000");
  EXPECT_EQ(entry(*viewer, "TOOLS")->text(), "&Outils");
}

TEST_F(Languages, AreSwitchedByName) {
  const auto viewer = shownViewer();
  libraryState().language = settings::LanguageOffset("20000");
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "SwitchLanguage"));
  EXPECT_EQ(entry(*viewer, "TOOLS")->text(), "&Outils");
  EXPECT_EQ(button(*viewer, "QUERY")->toolTip(), tableText(10046, 20000));
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), tableText(10040, 20000));
}

TEST_F(Languages, MenuAndToolbarAreBuiltByName) {
  const auto viewer = shownViewer();
  libraryState().language = settings::LanguageOffset("10000");
  viewer->LockControls();
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "BuildMenu"));
  EXPECT_EQ(entry(*viewer, "TOOLS")->text(), "&Extras");
  EXPECT_TRUE(entry(*viewer, "TOOLS")->isEnabled());
  EXPECT_EQ(button(*viewer, "QUERY")->toolTip(), tableText(10046, 0));
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "BuildToolbar"));
  EXPECT_EQ(button(*viewer, "QUERY")->toolTip(), tableText(10046, 10000));
  EXPECT_TRUE(button(*viewer, "QUERY")->isEnabled());
}

TEST_F(Languages, AnotherViewerKeepsItsCaptionsUntilItIsUpdated) {
  const auto first = shownViewer();
  const auto second = shownViewer();
  choose(*first, "Language/LANGUAGE/GERMAN");
  EXPECT_EQ(entry(*first, "TOOLS")->text(), "&Extras");
  EXPECT_EQ(entry(*second, "TOOLS")->text(), "&Tools");
  second->SwitchLanguage();
  EXPECT_EQ(entry(*second, "TOOLS")->text(), "&Extras");
}

TEST_F(Languages, AnActiveDateRangeStaysShown) {
  using namespace std::chrono;
  libraryState().dateRange = {2004y / 3 / 1, 2004y / 3 / 7, true};
  const auto viewer = shownViewer();
  const QLabel& label = *element<QLabel>(*viewer, "lblDateRange");
  const QString range = QLocale::system().toString(QDate(2004, 3, 1), QLocale::ShortFormat) + " - " +
                        QLocale::system().toString(QDate(2004, 3, 7), QLocale::ShortFormat);
  EXPECT_EQ(label.text(), range);
  choose(*viewer, "Language/LANGUAGE/GERMAN");
  EXPECT_EQ(label.text(), range);
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), tableText(10040, 10000));
  // Without one the caption follows the language.
  click(*viewer, "btClearDateRange");
  EXPECT_EQ(label.text(), tableText(10042, 10000));
  choose(*viewer, "Language/LANGUAGE/FRENCH");
  EXPECT_EQ(label.text(), tableText(10042, 20000));
}

}  // namespace
}  // namespace korvel::test
