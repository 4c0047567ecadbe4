#include "evidence/comparison_json.h"

#include <array>
#include <nlohmann/json.hpp>
#include <string_view>

#include "base/text.h"

namespace korvel::evidence {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<const char*, 5> kindNames = {"changed", "removed", "inserted", "renumbered", "exchanged"};
constexpr std::array<const char*, 3> oddityNames = {"gap", "repeated", "clockStep"};

/// Bytes that are no text stand as U+FFFD.
Json valueJson(const std::optional<std::string>& value) {
  return value ? Json(replaceInvalidUtf8(*value)) : Json(nullptr);
}

void add(Json& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = replaceInvalidUtf8(text);
}

Json snapshotJson(const ComparedSnapshot& compared) {
  const SnapshotFacts& facts = compared.snapshot;
  Json json = Json::object();
  add(json, "server", facts.source.server);
  add(json, "database", facts.source.database);
  add(json, "from", facts.source.from);
  add(json, "to", facts.source.to);
  add(json, "engine", facts.engine);
  add(json, "login", facts.login);
  add(json, "begun", facts.begun);
  add(json, "ended", facts.ended);
  add(json, "program", facts.program);
  json["rows"] = facts.rows;
  json["digest"] = hexText(facts.digest);
  json["findings"] = Json::array();
  for (const std::string& finding : compared.snapshotFindings) json["findings"].push_back(replaceInvalidUtf8(finding));
  return json;
}

Json trailJson(const ComparedSnapshot& compared) {
  Json json = Json::object();
  add(json, "server", compared.server);
  add(json, "database", compared.database);
  add(json, "engine", compared.engine);
  add(json, "login", compared.login);
  add(json, "compared", compared.begun);
  json["rows"] = compared.found.rowsNow;
  return json;
}

Json countsJson(const TrailComparison& found) {
  return {{"same", found.same},
          {"changed", found.changed},
          {"removed", found.removed},
          {"inserted", found.inserted},
          {"newer", found.newer},
          {"gaps", found.gaps},
          {"missingNumbers", found.missingNumbers},
          {"repeatedNumbers", found.repeatedNumbers},
          {"clockSteps", found.clockSteps}};
}

Json differenceJson(const RowDifference& difference) {
  Json json = {{"kind", kindNames.at(static_cast<std::size_t>(difference.kind))}};
  json["number"] = difference.number ? Json(*difference.number) : Json(nullptr);
  if (difference.otherNumber) json["otherNumber"] = *difference.otherNumber;
  const bool isWhole =
      difference.kind == RowDifference::Kind::removed || difference.kind == RowDifference::Kind::inserted;
  if (!isWhole) {
    json["values"] = Json::array();
    for (const ValueChange& value : difference.values)
      json["values"].push_back({{"column", replaceInvalidUtf8(value.column)},
                                {"before", valueJson(value.before)},
                                {"now", valueJson(value.now)}});
  }
  json["row"] = Json::object();
  for (const ColumnValue& value : difference.row)
    json["row"][replaceInvalidUtf8(value.column)] = valueJson(value.value);
  return json;
}

Json oddityJson(const TrailOddity& oddity) {
  Json json = {{"kind", oddityNames.at(static_cast<std::size_t>(oddity.kind))}, {"number", oddity.number}};
  if (oddity.kind == TrailOddity::Kind::gap) json["last"] = oddity.last;
  add(json, "before", oddity.before);
  add(json, "now", oddity.now);
  return json;
}

}  // namespace

std::string comparisonJson(const ComparedSnapshot& compared) {
  constexpr int indent = 2;
  Json json = {{"format", "korvel-audit-comparison"}, {"version", 1}, {"unchanged", compared.isUnchanged()}};
  json["snapshot"] = snapshotJson(compared);
  json["trail"] = trailJson(compared);
  json["counts"] = countsJson(compared.found);
  json["columnsGone"] = compared.found.columnsGone;
  json["columnsNew"] = compared.found.columnsNew;
  json["differences"] = Json::array();
  for (const RowDifference& difference : compared.found.differences)
    json["differences"].push_back(differenceJson(difference));
  json["oddities"] = Json::array();
  for (const TrailOddity& oddity : compared.found.oddities) json["oddities"].push_back(oddityJson(oddity));
  return json.dump(indent, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace korvel::evidence
