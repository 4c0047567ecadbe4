#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/tds_server/gate.h"
#include "tests/tds_server/socket.h"

namespace korvel::test::tds {

/// One instance as a resolution reply describes it: pairs of names and values, in order.
using Instance = std::vector<std::pair<std::string, std::string>>;

/// The usual pairs of an instance that listens on a TCP port.
[[nodiscard]] Instance instanceOn(std::string server, std::string name, std::uint16_t port);
/// A well-formed reply for these instances.
[[nodiscard]] std::string resolutionReply(const std::vector<Instance>& instances);
/// A reply with any text and any claimed length.
[[nodiscard]] std::string resolutionReply(std::string_view text, std::uint16_t claimedLength);

/// Answers the SQL Server Resolution Protocol on a UDP port of a loopback address, as a test sets it. For several hosts
/// make several objects on one port of 127.0.0.1, 127.0.0.2 and so on.
class ResolutionResponder {
 public:
  /// The datagrams to send back, in order; empty: no reply.
  using Replies = std::function<std::vector<std::string>(std::string_view request)>;

  /// Throws std::system_error.
  explicit ResolutionResponder(std::uint16_t port = 0, const char* address = "127.0.0.1");
  ~ResolutionResponder();
  ResolutionResponder(const ResolutionResponder&) = delete;
  ResolutionResponder& operator=(const ResolutionResponder&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }

  /// Answers as a server with these instances: all of them, or the one asked for by name, compared without case.
  void announce(std::vector<Instance> instances);
  /// Answers every request with these datagrams.
  void replyWith(std::vector<std::string> datagrams);
  void replyBy(Replies replies);
  void stayQuiet() { replyWith({}); }

  /// The requests so far, byte for byte.
  [[nodiscard]] std::vector<std::string> requests() const;
  /// False where fewer came within `testTimeout`.
  [[nodiscard]] bool waitForRequests(std::size_t count) const;

 private:
  void listen();

  Descriptor socket_;
  std::uint16_t port_ = 0;
  Flag stop_;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  Replies replies_;
  std::vector<std::string> requests_;
  std::thread listening_;
};

}  // namespace korvel::test::tds
