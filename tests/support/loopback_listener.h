#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "db/net/socket_calls.h"

namespace korvel::test {

/// Somebody who listens on a port of 127.0.0.1, of the system's choice, for as long as the object lives.
class LoopbackListener {
 public:
  /// Throws Error.
  explicit LoopbackListener(db::net::SocketKind kind = db::net::SocketKind::stream);

  [[nodiscard]] std::uint16_t port() const noexcept { return port_; }
  /// Where to find it.
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

// What systems do in their own words; false and empty where they fail.
[[nodiscard]] bool bindToLoopback(const db::net::Socket& socket, std::uint16_t& port);
[[nodiscard]] bool listenOn(const db::net::Socket& socket);
[[nodiscard]] db::net::Socket acceptOn(const db::net::Socket& socket);
/// Takes a datagram off the socket and says who sent it.
[[nodiscard]] std::optional<db::net::Endpoint> senderOf(const db::net::Socket& socket);

}  // namespace korvel::test
