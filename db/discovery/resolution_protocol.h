#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::db {

inline constexpr std::uint16_t resolutionPort = 1434;

/// Longest reply that a well-behaved responder sends.
inline constexpr std::size_t listReplyLimit = 65535;

/// A TCP port as digits write it, 1 to 65535; nothing for any other text.
[[nodiscard]] std::optional<std::uint16_t> parsePort(std::string_view text);

/// One instance as a resolution reply describes it.
struct InstanceInfo {
  std::string serverName;
  std::string instanceName;
  std::string version;
  std::optional<std::uint16_t> tcpPort;  ///< nothing where the instance does not listen on TCP

  /// The name to connect to: the host for a default instance, with its port where that is not the usual one, else
  /// host\instance.
  [[nodiscard]] std::string displayName() const;
};

/// Requests: every instance of every host (sent to a broadcast address), of one host, one named instance.
[[nodiscard]] std::string broadcastRequest();
[[nodiscard]] std::string hostRequest();
/// Throws Error for a name that no instance can have (empty, over 32 bytes, control characters).
[[nodiscard]] std::string instanceRequest(std::string_view instanceName);

/// The instances of a reply of at most `limit` bytes. Any host of the network can send one, so it is treated as hostile
/// input: malformed entries are left out, and nothing is read beyond the bytes received.
[[nodiscard]] std::vector<InstanceInfo> parseResolutionReply(std::span<const std::byte> reply, std::size_t limit);

}  // namespace korvel::db
