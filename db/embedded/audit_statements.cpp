#include "db/embedded/audit_statements.h"

#include <sqlite3.h>

#include <algorithm>
#include <bitset>
#include <optional>

#include "base/text.h"
#include "db/embedded/server_date.h"

namespace korvel::db {
namespace {

constexpr std::string_view table = "Korvel_Audit_Trails";
constexpr std::size_t flagLength = 10;  // varchar(10): the server drops what is longer
constexpr std::size_t dateLength = 50;

enum ParameterIndex : std::size_t { dateFlag = categoryCount, fromDate, toDate };

/// Set only when it equals "True" as the server compares: whatever the case, trailing blanks ignored.
bool isSet(std::string_view flag) {
  flag = flag.substr(0, flagLength);
  const auto last = flag.find_last_not_of(' ');
  return equalsIgnoringAsciiCase(flag.substr(0, last == std::string_view::npos ? 0 : last + 1), "True");
}

/// `column` at character `position` (from 1) reads as `text`, whatever its case. Written as an equality rather than
/// LIKE, because only an equality lets an index give its rows in table order.
std::string readsAs(std::string_view column, std::size_t position, std::string_view text) {
  return "substr(" + std::string(column) + ", " + std::to_string(position) + ", " + std::to_string(text.size()) +
         ") = '" + std::string(text) + "' COLLATE NOCASE";
}

/// The beginning, piece by piece between the wildcards.
std::string beginsWithText(const Term& term) {
  std::string text;
  for (std::size_t start = 0; start < term.value.size();) {
    const std::size_t end = std::min(term.value.find('_', start), term.value.size());
    if (end > start) {
      if (!text.empty()) text += " AND ";
      text += readsAs(term.column, start + 1, term.value.substr(start, end - start));
    }
    start = end + 1;
  }
  return text;
}

std::string termText(const Term& term) {
  if (term.match == Match::beginsWith) return beginsWithText(term);
  return "rtrim(" + std::string(term.column) + ") = '" + std::string(term.value) + "' COLLATE NOCASE";
}

std::string conjunctionText(Conjunction conjunction) {
  std::string text;
  for (const Term& term : conjunction) {
    if (!text.empty()) text += " AND ";
    text += termText(term);
  }
  return text;
}

/// The date condition. The outer bounds are what an index on DateTime serves: "~" sorts behind everything that can
/// follow a day. Whether a text between them is a time at all, and one of the first and the last day within the range,
/// its characters tell one by one.
std::string dateText(const std::string& from, const std::string& to) {
  constexpr std::size_t dayLength = 10;
  return "DateTime >= '" + from.substr(0, dayLength) + "' AND DateTime < '" + to.substr(0, dayLength) + "~' AND " +
         std::string(storedTimeFunction) + "(DateTime, '" + from + "', '" + to + "')";
}

std::string selectionOfAll(std::string_view columns, const std::string& condition, std::string_view tableOrder) {
  std::string text = "SELECT " + std::string(columns) + " FROM " + std::string(table);
  if (!condition.empty()) text += " WHERE " + condition;
  if (!tableOrder.empty()) text.append(" ORDER BY ").append(tableOrder);
  return text;
}

std::string selection(std::string_view columns, const std::string& condition, std::string_view tableOrder,
                      std::size_t rowLimit) {
  return selectionOfAll(columns, condition, tableOrder) + " LIMIT " + std::to_string(rowLimit);
}

/// The rows of several alternatives. Where there are row numbers, each alternative gives its own first rows through its
/// own index: the first rows of all are among them.
std::string selectionOfAny(const std::vector<std::string>& alternatives, std::string_view tableOrder,
                           std::size_t rowLimit) {
  if (alternatives.size() == 1) return selection("*", alternatives.front(), tableOrder, rowLimit);
  const bool byRowId = tableOrder == rowNumberOrder;
  std::string condition;
  for (const std::string& alternative : alternatives) {
    if (!condition.empty()) condition += byRowId ? " UNION ALL " : " OR ";
    condition +=
        byRowId ? "SELECT * FROM (" + selection("_rowid_", alternative, tableOrder, rowLimit) + ")" : alternative;
  }
  if (byRowId) condition = "_rowid_ IN (" + condition + ")";
  return selection("*", condition, tableOrder, rowLimit);
}

std::vector<std::string> alternativesOf(const CategoryCondition& category, const std::string& dates) {
  std::vector<std::string> alternatives;
  for (const Conjunction conjunction : category.alternatives) alternatives.push_back(conjunctionText(conjunction));
  // Deliberately the last one alone: "and" binds before "or".
  if (!dates.empty()) alternatives.back() += " AND " + dates;
  return alternatives;
}

std::string categoryStatement(const CategoryCondition& category, const std::string& dates, std::string_view tableOrder,
                              std::size_t rowLimit) {
  return selectionOfAny(alternativesOf(category, dates), tableOrder, rowLimit);
}

std::optional<std::string_view> textOf(sqlite3_value* value) noexcept {
  if (sqlite3_value_type(value) != SQLITE_TEXT) return std::nullopt;
  const unsigned char* const text = sqlite3_value_text(value);
  if (text == nullptr) return std::nullopt;
  return std::string_view(reinterpret_cast<const char*>(text), static_cast<std::size_t>(sqlite3_value_bytes(value)));
}

bool isTimeWithin(sqlite3_value** values) noexcept {
  const auto stored = textOf(values[0]);
  const auto from = textOf(values[1]);
  const auto to = textOf(values[2]);
  if (!stored || !from || !to) return false;
  const auto time = canonicalStoredTime(*stored);
  if (!time) return false;
  const std::string_view moment(time->data(), time->size());
  return *from <= moment && moment <= *to;
}

}  // namespace

std::vector<std::string> auditStatements(const QueryAuditsCall& call, std::string_view tableOrder,
                                         std::size_t rowLimit) {
  std::bitset<categoryCount> flags;
  for (std::size_t index = 0; index < categoryCount; ++index) flags[index] = isSet(call.values[index]);
  if (flags.none()) return {};

  std::string dates;
  if (isSet(call.values[dateFlag]))
    dates = dateText(canonicalServerDate(std::string_view(call.values[fromDate]).substr(0, dateLength), "FromDate"),
                     canonicalServerDate(std::string_view(call.values[toDate]).substr(0, dateLength), "ToDate"));

  if (flags.all()) return {selection("*", dates, tableOrder, rowLimit)};
  std::vector<std::string> statements;
  for (std::size_t index = 0; index < categoryCount; ++index)
    if (flags[index]) statements.push_back(categoryStatement(categoryConditions()[index], dates, tableOrder, rowLimit));
  return statements;
}

std::string auditSelectionStatement(const AuditSelection& selection, std::string_view tableOrder) {
  using Dates = AuditSelection::Dates;
  const std::string dates = selection.dates == Dates::all ? std::string() : dateText(selection.from, selection.to);
  const std::string within = selection.dates == Dates::within ? dates : std::string();
  std::string condition = within;
  if (selection.category) {
    condition.clear();
    for (const std::string& each : alternativesOf(categoryConditions().at(*selection.category), within))
      condition.append(condition.empty() ? "(" : " OR ").append(each);
    condition += ")";
  }
  // A row without a date lies outside of every range.
  if (selection.dates == Dates::outside)
    condition.append(condition.empty() ? "" : " AND ").append("NOT coalesce(" + dates + ", 0)");
  if (const std::string numbers = numberCondition(selection); !numbers.empty())
    condition.append(condition.empty() ? "" : " AND ").append(numbers);
  std::string order = selection.columns == AuditSelection::Columns::all ? std::string(tableOrder) : std::string();
  if (isInNumberOrder(selection)) order = order.empty() ? "Nr" : "Nr, " + order;
  return selectionOfAll(selectedColumns(selection), condition, order);
}

int addStoredTimeFunction(sqlite3* handle) noexcept {
  return sqlite3_create_function_v2(
      handle, storedTimeFunction.data(), 3, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY, nullptr,
      [](sqlite3_context* context, int, sqlite3_value** values) {
        sqlite3_result_int(context, isTimeWithin(values) ? 1 : 0);
      },
      nullptr, nullptr, nullptr);
}

std::string auditTableSchema() {
  // DATETIME and BIT are for readers of the declared types; SQLite stores the texts and numbers as they are given.
  return R"sql(CREATE TABLE Korvel_Audit_Trails (
  Nr INTEGER PRIMARY KEY,
  DateTime DATETIME,
  ProjectGUID TEXT COLLATE NOCASE,
  DatabaseName TEXT COLLATE NOCASE,
  ApplicationName TEXT COLLATE NOCASE,
  TableName TEXT COLLATE NOCASE,
  FieldName TEXT COLLATE NOCASE,
  EventType TEXT COLLATE NOCASE,
  EventItem TEXT COLLATE NOCASE,
  OldValue TEXT COLLATE NOCASE,
  NewValue TEXT COLLATE NOCASE,
  PCName TEXT COLLATE NOCASE,
  OSUser TEXT COLLATE NOCASE,
  AppUser TEXT COLLATE NOCASE,
  UserName TEXT COLLATE NOCASE,
  AuditType TEXT COLLATE NOCASE,
  Comments TEXT COLLATE NOCASE,
  T1 BIT
);
)sql";
}

std::string auditIndexes() {
  // Equality first, then Nr: the rows of a category come out in table order and stop at the row limit, nothing is
  // sorted. DateTime last: a date range is tested on the index entry, without a look at the row.
  return R"sql(CREATE INDEX Korvel_Audit_Trails_DateTime ON Korvel_Audit_Trails (DateTime);
CREATE INDEX Korvel_Audit_Trails_Type ON Korvel_Audit_Trails (
  rtrim(AuditType) COLLATE NOCASE, Nr, DateTime);
CREATE INDEX Korvel_Audit_Trails_Event ON Korvel_Audit_Trails (
  rtrim(AuditType) COLLATE NOCASE, rtrim(EventType) COLLATE NOCASE, Nr, DateTime);
CREATE INDEX Korvel_Audit_Trails_Area2 ON Korvel_Audit_Trails (
  rtrim(AuditType) COLLATE NOCASE, substr(TableName, 1, 2) COLLATE NOCASE, Nr, DateTime);
CREATE INDEX Korvel_Audit_Trails_Area3 ON Korvel_Audit_Trails (
  substr(TableName, 1, 3) COLLATE NOCASE, Nr, DateTime);
)sql";
}

}  // namespace korvel::db
