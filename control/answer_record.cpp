#include "control/answer_record.h"

#include "control/library_state.h"
#include "query/audit_record.h"
#include "settings/string_table.h"

namespace korvel::control {

namespace {

void nameProgram(evidence::Manifest& record) {
  record.program = "KorvelAuditViewer";
  record.programVersion = KORVEL_VERSION;
}

}  // namespace

AnswerRecord::AnswerRecord()
    : begun_(
          evidence::begunRecord(libraryState().connection.CurrentServer, libraryState().connection.CurrentDatabase)) {
  nameProgram(begun_);
}

evidence::Manifest AnswerRecord::ofNoQuery() {
  evidence::Manifest record;
  nameProgram(record);
  return record;
}

query::Connector AnswerRecord::connector() const {
  return server_.remembering(platform().connect);
}

evidence::Manifest AnswerRecord::ended() const {
  evidence::Manifest record = begun_;
  endRecord(record, server_.identity());
  return record;
}

evidence::Manifest AnswerRecord::standard(const query::CategoryFlags& flags, const query::DateRange& range,
                                          const query::QueryReport& report, const query::ResultLists& lists) const {
  evidence::Manifest record = ended();
  recordQuestion(record, flags, range, false);
  recordAnswer(record, flags, report, lists);
  if (!report.fullResults.empty()) record.notes.emplace_back(settings::ownText(query::rowLimitText, {}));
  return record;
}

evidence::Manifest AnswerRecord::completed(const query::CategoryFlags& flags, const query::DateRange& range,
                                           const query::CompletionReport& report,
                                           const query::ResultLists& lists) const {
  evidence::Manifest record = ended();
  recordQuestion(record, flags, range, true);
  recordAnswer(record, report, lists);
  if (report.outcome == query::QueryOutcome::filled)
    record.notes = query::completionTexts(report, lists[0].wholeRowCount(), {},
                                          [](std::size_t count) { return std::to_string(count); });
  return record;
}

evidence::Manifest AnswerRecord::custom(const std::string& text, std::size_t rows) const {
  evidence::Manifest record = ended();
  record.question.text = text;
  record.lists = {{std::string(query::pageCaptions[query::customList]), rows}};
  return record;
}

}  // namespace korvel::control
