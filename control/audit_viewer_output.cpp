// What leaves the control: text export, exchange file, printed report.
#include <QProgressBar>
#include <functional>
#include <optional>

#include "control/audit_viewer_members.h"
#include "control/message_titles.h"
#include "control/report_viewer.h"
#include "control/texts.h"
#include "output/export_folder.h"
#include "output/report.h"
#include "output/text_export.h"
#include "settings/explained_error.h"

namespace korvel {

using control::ExecOption;
using control::libraryState;
using control::loadText;
using control::messageTitle;
using control::ownText;
using control::ReportCommand;
using control::surroundings;
using ui::countText;
using ui::fromUtf8;
using ui::MessageIcon;
using ui::Pointer;

namespace {

constexpr int nothingToExport = 10069;
/// After so many rows of an export the whole window is painted; some hundredths of a second pass meanwhile.
constexpr std::size_t rowsPerWindow = 50 * output::rowsPerReport;
const QString spreadsheetHint = QStringLiteral("Make sure Excel 10.0 or above is installed");
const QString printingHint = QStringLiteral("Make sure Internet Explorer 6.0 or above is installed");

QString shownPath(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return QString::fromUtf8(reinterpret_cast<const char*>(text.data()), static_cast<qsizetype>(text.size()));
}

std::filesystem::path toPath(const QString& text) {
  return std::filesystem::path(text.toStdU16String());
}

/// The file is written, whatever becomes of the editor: a failure says where it lies.
void openInEditor(const QString& file) {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  try {
    services->startEditor(file);
  } catch (const Error& error) {
    throw settings::explainedError(error.number(), "export.noEditor", {file.toStdString()});
  }
}

}  // namespace

void AuditViewer::Members::connectOutput() {
  onClick(surface.btExcel, &Members::btExcel_Click, "btExcel_Click");
  onClick(surface.btPrint, &Members::btPrint_Click, "btPrint_Click");
  QObject::connect(surface.WebBrowser1, &control::ReportViewer::DocumentComplete, &viewer_,
                   [this] { WebBrowser1_DocumentComplete(); });
}

bool AuditViewer::Members::hasSomethingToExport() {
  if (currentList().listModel().list().rowCount() > 0) return true;
  message(MessageIcon::information, messageTitle(), loadText(nothingToExport));
  return false;
}

void AuditViewer::Members::exportCurrentList(
    const std::function<Exported(const results::ResultList& list, const output::RowProgress& progress)>& write,
    const std::function<void(const QString& file)>& open) {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  const QPointer<AuditViewer> alive(&viewer_);
  QProgressBar& bar = *surface.StatusBar1->ProgressBar1;
  const results::ResultList& list = currentList().listModel().list();
  services->setPointer(Pointer::hourglass);
  bar.setRange(0, static_cast<int>(list.rowCount()));
  bar.setValue(0);
  bar.show();
  surface.StatusBar1->paintNow();
  // Painted at once, without a look into the event queue: a call of the host that waits there could give the list other
  // rows in the middle of the file, or remove the control.
  const Exported exported = write(list, [&](std::size_t rows) {
    bar.setValue(static_cast<int>(rows));
    // Now and then all of the window, parts of which another one may have covered meanwhile.
    if (rows % rowsPerWindow == 0)
      viewer_.window()->repaint();
    else
      surface.StatusBar1->paintNow();
  });
  notice_ = ownText("export.written").arg(exported.file);
  if (exported.replaced > 0)
    notice_ += QStringLiteral(". ") + ownText("export.replaced").arg(countText(exported.replaced));
  showRestingText();
  if (open) open(exported.file);
  if (alive) bar.hide();
  // The pointer is the program's, whoever has died meanwhile.
  services->setPointer(Pointer::standard);
}

// A failure deliberately leaves pointer and progress bar as they were when it happened; the next export resets both.
void AuditViewer::Members::ExportNotepad() {
  if (!hasSomethingToExport()) return;
  // The name in the message is deliberately spelt so.
  trapped("ExportNotpad", [this] {
    exportCurrentList(
        [](const results::ResultList& list, const output::RowProgress& progress) {
          const std::filesystem::path file = output::exportPath(output::textExportName);
          return Exported{shownPath(file), output::writeTextExport(list, file, progress)};
        },
        &openInEditor);
  });
}

void AuditViewer::Members::ExportExcel() {
  if (!hasSomethingToExport()) return;
  trapped(
      "ExportExcel",
      [this] {
        const QPointer<AuditViewer> alive(&viewer_);
        const QString folder = viewer_.GetExportPath(QStringLiteral("Browse for Export Path"), 0);
        if (!alive) return;
        if (folder.isEmpty()) {
          message(MessageIcon::information, messageTitle(), QStringLiteral("No path selected!"));
          return;
        }
        const QString file = folder + fromUtf8(output::exchangeFileName);
        exportCurrentList([&](const results::ResultList& list, const output::RowProgress& progress) {
          return Exported{file, output::writeExchangeFile(list, toPath(file), progress)};
        });
      },
      spreadsheetHint);
}

void AuditViewer::Members::btExcel_Click() {
  viewer_.ExportExcel();
}

void AuditViewer::Members::btPrint_Click() {
  libraryState().pendingReport.print = true;
  writeReport();
}

void AuditViewer::Members::PreviewReport() {
  // What an earlier report left undone is not made up for by this one.
  libraryState().pendingReport = {.print = false, .preview = true};
  writeReport();
}

void AuditViewer::Members::writeReport() {
  const std::shared_ptr<control::ControlServices> services = surroundings().services;
  try {
    const std::filesystem::path file = output::exportPath(output::reportName);
    const std::string caption = surface.SSTab1->tabText(static_cast<int>(surface.currentTab())).toStdString();
    output::ReportNotes notes;
    {
      const ui::BusyPointer busy(*services);
      notes = output::writeListReport({caption, &currentList().listModel().list()}, libraryState().printFont, file);
    }
    surface.WebBrowser1->Navigate(shownPath(file), std::move(notes), alarmRemark());
  } catch (...) {
    // Nothing will be there to be printed; the next report is not to find this one's flags.
    libraryState().pendingReport = {};
    throw;
  }
}

void AuditViewer::Members::WebBrowser1_DocumentComplete() {
  trapped(
      "Printing",
      [this] {
        const QPointer<AuditViewer> alive(&viewer_);
        control::PendingReport& pending = libraryState().pendingReport;
        try {
          if (pending.preview) {
            surface.WebBrowser1->ExecWB(ReportCommand::printPreview, ExecOption::doDefault);
            pending.preview = false;
          }
          if (!alive) return;
          if (pending.print) {
            surface.WebBrowser1->ExecWB(ReportCommand::print, ExecOption::promptUser);
            pending.print = false;
          }
        } catch (...) {
          pending = {};
          throw;
        }
      },
      printingHint);
}

}  // namespace korvel
