#include <dirent.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

#include "db/net/socket.h"
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

struct DriverSockets::Connections {
  std::uint16_t port = 0;  ///< 0: nothing is expected
  std::set<int> before;
  /// Descriptors of our own to the same connections: a number that the driver gives back may be anybody's next.
  std::vector<net::Socket> own;
};

DriverSockets::DriverSockets() : connections_(std::make_unique<Connections>()) {}

DriverSockets::~DriverSockets() = default;

void DriverSockets::expect(std::uint16_t port) {
  connections_->port = port;
  connections_->before = connectionsTo(port);
}

void DriverSockets::keep() {
  for (const int descriptor : connectionsTo(connections_->port))
    if (!connections_->before.contains(descriptor))
      if (const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0); own >= 0) connections_->own.emplace_back(own);
  connections_->port = 0;
}

void DriverSockets::shutDown() const noexcept {
  for (const net::Socket& socket : connections_->own) ::shutdown(static_cast<int>(socket.handle()), SHUT_RDWR);
  if (connections_->port == 0) return;
  try {
    for (const int descriptor : connectionsTo(connections_->port))
      if (!connections_->before.contains(descriptor)) ::shutdown(descriptor, SHUT_RDWR);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory there is nothing that could be ended
  }
}

}  // namespace korvel::db::odbc
