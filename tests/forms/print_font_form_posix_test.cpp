// The form with the toolkit's font dialog; Windows has its own.
#include <QDialog>

#include "control/qt_control_services.h"
#include "tests/control/when_modal.h"
#include "tests/forms/print_font_fixture.h"

namespace korvel::test {
namespace {

TEST_F(PrintFontForm, ChangingNothingInTheDialogOfFontsChangesNothing) {
  font = {"Courier", 9.75};
  form = std::make_unique<output::frmPrintFont>(
      output::PrintFontContext{font, language, std::make_shared<control::QtControlServices>()}, nullptr);
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

}  // namespace
}  // namespace korvel::test
