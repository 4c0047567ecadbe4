#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::test::tds {

/// One command as it arrived: the text of a batch, or a call.
struct Command {
  /// The exact text of a batch, or the text handed to sp_executesql and its kin. For a call by name "EXEC name 'a',
  /// 'b'".
  std::string text;
  /// The procedure of a call ("sp_executesql", "QueryAudits"); empty for a batch.
  std::string procedure;
  /// All parameters of a call as text, in order; a null is "NULL".
  std::vector<std::string> parameters;
  /// Which connection of the peer it came on, from 0.
  std::size_t connection = 0;

  [[nodiscard]] bool isCall() const { return !procedure.empty(); }
  /// Whether the call prepares a statement and wants its handle.
  [[nodiscard]] bool prepares() const { return procedure == "sp_prepare" || procedure == "sp_prepexec"; }
};

/// The texts of prepared statements by their handles, one collection a connection.
using Prepared = std::map<std::int32_t, std::string>;

/// Each throws ProtocolError for a message that it cannot read to its end.
[[nodiscard]] Command parseBatch(std::string_view body);
[[nodiscard]] Command parseCall(std::string_view body, const Prepared& prepared);

}  // namespace korvel::test::tds
