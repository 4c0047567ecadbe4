// The pages and copies that are printed for the choices in the dialog.
#include "control/printer_pages.h"

#include <gtest/gtest.h>

#include <QHash>
#include <QPaintEngine>
#include <QPrintEngine>
#include <QPrinter>

#include "output/report_source.h"
#include "tests/support/filled_list.h"

namespace korvel::control {
namespace {

/// A printer that makes copies itself, or does not.
class Engine final : public QPaintEngine, public QPrintEngine {
 public:
  explicit Engine(bool copies) : QPaintEngine(AllFeatures), copies_(copies) {}
  bool begin(QPaintDevice* /*device*/) override {
    pages = 1;
    return true;
  }
  bool end() override { return true; }
  void updateState(const QPaintEngineState& /*state*/) override {}
  using QPaintEngine::drawPolygon;
  void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
  void drawPath(const QPainterPath& /*path*/) override {}
  void drawPixmap(const QRectF& /*where*/, const QPixmap& /*pixmap*/, const QRectF& /*part*/) override {}
  [[nodiscard]] Type type() const override { return User; }
  void setProperty(PrintEnginePropertyKey key, const QVariant& value) override { properties_[key] = value; }
  [[nodiscard]] QVariant property(PrintEnginePropertyKey key) const override {
    return key == PPK_SupportsMultipleCopies ? QVariant(copies_) : properties_.value(key);
  }
  bool newPage() override {
    ++pages;
    return true;
  }
  bool abort() override {
    aborted = true;
    return true;
  }
  /// Half a letter at 300 dots an inch.
  [[nodiscard]] int metric(QPaintDevice::PaintDeviceMetric metric) const override {
    switch (metric) {
      case QPaintDevice::PdmWidth:
        return 2000;
      case QPaintDevice::PdmHeight:
        return 1500;
      case QPaintDevice::PdmDevicePixelRatio:
        return 1;
      case QPaintDevice::PdmDevicePixelRatioScaled:
        return static_cast<int>(QPaintDevice::devicePixelRatioFScale());
      default:
        return 300;
    }
  }
  [[nodiscard]] QPrinter::PrinterState printerState() const override {
    return isActive() ? QPrinter::Active : QPrinter::Idle;
  }

  int pages = 0;  ///< that were begun
  bool aborted = false;

 private:
  bool copies_;
  QHash<int, QVariant> properties_;
};

class Printer final : public QPrinter {
 public:
  explicit Printer(Engine& engine) { setEngines(&engine, &engine); }
};

struct PrinterPages : testing::Test {
  static void choose(QPrinter& printer, const char* ranges, int copies) {
    printer.setPrintRange(QPrinter::PageRange);
    printer.setPageRanges(QPageRanges::fromString(QLatin1String(ranges)));
    printer.setCopyCount(copies);
  }
  output::pages::PaintedPages print(QPrinter& printer, const output::pages::PageProgress& progress = {}) {
    const output::ReportList reported{"x", &list};
    output::ListSource source({&reported, 1}, {});
    return printPages(source, printer, {}, progress);
  }

  results::ResultList list = test::filledList({{"A"}}, std::vector<test::ScriptedRow>(300, {"a"}));
};

TEST_F(PrinterPages, APrinterThatMakesCopiesItselfGetsEachPageOnce) {
  for (const bool itself : {true, false}) {
    Engine engine(itself);
    Printer printer(engine);
    choose(printer, "2", 3);
    const output::pages::PageSelection selection = pageSelection(printer);
    EXPECT_EQ(selection.copies, itself ? 1 : 3);
    EXPECT_EQ(selection.ranges.toString(), "2") << "pages are chosen here in any case";
  }
}

TEST_F(PrinterPages, AreBegunAsOftenAsTheyAreWanted) {
  for (const bool itself : {true, false}) {
    Engine engine(itself);
    Printer printer(engine);
    const int all = print(printer).pages;
    ASSERT_GT(all, 5);
    EXPECT_EQ(engine.pages, all);
    choose(printer, "2-4", 2);
    const int wanted = itself ? 3 : 6;
    EXPECT_EQ(print(printer).pages, wanted);
    EXPECT_EQ(engine.pages, wanted);
    EXPECT_FALSE(engine.aborted);
  }
}

TEST_F(PrinterPages, ThatTheReportDoesNotHaveBeginNothing) {
  Engine engine(true);
  Printer printer(engine);
  choose(printer, "900", 1);
  EXPECT_EQ(print(printer).pages, 0);
  EXPECT_EQ(engine.pages, 0);
}

TEST_F(PrinterPages, ThatAreCancelledAreWithdrawn) {
  Engine engine(true);
  Printer printer(engine);
  EXPECT_TRUE(print(printer, [](int page, int /*pages*/) { return page < 2; }).cancelled);
  EXPECT_TRUE(engine.aborted);
}

}  // namespace
}  // namespace korvel::control
