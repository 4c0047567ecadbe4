#include "db/procedure/query_audits_script.h"

#include <utility>

#include "base/text.h"
#include "db/procedure/audit_conditions.h"

namespace korvel::db {
namespace {

constexpr std::string_view dateCondition = "DateTime >=@FromDate and DateTime <= @ToDate";

std::string selection(std::string_view indent, std::string_view condition) {
  std::string text(indent);
  text += "SELECT TOP " + std::to_string(rowLimitPerResult) + " * FROM Korvel_Audit_Trails";
  if (!condition.empty()) {
    text += " WHERE ";
    text += condition;
  }
  return text + "\n";
}

std::string flagTest(std::string_view parameter) {
  return "@" + std::string(parameter) + " = 'True'";
}

std::string parameterList() {
  std::string text;
  for (const CategoryCondition& category : categoryConditions())
    text += "    @" + std::string(category.parameter) + " varchar(10),\n";
  return text +
         "    @bDate varchar(10),\n"
         "    @FromDate varchar(50),\n"
         "    @ToDate varchar(50)\n";
}

std::string allCategories() {
  std::string text = "    -- Every category: the whole trail, entries of the audit system itself included.\n";
  std::string_view joint = "    IF ";
  for (const CategoryCondition& category : categoryConditions()) {
    text += joint;
    text += flagTest(category.parameter);
    joint = "\n        AND ";
  }
  return text +
         "\n    BEGIN\n"
         "        IF @bDate = 'True'\n" +
         selection("            ", dateCondition) + "        ELSE\n" + selection("            ", {}) +
         "        RETURN\n"
         "    END\n\n";
}

std::string eachCategory(bool withDates) {
  std::string text;
  for (const CategoryCondition& category : categoryConditions()) {
    if (withDates && category.alternatives.size() > 1)
      text += "        -- No brackets: the dates limit the last alternative only. This is the required result.\n";
    text += "        IF " + flagTest(category.parameter) + "\n" +
            selection("            ", conditionText(category, withDates ? dateCondition : std::string_view{}));
  }
  return text;
}

bool separatesBatches(std::string_view line) {
  return equalsIgnoringAsciiCase(trimWhitespace(line), "GO");
}

void addUnlessEmpty(std::vector<std::string>& batches, std::string& batch) {
  if (batch.find_first_not_of(" \t\r\n") != std::string::npos) batches.push_back(std::move(batch));
  batch.clear();
}

}  // namespace

std::string queryAuditsScript() {
  return "-- Installs the standard query of the Korvel audit viewer. Run it in the audit database.\n"
         "-- This file is generated from the viewer's own table of conditions; changes made here are lost.\n"
         "--\n"
         "-- Running it again replaces the procedure and drops every permission that was granted on it. This line "
         "brings\n"
         "-- them back, once for each login or group that runs standard queries; no right on the table is needed:\n"
         "--     GRANT EXECUTE ON dbo.QueryAudits TO [DOMAIN\\group]\n"
         "\n"
         "IF EXISTS (\n"
         "    SELECT * FROM dbo.sysobjects\n"
         "    WHERE id = OBJECT_ID(N'dbo.QueryAudits') AND OBJECTPROPERTY(id, N'IsProcedure') = 1\n"
         ")\n"
         "    DROP PROCEDURE dbo.QueryAudits\n"
         "GO\n"
         "\n"
         "SET ANSI_NULLS ON\n"
         "GO\n"
         "SET QUOTED_IDENTIFIER ON\n"
         "GO\n"
         "\n"
         "CREATE PROCEDURE dbo.QueryAudits\n" +
         parameterList() +
         "AS\n"
         "BEGIN\n"
         "    SET NOCOUNT ON\n"
         "    -- The two dates are written year-month-day, whatever the language of the login.\n"
         "    SET DATEFORMAT ymd\n"
         "\n" +
         allCategories() +
         "    -- Otherwise one result set for each category asked for; a row may be in several of them.\n"
         "    IF @bDate = 'True'\n"
         "    BEGIN\n" +
         eachCategory(true) +
         "    END\n"
         "    ELSE\n"
         "    BEGIN\n" +
         eachCategory(false) +
         "    END\n"
         "END\n"
         "GO\n";
}

std::vector<std::string> scriptBatches(std::string_view script) {
  std::vector<std::string> batches;
  std::string batch;
  while (!script.empty()) {
    const auto end = script.find('\n');
    const std::string_view line = script.substr(0, end == std::string_view::npos ? end : end + 1);
    script.remove_prefix(line.size());
    if (separatesBatches(line.substr(0, line.find('\n'))))
      addUnlessEmpty(batches, batch);
    else
      batch += line;
  }
  addUnlessEmpty(batches, batch);
  return batches;
}

}  // namespace korvel::db
