#include "tests/tds_server/socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace korvel::test {

LoopbackSocket bindLoopback(int type, std::uint16_t port, const char* address) {
  LoopbackSocket bound;
  bound.socket = Descriptor::checked(::socket(AF_INET, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0), "socket");
  const int yes = 1;
  if (type == SOCK_STREAM) ::setsockopt(bound.socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_port = htons(port);
  place.sin_addr.s_addr = ::inet_addr(address);
  socklen_t size = sizeof place;
  auto* const any = reinterpret_cast<sockaddr*>(&place);
  const bool ok = ::bind(bound.socket.get(), any, size) == 0 &&
                  (type != SOCK_STREAM || ::listen(bound.socket.get(), SOMAXCONN) == 0) &&
                  ::getsockname(bound.socket.get(), any, &size) == 0;
  if (!ok) throw std::system_error(errno, std::generic_category(), "bind");
  bound.port = ntohs(place.sin_port);
  return bound;
}

}  // namespace korvel::test
