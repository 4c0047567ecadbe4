// The preview: single pages, zoom and thumbnails.
#include "control/forms/report_preview.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <array>

#include "base/error.h"
#include "output/report_source.h"
#include "tests/control/no_sections.h"

namespace korvel::control {
namespace {

/// A report of one section with so many rows of two columns.
class NumberedRows final : public output::ReportSource {
 public:
  explicit NumberedRows(int rows) : rows_(rows) {}
  void rewind() override { section_ = row_ = 0; }
  bool nextSection(output::SectionHead& head) override {
    if (section_++ > 0) return false;
    head = {"Numbered", {}, {"Number", "Text"}};
    return true;
  }
  bool nextRow(std::vector<std::string_view>& cells) override {
    if (row_ == rows_) return false;
    number_ = std::to_string(++row_);
    cells = {number_, "text"};
    return true;
  }

 private:
  int rows_;
  int section_ = 0;
  int row_ = 0;
  std::string number_;
};

/// A report whose file becomes unreadable once it has been laid out.
class FailingLater final : public output::ReportSource {
 public:
  explicit FailingLater(const bool& fails) : fails_(fails), rows_(10) {}
  void rewind() override { rows_.rewind(); }
  bool nextSection(output::SectionHead& head) override {
    if (fails_) throw Error(321, "Invalid file format");
    return rows_.nextSection(head);
  }
  bool nextRow(std::vector<std::string_view>& cells) override { return rows_.nextRow(cells); }

 private:
  const bool& fails_;
  NumberedRows rows_;
};

class Preview : public ::testing::Test {
 protected:
  static std::unique_ptr<output::pages::ReportSheets> sheets(int rows) {
    return sheetsOf(std::make_unique<NumberedRows>(rows));
  }
  static std::unique_ptr<output::pages::ReportSheets> sheetsOf(std::unique_ptr<output::ReportSource> source) {
    auto made = std::make_unique<output::pages::ReportSheets>(std::move(source), output::pages::PageTexts{});
    EXPECT_TRUE(made->layOut());
    return made;
  }
  template <typename Element>
  static Element* element(const QWidget& window, const char* name) {
    auto* found = window.findChild<Element*>(QLatin1String(name));
    if (found == nullptr) ADD_FAILURE() << "no element " << name;
    return found;
  }
  static QImage shown(const ReportPreview& window) {
    return element<QLabel>(window, "lblPage")->pixmap(Qt::ReturnByValue).toImage();
  }
};

TEST_F(Preview, GoesThroughThePagesByButtonsFieldAndKeys) {
  ReportPreview window(sheets(300), nullptr);
  window.show();
  const int last = element<QListView>(window, "lvSheets")->model()->rowCount();
  ASSERT_GE(last, 4);
  EXPECT_EQ(element<QLabel>(window, "lblOf")->text(), "of " + QString::number(last));
  EXPECT_EQ(window.page(), 1);
  EXPECT_FALSE(element<QToolButton>(window, "btPrevious")->isEnabled());
  element<QToolButton>(window, "btNext")->click();
  EXPECT_EQ(window.page(), 2);
  element<QToolButton>(window, "btLast")->click();
  EXPECT_EQ(window.page(), last);
  EXPECT_FALSE(element<QToolButton>(window, "btNext")->isEnabled());
  element<QToolButton>(window, "btFirst")->click();
  EXPECT_EQ(window.page(), 1);
  element<QSpinBox>(window, "txtPage")->setValue(3);
  EXPECT_EQ(window.page(), 3);
  QTest::keyClick(&window, Qt::Key_PageUp);
  EXPECT_EQ(window.page(), 2);
  QTest::keyClick(&window, Qt::Key_End);
  EXPECT_EQ(window.page(), last);
  QTest::keyClick(&window, Qt::Key_PageDown);
  EXPECT_EQ(window.page(), last);
  EXPECT_EQ(element<QListView>(window, "lvSheets")->currentIndex().row(), last - 1);
  element<QListView>(window, "lvSheets")->setCurrentIndex(element<QListView>(window, "lvSheets")->model()->index(1, 0));
  EXPECT_EQ(window.page(), 2);
  EXPECT_EQ(element<QSpinBox>(window, "txtPage")->value(), 2);
}

TEST_F(Preview, PagesDifferAndComeBackTheSameInAnyOrder) {
  const auto report = sheets(300);
  const QImage third = report->picture(3, 60);
  const QImage first = report->picture(1, 60);
  EXPECT_NE(first, third);
  EXPECT_EQ(report->picture(3, 60), third);
  EXPECT_EQ(report->picture(1, 60), first);
  EXPECT_THROW((void)report->picture(report->count() + 1, 60), std::out_of_range);
}

TEST_F(Preview, ZoomsBetweenItsLimits) {
  ReportPreview window(sheets(10), nullptr);
  window.show();
  const QSize whole = shown(window).size();
  window.setZoom(ReportPreview::Zoom::fitWidth);
  EXPECT_GT(shown(window).width(), whole.width());
  window.setZoomPercent(100);
  EXPECT_EQ(window.zoomPercent(), 100);
  EXPECT_EQ(element<QLabel>(window, "lblZoom")->text(), "100 %");
  element<QToolButton>(window, "btZoomIn")->click();
  EXPECT_EQ(window.zoomPercent(), 125);
  QTest::keyClick(&window, Qt::Key_Minus, Qt::ControlModifier);
  EXPECT_EQ(window.zoomPercent(), 100);
  window.setZoomPercent(1);
  EXPECT_EQ(window.zoomPercent(), 20);
  window.setZoomPercent(100000);
  EXPECT_EQ(window.zoomPercent(), 400);
  QTest::keyClick(&window, Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(shown(window).size(), whole);
  // The toolkit keeps the modifiers of the last key after the window is closed; the next test needs none.
  QTest::keyClick(&window, Qt::Key_Home);
}

TEST_F(Preview, FollowsTheWindowsSize) {
  ReportPreview window(sheets(10), nullptr);
  window.show();
  window.resize(700, 400);
  const int low = shown(window).height();
  window.resize(700, 600);
  EXPECT_GT(shown(window).height(), low);
}

TEST_F(Preview, PrintsWhereItIsWantedAndClosesOtherwise) {
  ReportPreview window(sheets(10), nullptr);
  const QSignalSpy print(&window, &ReportPreview::printRequested);
  window.show();
  element<QPushButton>(window, "btClose")->click();
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(print.count(), 0);
  window.show();
  element<QPushButton>(window, "btPrint")->click();
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(print.count(), 1);
}

TEST_F(Preview, EnterEndsTheTypingOfAPageAndDoesNotPrint) {
  ReportPreview window(sheets(300), nullptr);
  const QSignalSpy print(&window, &ReportPreview::printRequested);
  window.show();
  auto* field = element<QSpinBox>(window, "txtPage");
  field->setFocus();
  field->selectAll();
  QTest::keyClicks(field, "3");
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(window.page(), 3);
  EXPECT_TRUE(window.isVisible());
  for (const char* name : {"areaPage", "lvSheets"}) {
    auto* view = element<QWidget>(window, name);
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Return);
  }
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(print.count(), 0);
}

TEST_F(Preview, EnterPressesTheButtonThatHasTheFocus) {
  ReportPreview window(sheets(300), nullptr);
  const QSignalSpy print(&window, &ReportPreview::printRequested);
  window.show();
  QApplication::setActiveWindow(&window);
  auto* next = element<QToolButton>(window, "btNext");
  next->setFocus();
  QTest::keyClick(next, Qt::Key_Enter);
  EXPECT_EQ(window.page(), 2);
  EXPECT_EQ(print.count(), 0);
  auto* button = element<QPushButton>(window, "btPrint");
  button->setFocus();
  QTest::keyClick(button, Qt::Key_Return);
  EXPECT_EQ(print.count(), 1);
}

TEST_F(Preview, TheUsualKeyPrints) {
  ReportPreview window(sheets(10), nullptr);
  const QSignalSpy print(&window, &ReportPreview::printRequested);
  window.show();
  QTest::keyClick(element<QScrollArea>(window, "areaPage"), Qt::Key_P, Qt::ControlModifier);
  EXPECT_EQ(print.count(), 1);
  // The toolkit keeps the modifiers of the last key after the window is closed; the next test needs none.
  QTest::keyClick(&window, Qt::Key_Home);
}

TEST_F(Preview, ThePageKeysScrollThroughAPageAndThenTurnIt) {
  ReportPreview window(sheets(300), nullptr);
  window.show();
  auto* area = element<QScrollArea>(window, "areaPage");
  // The whole page is visible.
  QTest::keyClick(area, Qt::Key_PageDown);
  EXPECT_EQ(window.page(), 2);
  window.setZoomPercent(400);
  QCoreApplication::processEvents();
  QTest::keyClick(area, Qt::Key_PageDown);
  EXPECT_EQ(window.page(), 2);
  QScrollBar& bar = *area->verticalScrollBar();
  EXPECT_GT(bar.value(), 0);
  bar.setValue(bar.maximum());
  QTest::keyClick(area, Qt::Key_PageDown);
  EXPECT_EQ(window.page(), 3);
  EXPECT_EQ(bar.value(), 0);
  QTest::keyClick(area, Qt::Key_PageUp);
  EXPECT_EQ(window.page(), 2);
  EXPECT_EQ(bar.value(), bar.maximum());
}

TEST_F(Preview, SaysWhyAPageCannotBeShown) {
  bool fails = false;
  auto report = sheetsOf(std::make_unique<FailingLater>(fails));
  fails = true;
  ReportPreview window(std::move(report), nullptr);
  window.show();
  QCoreApplication::processEvents();
  EXPECT_EQ(element<QLabel>(window, "lblPage")->text(), "Invalid file format");
  fails = false;
  window.setZoom(ReportPreview::Zoom::fitWidth);
  EXPECT_FALSE(shown(window).isNull());
}

TEST_F(Preview, OfAReportWithoutSectionsIsAnEmptyPage) {
  ReportPreview window(sheetsOf(std::make_unique<test::NoSections>()), nullptr);
  window.show();
  EXPECT_FALSE(shown(window).isNull());
  EXPECT_EQ(element<QLabel>(window, "lblOf")->text(), "of 1");
  EXPECT_FALSE(element<QToolButton>(window, "btNext")->isEnabled());
}

TEST_F(Preview, SmallPagesHaveAnEdge) {
  ReportPreview window(sheets(10), nullptr);
  const QAbstractItemModel& model = *element<QListView>(window, "lvSheets")->model();
  const QImage small = model.index(0, 0).data(Qt::DecorationRole).value<QImage>();
  ASSERT_FALSE(small.isNull());
  EXPECT_NE(small.pixelColor(0, 0), QColor(Qt::white));
  EXPECT_NE(small.pixelColor(small.width() - 1, small.height() / 2), QColor(Qt::white));
  EXPECT_EQ(small.pixelColor(2, 2), QColor(Qt::white));
}

TEST_F(Preview, OfALongReportDrawsOnlyWhatIsLookedAt) {
  ReportPreview window(sheets(20000), nullptr);
  window.show();
  window.showPage(250);
  EXPECT_EQ(window.page(), 250);
  EXPECT_FALSE(shown(window).isNull());
}

TEST_F(Preview, EveryElementHasANameForAssistance) {
  ReportPreview window(sheets(10), nullptr);
  window.show();
  const QList<QToolButton*> buttons = window.findChildren<QToolButton*>(QRegularExpression("^bt"));
  EXPECT_EQ(buttons.size(), 8);
  for (const QToolButton* button : buttons)
    EXPECT_FALSE(button->toolTip().isEmpty()) << button->objectName().toStdString();
  EXPECT_FALSE(element<QListView>(window, "lvSheets")->accessibleName().isEmpty());
  EXPECT_FALSE(element<QSpinBox>(window, "txtPage")->accessibleName().isEmpty());
}

}  // namespace
}  // namespace korvel::control
