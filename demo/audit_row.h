#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace korvel::demo {

/// One row of the audit trail table, in the order of its columns. No value is a null in the table.
struct AuditRow {
  using Text = std::optional<std::string_view>;

  std::uint64_t number = 0;
  std::string_view dateTime;
  Text projectGuid;
  Text databaseName;
  Text applicationName;
  Text tableName;
  Text fieldName;
  Text eventType;
  Text eventItem;
  Text oldValue;
  Text newValue;
  Text pcName;
  Text osUser;
  Text appUser;
  Text userName;
  Text auditType;
  Text comments;
  bool summerTime = false;
};

}  // namespace korvel::demo
