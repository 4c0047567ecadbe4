#pragma once

#include <cstdint>
#include <string>

#include "db/net/socket.h"
#include "settings/string_table.h"

namespace korvel::db::net {

/// What a server's certificate is worth.
struct TlsHandshake {
  std::string protocol;  ///< "TLSv1.3"
  std::string problem;   ///< why the certificate cannot be trusted, in the words of the security library; empty: it can
};

/// Shakes hands with a server that has just answered the pre-login, and looks at the certificate it shows: who issued
/// it, until when, for which host. Drivers check it too, but keep the reason to themselves. `authorities` is a file of
/// certificates to trust, empty for the system's own. The handshake travels inside packets of the protocol, as do all
/// words before the login. Nothing is sent over the connection afterwards. Throws Error where no encryption comes
/// about: a timeout, a closed connection, two sides that have no method in common; and, with a sentence of its own, for
/// a file in which no certificate can be read.
[[nodiscard]] TlsHandshake performTlsHandshake(const Socket& socket, const std::string& host,
                                               const std::string& authorities, const Deadline& deadline);

/// Throws the error for a file of authorities in which no certificate can be read.
[[noreturn]] inline void refuseAuthorities(const std::string& file) {
  constexpr std::int32_t invalidParameter = 87;
  throw settings::localizedError(invalidParameter, "failure.noAuthorities", {file});
}

}  // namespace korvel::db::net
