#include "control/report_viewer.h"

#include <QDateTime>
#include <QLocale>
#include <QPointer>
#include <QPrinter>
#include <QWidget>
#include <memory>
#include <utility>

#include "control/forms/page_progress_dialog.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/output_file.h"
#include "control/output_manifest.h"
#include "control/printer_pages.h"
#include "control/texts.h"
#include "output/pages/pdf.h"
#include "output/pages/report_sheets.h"
#include "output/report_reader.h"

namespace korvel::control {

namespace {

/// A printer that writes a file itself reports no full disk and leaves a partial file. Queued calls run meanwhile: the
/// viewer may be gone afterwards.
output::pages::PaintedPages printIntoFile(output::ReportReader& report, const QPrinter& printer,
                                          const output::pages::PageTexts& texts, const ReportOrigin& origin,
                                          std::size_t replacedCharacters, const output::pages::PageProgress& progress) {
  const output::pages::PageSelection selection = pageSelection(printer);
  output::pages::PaintedPages painted;
  const auto manifest = [&] {
    evidence::Manifest whole = origin.manifest;
    completeManifest(whole, "pdf", *origin.rows, replacedCharacters);
    if (!selection.ranges.isEmpty())
      whole.notes.push_back("pages " + selection.ranges.toString().toStdString() + " of " +
                            std::to_string(painted.ofPages) + "; the rows are those of all pages");
    return whole;
  };
  OutputFile file(std::filesystem::path(printer.outputFileName().toStdU16String()),
                  origin.rows ? OutputFile::ManifestMaker(manifest) : OutputFile::ManifestMaker());
  painted = output::pages::writePdf(
      report, texts, [&file](std::string_view bytes) { file.write(bytes); }, progress, printer.pageLayout().pageSize(),
      selection);
  if (!painted.cancelled && painted.pages > 0) file.commit();
  return painted;
}

}  // namespace

ReportViewer::ReportViewer(QWidget& owner) : QObject(&owner), owner_(owner) {}

ReportViewer::~ReportViewer() {
  // The flags belong to a report that is gone now.
  if (announced_) libraryState().pendingReport = {};
}

void ReportViewer::Navigate(const QString& path, output::ReportNotes notes, const QString& remark,
                            ReportOrigin origin) {
  path_ = path;
  notes_ = std::move(notes);
  remark_ = remark;
  origin_ = std::move(origin);
  if (std::exchange(announced_, true)) return;
  QMetaObject::invokeMethod(
      this,
      [this] {
        announced_ = false;
        Q_EMIT DocumentComplete(path_);
      },
      Qt::QueuedConnection);
}

void ReportViewer::ExecWB(ReportCommand command, ExecOption option) {
  if (command == ReportCommand::print)
    print(option);
  else
    preview();
}

std::unique_ptr<output::ReportReader> ReportViewer::openReport() const {
  auto report =
      std::make_unique<output::ReportReader>(output::reportFile(std::filesystem::path(path_.toStdU16String())), notes_);
  // The whole file is read before any of it is shown: only its end tells whether it was changed.
  output::SectionHead head;
  while (report->nextSection(head)) continue;
  report->rewind();
  return report;
}

output::pages::PageTexts ReportViewer::pageTexts() const {
  output::pages::PageTexts texts;
  texts.printedAt =
      ownText("print.printedAt").arg(QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat));
  texts.pageOf = ownText("print.pageOf");
  texts.columnsOf = ownText("print.columnsOf");
  // The notice on the screen is not on paper, so the pages have a remark.
  if (notes_.replacedCharacters > 0) texts.note = ownText("print.replaced").arg(countText(notes_.replacedCharacters));
  texts.remark = remark_;
  return texts;
}

void ReportViewer::print(ExecOption option) {
  const std::unique_ptr<output::ReportReader> report = openReport();
  const QPointer<ReportViewer> alive(this);
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(QStringLiteral("KorvelAudit Report"));
  printer.setCreator(QStringLiteral("Korvel Audit Viewer"));
  const std::shared_ptr<ControlServices> services = platform().services;
  if (option == ExecOption::promptUser && !services->choosePrinter(&owner_, printer)) return;
  if (!alive) return;

  const ReportOrigin origin = origin_;
  output::pages::PaintedPages painted;
  {
    PageProgressDialog window(owner_);
    const output::pages::PageProgress progress = [&](int page, int pages) { return window.show(page, pages); };
    painted = printer.outputFileName().isEmpty()
                  ? printPages(*report, printer, pageTexts(), progress)
                  : printIntoFile(*report, printer, pageTexts(), origin, notes_.replacedCharacters, progress);
  }
  if (alive && origin.rows && !printer.outputFileName().isEmpty() && !painted.cancelled && painted.pages > 0)
    Q_EMIT ProvenFileWritten(printer.outputFileName());
  if (alive && !painted.cancelled && painted.pages == 0)
    services->messageBox(&owner_, ui::MessageIcon::information, messageTitle(),
                         ownText("print.noSuchPages").arg(painted.ofPages));
}

void ReportViewer::preview() {
  auto sheets = std::make_unique<output::pages::ReportSheets>(openReport(), pageTexts());
  const QPointer<ReportViewer> alive(this);
  {
    PageProgressDialog window(owner_);
    if (!sheets->layOut([&](int page, int pages) { return window.show(page, pages); })) return;
  }
  if (!alive) return;
  const std::shared_ptr<ControlServices> services = platform().services;
  const bool wanted = services->showPreview(&owner_, std::move(sheets));
  if (alive && wanted) print(ExecOption::promptUser);
}

}  // namespace korvel::control
