#include "output/pages/pdf.h"

#include <QIODevice>
#include <QPdfWriter>
#include <exception>
#include <string_view>

namespace korvel::output::pages {

namespace {

/// The device of the PDF writer. Qt does not support exceptions, so the first one is kept and thrown afterwards.
class SinkDevice : public QIODevice {
 public:
  explicit SinkDevice(const ByteSink& sink) : sink_(sink) { open(QIODevice::WriteOnly); }

  [[nodiscard]] bool isSequential() const override { return true; }
  [[nodiscard]] bool failed() const noexcept { return failure_ != nullptr; }
  void rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 protected:
  qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
  qint64 writeData(const char* data, qint64 size) override {
    if (failed()) return -1;
    try {
      sink_(std::string_view(data, static_cast<std::size_t>(size)));
      return size;
    } catch (...) {
      failure_ = std::current_exception();
      return -1;
    }
  }

 private:
  const ByteSink& sink_;
  std::exception_ptr failure_;
};

}  // namespace

PaintedPages writePdf(ReportSource& report, const PageTexts& texts, const ByteSink& sink, const PageProgress& progress,
                      const QPageSize& paper, const PageSelection& selection) {
  SinkDevice device(sink);
  QPdfWriter writer(&device);
  // For archives: PDF/A-1b, which names its standard, its colours and all fonts within itself.
  writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
  writer.setPageSize(paper);
  writer.setResolution(pdfDotsPerInch);
  writer.setTitle(QStringLiteral("KorvelAudit Report"));
  writer.setCreator(QStringLiteral("KorvelAudit Viewer"));
  const PaintedPages painted = paintReport(
      report, writer, texts, Orientation::asFits,
      [&](int page, int pages) { return !device.failed() && (!progress || progress(page, pages)); }, selection);
  device.rethrow();
  return painted;
}

}  // namespace korvel::output::pages
