#include "control/report_viewer.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QPrinter>
#include <QProgressDialog>
#include <QTemporaryFile>
#include <memory>
#include <utility>

#include "control/library_state.h"
#include "control/texts.h"
#include "output/pages/report_pages.h"
#include "output/pages/report_sheets.h"
#include "output/report_bytes.h"
#include "output/report_reader.h"
#include "output/windows_error.h"

namespace korvel::control {
namespace {

output::pages::PageTexts pageTexts() {
  output::pages::PageTexts texts;
  texts.printedAt =
      ownText("print.printedAt").arg(QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat));
  texts.pageOf = ownText("print.pageOf");
  return texts;
}

/// A file that a printer writes, put into its place when it is complete; nothing stays of one that is not.
class PrintedFile {
 public:
  explicit PrintedFile(QPrinter& printer) : target_(printer.outputFileName()) {
    if (target_.isEmpty()) return;
    temporary_ = std::make_unique<QTemporaryFile>(target_ + QStringLiteral(".XXXXXX"));
    if (!temporary_->open()) throw output::windowsError(output::errorPathFileAccess);
    temporary_->close();
    printer.setOutputFileName(temporary_->fileName());
    // The name decides about the format where it is set.
    printer.setOutputFormat(QPrinter::PdfFormat);
  }

  void commit() {
    if (!temporary_) return;
    // Readable as any file that the user writes; the temporary one is the user's alone.
    const QFile::Permissions others = QFile::exists(target_) ? QFile::permissions(target_) : usualPermissions();
    temporary_->setPermissions(others);
    std::error_code failure;
    std::filesystem::rename(toPath(temporary_->fileName()), toPath(target_), failure);
    if (failure) throw output::asWindowsError(Error(failure.value(), failure.message()), output::FileTask::write);
    temporary_->setAutoRemove(false);
  }

 private:
  static std::filesystem::path toPath(const QString& name) { return std::filesystem::path(name.toStdU16String()); }
  static QFile::Permissions usualPermissions() {
    return QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther;
  }

  QString target_;
  std::unique_ptr<QTemporaryFile> temporary_;
};

/// The window that says how far a report is on its way over its pages, and lets a person cancel it.
class PagesWindow {
 public:
  explicit PagesWindow(QWidget& owner)
      : window_(new QProgressDialog(ownText("print.counting"), ownText("print.cancel"), 0, 0, &owner)) {
    window_->setWindowModality(Qt::ApplicationModal);
    window_->setWindowTitle(QStringLiteral("KorvelAudit Viewer"));
  }
  ~PagesWindow() { delete window_; }
  PagesWindow(const PagesWindow&) = delete;
  PagesWindow& operator=(const PagesWindow&) = delete;

  /// False once it has been cancelled. Events are handled here: the cancel button's, and nobody else's, since the
  /// window is modal.
  bool show(int page, int pages) {
    if (!window_) return false;
    window_->setLabelText(pages == 0 ? ownText("print.counting") : ownText("print.printing").arg(page).arg(pages));
    window_->setMaximum(pages);
    window_->setValue(page);
    return window_ && !window_->wasCanceled();
  }

 private:
  QPointer<QProgressDialog> window_;
};

}  // namespace

ReportViewer::ReportViewer(QWidget& owner) : QObject(&owner), owner_(owner) {}

void ReportViewer::Navigate(const QString& path, output::ReportNotes notes) {
  path_ = path;
  notes_ = std::move(notes);
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
  // Whole before any of it is shown: a file that was changed since is told by its end.
  output::SectionHead head;
  while (report->nextSection(head)) continue;
  report->rewind();
  return report;
}

void ReportViewer::print(ExecOption option) {
  const std::unique_ptr<output::ReportReader> report = openReport();
  const QPointer<ReportViewer> alive(this);
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(QStringLiteral("KorvelAudit Report"));
  printer.setCreator(QStringLiteral("Korvel Audit Viewer"));
  const std::shared_ptr<ControlServices> services = surroundings().services;
  if (option == ExecOption::promptUser && !services->choosePrinter(&owner_, printer)) return;
  if (!alive) return;

  PrintedFile file(printer);
  PagesWindow window(owner_);
  output::pages::PaintedPages painted;
  try {
    painted = output::pages::paintReport(*report, printer, pageTexts(), output::pages::Orientation::asFits,
                                         [&](int page, int pages) { return window.show(page, pages); });
  } catch (...) {
    printer.abort();
    throw;
  }
  if (painted.cancelled)
    printer.abort();
  else
    file.commit();
}

void ReportViewer::preview() {
  auto sheets = std::make_unique<output::pages::ReportSheets>(openReport(), pageTexts());
  const QPointer<ReportViewer> alive(this);
  {
    PagesWindow window(owner_);
    if (!sheets->layOut([&](int page, int pages) { return window.show(page, pages); })) return;
  }
  if (!alive) return;
  const std::shared_ptr<ControlServices> services = surroundings().services;
  const bool wanted = services->showPreview(&owner_, std::move(sheets));
  if (alive && wanted) print(ExecOption::promptUser);
}

}  // namespace korvel::control
