#include "db/procedure/audit_selection.h"

#include <string_view>

#include "db/procedure/audit_conditions.h"

namespace korvel::db {

namespace {

/// A date that means the same under every date order of a login.
std::string dateLiteral(std::string date) {
  date.at(date.find(' ')) = 'T';
  return "'" + date + "'";
}

void addCondition(std::string& condition, std::string_view more) {
  if (more.empty()) return;
  condition.append(condition.empty() ? "" : " and ").append(more);
}

}  // namespace

std::string selectedColumns(const AuditSelection& selection) {
  return selection.columns == AuditSelection::Columns::all ? "*" : "count(*), min(Nr), max(Nr)";
}

std::string numberCondition(const AuditSelection& selection) {
  if (!selection.numbers) return {};
  const auto& [first, last] = *selection.numbers;
  std::string condition;
  if (first) addCondition(condition, "Nr >= " + std::to_string(*first));
  if (last) addCondition(condition, "(Nr is null or Nr <= " + std::to_string(*last) + ")");
  return condition;
}

bool isInNumberOrder(const AuditSelection& selection) {
  return selection.numbers && selection.columns == AuditSelection::Columns::all;
}

std::string auditSelectionText(const AuditSelection& selection) {
  using Dates = AuditSelection::Dates;
  std::string within;
  std::string outside;
  if (selection.dates != Dates::all) {
    const std::string from = dateLiteral(selection.from);
    const std::string to = dateLiteral(selection.to);
    if (selection.dates == Dates::within)
      within = "DateTime >= " + from + " and DateTime <= " + to;
    else
      outside = "(DateTime is null or DateTime < " + from + " or DateTime > " + to + ")";
  }
  const std::string numbers = numberCondition(selection);
  std::string condition = within;
  if (selection.category) {
    condition = conditionText(categoryConditions().at(*selection.category), within);
    if (!outside.empty() || !numbers.empty()) condition = "(" + condition + ")";
  }
  addCondition(condition, outside);
  addCondition(condition, numbers);
  std::string text = "SELECT " + selectedColumns(selection) + " FROM Korvel_Audit_Trails";
  if (!condition.empty()) text += " WHERE " + condition;
  if (isInNumberOrder(selection)) text += " ORDER BY Nr";
  return text;
}

}  // namespace korvel::db
