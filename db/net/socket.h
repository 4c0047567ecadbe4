#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "db/net/deadline.h"

namespace korvel::db::net {

/// How the system names an open socket: a number as wide as its pointers.
using SocketHandle = std::intptr_t;
inline constexpr SocketHandle noSocket = -1;

/// An open socket, closed by destruction. The sockets of this room never block: every wait has a deadline.
class Socket {
 public:
  explicit Socket(SocketHandle handle) : handle_(handle) {}
  ~Socket();
  Socket(Socket&& other) noexcept : handle_(std::exchange(other.handle_, noSocket)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  [[nodiscard]] bool isOpen() const noexcept { return handle_ != noSocket; }
  [[nodiscard]] SocketHandle handle() const noexcept { return handle_; }

 private:
  SocketHandle handle_;
};

/// One network address, in the form that the system's calls take.
struct Endpoint {
  std::string bytes;  ///< a sockaddr of whatever family
  int family = 0;
};

/// System error numbers that callers tell apart.
[[nodiscard]] bool isTimeout(int systemErrorNumber) noexcept;

/// What the system knows of a host's name.
struct HostEntry {
  std::string fullName;             ///< the name that the host itself goes by, where the system tells it; else as asked
  std::vector<Endpoint> endpoints;  ///< in the order in which the system prefers them
};
/// Looks a host up. Throws Error: for an unknown name with the number of the system's resolver; a resolver that does
/// not answer in time is a timeout.
[[nodiscard]] HostEntry resolveHost(const std::string& host, std::uint16_t port, const Deadline& deadline);
/// The addresses of many hosts, looked up at once; hosts that cannot be found have none.
[[nodiscard]] std::vector<Endpoint> resolveHosts(std::span<const std::string> hosts, std::uint16_t port,
                                                 const Deadline& deadline);

/// The same addresses with another port.
[[nodiscard]] std::vector<Endpoint> atPort(std::vector<Endpoint> endpoints, std::uint16_t port);

/// Connects to the first address that answers. Throws Error with the system's number (refused, unreachable, timed out).
[[nodiscard]] Socket connectTcp(std::span<const Endpoint> endpoints, const Deadline& deadline);

/// Sends all bytes; throws Error.
void sendAll(const Socket& socket, std::string_view bytes, const Deadline& deadline);
/// Receives exactly `size` bytes; throws Error, also when the other side closes before.
[[nodiscard]] std::string receiveExactly(const Socket& socket, std::size_t size, const Deadline& deadline);

/// Datagram sockets that wait together. Networks that refuse a datagram are no error, because others may answer.
class DatagramSockets {
 public:
  /// Sends a request to each endpoint from a connected socket of its own, which receives from that endpoint only: no
  /// other host can answer in its place.
  void send(std::span<const Endpoint> endpoints, std::string_view request);
  /// Sends a request again to the endpoints of send() that may still answer, because datagrams get lost.
  void resend(std::string_view request);
  /// Whether an answer may still come.
  [[nodiscard]] bool expectsAnswers() const noexcept { return !sockets_.empty(); }
  /// Sends a request to all endpoints, broadcast addresses among them, from one unconnected socket for each address
  /// family.
  void broadcast(std::span<const Endpoint> endpoints, std::string_view request);
  /// The next datagram, at most `limit` bytes of it; false when the deadline passes first or no more answers can come.
  [[nodiscard]] bool receive(std::vector<std::byte>& bytes, std::size_t limit, const Deadline& deadline);

 private:
  std::vector<Socket> sockets_;
};

/// The broadcast addresses of every interface that is up, for a port.
[[nodiscard]] std::vector<Endpoint> broadcastEndpoints(std::uint16_t port);

}  // namespace korvel::db::net
