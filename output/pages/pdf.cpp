#include "output/pages/pdf.h"

#include <QDateTime>
#include <QIODevice>
#include <QPdfWriter>
#include <exception>
#include <string>
#include <string_view>

#include "output/pages/document_about.h"

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
  /// Completes a whole document by what the toolkit does not take.
  void writeUpdate(const DocumentAbout& about) {
    if (const auto update = propertiesUpdate(beginning_, end_, size_, about)) sink_(*update);
  }

 protected:
  qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
  qint64 writeData(const char* data, qint64 size) override {
    if (failed()) return -1;
    try {
      take(std::string_view(data, static_cast<std::size_t>(size)));
      return size;
    } catch (...) {
      failure_ = std::current_exception();
      return -1;
    }
  }

 private:
  void take(std::string_view bytes) {
    sink_(bytes);
    size_ += bytes.size();
    if (beginning_.size() < keptBeginning) beginning_.append(bytes.substr(0, keptBeginning - beginning_.size()));
    end_.append(bytes);
    if (end_.size() > 2 * keptEnd) end_.erase(0, end_.size() - keptEnd);
  }

  /// The document's catalog lies within the first part, its trailer within the last one.
  static constexpr std::size_t keptBeginning = std::size_t{1} << 16U;
  static constexpr std::size_t keptEnd = 1024;
  const ByteSink& sink_;
  std::string beginning_;
  std::string end_;
  std::uint64_t size_ = 0;
  std::exception_ptr failure_;
};

/// A document has a title, a program and a time of creation.
DocumentAbout completed(DocumentAbout about) {
  if (about.title.empty()) about.title = "KorvelAudit Report";
  if (about.creator.empty()) about.creator = "KorvelAudit Viewer";
  if (about.created.empty()) {
    const QDateTime now = QDateTime::currentDateTime();
    about.created = now.toOffsetFromUtc(now.offsetFromUtc()).toString(Qt::ISODate).toStdString();
  }
  return about;
}

}  // namespace

PaintedPages writePdf(ReportSource& report, const PageTexts& texts, const ByteSink& sink, const PageProgress& progress,
                      const QPageSize& paper, const PageSelection& selection) {
  SinkDevice device(sink);
  QPdfWriter writer(&device);
  // For archives: PDF/A-1b, which names its standard, its colours and all fonts within itself.
  writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
  writer.setPageSize(paper);
  writer.setResolution(pdfDotsPerInch);
  const DocumentAbout about = completed(texts.head.about);
  writer.setTitle(QString::fromStdString(about.title));
  writer.setCreator(QString::fromStdString(about.creator));
  writer.setDocumentXmpMetadata(archiveMetadata(about));
  const PaintedPages painted = paintReport(
      report, writer, texts, Orientation::asFits,
      [&](int page, int pages) { return !device.failed() && (!progress || progress(page, pages)); }, selection);
  device.rethrow();
  if (!painted.cancelled && painted.pages > 0) device.writeUpdate(about);
  return painted;
}

}  // namespace korvel::output::pages
