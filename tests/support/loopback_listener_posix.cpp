#include <netinet/in.h>
#include <sys/socket.h>

#include <array>

#include "tests/support/loopback_listener.h"

namespace korvel::test {

namespace {

using Length = socklen_t;

int handleOf(const db::net::Socket& socket) {
  return static_cast<int>(socket.handle());
}

}  // namespace

bool bindToLoopback(const db::net::Socket& socket, std::uint16_t& port) {
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  Length size = sizeof place;
  auto* const any = reinterpret_cast<sockaddr*>(&place);
  if (::bind(handleOf(socket), any, size) != 0 || ::getsockname(handleOf(socket), any, &size) != 0) return false;
  port = ntohs(place.sin_port);
  return true;
}

bool listenOn(const db::net::Socket& socket) {
  return ::listen(handleOf(socket), SOMAXCONN) == 0;
}

db::net::Socket acceptOn(const db::net::Socket& socket) {
  return db::net::Socket(static_cast<db::net::SocketHandle>(::accept(handleOf(socket), nullptr, nullptr)));
}

std::optional<db::net::Endpoint> senderOf(const db::net::Socket& socket) {
  sockaddr_in sender{};
  Length size = sizeof sender;
  std::array<char, 512> bytes{};
  if (::recvfrom(handleOf(socket), bytes.data(), bytes.size(), 0, reinterpret_cast<sockaddr*>(&sender), &size) < 0)
    return std::nullopt;
  return db::net::endpointOf(sender, sizeof sender, AF_INET);
}

}  // namespace korvel::test
