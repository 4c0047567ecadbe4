#include "ui/find_bar.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include "settings/string_table.h"
#include "tests/ui/painted.h"
#include "ui/style/viewer_style.h"
#include "ui/texts.h"

namespace korvel::ui {
namespace {

QString english(std::string_view key) {
  return ui::ownText(key, settings::LanguageOffset());
}

class FindBarTest : public ::testing::Test {
 protected:
  FindBarTest() {
    applyStyle(window);
    auto* column = new QVBoxLayout(&window);
    bar = new FindBar(history, &window);
    column->addWidget(bar);
    bar->setTexts(&english);
    window.resize(700, 120);
    window.show();
    window.activateWindow();
    bar->open();
    QApplication::processEvents();
  }
  QLineEdit& field() { return *bar->findChild<QComboBox*>()->lineEdit(); }
  QString count() { return bar->findChild<QLabel*>("FindCount")->text(); }
  QToolButton& button(const char* name) { return *bar->findChild<QToolButton*>(name); }
  void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
  }

  FindHistory history;
  QWidget window;
  FindBar* bar = nullptr;
};

TEST_F(FindBarTest, SaysWhatIsTypedAndHowItIsSearchedFor) {
  QSignalSpy changes(bar, &FindBar::requestChanged);
  ASSERT_TRUE(field().hasFocus());
  QTest::keyClicks(&field(), "TIC");
  EXPECT_EQ(changes.count(), 3);
  EXPECT_EQ(bar->request(), (FindRequest{.text = "TIC"}));
  press(Qt::Key_C, Qt::AltModifier);
  press(Qt::Key_W, Qt::AltModifier);
  press(Qt::Key_R, Qt::AltModifier);
  EXPECT_EQ(changes.count(), 6);
  EXPECT_EQ(bar->request(), (FindRequest{"TIC", true, true, true}));
  press(Qt::Key_C, Qt::AltModifier);
  EXPECT_EQ(bar->request(), (FindRequest{"TIC", false, true, true}));
  EXPECT_EQ(field().text(), "TIC") << "no letter of a toggle's key gets into the text";
}

TEST_F(FindBarTest, ItsKeysComeBeforeTheLettersOfMenus) {
  QMenuBar menus(&window);
  menus.addMenu("&Werkzeuge");
  window.layout()->setMenuBar(&menus);
  QApplication::processEvents();
  bar->open();
  press(Qt::Key_W, Qt::AltModifier);
  EXPECT_TRUE(bar->request().wholeValue);
}

TEST_F(FindBarTest, KeysGoFromHitToHitAndClose) {
  QSignalSpy next(bar, &FindBar::nextRequested);
  QSignalSpy previous(bar, &FindBar::previousRequested);
  QSignalSpy filter(bar, &FindBar::filterRequested);
  QSignalSpy close(bar, &FindBar::closeRequested);
  bar->showCount(0, 3);
  press(Qt::Key_Return);
  press(Qt::Key_F3);
  EXPECT_EQ(next.count(), 2);
  press(Qt::Key_Return, Qt::ShiftModifier);
  press(Qt::Key_F3, Qt::ShiftModifier);
  EXPECT_EQ(previous.count(), 2);
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(filter.count(), 1);
  EXPECT_EQ(close.count(), 0);
  press(Qt::Key_Escape);
  EXPECT_EQ(close.count(), 1);
  // On a toggle as well.
  button("FindExactCase").setFocus();
  press(Qt::Key_F3);
  EXPECT_EQ(next.count(), 3);
  press(Qt::Key_Escape);
  EXPECT_EQ(close.count(), 2);
}

TEST_F(FindBarTest, TheButtonsDoWhatTheKeysDo) {
  QSignalSpy next(bar, &FindBar::nextRequested);
  QSignalSpy previous(bar, &FindBar::previousRequested);
  QSignalSpy filter(bar, &FindBar::filterRequested);
  QSignalSpy close(bar, &FindBar::closeRequested);
  bar->showCount(1, 2);
  for (const char* name : {"FindNext", "FindPrevious", "FindFilter", "FindClose"})
    QTest::mouseClick(&button(name), Qt::LeftButton);
  EXPECT_EQ(next.count(), 1);
  EXPECT_EQ(previous.count(), 1);
  EXPECT_EQ(filter.count(), 1);
  EXPECT_EQ(close.count(), 1);
}

TEST_F(FindBarTest, SaysHowManyHitsThereAre) {
  bar->showCount(12, 3451);
  EXPECT_EQ(count(), english("find.count").arg(countText(12), countText(3451)));
  EXPECT_EQ(field().accessibleDescription(), count());
  bar->showCount(0, 3451);
  EXPECT_EQ(count(), english("find.hits").arg(countText(3451)));
  bar->showCount(0, 1);
  EXPECT_EQ(count(), "1 hit");
  EXPECT_TRUE(button("FindNext").isEnabled());
  bar->showCount(0, 0);
  EXPECT_EQ(count(), "No hits");
  EXPECT_FALSE(button("FindNext").isEnabled());
  bar->showProblem([] { return QString("Not a regular expression: missing )"); });
  EXPECT_EQ(count(), "Not a regular expression: missing )");
  bar->showNothing();
  EXPECT_EQ(count(), "");
}

TEST_F(FindBarTest, FollowsTheLanguage) {
  bar->showCount(2, 5);
  bar->setTexts([](std::string_view key) { return ui::ownText(key, settings::LanguageOffset("10000")); });
  EXPECT_EQ(count(), "2 von 5");
  EXPECT_EQ(button("FindExactCase").accessibleName(), QString::fromUtf8("Groß-/Kleinschreibung (Alt+C)"));
}

TEST_F(FindBarTest, RemembersTheLastTenTexts) {
  for (int i = 0; i < 12; ++i) {
    field().setText(QString::number(i));
    press(Qt::Key_Return);
  }
  ASSERT_EQ(history.texts().size(), 10);
  EXPECT_EQ(history.texts().front(), "11");
  EXPECT_EQ(history.texts().back(), "2");
  field().setText("5");
  press(Qt::Key_Return);
  EXPECT_EQ(history.texts().front(), "5");
  EXPECT_EQ(history.texts().size(), 10) << "each text once";
  // Another bar offers them too.
  FindBar other(history, &window);
  other.setTexts(&english);
  window.layout()->addWidget(&other);
  other.open();
  QApplication::processEvents();
  QSignalSpy changes(&other, &FindBar::requestChanged);
  press(Qt::Key_Down);
  EXPECT_EQ(other.request().text, "5");
  press(Qt::Key_Down);
  EXPECT_EQ(other.request().text, "11");
  press(Qt::Key_Up);
  EXPECT_EQ(other.request().text, "5");
  EXPECT_EQ(changes.count(), 3) << "each text is searched for";
}

TEST_F(FindBarTest, OpensWithItsTextSelected) {
  field().setText("TIC");
  bar->hide();
  bar->open();
  EXPECT_EQ(field().selectedText(), "TIC");
  bar->open(ui::FindRequest{.text = "WIC"});
  EXPECT_EQ(field().selectedText(), "WIC");
}

TEST_F(FindBarTest, EverythingHasANameAndAHint) {
  for (const QToolButton* each : bar->findChildren<QToolButton*>()) {
    EXPECT_FALSE(each->accessibleName().isEmpty()) << each->objectName().toStdString();
    EXPECT_FALSE(each->toolTip().isEmpty()) << each->objectName().toStdString();
    EXPECT_NE(each->focusPolicy(), Qt::NoFocus) << each->objectName().toStdString();
  }
  EXPECT_FALSE(field().accessibleName().isEmpty());
}

}  // namespace
}  // namespace korvel::ui
