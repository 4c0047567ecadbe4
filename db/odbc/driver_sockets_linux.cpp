#include <dirent.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <string_view>

#include "db/odbc/driver_sockets.h"

namespace korvel::db::odbc {

namespace {

/// The port at the other end of a connection; 0 for what is no connection.
std::uint16_t peerPortOf(int descriptor) noexcept {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) return 0;
  if (address.ss_family == AF_INET) {
    sockaddr_in peer{};
    std::memcpy(&peer, &address, sizeof peer);
    return ntohs(peer.sin_port);
  }
  if (address.ss_family == AF_INET6) {
    sockaddr_in6 peer{};
    std::memcpy(&peer, &address, sizeof peer);
    return ntohs(peer.sin6_port);
  }
  return 0;
}

/// The descriptors of this process that are connected to a port.
std::set<int> connectionsTo(std::uint16_t port) {
  std::set<int> found;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc/self/fd"), &::closedir);
  if (!folder) return found;
  while (const dirent* entry = ::readdir(folder.get())) {
    const std::string_view name = entry->d_name;
    int descriptor = -1;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), descriptor);
    if (error == std::errc{} && end == name.data() + name.size() && peerPortOf(descriptor) == port)
      found.insert(descriptor);
  }
  return found;
}

}  // namespace

void DriverSockets::expect(std::uint16_t port) {
  port_ = port;
  before_ = connectionsTo(port);
}

void DriverSockets::keep() {
  for (const int descriptor : connectionsTo(port_))
    if (!before_.contains(descriptor)) own_.emplace_back(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
  port_ = 0;
}

void DriverSockets::shutDown() const noexcept {
  for (const net::Socket& socket : own_) ::shutdown(socket.descriptor(), SHUT_RDWR);
  if (port_ == 0) return;
  try {
    for (const int descriptor : connectionsTo(port_))
      if (!before_.contains(descriptor)) ::shutdown(descriptor, SHUT_RDWR);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory there is nothing that could be ended
  }
}

}  // namespace korvel::db::odbc
