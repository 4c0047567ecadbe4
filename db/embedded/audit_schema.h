#pragma once

#include <string>

namespace korvel::db {

/// The statement that creates the audit trail table of an embedded database: the eighteen columns in table order. Texts
/// compare case-insensitively, as they do on the server. Ends with a semicolon.
[[nodiscard]] std::string auditTableSchema();

/// The statements that create the indexes which the standard query's statements use, each ended by a semicolon. Run
/// them after the rows are in. They are a matter of speed alone: every answer is the same without them.
[[nodiscard]] std::string auditIndexes();

}  // namespace korvel::db
