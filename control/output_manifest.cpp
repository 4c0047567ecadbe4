#include "control/output_manifest.h"

#include <utility>

#include "control/answer_record.h"
#include "control/answer_status.h"
#include "evidence/origin.h"
#include "evidence/recorded_rows.h"
#include "query/audit_record.h"
#include "query/standard_query.h"
#include "settings/string_table.h"

namespace korvel::control {

namespace {

std::string englishText(std::string_view key, const std::vector<std::string>& values = {}) {
  return settings::filled(settings::ownText(key, {}), values);
}

}  // namespace

evidence::Manifest outputManifest(const AnswerStatus& answers, std::size_t page, const results::ResultList& list,
                                  const TakenRows& taken) {
  const evidence::Manifest* const record = answers.record(page);
  evidence::Manifest manifest = record != nullptr ? *record : AnswerRecord::ofNoQuery();
  if (page != query::customList) manifest.question.list = query::pageCaptions.at(page);
  if (record != nullptr && answers.showsAlarmsOfAllDates(page))
    manifest.notes.push_back(englishText(query::alarmsOfAllDatesText));
  if (taken.which == TakenRows::Which::shown) {
    manifest.question.filters = taken.filters;
    manifest.notes.push_back(
        englishText("filter.remarkShown", {std::to_string(taken.shownCount), std::to_string(taken.wholeCount)}));
    if (taken.isUndecided) manifest.notes.push_back(englishText("filter.undecided"));
  }
  if (taken.which == TakenRows::Which::wholeOfFiltered)
    manifest.notes.push_back(englishText("filter.remarkWhole", {std::to_string(taken.wholeCount)}));
  if (list.isSorted())
    manifest.question.sortedBy = list.columns()[list.sortKey().value].caption +
                                 (list.sortOrder() == results::SortOrder::descending ? ", descending" : "");
  return manifest;
}

void completeManifest(evidence::Manifest& manifest, std::string format, const results::ResultList& list,
                      std::size_t replacedCharacters) {
  manifest.user = evidence::systemUser();
  manifest.computer = evidence::computerName();
  manifest.output.format = std::move(format);
  if (replacedCharacters > 0)
    manifest.notes.push_back(englishText("export.replaced", {std::to_string(replacedCharacters)}));
  manifest.rows = evidence::recordedRows(list);
}

}  // namespace korvel::control
