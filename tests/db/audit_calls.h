#pragma once

#include <bitset>
#include <string>
#include <string_view>

#include "db/procedure/audit_conditions.h"

namespace korvel::test {

using Flags = std::bitset<db::categoryCount>;

/// The call text of QueryAudits, flags in parameter order from bit 0.
inline std::string auditCall(const Flags& flags, std::string_view dateFlag = "False", std::string_view from = "False",
                             std::string_view to = "False") {
  std::string text = "QueryAudits '";
  for (std::size_t index = 0; index < flags.size(); ++index) text += flags[index] ? "True','" : "False','";
  return text.append(dateFlag).append("','").append(from).append("','").append(to).append("'");
}

/// The flags with only the parameter of this name set.
inline Flags onlyFlag(std::string_view parameter) {
  Flags flags;
  for (std::size_t index = 0; index < flags.size(); ++index)
    flags[index] = db::categoryConditions()[index].parameter == parameter;
  return flags;
}

inline Flags allFlags() {
  return Flags().set();
}

}  // namespace korvel::test
