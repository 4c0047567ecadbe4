#include <gmock/gmock.h>

#include <QLayout>

#include "control/qt_control_services.h"
#include "tests/forms/print_font_fixture.h"

namespace korvel::test {
namespace {

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
