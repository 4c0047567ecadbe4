// The dialog for printers where the toolkit has it, and what becomes of its answers.
#include "control/print_dialog.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPaintEngine>
#include <QPrintDialog>
#include <QPrintEngine>
#include <QPrinter>
#include <QRadioButton>
#include <QSpinBox>

#include "control/qt_control_services.h"
#include "tests/control/when_modal.h"

namespace korvel::control {
namespace {

/// A printer's own part: it makes copies itself, or it does not.
class Engine final : public QPaintEngine, public QPrintEngine {
 public:
  explicit Engine(bool copies) : copies_(copies) {}
  bool begin(QPaintDevice* /*device*/) override { return true; }
  bool end() override { return true; }
  void updateState(const QPaintEngineState& /*state*/) override {}
  void drawPixmap(const QRectF& /*where*/, const QPixmap& /*pixmap*/, const QRectF& /*part*/) override {}
  [[nodiscard]] Type type() const override { return User; }
  void setProperty(PrintEnginePropertyKey key, const QVariant& value) override { properties_[key] = value; }
  [[nodiscard]] QVariant property(PrintEnginePropertyKey key) const override {
    return key == PPK_SupportsMultipleCopies ? QVariant(copies_) : properties_.value(key);
  }
  bool newPage() override { return true; }
  bool abort() override { return true; }
  [[nodiscard]] int metric(QPaintDevice::PaintDeviceMetric /*metric*/) const override { return 100; }
  [[nodiscard]] QPrinter::PrinterState printerState() const override { return QPrinter::Idle; }

 private:
  bool copies_;
  QHash<int, QVariant> properties_;
};

class Printer final : public QPrinter {
 public:
  explicit Printer(Engine& engine) { setEngines(&engine, &engine); }
};

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

TEST(PrintDialog, APrinterThatMakesCopiesItselfGetsEachPageOnce) {
  for (const bool itself : {true, false}) {
    Engine engine(itself);
    Printer printer(engine);
    printer.setCopyCount(3);
    printer.setPrintRange(QPrinter::PageRange);
    printer.setPageRanges(QPageRanges::fromString("2"));
    const output::pages::PageSelection selection = pageSelection(printer);
    EXPECT_EQ(selection.copies, itself ? 1 : 3);
    EXPECT_EQ(selection.ranges.toString(), "2") << "pages are chosen here in any case";
  }
}

}  // namespace
}  // namespace korvel::control
