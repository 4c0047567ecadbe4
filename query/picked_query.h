#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "query/audit_record.h"

namespace korvel::query {

/// The columns that the field picker offers: all of the audit trail's, in table order.
[[nodiscard]] const std::array<std::string_view, auditColumnCount>& pickableFields() noexcept;

/// The query for the fields that are selected, in the order in which they are offered: "Select DateTime,UserName from
/// Korvel_Audit_Trails". Nothing where none is; selections beyond the offered fields do not count.
[[nodiscard]] std::optional<std::string> pickedQuery(std::span<const bool> selected);

}  // namespace korvel::query
