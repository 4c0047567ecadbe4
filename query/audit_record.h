#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>

#include "results/result_list.h"

namespace korvel::query {

inline constexpr std::string_view auditTable = "Korvel_Audit_Trails";

struct AuditColumn {
  std::string_view name;
  std::string_view caption;  // fixed English, not translated
};

inline constexpr std::size_t auditColumnCount = 18;
/// The columns of the audit trail in table order, which is the order of the list columns.
[[nodiscard]] const std::array<AuditColumn, auditColumnCount>& auditColumns() noexcept;

inline constexpr std::size_t standardListCount = 5;
inline constexpr std::size_t listCount = 6;
inline constexpr std::size_t customList = 5;

/// Fixed English captions of the six result pages.
inline constexpr std::array<std::string_view, listCount> pageCaptions = {"ALL Audits",       "Configuration", "Runtime",
                                                                         "Document Control", "KorvelAudit",   "Custom"};

/// The list 1..4 that receives rows of an audit type besides list 0; nothing for an empty or unknown code.
[[nodiscard]] std::optional<std::size_t> listOfAuditType(std::string_view code) noexcept;
/// The same for a code as a row holds it: a fixed-width column pads its codes with trailing blanks, and the server's
/// comparisons do not see them; everything else about a code counts, its case too.
[[nodiscard]] std::optional<std::size_t> listOfStoredAuditType(std::string_view code) noexcept;

/// Clears the headers of the list and adds the eighteen columns, each 1440 twips wide; rows are not touched.
void setUpAuditColumns(results::ResultList& list);

/// The column of a list that is called, by its caption or its name, like this column of the audit trail; nothing where
/// there is none, as in the answer to another query.
[[nodiscard]] std::optional<results::ColumnIndex> auditColumnOf(const results::ResultList& list, std::string_view name);

/// The last day that a row of an audit trail's list lies on, by its column "DateTime"; nothing where no row tells one.
/// Rows that a filter hides count.
/// Throws Error when memory runs out.
[[nodiscard]] std::optional<std::chrono::year_month_day> newestDay(const results::ResultList& list);

}  // namespace korvel::query
