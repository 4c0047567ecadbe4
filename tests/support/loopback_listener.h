#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "db/net/socket_calls.h"

namespace korvel::test {

/// A socket that listens on a port of 127.0.0.1, chosen by the system, for as long as the object lives.
class LoopbackListener {
 public:
  /// Throws Error.
  explicit LoopbackListener(db::net::SocketKind kind = db::net::SocketKind::stream);

  [[nodiscard]] std::uint16_t port() const noexcept { return port_; }
  /// Its address.
  [[nodiscard]] std::vector<db::net::Endpoint> endpoints() const;

  /// The next connection. Throws Error where none comes.
  [[nodiscard]] db::net::Socket accept() const;
  /// Waits for a datagram and answers it. False where none comes.
  [[nodiscard]] bool answer(std::string_view reply) const;

 private:
  [[nodiscard]] bool waitForSomebody() const;

  std::uint16_t port_ = 0;  // before the socket, which fills it
  db::net::Socket socket_;
};

// The system's calls; false and empty where they fail.
[[nodiscard]] bool bindToLoopback(const db::net::Socket& socket, std::uint16_t& port);
[[nodiscard]] bool listenOn(const db::net::Socket& socket);
[[nodiscard]] db::net::Socket acceptOn(const db::net::Socket& socket);
/// Receives a datagram and its sender's address.
[[nodiscard]] std::optional<db::net::Endpoint> senderOf(const db::net::Socket& socket);

}  // namespace korvel::test
