#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace korvel::db {

/// Rows of the audit trail under the conditions of QueryAudits, without its limit: what a select of the table gives a
/// login that may read it.
struct AuditSelection {
  enum class Dates {
    all,     ///< without any condition on dates
    within,  ///< the procedure's date condition, joined as the procedure joins it
    outside  ///< rows of the condition without dates that no call with dates gives: no date, or one beyond the bounds
  };

  /// Entry numbers, both bounds included. Rows without a number come before all others, so a first number leaves them
  /// out and a last one does not.
  struct Numbers {
    std::optional<std::int64_t> first;
    std::optional<std::int64_t> last;
  };
  enum class Columns {
    all,
    extent  ///< one row instead: the number of rows, the least and the greatest entry number
  };

  /// The category by the place of its parameter, counted from 0; nothing for the whole trail.
  std::optional<std::size_t> category{};
  Dates dates = Dates::within;
  /// The bounds, both included, as "2004-03-07 00:00:00.000"; not read for all dates.
  std::string from{};
  std::string to{};
  /// In the order of the entry numbers, where some are asked for; else in no order.
  std::optional<Numbers> numbers{};
  Columns columns = Columns::all;
};

/// The pieces of a select that every engine writes alike.
[[nodiscard]] std::string selectedColumns(const AuditSelection& selection);
/// The condition on entry numbers; empty where there is none.
[[nodiscard]] std::string numberCondition(const AuditSelection& selection);
/// Whether the rows come in the order of their numbers.
[[nodiscard]] bool isInNumberOrder(const AuditSelection& selection);

/// The select as a server reads it, whatever the date order of the login's language.
[[nodiscard]] std::string auditSelectionText(const AuditSelection& selection);

}  // namespace korvel::db
