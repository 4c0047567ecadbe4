#include "control/list_outputs.h"

#include <QDir>
#include <QPointer>
#include <QProgressBar>
#include <QStringList>
#include <array>
#include <filesystem>
#include <memory>
#include <utility>

#include "control/answer_status.h"
#include "control/command_menus.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/output_file.h"
#include "control/printed_list.h"
#include "control/report_viewer.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"
#include "output/export_file.h"
#include "output/report.h"
#include "output/text_export.h"
#include "settings/string_table.h"

namespace korvel::control {

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

/// What is said of a file that was written, with its manifest or alone.
QString writtenText(const QString& file, bool isProven) {
  const QString text = ownText("export.written").arg(file);
  return isProven ? text + QStringLiteral(". ") + ownText("export.manifestWritten") : text;
}

/// A filter with its values, as the tip of its chip has them in lines.
QString wholeCondition(const ui::Chip& chip) {
  const qsizetype values = chip.toolTip.indexOf(u'\n');
  if (values < 0) return chip.toolTip;
  return chip.toolTip.left(values) + QStringLiteral(": ") +
         chip.toolTip.mid(values + 1).replace(u'\n', QStringLiteral(", "));
}

/// What a list is sorted by, in words.
QString sortingText(const results::ResultList& list) {
  const QString column = fromUtf8(list.columns()[list.sortKey().value].caption);
  return list.sortOrder() == results::SortOrder::descending ? ownText("page.descending").arg(column) : column;
}

/// The file is written even if the editor fails to start: the failure names its path.
void openInEditor(const QString& file) {
  const std::shared_ptr<ControlServices> services = platform().services;
  try {
    services->startEditor(file);
  } catch (const Error& error) {
    throw settings::localizedError(error.number(), "export.noEditor", {file.toStdString()});
  }
}

}  // namespace

void addOutputEntries(CommandPopup& menu, AuditViewer& viewer, const MessageBoxes& messages) {
  struct Output {
    const char* text;
    void (AuditViewer::*make)();
  };
  constexpr std::array outputs = {Output{"preview.title", &AuditViewer::PreviewReport},
                                  Output{"export.asText", &AuditViewer::ExportNotepad},
                                  Output{"export.asExchange", &AuditViewer::ExportExcel}};
  // Which keys they have is the host's choice.
  for (const Output& output : outputs)
    QObject::connect(
        menu.addOwnEntry(ownText(output.text)), &QAction::triggered, &viewer,
        [&viewer, &messages, make = output.make] { messages.trapped("SmartPopup_Click", [&] { (viewer.*make)(); }); });
}

ListOutputs::ListOutputs(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers)
    : viewer_(viewer), messages_(messages), surface_(surface), answers_(answers) {
  messages_.onClick(surface_.btExcel, "btExcel_Click", [this] { btExcel_Click(); });
  messages_.onClick(surface_.btPrint, "btPrint_Click", [this] { btPrint_Click(); });
  QObject::connect(surface_.WebBrowser1, &ReportViewer::DocumentComplete, &viewer_,
                   [this] { WebBrowser1_DocumentComplete(); });
  QObject::connect(surface_.WebBrowser1, &ReportViewer::ProvenFileWritten, &viewer_, [this](const QString& file) {
    answers_.showNotice([file, remark = reportRemark_] {
      const QString notice = writtenText(file, true);
      return remark ? notice + QStringLiteral(". ") + remark() : notice;
    });
  });
  for (const auto& model : surface_.models)
    QObject::connect(model.get(), &QAbstractItemModel::modelReset, &viewer_,
                     [this, rows = model.get()] { answers_.endNoticeOn(*rows); });
}

QString ListOutputs::GetExportPath(const QString& dialogtext, int files) {
  const std::shared_ptr<ControlServices> services = platform().services;
  const std::optional<QString> folder = services->chooseFolder(&viewer_, dialogtext, files > 0);
  // Deliberately also behind a root, which ends in a separator already.
  return folder ? QDir::toNativeSeparators(*folder) + QDir::separator() : QString();
}

ListOutputs::OutputRows ListOutputs::outputRows(std::shared_ptr<const results::ResultList> list, const TakenRows& taken,
                                                std::function<QString()> remark) const {
  evidence::Manifest manifest = outputManifest(answers_, surface_.currentTab(), *list, taken);
  return {std::move(list), std::move(remark), std::move(manifest)};
}

std::optional<ListOutputs::OutputRows> ListOutputs::askForRows() {
  const auto current = [this]() -> const results::ResultList& { return surface_.currentList().listModel().list(); };
  const results::ResultList& list = current();
  // The list lives as long as the control.
  const std::shared_ptr<const results::ResultList> shown(std::shared_ptr<const void>(), &list);
  if (!list.isFiltered()) return outputRows(shown, {});
  const ListArea::FilterState& filters = surface_.areas.at(surface_.currentTab())->filterState;
  if (filters.isEvaluating) {
    // Nobody knows yet which rows these are.
    messages_.inform(messageTitle(), ownText("filter.evaluating"));
    return std::nullopt;
  }
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const auto answer =
      services->choose(&viewer_, messageTitle(),
                       ownText("filter.which").arg(countText(list.rowCount()), countText(list.wholeRowCount())),
                       {ownText("filter.takeShown"), ownText("filter.takeWhole")});
  // While the question was open the host may have brought another list forward.
  if (!alive || !answer || &current() != &list) return std::nullopt;
  if (!list.isFiltered()) return outputRows(shown, {});
  TakenRows taken{TakenRows::Which::shown, list.rowCount(), list.wholeRowCount(), filters.conditions,
                  filters.isUndecided};
  const std::size_t wholeCount = taken.wholeCount;
  if (*answer == 0)
    return outputRows(shown, taken, [shownCount = taken.shownCount, wholeCount, isUndecided = taken.isUndecided] {
      const QString remark = ownText("filter.remarkShown").arg(countText(shownCount), countText(wholeCount));
      return isUndecided ? remark + QStringLiteral(". ") + ownText("filter.undecided") : remark;
    });
  taken.which = TakenRows::Which::wholeOfFiltered;
  return outputRows(std::make_shared<const results::ResultList>(list.unfiltered()), taken,
                    [wholeCount] { return ownText("filter.remarkWhole").arg(countText(wholeCount)); });
}

bool ListOutputs::hasSomethingToExport(const results::ResultList& list) {
  if (list.rowCount() > 0) return true;
  messages_.inform(messageTitle(), loadText(nothingToExport));
  return false;
}

void ListOutputs::exportList(const OutputRows& rows, const std::function<std::filesystem::path()>& place,
                             const std::string& format, ListWriter write,
                             const std::function<void(const QString& file)>& open) {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  QProgressBar& bar = *surface_.StatusBar1->ProgressBar1;
  const results::ResultList& list = *rows.list;
  services->setPointer(Pointer::hourglass);
  bar.setRange(0, static_cast<int>(list.rowCount()));
  bar.setValue(0);
  bar.show();
  surface_.StatusBar1->paintNow();
  const std::filesystem::path path = place();
  const QString file = shownPath(path);
  const bool isProven = libraryState().writesManifests;
  std::size_t replaced = 0;
  const auto manifest = [&] {
    evidence::Manifest whole = rows.manifest;
    completeManifest(whole, format, list, replaced);
    return whole;
  };
  OutputFile target(path, isProven ? OutputFile::ManifestMaker(manifest) : OutputFile::ManifestMaker());
  // Painted directly, without processing events: a queued call of the host could change the list's rows in the middle
  // of the file, or delete the control.
  replaced = write(
      list, [&target](std::string_view bytes) { target.write(bytes); },
      [&](std::size_t written) {
        bar.setValue(static_cast<int>(written));
        // Sometimes the whole window: another window may have covered parts of it.
        if (written % rowsPerWindow == 0)
          viewer_.window()->repaint();
        else
          surface_.StatusBar1->paintNow();
      });
  target.commit();
  answers_.showNotice([file, replaced, isProven, remark = rows.remark] {
    QString notice = writtenText(file, isProven);
    if (replaced > 0) notice += QStringLiteral(". ") + ownText("export.replaced").arg(countText(replaced));
    if (remark) notice += QStringLiteral(". ") + remark();
    return notice;
  });
  if (open) open(file);
  if (alive) bar.hide();
  // The pointer belongs to the program: it is reset also where the control is gone.
  services->setPointer(Pointer::standard);
}

// A failure deliberately leaves pointer and progress bar as they were when it happened; the next export resets both.
void ListOutputs::ExportNotepad() {
  const results::ResultList& shown = surface_.currentList().listModel().list();
  if (!shown.isFiltered() && !hasSomethingToExport(shown)) return;
  // The name in the message is deliberately spelt so.
  messages_.trapped("ExportNotpad", [this] {
    const std::optional<OutputRows> rows = askForRows();
    if (!rows || !hasSomethingToExport(*rows->list)) return;
    exportList(
        *rows, [] { return output::exportPath(output::textExportName); }, "text", &output::writeTextExport,
        &openInEditor);
  });
}

void ListOutputs::ExportExcel() {
  const results::ResultList& shown = surface_.currentList().listModel().list();
  if (!shown.isFiltered() && !hasSomethingToExport(shown)) return;
  messages_.trapped(
      "ExportExcel",
      [this] {
        const QPointer<AuditViewer> alive(&viewer_);
        const QString folder = viewer_.GetExportPath(QStringLiteral("Browse for Export Path"), 0);
        if (!alive) return;
        if (folder.isEmpty()) {
          messages_.inform(messageTitle(), QStringLiteral("No path selected!"));
          return;
        }
        const std::optional<OutputRows> rows = askForRows();
        if (!rows || !hasSomethingToExport(*rows->list)) return;
        const QString file = folder + fromUtf8(output::exchangeFileName);
        exportList(
            *rows, [&file] { return toPath(file); }, "exchange", &output::writeExchangeFile);
      },
      spreadsheetHint);
}

void ListOutputs::btExcel_Click() {
  viewer_.ExportExcel();
}

void ListOutputs::btPrint_Click() {
  libraryState().pendingReport.print = true;
  writeReport();
}

void ListOutputs::PreviewReport() {
  // Flags of an earlier report do not count for this one.
  libraryState().pendingReport = {.print = false, .preview = true};
  writeReport();
}

/// The list in front as it goes to paper, with a copy of its rows.
PrintedList ListOutputs::printedList(const OutputRows& rows, const std::string& caption) const {
  const std::size_t page = surface_.currentTab();
  const ResultListView& view = surface_.currentList();
  const results::ResultList& list = *rows.list;
  PrintedList printed;
  printed.caption = caption;
  printed.list = std::make_shared<const results::ResultList>(list);
  printed.font = libraryState().printFont;
  printed.arrangement = arrangementOf(view);
  printed.manifest = rows.manifest;
  printed.isProven = libraryState().writesManifests;
  if (list.isFiltered())
    for (const ui::Chip& chip : surface_.areas.at(page)->chips->chips())
      printed.filters.push_back(wholeCondition(chip).toStdString());
  if (list.isSorted()) printed.sortedBy = sortingText(list).toStdString();
  printed.part.caption = caption;
  printed.part.rows = list.rowCount();
  printed.part.ofRows = list.wholeRowCount();
  printed.part.columnsLeftOut = columnsLeftOut(view);
  for (const QString& note : answers_.incompleteTexts()) printed.part.notes.push_back(note.toStdString());
  QStringList remarks;
  if (rows.remark) remarks.append(rows.remark());
  if (const QString alarms = answers_.alarmRemark(); !alarms.isEmpty()) remarks.append(alarms);
  printed.part.remark = remarks.join(QStringLiteral(". ")).toStdString();
  return printed;
}

void ListOutputs::writeReport() {
  const std::shared_ptr<ControlServices> services = platform().services;
  try {
    std::optional<OutputRows> rows = askForRows();
    if (!rows) {
      libraryState().pendingReport = {};
      return;
    }
    const std::filesystem::path file = output::exportPath(output::reportName);
    const std::string caption = surface_.SSTab1->tabText(static_cast<int>(surface_.currentTab())).toStdString();
    PrintedList printed;
    {
      const ui::BusyPointer busy(*services);
      output::writeListReport({caption, rows->list.get()}, libraryState().printFont, file);
      printed = printedList(*rows, caption);
    }
    if (rows->remark) answers_.showNotice(rows->remark, &surface_.currentList().listModel());
    reportRemark_ = rows->remark;
    surface_.WebBrowser1->Navigate(shownPath(file), std::move(printed));
  } catch (...) {
    // There is nothing to print: the next report must not find the flags of this one.
    libraryState().pendingReport = {};
    throw;
  }
}

void ListOutputs::WebBrowser1_DocumentComplete() {
  messages_.trapped(
      "Printing",
      [this] {
        const QPointer<AuditViewer> alive(&viewer_);
        PendingReport& pending = libraryState().pendingReport;
        try {
          if (pending.preview) {
            surface_.WebBrowser1->ExecWB(ReportCommand::printPreview, ExecOption::doDefault);
            pending.preview = false;
          }
          if (!alive) return;
          if (pending.print) {
            surface_.WebBrowser1->ExecWB(ReportCommand::print, ExecOption::promptUser);
            pending.print = false;
          }
        } catch (...) {
          pending = {};
          throw;
        }
      },
      printingHint);
}

}  // namespace korvel::control
