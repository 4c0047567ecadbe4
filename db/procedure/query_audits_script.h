#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korvel::db {

/// The installation script of dbo.QueryAudits: drops the old procedure, creates it anew. Lines end with LF.
[[nodiscard]] std::string queryAuditsScript();

/// The batches of a script: what stands between lines that say GO and nothing else. Empty batches are left out.
[[nodiscard]] std::vector<std::string> scriptBatches(std::string_view script);

}  // namespace korvel::db
