#include <fcntl.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>

#include "db/net/socket_calls.h"

namespace korvel::db::net {

namespace {

static_assert(offsetof(sockaddr_in, sin_port) == portOffset && offsetof(sockaddr_in6, sin6_port) == portOffset);

int descriptorOf(const Socket& socket) noexcept {
  return static_cast<int>(socket.handle());
}

const sockaddr* addressOf(const Endpoint& endpoint) noexcept {
  return reinterpret_cast<const sockaddr*>(endpoint.bytes.data());
}

socklen_t sizeOf(const Endpoint& endpoint) noexcept {
  return static_cast<socklen_t>(endpoint.bytes.size());
}

CallResult failure() noexcept {
  const int number = errno;
  if (number == EAGAIN || number == EWOULDBLOCK || number == EINPROGRESS) return {CallOutcome::later, 0, number};
  return {number == ECONNREFUSED ? CallOutcome::refused : CallOutcome::failed, 0, number};
}

/// Makes a call that gives a number of bytes, or -1.
template <typename Call>
CallResult resultOf(const Call& call) noexcept {
  for (;;) {
    const auto bytes = call();
    if (bytes >= 0) return {CallOutcome::done, static_cast<std::size_t>(bytes)};
    if (errno != EINTR) return failure();
  }
}

int waitFor(std::span<pollfd> entries, std::chrono::milliseconds time, int& error) noexcept {
  const int ready = ::poll(entries.data(), entries.size(), static_cast<int>(std::min<long>(time.count(), INT_MAX)));
  if (ready >= 0) return ready;
  error = errno;
  return error == EINTR ? 0 : ready;
}

}  // namespace

const SocketErrors socketErrors{ETIMEDOUT, ECONNRESET, EADDRNOTAVAIL};

Socket::~Socket() {
  if (isOpen()) ::close(static_cast<int>(handle_));
}

Socket openSocket(int family, SocketKind kind, int& error) noexcept {
  const int type = kind == SocketKind::stream ? SOCK_STREAM : SOCK_DGRAM;
  const int descriptor = ::socket(family, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (descriptor < 0) error = errno;
  return Socket(descriptor);
}

void enableBroadcast(const Socket& socket) noexcept {
  const int on = 1;
  ::setsockopt(descriptorOf(socket), SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
}

CallResult startConnect(const Socket& socket, const Endpoint& endpoint) noexcept {
  return ::connect(descriptorOf(socket), addressOf(endpoint), sizeOf(endpoint)) == 0 ? CallResult{} : failure();
}

int pendingError(const Socket& socket) noexcept {
  int error = 0;
  socklen_t size = sizeof error;
  ::getsockopt(descriptorOf(socket), SOL_SOCKET, SO_ERROR, &error, &size);
  return error;
}

CallResult sendSome(const Socket& socket, std::string_view bytes) noexcept {
  return resultOf([&] { return ::send(descriptorOf(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL); });
}

CallResult sendTo(const Socket& socket, const Endpoint& endpoint, std::string_view bytes) noexcept {
  return resultOf([&] {
    return ::sendto(descriptorOf(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL, addressOf(endpoint),
                    sizeOf(endpoint));
  });
}

CallResult receiveSome(const Socket& socket, std::span<std::byte> bytes) noexcept {
  return resultOf([&] { return ::recv(descriptorOf(socket), bytes.data(), bytes.size(), 0); });
}

int waitUntilWritable(const Socket& socket, std::chrono::milliseconds time, int& error) {
  pollfd entry{descriptorOf(socket), POLLOUT, 0};
  return waitFor({&entry, 1}, time, error);
}

int waitUntilReadable(std::span<const Socket> sockets, std::vector<bool>& ready, std::chrono::milliseconds time,
                      int& error) {
  std::vector<pollfd> entries;
  for (const Socket& socket : sockets) entries.push_back({descriptorOf(socket), POLLIN, 0});
  const int count = waitFor(entries, time, error);
  ready.clear();
  for (const pollfd& entry : entries) ready.push_back(count > 0 && entry.revents != 0);
  return count;
}

Lookup lookUp(const std::string& host, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_CANONNAME | AI_NUMERICSERV;
  Lookup lookup;
  lookup.entry.fullName = host;
  addrinfo* found = nullptr;
  lookup.error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (lookup.error == EAI_SYSTEM)
    lookup.error = errno;
  else if (lookup.error != 0)
    lookup.text = ::gai_strerror(lookup.error);
  if (found == nullptr) return lookup;
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
  for (const addrinfo* address = found; address != nullptr; address = address->ai_next) {
    if (address->ai_canonname != nullptr) lookup.entry.fullName = address->ai_canonname;
    lookup.entry.endpoints.push_back(endpointOf(*address->ai_addr, address->ai_addrlen, address->ai_family));
  }
  return lookup;
}

std::vector<Endpoint> broadcastEndpoints(std::uint16_t port) {
  std::vector<Endpoint> endpoints;
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return endpoints;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(first, &::freeifaddrs);
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    const bool up = (entry->ifa_flags & static_cast<unsigned>(IFF_UP)) != 0;
    const bool broadcasts = (entry->ifa_flags & static_cast<unsigned>(IFF_BROADCAST)) != 0;
    if (!up || !broadcasts || entry->ifa_broadaddr == nullptr || entry->ifa_broadaddr->sa_family != AF_INET) continue;
    endpoints.push_back(endpointOf(*entry->ifa_broadaddr, sizeof(sockaddr_in), AF_INET));
  }
  return atPort(std::move(endpoints), port);
}

}  // namespace korvel::db::net
