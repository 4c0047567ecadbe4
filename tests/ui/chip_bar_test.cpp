#include "ui/chip_bar.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include "tests/ui/painted.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::ui {
namespace {

class ChipBarTest : public ::testing::Test {
 protected:
  ChipBarTest() {
    applyStyle(window);
    auto* column = new QVBoxLayout(&window);
    bar = new ChipBar(&window);
    other = new QToolButton(&window);
    other->setFocusPolicy(Qt::StrongFocus);
    column->addWidget(bar);
    column->addWidget(other);
    bar->setTexts([](std::string_view key) { return ui::ownText(key, settings::LanguageOffset()); });
    window.resize(800, 100);
    window.show();
    window.activateWindow();
    QApplication::processEvents();
  }
  std::vector<ChipButton*> chips() {
    std::vector<ChipButton*> shown;
    for (ChipButton* chip : bar->findChildren<ChipButton*>())
      if (!chip->isHidden()) shown.push_back(chip);
    std::sort(shown.begin(), shown.end(), [](const auto* one, const auto* next) { return one->x() < next->x(); });
    return shown;
  }
  void show(const std::vector<Chip>& wanted) {
    bar->setChips(wanted);
    QApplication::processEvents();
  }

  QWidget window;
  ChipBar* bar = nullptr;
  QToolButton* other = nullptr;
  const Chip event{"Event", "= UPDATE", "Event = UPDATE"};
  const Chip user{"User Name", "= 2 values", "Luca Rossi\nHeike Bauer"};
};

TEST_F(ChipBarTest, IsThereOnlyWhileSomethingIsFiltered) {
  EXPECT_TRUE(bar->isHidden());
  show({event, user});
  EXPECT_FALSE(bar->isHidden());
  ASSERT_EQ(chips().size(), 2U);
  EXPECT_EQ(chips()[0]->accessibleName(), "Event = UPDATE");
  EXPECT_TRUE(chips()[1]->toolTip().contains("Luca Rossi\nHeike Bauer"));
  bar->setCount("214 of 48,213 shown");
  EXPECT_EQ(bar->findChild<QLabel*>("ShownCount")->text(), "214 of 48,213 shown");
  show({});
  EXPECT_TRUE(bar->isHidden());
}

TEST_F(ChipBarTest, ACrossRemovesItsChipAndAClickElsewhereChangesIt) {
  show({event, user});
  QSignalSpy removed(bar, &ChipBar::removeRequested);
  QSignalSpy changed(bar, &ChipBar::changeRequested);
  QTest::mouseClick(chips()[1], Qt::LeftButton, {}, chips()[1]->crossPlace().center());
  ASSERT_EQ(removed.count(), 1);
  EXPECT_EQ(removed[0][0].toInt(), 1);
  EXPECT_EQ(changed.count(), 0);
  QTest::mouseClick(chips()[0], Qt::LeftButton, {}, QPoint(10, 10));
  ASSERT_EQ(changed.count(), 1);
  EXPECT_EQ(changed[0][0].toInt(), 0);
  EXPECT_EQ(removed.count(), 1);
}

TEST_F(ChipBarTest, KeysSuffice) {
  show({event, user});
  QSignalSpy removed(bar, &ChipBar::removeRequested);
  QSignalSpy changed(bar, &ChipBar::changeRequested);
  chips()[0]->setFocus();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
  EXPECT_TRUE(chips()[1]->hasFocus());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(changed.count(), 1);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
  ASSERT_EQ(removed.count(), 1);
  EXPECT_EQ(removed[0][0].toInt(), 1);
  // The owner takes it away: the keyboard goes to what is left.
  show({event});
  EXPECT_TRUE(chips()[0]->hasFocus());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
  ASSERT_EQ(removed.count(), 2);
  QSignalSpy left(bar, &ChipBar::keyboardLeft);
  show({});
  EXPECT_EQ(left.count(), 1);
  // The other buttons are reached with Tab.
  show({event});
  chips()[0]->setFocus();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "PinFilters");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "ClearFilters");
}

TEST_F(ChipBarTest, PinsAndClears) {
  show({event});
  QSignalSpy pinned(bar, &ChipBar::pinToggled);
  QSignalSpy cleared(bar, &ChipBar::clearRequested);
  QTest::mouseClick(bar->findChild<QToolButton*>("PinFilters"), Qt::LeftButton);
  ASSERT_EQ(pinned.count(), 1);
  EXPECT_TRUE(pinned[0][0].toBool());
  bar->setPinned(false);
  EXPECT_EQ(pinned.count(), 1) << "only the user's own click is announced";
  QTest::mouseClick(bar->findChild<QToolButton*>("ClearFilters"), Qt::LeftButton);
  EXPECT_EQ(cleared.count(), 1);
}

TEST_F(ChipBarTest, StaysInOneLineHoweverLongAValueIs) {
  show({{"Comments", "= " + QString(5000, QLatin1Char('x')), {}}, event, user});
  const int bottom = bar->height();
  EXPECT_EQ(chips()[0]->height(), chips()[1]->height());
  EXPECT_LE(bottom, chips()[0]->height() + 12);
  EXPECT_LE(chips().back()->geometry().right(), bar->width());
  EXPECT_GE(chips()[1]->width(), 40) << "its neighbours stay readable";
}

TEST_F(ChipBarTest, IsReadableInBothSchemes) {
  for (const SchemeCase& scheme : schemes) {
    window.setPalette(scheme.palette({}));
    show({event});
    const Theme& theme = Theme::of(*chips()[0]);
    EXPECT_GE(contrastRatio(theme.onSelection, theme.selection), 4.5) << scheme.name;
    EXPECT_GT(count(painted(*chips()[0]), theme.selection), 200) << scheme.name;
    EXPECT_GT(count(painted(*chips()[0]), theme.onSelection), 20) << scheme.name;
  }
}

}  // namespace
}  // namespace korvel::ui
