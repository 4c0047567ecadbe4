#pragma once

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/db/audit_database.h"

namespace korvel::test {

using Text = std::optional<std::string>;

// ---- The meaning of QueryAudits, implemented again without the table of conditions and without SQL. ----

inline char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

inline std::string trimmedRight(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

inline bool is(const Text& value, const std::string& expected) {
  if (!value) return false;
  const std::string text = trimmedRight(*value);
  return std::equal(text.begin(), text.end(), expected.begin(), expected.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

/// `pattern` is a prefix; "_" in it is any one character, of any number of bytes.
inline bool like(const Text& value, const std::string& pattern) {
  if (!value) return false;
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  std::size_t at = 0;
  for (const char wanted : pattern) {
    if (at >= value->size()) return false;
    if (wanted != '_' && lower(wanted) != lower((*value)[at])) return false;
    ++at;
    while (wanted == '_' && at < value->size() && isContinuation((*value)[at])) ++at;
  }
  return true;
}

struct Range {
  std::string from;
  std::string to;
  bool contains(const AuditEntry& entry) const {
    if (!entry.dateTime) return false;
    std::string moment = *entry.dateTime;
    std::replace(moment.begin(), moment.end(), 'T', ' ');
    const std::string midnight = "0000-00-00 00:00:00.000";
    if (moment.size() < midnight.size()) moment += midnight.substr(moment.size());
    return moment >= from && moment <= to;
  }
};

inline bool belongs(const AuditEntry& entry, std::size_t category, const Range* range) {
  const bool inTime = range == nullptr || range->contains(entry);
  switch (category) {
    case 0:
      return is(entry.auditType, "CS") && inTime;
    case 1:
      return (is(entry.auditType, "CS") && like(entry.tableName, "vel_Alg")) ||
             (is(entry.auditType, "CS") && like(entry.tableName, "MS") && inTime);
    case 2:
      return like(entry.tableName, "PDE") && inTime;
    case 3:
      return is(entry.auditType, "CS") && like(entry.tableName, "UA") && inTime;
    case 4:
      return is(entry.auditType, "OA") && inTime;
    case 5:
      return is(entry.auditType, "RT") && like(entry.tableName, "UA") && inTime;
    case 6:
      return is(entry.auditType, "DC") && is(entry.eventType, "CHECK_IN") && inTime;
    case 7:
      return is(entry.auditType, "DC") && is(entry.eventType, "CHECK_OUT") && inTime;
    case 8:
      return is(entry.auditType, "DC") && is(entry.eventType, "ROLLBACK") && inTime;
    default:
      return is(entry.auditType, "DC") && is(entry.eventType, "RESTORE") && inTime;
  }
}

// ---- Rows with the cases in which a comparison can be wrong. ----

inline std::vector<AuditEntry> nastyRows(int count) {
  const std::vector<Text> types = {"CS", "cs", "Cs ", "CS   ", " CS", "CSX", "C", "RT", "rt ",        "OA",
                                   "oA", "DC", "dc",  "Dc  ",  "AU",  "XX",  "",  " ",  std::nullopt, "CS\t"};
  const std::vector<Text> tables = {
      "vel_AlgText", "VEL_ALGText", "velXAlgText", "velüAlgText", "vel_Al", "vel_Alg", "xvel_Alg",   "vel__Alg", "MSRT",
      "ms",          "mS ",         "M",           " MS",         "PDETag", "pde",     "PD",         "xPDE",     "PDE%",
      "UATable",     "ua",          "U",           "U_A",         "uA  ",   "",        std::nullopt, "Picture"};
  const std::vector<Text> events = {"CHECK_IN",  "check_in ", "CHECKXIN",    "CHECK_IN2", "CHECK_OUT",
                                    "Check_Out", "ROLLBACK",  "rollback   ", "RESTORE",   "restore",
                                    "restored",  "",          std::nullopt};
  const std::vector<Text> times = {"2004-03-06 23:59:59.999",
                                   "2004-03-07 00:00:00.000",
                                   "2004-03-07 00:00:00",
                                   "2004-03-07",
                                   "2004-03-07T00:00:00",
                                   "2004-03-08 12:00:00.000",
                                   "2004-03-09 23:59:59.999",
                                   "2004-03-09 23:59:59",
                                   "2004-03-10 00:00:00.000",
                                   "2004-03-10",
                                   std::nullopt,
                                   "1999-12-31 23:59:59.999"};
  std::mt19937 random(20040307);  // NOLINT: the same rows in every run
  const auto any = [&](const std::vector<Text>& values) { return values[random() % values.size()]; };
  std::vector<AuditEntry> entries;
  for (int number = 1; number <= count; ++number)
    entries.push_back({number * 3, any(times), any(tables), any(events), any(types)});
  return entries;
}

}  // namespace korvel::test
