#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/error.h"
#include "db/odbc/server_connector.h"
#include "settings/string_table.h"

namespace korvel::db {

enum class CheckOutcome { ok, failed, notReached };

/// One step on the way from a server's name to the rows of its audit trail.
struct CheckStep {
  /// What was checked: "name", "port", "protocol", "encryption", "ticket", "login", "databases" (where none was named),
  /// "database", "table", "procedure", "rows". Sentences about it stand in the table of our own texts under "check."
  /// and this.
  std::string key;
  CheckOutcome outcome = CheckOutcome::notReached;
  std::string detailKey;                     ///< what was found, where the step went well
  std::vector<std::string> detailArguments;  ///< what fills its places
  std::optional<Error> failure;              ///< the reason and the remedy, where it did not
};

/// "Port open".
[[nodiscard]] std::string checkTitle(const CheckStep& step, const settings::LanguageOffset& offset);
/// What was found, or why it failed and what to do (number, colon, blank, sentence), or that the step was not reached.
[[nodiscard]] std::string checkDetail(const CheckStep& step, const settings::LanguageOffset& offset);

/// Goes the whole way and says how far it came: all steps in order, those behind the first failure not reached; only a
/// denied table leaves the way to the procedure open. Without a database it takes one that is listed and named like an
/// audit database; where there is none, the way ends there. The embedded engine has fewer steps. Nothing is written
/// anywhere.
[[nodiscard]] std::vector<CheckStep> checkServer(const std::string& server, const std::string& database,
                                                 const odbc::ServerAccess& access);

}  // namespace korvel::db
