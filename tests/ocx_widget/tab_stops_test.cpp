// Where the Tab key leaves a control.
#include "ocx/qt/tab_stops.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QVBoxLayout>

#include "korvel/AuditViewer.h"

namespace korvel::ocx {
namespace {

class TabStops : public testing::Test {
 protected:
  TabStops() {
    auto* const rows = new QVBoxLayout(&viewer_);
    for (QWidget* each : {static_cast<QWidget*>(&first_), static_cast<QWidget*>(&disabled_),
                          static_cast<QWidget*>(&middle_), static_cast<QWidget*>(&last_)})
      rows->addWidget(each);
    disabled_.setEnabled(false);
    viewer_.show();
    QApplication::setActiveWindow(&viewer_);
  }

  QWidget viewer_;
  QLineEdit first_{&viewer_};
  QLineEdit disabled_{&viewer_};
  QPlainTextEdit middle_{&viewer_};
  QLineEdit last_{&viewer_};
};

TEST_F(TabStops, AreLeftAtTheirEnds) {
  first_.setFocus();
  EXPECT_FALSE(tabLeaves(viewer_, false));
  EXPECT_TRUE(tabLeaves(viewer_, true));
  last_.setFocus();
  EXPECT_TRUE(tabLeaves(viewer_, false));
  EXPECT_FALSE(tabLeaves(viewer_, true));
}

TEST_F(TabStops, DoNotCountWhatCannotHaveTheFocus) {
  last_.setEnabled(false);
  middle_.setFocus();
  EXPECT_FALSE(tabLeaves(viewer_, false)) << "a text keeps its tabs";
  middle_.setTabChangesFocus(true);
  EXPECT_TRUE(tabLeaves(viewer_, false));
  middle_.hide();
  first_.setFocus();
  EXPECT_TRUE(tabLeaves(viewer_, false));
  EXPECT_TRUE(tabLeaves(viewer_, true));
}

TEST_F(TabStops, TheFirstOrTheLastGetsTheFocus) {
  focusEnd(viewer_, true);
  EXPECT_EQ(QApplication::focusWidget(), &last_);
  focusEnd(viewer_, false);
  EXPECT_EQ(QApplication::focusWidget(), &first_);
}

TEST_F(TabStops, WithoutAFocusInsideThereIsNothingToLeave) {
  QWidget other;
  EXPECT_TRUE(tabLeaves(other, false));
}

TEST(TabStopsOfTheControl, BothEndsAreReached) {
  AuditViewer viewer;
  viewer.resize(900, 600);
  viewer.show();
  QApplication::setActiveWindow(&viewer);
  focusEnd(viewer, false);
  ASSERT_NE(QApplication::focusWidget(), nullptr);
  EXPECT_TRUE(tabLeaves(viewer, true));
  EXPECT_FALSE(tabLeaves(viewer, false));
  // As often as Tab has to be pressed; more often than that it would have gone round.
  int presses = 0;
  while (!tabLeaves(viewer, false) && presses < 200) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    ++presses;
  }
  EXPECT_GT(presses, 1);
  EXPECT_LT(presses, 200);
}

}  // namespace
}  // namespace korvel::ocx
