#pragma once

#include <cstddef>
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

  /// The category by the place of its parameter, counted from 0; nothing for the whole trail.
  std::optional<std::size_t> category;
  Dates dates = Dates::within;
  /// The bounds, both included, as "2004-03-07 00:00:00.000"; not read for all dates.
  std::string from;
  std::string to;
};

/// The select as a server reads it, whatever the date order of the login's language.
[[nodiscard]] std::string auditSelectionText(const AuditSelection& selection);

}  // namespace korvel::db
