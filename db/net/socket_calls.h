#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "db/net/socket.h"

namespace korvel::db::net {

// The system's own calls, in the one form in which the sockets of this room use them. No call waits, but for those that
// say so; calls that a signal broke off are repeated.

/// The system's numbers for failures that this room names itself.
struct SocketErrors {
  int timedOut;
  int closedByOther;
  int noAddress;  ///< a host that has no address to connect to
};
extern const SocketErrors socketErrors;

/// What became of a call.
enum class CallOutcome {
  done,
  later,    ///< it could only go on by waiting
  refused,  ///< a datagram reached a closed port
  failed,
};
struct CallResult {
  CallOutcome outcome = CallOutcome::done;
  std::size_t bytes = 0;  ///< how many were sent or received
  int error = 0;          ///< the system's number, of a call that failed
};

enum class SocketKind { stream, datagram };
/// A closed socket and the reason in `error`, where the system has none of this family.
[[nodiscard]] Socket openSocket(int family, SocketKind kind, int& error) noexcept;
/// Allows broadcasts on a datagram socket, and ignores reports of closed ports.
void enableBroadcast(const Socket& socket) noexcept;

/// Begins to connect; `later` until pendingError() knows more.
[[nodiscard]] CallResult startConnect(const Socket& socket, const Endpoint& endpoint) noexcept;
/// What came of connecting: 0, or the system's number.
[[nodiscard]] int pendingError(const Socket& socket) noexcept;
[[nodiscard]] CallResult sendSome(const Socket& socket, std::string_view bytes) noexcept;
[[nodiscard]] CallResult sendTo(const Socket& socket, const Endpoint& endpoint, std::string_view bytes) noexcept;
/// Nothing and `done` is the end of a stream, or an empty datagram; of a datagram that is too long the rest is lost.
[[nodiscard]] CallResult receiveSome(const Socket& socket, std::span<std::byte> bytes) noexcept;

/// Wait at most so long; how many are ready, negative where waiting failed. They may return early with none.
[[nodiscard]] int waitUntilWritable(const Socket& socket, std::chrono::milliseconds time, int& error);
/// `ready` tells of each socket whether it has something to be received, be it a failure.
[[nodiscard]] int waitUntilReadable(std::span<const Socket> sockets, std::vector<bool>& ready,
                                    std::chrono::milliseconds time, int& error);

/// What came of looking up a name.
struct Lookup {
  int error = 0;     ///< 0, or the resolver's or the system's number
  std::string text;  ///< the resolver's own words for it; empty: the system has words for the number
  HostEntry entry;
};
/// Waits as long as the resolver likes.
[[nodiscard]] Lookup lookUp(const std::string& host, std::uint16_t port);

/// Where addresses of both families keep the port, in network order, on every system.
inline constexpr std::size_t portOffset = 2;

template <typename Address>
[[nodiscard]] Endpoint endpointOf(const Address& address, std::size_t size, int family) {
  std::string bytes(size, '\0');
  std::memcpy(bytes.data(), &address, size);
  return {std::move(bytes), family};
}

}  // namespace korvel::db::net
