#pragma once

#include <cstdint>

#include "tests/support/tds/descriptor.h"

namespace korvel::test {

/// A socket of `type` (SOCK_STREAM, SOCK_DGRAM) bound to a port of a loopback address, and the port's number. Port 0
/// lets the system choose. A stream socket listens. Throws std::system_error.
struct LoopbackSocket {
  Descriptor socket;
  std::uint16_t port = 0;
};
[[nodiscard]] LoopbackSocket bindLoopback(int type, std::uint16_t port = 0, const char* address = "127.0.0.1");

}  // namespace korvel::test
