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

#include "tests/support/tds/descriptor.h"
#include "tests/support/tds/gate.h"

namespace korvel::test::tds {

/// One instance as a resolution reply describes it: pairs of names and values, in order.
using Instance = std::vector<std::pair<std::string, std::string>>;

/// The usual pairs of an instance that listens on a TCP port.
[[nodiscard]] Instance instanceOn(std::string server, std::string name, std::uint16_t port);
/// A well-formed reply for these instances.
[[nodiscard]] std::string resolutionReply(const std::vector<Instance>& instances);
/// A reply with any text and any length, true or not.
[[nodiscard]] std::string resolutionReply(std::string_view text, std::uint16_t claimedLength);

/// Answers the resolution protocol on a UDP port of a loopback address, with whatever the test wants said. Several
/// hosts are several objects on one port of 127.0.0.1, 127.0.0.2 and so on.
class ResolutionPeer {
 public:
  /// The datagrams to send back, in order; none: the peer keeps quiet.
  using Replies = std::function<std::vector<std::string>(std::string_view request)>;

  /// Throws std::system_error.
  explicit ResolutionPeer(std::uint16_t port = 0, const char* address = "127.0.0.1");
  ~ResolutionPeer();
  ResolutionPeer(const ResolutionPeer&) = delete;
  ResolutionPeer& operator=(const ResolutionPeer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }

  /// Answers as a server with these instances would: all of them, or the one asked for by name in any case of letters.
  void announce(std::vector<Instance> instances);
  /// Answers every request with these datagrams, whatever they are.
  void replyWith(std::vector<std::string> datagrams);
  void replyBy(Replies replies);
  void keepQuiet() { replyWith({}); }

  /// The requests so far, byte for byte.
  [[nodiscard]] std::vector<std::string> requests() const;
  /// False where fewer came within the test's patience.
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
