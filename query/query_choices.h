#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "query/audit_record.h"

namespace korvel::query {

/// What the dialogs of custom queries hand to the control; one for all of its instances.
struct QueryChoices {
  /// The field picker's query; empty where it was closed without one.
  std::string pickedQuery;
  /// The folder whose query files are offered, with a separator at its end.
  std::string folder;
  /// The file that was chosen there, with its extension; empty where none was.
  std::string fileName;
};

/// The columns that the field picker offers: all of the audit trail's, in table order.
[[nodiscard]] const std::array<std::string_view, auditColumnCount>& pickableFields() noexcept;

/// The query for the fields that are selected, in the order in which they are offered: "Select DateTime,UserName from
/// Korvel_Audit_Trails". Nothing where none is; selections beyond the offered fields do not count.
[[nodiscard]] std::optional<std::string> pickedQuery(std::span<const bool> selected);

}  // namespace korvel::query
