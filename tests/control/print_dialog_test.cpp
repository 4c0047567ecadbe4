// The toolkit's dialog for printers, and the use of its results.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QRadioButton>
#include <QSpinBox>

#include "control/printer_pages.h"
#include "control/qt_control_services.h"
#include "tests/control/when_modal.h"

namespace korvel::control {
namespace {

TEST(PrintDialog, OffersPagesAndCopies) {
  QtControlServices services;
  QPrinter printer(QPrinter::HighResolution);
  const WhenModal choose([](QWidget* dialog) {
    auto* print = qobject_cast<QPrintDialog*>(dialog);
    ASSERT_NE(print, nullptr);
    EXPECT_TRUE(print->testOption(QAbstractPrintDialog::PrintPageRange));
    EXPECT_TRUE(print->testOption(QAbstractPrintDialog::PrintCollateCopies));
    print->findChild<QRadioButton*>("printRange")->setChecked(true);
    print->findChild<QSpinBox*>("from")->setValue(2);
    print->findChild<QSpinBox*>("to")->setValue(3);
    print->findChild<QSpinBox*>("copies")->setValue(4);
    print->findChild<QCheckBox*>("collate")->setChecked(false);
    print->accept();
  });
  ASSERT_TRUE(services.choosePrinter(nullptr, printer));
  const output::pages::PageSelection selection = pageSelection(printer);
  EXPECT_EQ(selection.ranges.toString(), "2-3");
  EXPECT_EQ(selection.copies, 4);
  EXPECT_FALSE(selection.collated);
}

TEST(PrintDialog, LeftAsItIsMeansAllPagesOnce) {
  QtControlServices services;
  QPrinter printer(QPrinter::HighResolution);
  const WhenModal accept([](QWidget* dialog) { qobject_cast<QPrintDialog*>(dialog)->accept(); });
  ASSERT_TRUE(services.choosePrinter(nullptr, printer));
  const output::pages::PageSelection selection = pageSelection(printer);
  EXPECT_TRUE(selection.ranges.isEmpty());
  EXPECT_EQ(selection.copies, 1);
}

}  // namespace
}  // namespace korvel::control
