#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "db/discovery/resolution_protocol.h"
#include "db/net/deadline.h"

namespace korvel::db {

/// How long the servers of the network are listened for.
inline constexpr std::chrono::milliseconds broadcastTime{2500};
/// How long one host may take to name its instances, and names of hosts may take to be looked up.
inline constexpr std::chrono::milliseconds hostReplyTime{1000};

/// Asks resolution services, on the port where they listen. Tests use another port.
class ResolutionClient {
 public:
  explicit ResolutionClient(std::uint16_t port = resolutionPort) : port_(port) {}

  /// The TCP port of a named instance. Throws Error when the host is unknown, does not answer within hostReplyTime,
  /// or says that the instance does not listen on TCP.
  [[nodiscard]] std::uint16_t portOfInstance(const std::string& host, const std::string& instance,
                                             const net::Deadline& deadline) const;
  /// The instances of one host; empty when it does not answer within hostReplyTime.
  [[nodiscard]] std::vector<InstanceInfo> instancesOf(const std::string& host) const;
  /// Every instance that answers within `time`: all hosts are asked at once, and everybody whom a broadcast on any
  /// interface reaches.
  [[nodiscard]] std::vector<InstanceInfo> allInstances(std::span<const std::string> hosts,
                                                       std::chrono::milliseconds time = broadcastTime) const;

 private:
  std::uint16_t port_;
};

}  // namespace korvel::db
