#include "control/report_viewer.h"

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

namespace korvel::control {

namespace {

/// In English, as all of a manifest.
std::string leftOutText(const std::vector<std::string>& columns) {
  std::string text = "columns left out on the pages: ";
  for (const std::string& column : columns) text += (&column == &columns.front() ? "" : ", ") + column;
  return text + "; the rows are recorded with all columns";
}

/// A printer that writes a file itself reports no full disk and leaves a partial file. Queued calls run meanwhile: the
/// viewer may be gone afterwards.
output::pages::PaintedPages printIntoFile(output::ReportSource& report, const QPrinter& printer,
                                          const output::pages::PageTexts& texts, const PrintedList& printed,
                                          const output::pages::PageProgress& progress) {
  const output::pages::PageSelection selection = pageSelection(printer);
  output::pages::PaintedPages painted;
  const auto manifest = [&] {
    evidence::Manifest whole = printed.manifest;
    completeManifest(whole, "pdf", *printed.list, 0);
    if (!printed.part.columnsLeftOut.empty()) whole.notes.push_back(leftOutText(printed.part.columnsLeftOut));
    if (!selection.ranges.isEmpty())
      whole.notes.push_back("pages " + selection.ranges.toString().toStdString() + " of " +
                            std::to_string(painted.ofPages) + "; the rows are those of all pages");
    return whole;
  };
  OutputFile file(std::filesystem::path(printer.outputFileName().toStdU16String()),
                  printed.isProven ? OutputFile::ManifestMaker(manifest) : OutputFile::ManifestMaker());
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

void ReportViewer::Navigate(const QString& path, PrintedList list) {
  path_ = path;
  list_ = std::move(list);
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

void ReportViewer::print(ExecOption option) {
  // A copy: dialogs let the next report come.
  const PrintedList printed = list_;
  const std::unique_ptr<output::ReportSource> report = sourceOf(printed);
  const output::pages::PageTexts texts = pageTextsOf(printed);
  const QPointer<ReportViewer> alive(this);
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(QStringLiteral("KorvelAudit Report"));
  printer.setCreator(QStringLiteral("Korvel Audit Viewer"));
  const std::shared_ptr<ControlServices> services = platform().services;
  if (option == ExecOption::promptUser && !services->choosePrinter(&owner_, printer)) return;
  if (!alive) return;

  output::pages::PaintedPages painted;
  {
    PageProgressDialog window(owner_);
    const output::pages::PageProgress progress = [&](int page, int pages) { return window.show(page, pages); };
    painted = printer.outputFileName().isEmpty() ? printPages(*report, printer, texts, progress)
                                                 : printIntoFile(*report, printer, texts, printed, progress);
  }
  if (alive && printed.isProven && !printer.outputFileName().isEmpty() && !painted.cancelled && painted.pages > 0)
    Q_EMIT ProvenFileWritten(printer.outputFileName());
  if (alive && !painted.cancelled && painted.pages == 0)
    services->messageBox(&owner_, ui::MessageIcon::information, messageTitle(),
                         ownText("print.noSuchPages").arg(painted.ofPages));
}

void ReportViewer::preview() {
  auto sheets = std::make_unique<output::pages::ReportSheets>(sourceOf(list_), pageTextsOf(list_));
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
