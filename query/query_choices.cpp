#include "query/query_choices.h"

#include <algorithm>

namespace korvel::query {

const std::array<std::string_view, auditColumnCount>& pickableFields() noexcept {
  static const auto names = [] {
    std::array<std::string_view, auditColumnCount> all;
    std::transform(auditColumns().begin(), auditColumns().end(), all.begin(),
                   [](const AuditColumn& column) { return column.name; });
    return all;
  }();
  return names;
}

std::optional<std::string> pickedQuery(std::span<const bool> selected) {
  const auto& fields = pickableFields();
  std::string list;
  for (std::size_t i = 0; i < std::min(fields.size(), selected.size()); ++i)
    if (selected[i]) (list += fields.at(i)) += ',';
  if (list.empty()) return std::nullopt;
  list.pop_back();
  return "Select " + list + " from " + std::string(auditTable);
}

}  // namespace korvel::query
