#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "db/discovery/resolution_protocol.h"
#include "db/net/deadline.h"
#include "db/net/socket.h"

namespace korvel::db {

/// How long the servers of the network are listened for.
inline constexpr std::chrono::milliseconds broadcastTime{2500};
/// How long one host may take to name its instances, and names of hosts may take to be looked up.
inline constexpr std::chrono::milliseconds hostReplyTime{1000};
/// After how long a host that says nothing is asked again.
inline constexpr std::chrono::milliseconds askAgainTime{300};

/// Asks resolution services, on the port where they listen. Tests use another port.
class ResolutionClient {
 public:
  explicit ResolutionClient(std::uint16_t port = resolutionPort) : port_(port) {}

  /// The TCP port of a named instance. `host` has been looked up already; sentences call it `hostName`. Throws Error,
  /// each with a sentence of its own: no reply within hostReplyTime, the host names its instances and this is none of
  /// them, or the instance does not listen on TCP.
  [[nodiscard]] std::uint16_t portOfInstance(const std::string& hostName, std::span<const net::Endpoint> host,
                                             const std::string& instance, const net::Deadline& deadline) const;
  /// The instances of one host; empty when it does not answer within hostReplyTime.
  [[nodiscard]] std::vector<InstanceInfo> instancesOf(const std::string& host) const;
  /// Every instance that answers within `time`: all hosts are asked at once, and a broadcast is sent on every
  /// interface.
  [[nodiscard]] std::vector<InstanceInfo> allInstances(std::span<const std::string> hosts,
                                                       std::chrono::milliseconds time = broadcastTime) const;

 private:
  std::uint16_t port_;
};

}  // namespace korvel::db
