#include <dirent.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <array>
#include <charconv>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/numbers.h"
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

/// The sockets of the system that are still connecting to a port, by the numbers that the system gives them: who is at
/// the other end the descriptor itself tells only later.
std::set<ino_t> connectingTo(std::uint16_t port) {
  std::set<ino_t> found;
  for (const char* table : {"/proc/self/net/tcp", "/proc/self/net/tcp6"}) {
    std::ifstream lines(table);
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
      // "sl local remote state queues timer retransmits user timeout inode": addresses are hexadecimal, after the colon
      // comes the port.
      std::istringstream text(line);
      std::array<std::string, 10> fields;
      for (std::string& field : fields) text >> field;
      const std::string& remote = fields[2];
      const std::string& state = fields[3];
      const std::string& number = fields[9];
      constexpr std::string_view synSent = "02";
      const auto colon = remote.find(':');
      if (number.empty() || state != synSent || colon == std::string::npos) continue;
      if (std::stoul(remote.substr(colon + 1), nullptr, 16) == port) found.insert(std::stoul(number));
    }
  }
  return found;
}

/// The system's table of sockets is long on a busy computer: it is read only where a login is ended.
enum class Connecting { passedOver, included };

/// The descriptors of this process that are connected to a port, or are about to be.
std::set<int> connectionsTo(std::uint16_t port, Connecting connectingOnes = Connecting::passedOver) {
  std::set<int> found;
  const std::set<ino_t> connecting = connectingOnes == Connecting::included ? connectingTo(port) : std::set<ino_t>();
  const auto isConnecting = [&](int descriptor) {
    struct stat status {};
    return !connecting.empty() && ::fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode) &&
           connecting.contains(status.st_ino);
  };
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc/self/fd"), &::closedir);
  if (!folder) return found;
  while (const dirent* entry = ::readdir(folder.get())) {
    const auto descriptor = parseInteger<int>(entry->d_name);
    if (descriptor && (peerPortOf(*descriptor) == port || isConnecting(*descriptor))) found.insert(*descriptor);
  }
  return found;
}

}  // namespace

struct DriverSockets::Connections {
  std::uint16_t port = 0;  ///< 0: nothing is expected
  std::set<int> before;
  /// Descriptors of our own to the same connections: a number that the driver closes may be reused by another file.
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
    for (const int descriptor : connectionsTo(connections_->port, Connecting::included))
      if (!connections_->before.contains(descriptor)) ::shutdown(descriptor, SHUT_RDWR);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory there is nothing that could be ended
  }
}

}  // namespace korvel::db::odbc
