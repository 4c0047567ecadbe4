#pragma once

#include <cstdint>
#include <string>

#include "db/net/socket.h"

namespace korvel::db::net {

/// What a server says about encryption before anybody logs in.
enum class ServerEncryption : std::uint8_t { off = 0, on = 1, notSupported = 2, required = 3 };

struct PreLoginAnswer {
  std::string version;  ///< "16.0.1000"
  ServerEncryption encryption = ServerEncryption::notSupported;
};

/// Asks a server that has just accepted a connection whether it speaks the protocol at all. The driver's own login
/// timeout does not cover a server that accepts and stays silent; this exchange does. Throws Error: a timeout, a
/// connection that was closed, or an answer that is none of this protocol.
[[nodiscard]] PreLoginAnswer askPreLogin(const Socket& socket, const Deadline& deadline);

}  // namespace korvel::db::net
