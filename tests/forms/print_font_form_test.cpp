#include "output/forms/print_font_form.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <stdexcept>

#include "control/qt_control_services.h"
#include "tests/control/recorder.h"
#include "tests/control/when_modal.h"

namespace korvel::test {
namespace {

class PrintFontForm : public ::testing::Test {
 protected:
  void open() {
    form = std::make_unique<output::frmPrintFont>(output::PrintFontSurroundings{font, language, recorder}, nullptr);
    form->show();
  }
  template <typename Element>
  Element& element(const char* name) {
    auto* found = form->findChild<Element*>(name);
    if (found == nullptr) throw std::runtime_error(name);
    return *found;
  }
  void click(const char* button) { element<QPushButton>(button).click(); }
  QString labels() { return element<QLabel>("lblFontName").text() + ' ' + element<QLabel>("lblFontSize").text(); }

  output::PrintFont font;
  settings::LanguageOffset language;
  std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
  std::unique_ptr<output::frmPrintFont> form;
};

TEST_F(PrintFontForm, ShowsTheFont) {
  font = {"Some Font", 9.75};
  open();
  EXPECT_EQ(form->windowTitle(), "Page Setup");
  EXPECT_EQ(labels(), "Some Font 9.75");
}

TEST_F(PrintFontForm, ChangingTakesTheChosenFont) {
  open();
  QFont chosen("DejaVu Serif");
  chosen.setPointSizeF(11.25);
  recorder->chosenFont = chosen;
  click("btChangeFont");
  EXPECT_EQ(recorder->offeredFont.family(), "Courier");
  EXPECT_EQ(recorder->offeredFont.pointSizeF(), 9);
  EXPECT_EQ(font.name, "DejaVu Serif");
  EXPECT_EQ(font.size, 11.25);
  EXPECT_EQ(labels(), "DejaVu Serif 11.25");
}

TEST_F(PrintFontForm, ChangingNothingInTheDialogOfFontsChangesNothing) {
  font = {"Courier", 9.75};
  form = std::make_unique<output::frmPrintFont>(
      output::PrintFontSurroundings{font, language, std::make_shared<control::QtControlServices>()}, nullptr);
  form->show();
  bool accepted = false;
  const control::WhenModal accept([&](QWidget* dialog) {
    accepted = dialog != form.get();
    qobject_cast<QDialog*>(dialog)->accept();
  });
  click("btChangeFont");
  EXPECT_TRUE(accepted);
  EXPECT_EQ(font.name, "Courier");
  EXPECT_EQ(font.size, 9.75);
  EXPECT_EQ(labels(), "Courier 9.75");
}

TEST_F(PrintFontForm, CancellingChangesNothing) {
  font = {"Some Font", 7};
  open();
  click("btChangeFont");
  EXPECT_EQ(font.name, "Some Font");
  EXPECT_EQ(labels(), "Some Font 7");
  EXPECT_TRUE(form->isVisible());
}

TEST_F(PrintFontForm, DefaultIsCourierNine) {
  font = {"Some Font", 7};
  open();
  click("btDefault");
  EXPECT_EQ(font.name, "Courier");
  EXPECT_EQ(font.size, 9);
  EXPECT_EQ(labels(), "Courier 9");
}

TEST_F(PrintFontForm, ClosingKeepsTheFontForTheNextTime) {
  open();
  recorder->chosenFont = QFont("DejaVu Sans", 12);
  click("btChangeFont");
  click("btClose");
  EXPECT_FALSE(form->isVisible());
  open();
  EXPECT_EQ(labels(), "DejaVu Sans 12");
}

TEST_F(PrintFontForm, ItsLastButtonClosesItAndEscapeDoesToo) {
  open();
  form->layout()->activate();
  EXPECT_LT(element<QPushButton>("btChangeFont").x(), element<QPushButton>("btDefault").x());
  EXPECT_LT(element<QPushButton>("btDefault").x(), element<QPushButton>("btClose").x());
  EXPECT_TRUE(element<QPushButton>("btClose").isDefault());
  form->reject();
  EXPECT_FALSE(form->isVisible());
  EXPECT_EQ(font.name, "Courier");
}

TEST_F(PrintFontForm, IsKnownByItsName) {
  EXPECT_TRUE(control::QtControlServices().hasForm("frmPrintFont"));
}

}  // namespace
}  // namespace korvel::test
