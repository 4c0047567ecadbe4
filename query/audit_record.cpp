#include "query/audit_record.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "query/date_range.h"

namespace korvel::query {

namespace {

constexpr std::array<AuditColumn, auditColumnCount> columns{{
    {"Nr", "Entry ID"},
    {"DateTime", "Date Time"},
    {"ProjectGUID", "Project GUID"},
    {"DatabaseName", "Database Name"},
    {"ApplicationName", "Application Name"},
    {"TableName", "Area"},
    {"FieldName", "Item"},
    {"EventType", "Event"},
    {"EventItem", "Item ID"},
    {"OldValue", "Old Value"},
    {"NewValue", "New Value"},
    {"PCName", "PC Name"},
    {"OSUser", "OS User"},
    {"AppUser", "Application User"},
    {"UserName", "User Name"},
    {"AuditType", "Audit Type"},
    {"Comments", "Comments"},
    {"T1", "Summer Time"},
}};

struct Route {
  std::string_view code;
  std::size_t list;
};

constexpr std::array<Route, 5> routes{{{"CS", 1}, {"RT", 2}, {"OA", 2}, {"DC", 3}, {"AU", 4}}};

constexpr std::string_view dateColumn = "DateTime";
constexpr std::size_t dayLength = std::string_view("2004-03-07").size();

}  // namespace

const std::array<AuditColumn, auditColumnCount>& auditColumns() noexcept {
  return columns;
}

std::optional<std::size_t> listOfAuditType(std::string_view code) noexcept {
  for (const Route& route : routes)
    if (route.code == code) return route.list;
  return std::nullopt;
}

std::optional<std::size_t> listOfStoredAuditType(std::string_view code) noexcept {
  return listOfAuditType(code.substr(0, code.find_last_not_of(' ') + 1));
}

void setUpAuditColumns(results::ResultList& list) {
  std::vector<results::ColumnHeader> headers;
  headers.reserve(columns.size());
  for (const AuditColumn& column : columns)
    headers.push_back({std::string(column.caption), results::standardColumnWidth, 0});
  list.setColumns(std::move(headers));
}

std::optional<results::ColumnIndex> auditColumnOf(const results::ResultList& list, std::string_view name) {
  const auto column =
      std::find_if(columns.begin(), columns.end(), [&](const AuditColumn& each) { return each.name == name; });
  if (column == columns.end()) return std::nullopt;
  const auto& headers = list.columns();
  const auto found = std::find_if(headers.begin(), headers.end(), [&](const results::ColumnHeader& header) {
    return equalsIgnoringAsciiCase(header.caption, column->name) ||
           equalsIgnoringAsciiCase(header.caption, column->caption);
  });
  if (found == headers.end()) return std::nullopt;
  return results::ColumnIndex{static_cast<std::size_t>(found - headers.begin())};
}

std::optional<std::chrono::year_month_day> newestDay(const results::ResultList& list) {
  if (list.isFiltered()) return newestDay(list.unfiltered());
  const auto column =
      std::find_if(columns.begin(), columns.end(), [](const AuditColumn& each) { return each.name == dateColumn; });
  std::optional<std::chrono::year_month_day> newest;
  std::string newestText;
  list.visitTexts({static_cast<std::size_t>(column - columns.begin())}, [&](std::string_view text) {
    const std::string_view written = text.substr(0, dayLength);
    // As texts such days stand in their order; most rows need no look at what they say.
    if (written <= newestText) return;
    const auto day = parseDay(written);
    if (!day) return;
    newest = day;
    newestText = written;
  });
  return newest;
}

}  // namespace korvel::query
