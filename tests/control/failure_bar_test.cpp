#include "korvel/FailureBar.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QLabel>
#include <QTest>
#include <QTextEdit>
#include <QVBoxLayout>

namespace korvel {
namespace {

const QDateTime noon(QDate(2004, 3, 7), QTime(12, 0));
const ViewerLanguage english;

class FailureBarTest : public ::testing::Test {
 protected:
  FailureBarTest() {
    auto* column = new QVBoxLayout(&window);
    column->addWidget(&bar);
    column->addWidget(&field, 1);
    window.resize(500, 400);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    field.setFocus();
  }
  QString heading() { return bar.findChild<QLabel*>("failureHeading")->text(); }
  QTextEdit& reason() { return *bar.findChild<QTextEdit*>("failureReason"); }

  QWidget window;
  FailureBar bar;
  QTextEdit field;
};

TEST_F(FailureBarTest, IsHiddenUntilThereIsAFailure) {
  EXPECT_FALSE(bar.isVisible());
}

TEST_F(FailureBarTest, ShowsNumberReasonAndTime) {
  bar.showFailure(18456, "Login failed for <b>user</b>.", noon, english);
  EXPECT_TRUE(bar.isVisible());
  EXPECT_EQ(heading(),
            "The query failed at " + QLocale::system().toString(noon, QLocale::ShortFormat) + " (error 18456):");
  EXPECT_EQ(reason().toPlainText(), "Login failed for <b>user</b>.");
}

TEST_F(FailureBarTest, SpeaksFiveLanguages) {
  QStringList headings;
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"}) {
    bar.showFailure(1, "x", noon, ViewerLanguage(offset));
    headings.append(heading());
    EXPECT_TRUE(heading().contains("1"));
  }
  EXPECT_EQ(headings.removeDuplicates(), 0);
}

TEST_F(FailureBarTest, DoesNotTakeTheFocus) {
  ASSERT_TRUE(field.hasFocus());
  bar.showFailure(1, "x", noon, english);
  EXPECT_TRUE(field.hasFocus());
}

TEST_F(FailureBarTest, ClosesWithItsButton) {
  bar.showFailure(1, "x", noon, english);
  QTest::mouseClick(bar.findChild<QWidget*>("failureClose"), Qt::LeftButton);
  EXPECT_FALSE(bar.isVisible());
}

TEST_F(FailureBarTest, IsAnAlertWithTheWholeText) {
  bar.showFailure(1, "the reason", noon, english);
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&bar);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(face->role(), QAccessible::AlertMessage);
  EXPECT_TRUE(face->text(QAccessible::Name).endsWith("the reason"));
}

TEST_F(FailureBarTest, TheTextCanBeSelectedAndNotChanged) {
  bar.showFailure(1, "the reason", noon, english);
  EXPECT_TRUE(reason().isReadOnly());
  reason().selectAll();
  EXPECT_EQ(reason().textCursor().selectedText(), "the reason");
}

TEST_F(FailureBarTest, WrapsLongReasonsAndNeverCrowdsTheWindow) {
  bar.showFailure(1, "short", noon, english);
  QApplication::processEvents();
  const int low = reason().height();
  bar.showFailure(1, QString("word ").repeated(40), noon, english);
  QApplication::processEvents();
  EXPECT_GT(reason().height(), low);
  bar.showFailure(1, QString(20000, 'x'), noon, english);
  QApplication::processEvents();
  EXPECT_LE(reason().height(), 5 * reason().fontMetrics().lineSpacing());
  EXPECT_EQ(window.width(), 500);
}

}  // namespace
}  // namespace korvel
