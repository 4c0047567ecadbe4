#include "control/snapshot_commands.h"

#include <QAction>
#include <QDir>
#include <chrono>
#include <filesystem>

#include "control/answer_record.h"
#include "control/answer_status.h"
#include "control/command_menus.h"
#include "control/database_selection.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/output_file.h"
#include "control/size_memory.h"
#include "control/texts.h"
#include "evidence/comparison_head.h"
#include "evidence/comparison_json.h"
#include "evidence/origin.h"
#include "korvel/AuditViewer.h"
#include "output/csv_writer.h"
#include "output/list_writers.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"

namespace korvel::control {
namespace {

void writePages(const evidence::ComparedSnapshot& compared, const output::ByteSink& sink) {
  const evidence::ComparisonLanguage language = comparisonLanguage();
  const evidence::Manifest program = AnswerRecord::ofNoQuery();
  const results::ResultList list = evidence::comparisonList(compared, evidence::ComparisonRows::compact, language);
  const auto caption = language.text("compare.caption");
  const output::ReportList reported{caption, &list};
  output::ListSource source({&reported, 1}, {});
  output::pages::PageTexts texts;
  texts.head = evidence::comparisonHead(
      compared, language,
      {program.program, program.programVersion, evidence::localTimeText(std::chrono::system_clock::now())});
  texts.pageOf = ownText("print.pageOf");
  texts.columnsOf = ownText("print.columnsOf");
  output::pages::writePdf(source, texts, sink);
}

/// The form follows from the name's ending; a table is for programs.
void writeComparison(const QString& file, const evidence::ComparedSnapshot& compared, const output::ByteSink& sink) {
  if (file.endsWith(QStringLiteral(".json"), Qt::CaseInsensitive))
    sink(evidence::comparisonJson(compared));
  else if (file.endsWith(QStringLiteral(".csv"), Qt::CaseInsensitive))
    output::writeCsv(evidence::comparisonList(compared, evidence::ComparisonRows::complete, comparisonLanguage()),
                     sink);
  else
    writePages(compared, sink);
}

}  // namespace

SnapshotCommands::SnapshotCommands(AuditViewer& viewer, const MessageBoxes& messages, AnswerStatus& answers,
                                   DatabaseSelection& selection)
    : viewer_(viewer), messages_(messages), answers_(answers), selection_(selection) {}

void SnapshotCommands::TakeSnapshot() {
  const db::ConnectionState& connection = libraryState().connection;
  const bool isTaking = snapshotForm_ && snapshotForm_->isTaking();
  if (connection.ConnectionString.empty() && !isTaking)
    return messages_.inform(messageTitle(), ownText("snapshot.noDatabase"));
  if (snapshotForm_.isNull()) {
    snapshotForm_ = new SnapshotForm(&viewer_);
    QObject::connect(
        snapshotForm_, &SnapshotForm::openRequested, &viewer_, [this](const QString& folder, const QString& database) {
          messages_.trapped("OpenSnapshot",
                            [&] { selection_.OpenDatabase(folder.toStdString(), database.toStdString()); });
        });
  }
  const evidence::Manifest program = AnswerRecord::ofNoQuery();
  evidence::SnapshotOrder order;
  order.source = {connection.CurrentServer, connection.CurrentDatabase, {}, {}};
  order.connectionString = connection.ConnectionString;
  order.connect = platform().connect;
  order.program = program.program;
  order.programVersion = program.programVersion;
  snapshotForm_->offer(std::move(order), libraryState().dateRange);
}

void SnapshotCommands::CompareWithSnapshot() {
  if (comparisonForm_.isNull()) {
    comparisonForm_ = new ComparisonForm(&viewer_);
    QObject::connect(comparisonForm_, &ComparisonForm::compared, &viewer_,
                     [this](const ComparisonForm::Compared& compared) {
                       messages_.trapped("CompareWithSnapshot", [&] { show(compared); });
                     });
  }
  const db::ConnectionState& connection = libraryState().connection;
  comparisonForm_->offer({connection.CurrentServer, connection.CurrentDatabase, connection.ConnectionString},
                         platform().connect);
}

void SnapshotCommands::show(const ComparisonForm::Compared& compared) {
  if (comparisonView_.isNull()) {
    comparisonView_ = new ComparisonView(&viewer_);
    rememberSize(*comparisonView_);
    QObject::connect(comparisonView_, &ComparisonView::saveRequested, &viewer_,
                     [this] { messages_.trapped("SaveComparison", [this] { saveReport(); }); });
  }
  comparisonView_->showComparison(compared);
}

void SnapshotCommands::saveReport() {
  const std::shared_ptr<ControlServices> services = platform().services;
  const QPointer<AuditViewer> alive(&viewer_);
  const ComparisonForm::Compared compared = comparisonView_->comparison();
  const auto file = services->chooseFile(comparisonView_, ownText("compare.saveTitle"), ownText("compare.reportKinds"),
                                         ui::ChosenFile::written);
  if (!alive || !file) return;
  {
    const ui::BusyPointer busy(*services);
    OutputFile target(toPath(*file));
    writeComparison(*file, *compared, [&target](std::string_view bytes) { target.write(bytes); });
    target.commit();
  }
  answers_.showNotice([name = QDir::toNativeSeparators(*file)] { return ownText("compare.saved").arg(name); });
}

void addSnapshotEntries(CommandPopup& menu, AuditViewer& viewer) {
  QObject::connect(menu.addOwnEntry(ownText("snapshot.command")), &QAction::triggered, &viewer,
                   &AuditViewer::TakeSnapshot);
  QObject::connect(menu.addOwnEntry(ownText("compare.command")), &QAction::triggered, &viewer,
                   &AuditViewer::CompareWithSnapshot);
}

}  // namespace korvel::control
