#include <arpa/inet.h>
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
#include <cstddef>
#include <cstring>
#include <future>
#include <map>
#include <memory>
#include <utility>

#include "base/error.h"
#include "db/net/run_beside.h"
#include "db/net/socket.h"

namespace korvel::db::net {

namespace {

Error failed(const std::string& what) {
  const int number = errno;
  return systemError(number, what);
}

/// Waits until one of the sockets is ready; false when the deadline passes first.
bool waitForAny(std::span<pollfd> entries, const Deadline& deadline) {
  for (;;) {
    const auto left = deadline.left().count();
    const int ready = ::poll(entries.data(), entries.size(), left > INT_MAX ? INT_MAX : static_cast<int>(left));
    if (ready > 0) return true;
    if (ready == 0 && deadline.passed()) return false;
    if (ready < 0 && errno != EINTR) throw failed("cannot wait for the network");
  }
}

bool waitFor(int descriptor, short events, const Deadline& deadline) {
  pollfd entry{descriptor, events, 0};
  return waitForAny({&entry, 1}, deadline);
}

/// A closed socket, and errno, where the system has none of this family.
Socket openSocket(int family, int type) {
  return Socket(::socket(family, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

const sockaddr* addressOf(const Endpoint& endpoint) {
  return reinterpret_cast<const sockaddr*>(endpoint.bytes.data());
}

template <typename Address>
Endpoint endpointOf(const Address& address, std::size_t size, int family) {
  return {std::string(reinterpret_cast<const char*>(&address), size), family};
}

/// Nothing on success, else the error number.
int tryConnect(const Socket& socket, const Endpoint& endpoint, const Deadline& deadline) {
  if (::connect(socket.descriptor(), addressOf(endpoint), static_cast<socklen_t>(endpoint.bytes.size())) == 0) return 0;
  if (errno != EINPROGRESS) return errno;
  if (!waitFor(socket.descriptor(), POLLOUT, deadline)) return ETIMEDOUT;
  int error = 0;
  socklen_t size = sizeof error;
  ::getsockopt(socket.descriptor(), SOL_SOCKET, SO_ERROR, &error, &size);
  return error;
}

/// What came of looking up a name.
struct Lookup {
  int error = 0;        ///< the resolver's
  int systemError = 0;  ///< the system's, where the resolver names it
  HostEntry entry;
};

Lookup lookUp(const std::string& host, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_CANONNAME | AI_NUMERICSERV;
  Lookup lookup;
  lookup.entry.fullName = host;
  addrinfo* found = nullptr;
  lookup.error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  lookup.systemError = errno;
  if (lookup.error != 0) return lookup;
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, &::freeaddrinfo);
  for (const addrinfo* address = found; address != nullptr; address = address->ai_next) {
    if (address->ai_canonname != nullptr) lookup.entry.fullName = address->ai_canonname;
    lookup.entry.endpoints.push_back(endpointOf(*address->ai_addr, address->ai_addrlen, address->ai_family));
  }
  return lookup;
}

/// A resolver that hangs must not hang the viewer.
std::future<Lookup> startLookup(const std::string& host, std::uint16_t port) {
  return runBeside([host, port] { return lookUp(host, port); });
}

bool isDone(const std::future<Lookup>& lookup, const Deadline& deadline) {
  return lookup.wait_for(deadline.left()) == std::future_status::ready;
}

}  // namespace

Socket::~Socket() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

bool isTimeout(int systemNumber) noexcept {
  return systemNumber == ETIMEDOUT;
}

HostEntry resolveHost(const std::string& host, std::uint16_t port, const Deadline& deadline) {
  const std::string what = "cannot find the computer " + host;
  std::future<Lookup> pending = startLookup(host, port);
  if (!isDone(pending, deadline)) throw systemError(ETIMEDOUT, what);
  Lookup lookup = pending.get();
  if (lookup.error == EAI_SYSTEM) throw systemError(lookup.systemError, what);
  if (lookup.error != 0) throw Error(lookup.error, what + ": " + ::gai_strerror(lookup.error));
  return std::move(lookup.entry);
}

std::vector<Endpoint> resolveHosts(std::span<const std::string> hosts, std::uint16_t port, const Deadline& deadline) {
  constexpr std::size_t mostAtOnce = 32;
  std::vector<Endpoint> endpoints;
  for (; !hosts.empty() && !deadline.passed(); hosts = hosts.subspan(std::min(mostAtOnce, hosts.size()))) {
    std::vector<std::future<Lookup>> pending;
    for (const std::string& host : hosts.first(std::min(mostAtOnce, hosts.size())))
      pending.push_back(startLookup(host, port));
    for (std::future<Lookup>& lookup : pending)
      if (isDone(lookup, deadline))
        for (Endpoint& endpoint : lookup.get().entry.endpoints) endpoints.push_back(std::move(endpoint));
  }
  return endpoints;
}

std::vector<Endpoint> atPort(std::vector<Endpoint> endpoints, std::uint16_t port) {
  for (Endpoint& endpoint : endpoints) {
    // Both families keep the port, in network order, at the same place.
    static_assert(offsetof(sockaddr_in, sin_port) == offsetof(sockaddr_in6, sin6_port));
    const std::uint16_t wire = htons(port);
    std::memcpy(endpoint.bytes.data() + offsetof(sockaddr_in, sin_port), &wire, sizeof wire);
  }
  return endpoints;
}

Socket connectTcp(std::span<const Endpoint> endpoints, const Deadline& deadline) {
  int lastError = EADDRNOTAVAIL;
  std::size_t remaining = endpoints.size();
  for (const Endpoint& endpoint : endpoints) {
    // An address that drops packets must not use up the time of those after it.
    const Deadline share(deadline.left() / static_cast<long>(remaining--));
    Socket socket = openSocket(endpoint.family, SOCK_STREAM);
    lastError = socket.isOpen() ? tryConnect(socket, endpoint, share) : errno;
    if (lastError == 0) return socket;
  }
  throw systemError(lastError, "cannot connect");
}

void sendAll(const Socket& socket, std::string_view bytes, const Deadline& deadline) {
  while (!bytes.empty()) {
    const auto sent = ::send(socket.descriptor(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
      continue;
    }
    if (errno == EINTR) continue;
    if (errno != EAGAIN && errno != EWOULDBLOCK) throw failed("cannot send");
    if (!waitFor(socket.descriptor(), POLLOUT, deadline)) throw systemError(ETIMEDOUT, "cannot send");
  }
}

std::string receiveExactly(const Socket& socket, std::size_t size, const Deadline& deadline) {
  std::string bytes(size, '\0');
  std::size_t got = 0;
  while (got < size) {
    const auto received = ::recv(socket.descriptor(), bytes.data() + got, size - got, 0);
    if (received == 0) throw systemError(ECONNRESET, "the other side closed the connection");
    if (received > 0) {
      got += static_cast<std::size_t>(received);
      continue;
    }
    if (errno == EINTR) continue;
    if (errno != EAGAIN && errno != EWOULDBLOCK) throw failed("cannot receive");
    if (!waitFor(socket.descriptor(), POLLIN, deadline)) throw systemError(ETIMEDOUT, "no answer");
  }
  return bytes;
}

void Datagrams::ask(std::span<const Endpoint> endpoints, std::string_view request) {
  for (const Endpoint& endpoint : endpoints) {
    Socket socket = openSocket(endpoint.family, SOCK_DGRAM);
    const auto size = static_cast<socklen_t>(endpoint.bytes.size());
    if (!socket.isOpen()) continue;
    if (::connect(socket.descriptor(), addressOf(endpoint), size) != 0) continue;
    if (::send(socket.descriptor(), request.data(), request.size(), MSG_NOSIGNAL) < 0) continue;
    sockets_.push_back(std::move(socket));
  }
}

void Datagrams::askAgain(std::string_view request) {
  std::erase_if(sockets_, [&](const Socket& socket) {
    // The refusal of the question before is reported here, too.
    return ::send(socket.descriptor(), request.data(), request.size(), MSG_NOSIGNAL) < 0 && errno == ECONNREFUSED;
  });
}

void Datagrams::askOpenly(std::span<const Endpoint> endpoints, std::string_view request) {
  std::map<int, Socket> byFamily;
  for (const Endpoint& endpoint : endpoints) {
    auto found = byFamily.find(endpoint.family);
    if (found == byFamily.end()) {
      found = byFamily.emplace(endpoint.family, openSocket(endpoint.family, SOCK_DGRAM)).first;
      const int on = 1;
      ::setsockopt(found->second.descriptor(), SOL_SOCKET, SO_BROADCAST, &on, sizeof on);
    }
    ::sendto(found->second.descriptor(), request.data(), request.size(), MSG_NOSIGNAL, addressOf(endpoint),
             static_cast<socklen_t>(endpoint.bytes.size()));
  }
  for (auto& [family, socket] : byFamily)
    if (socket.isOpen()) sockets_.push_back(std::move(socket));
}

bool Datagrams::receive(std::vector<std::byte>& bytes, std::size_t limit, const Deadline& deadline) {
  while (!sockets_.empty()) {
    std::vector<pollfd> entries;
    for (const Socket& socket : sockets_) entries.push_back({socket.descriptor(), POLLIN, 0});
    if (!waitForAny(entries, deadline)) return false;
    for (std::size_t i = entries.size(); i-- > 0;) {
      if (entries[i].revents == 0) continue;
      bytes.resize(limit);
      const auto received = ::recv(entries[i].fd, bytes.data(), bytes.size(), 0);
      if (received >= 0) {
        bytes.resize(static_cast<std::size_t>(received));
        return true;
      }
      // A socket that asked one host alone hears that nobody listens there.
      const bool again = errno == EINTR || errno == EAGAIN || errno == EWOULDBLOCK;
      if (!again) sockets_.erase(sockets_.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  return false;
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
    sockaddr_in address{};
    std::memcpy(&address, entry->ifa_broadaddr, sizeof address);
    address.sin_port = htons(port);
    endpoints.push_back(endpointOf(address, sizeof address, AF_INET));
  }
  return endpoints;
}

}  // namespace korvel::db::net
