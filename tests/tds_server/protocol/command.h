#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test::tds {

/// One command as it arrived: a SQL batch or a remote procedure call.
struct Command {
  /// The exact text of a batch, or the statement passed to sp_executesql, sp_prepare or sp_prepexec. For a call by
  /// name: "EXEC name 'a', 'b'".
  std::string text;
  /// The procedure of a call ("sp_executesql", "QueryAudits"); empty for a batch.
  std::string procedure;
  /// All parameters of a call as text, in order; a null is "NULL".
  std::vector<std::string> parameters;
  /// The number of its connection, from 0.
  std::size_t connection = 0;

  [[nodiscard]] bool isCall() const { return !procedure.empty(); }
  /// Whether the call prepares a statement and expects its handle.
  [[nodiscard]] bool prepares() const { return procedure == "sp_prepare" || procedure == "sp_prepexec"; }
};

/// The texts of a connection's prepared statements by their handles.
using Prepared = std::map<std::int32_t, std::string>;

/// Skips the ALL_HEADERS block in front of a request.
void skipHeaders(ByteReader& reader);
/// Each throws ProtocolError for a message that it cannot read completely.
[[nodiscard]] Command parseBatch(std::string_view body);
[[nodiscard]] Command parseCall(std::string_view body, const Prepared& prepared);

}  // namespace korvel::test::tds
