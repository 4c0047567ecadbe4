#include <winsock2.h>
// After the sockets, whose types they use.
#include <iphlpapi.h>
#include <mswsock.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <climits>
#include <memory>

#include "base/wide_text_windows.h"
#include "db/net/socket_calls.h"

namespace korvel::db::net {

namespace {

static_assert(offsetof(sockaddr_in, sin_port) == portOffset && offsetof(sockaddr_in6, sin6_port) == portOffset);

/// The sockets of a process begin with its first one and end with it. What the system says about it is said again by
/// every call that follows.
void startSockets() noexcept {
  static const int started = [] {
    constexpr WORD version = MAKEWORD(2, 2);
    WSADATA ignored{};
    return ::WSAStartup(version, &ignored);
  }();
  (void)started;
}

/// SIO_UDP_NETRESET, which the compiler's headers lack.
constexpr DWORD udpNetReset = _WSAIOW(IOC_VENDOR, 15);

SOCKET socketOf(const Socket& socket) noexcept {
  return static_cast<SOCKET>(socket.handle());
}

const sockaddr* addressOf(const Endpoint& endpoint) noexcept {
  return reinterpret_cast<const sockaddr*>(endpoint.bytes.data());
}

int sizeOf(const Endpoint& endpoint) noexcept {
  return static_cast<int>(endpoint.bytes.size());
}

int atMost(std::size_t size) noexcept {
  return static_cast<int>(std::min<std::size_t>(size, INT_MAX));
}

int atMost(std::chrono::milliseconds time) noexcept {
  return static_cast<int>(std::min<long long>(time.count(), INT_MAX));
}

CallResult failure() noexcept {
  const int number = ::WSAGetLastError();
  if (number == WSAEWOULDBLOCK) return {CallOutcome::later, 0, number};
  // For datagrams, the error of a reset connection means a closed port.
  const bool refused = number == WSAECONNRESET || number == WSAECONNREFUSED;
  return {refused ? CallOutcome::refused : CallOutcome::failed, 0, number};
}

CallResult resultOf(int bytes) noexcept {
  return bytes >= 0 ? CallResult{CallOutcome::done, static_cast<std::size_t>(bytes)} : failure();
}

}  // namespace

const SocketErrors socketErrors{WSAETIMEDOUT, WSAECONNRESET, WSAEADDRNOTAVAIL};

Socket::~Socket() {
  if (isOpen()) ::closesocket(static_cast<SOCKET>(handle_));
}

Socket openSocket(int family, SocketKind kind, int& error) noexcept {
  startSockets();
  const int type = kind == SocketKind::stream ? SOCK_STREAM : SOCK_DGRAM;
  Socket socket(static_cast<SocketHandle>(
      ::WSASocketW(family, type, 0, nullptr, 0, WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT)));
  u_long on = 1;
  if (socket.isOpen() && ::ioctlsocket(socketOf(socket), static_cast<long>(FIONBIO), &on) == 0) return socket;
  error = ::WSAGetLastError();
  return Socket(noSocket);
}

void enableBroadcast(const Socket& socket) noexcept {
  const BOOL on = TRUE;
  ::setsockopt(socketOf(socket), SOL_SOCKET, SO_BROADCAST, reinterpret_cast<const char*>(&on), sizeof on);
  // A closed port, or a datagram that expired on its way, would otherwise be reported instead of the next answer.
  for (const DWORD tellings : {DWORD{SIO_UDP_CONNRESET}, udpNetReset}) {
    BOOL tell = FALSE;
    DWORD returned = 0;
    ::WSAIoctl(socketOf(socket), tellings, &tell, sizeof tell, nullptr, 0, &returned, nullptr, nullptr);
  }
}

CallResult startConnect(const Socket& socket, const Endpoint& endpoint) noexcept {
  return resultOf(::connect(socketOf(socket), addressOf(endpoint), sizeOf(endpoint)));
}

int pendingError(const Socket& socket) noexcept {
  int error = 0;
  int size = sizeof error;
  ::getsockopt(socketOf(socket), SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
  return error;
}

CallResult sendSome(const Socket& socket, std::string_view bytes) noexcept {
  return resultOf(::send(socketOf(socket), bytes.data(), atMost(bytes.size()), 0));
}

CallResult sendTo(const Socket& socket, const Endpoint& endpoint, std::string_view bytes) noexcept {
  return resultOf(
      ::sendto(socketOf(socket), bytes.data(), atMost(bytes.size()), 0, addressOf(endpoint), sizeOf(endpoint)));
}

CallResult receiveSome(const Socket& socket, std::span<std::byte> bytes) noexcept {
  const int size = atMost(bytes.size());
  const int received = ::recv(socketOf(socket), reinterpret_cast<char*>(bytes.data()), size, 0);
  // A datagram that is longer fills what it was given.
  if (received < 0 && ::WSAGetLastError() == WSAEMSGSIZE) return resultOf(size);
  return resultOf(received);
}

int waitUntilWritable(const Socket& socket, std::chrono::milliseconds time, int& error) {
  constexpr long millisecondsPerSecond = 1000;
  // Not WSAPoll: before Windows 10 of 2020 it does not tell of a connection that was refused.
  fd_set writable{};
  fd_set refused{};
  FD_SET(socketOf(socket), &writable);
  FD_SET(socketOf(socket), &refused);
  const long left = atMost(time);
  timeval limit{left / millisecondsPerSecond, left % millisecondsPerSecond * millisecondsPerSecond};
  const int count = ::select(0, nullptr, &writable, &refused, &limit);
  if (count < 0) error = ::WSAGetLastError();
  return count;
}

int waitUntilReadable(std::span<const Socket> sockets, std::vector<bool>& ready, std::chrono::milliseconds time,
                      int& error) {
  std::vector<WSAPOLLFD> entries;
  for (const Socket& socket : sockets) entries.push_back({socketOf(socket), POLLRDNORM, 0});
  const int count = ::WSAPoll(entries.data(), static_cast<ULONG>(entries.size()), atMost(time));
  if (count < 0) error = ::WSAGetLastError();
  ready.clear();
  for (const WSAPOLLFD& entry : entries) ready.push_back(count > 0 && entry.revents != 0);
  return count;
}

Lookup lookUp(const std::string& host, std::uint16_t port) {
  startSockets();
  ADDRINFOW hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_CANONNAME;
  Lookup lookup;
  lookup.entry.fullName = host;
  ADDRINFOW* found = nullptr;
  lookup.error = ::GetAddrInfoW(lossyWideFromUtf8(host).c_str(), std::to_wstring(port).c_str(), &hints, &found);
  if (lookup.error != 0 || found == nullptr) return lookup;
  const std::unique_ptr<ADDRINFOW, decltype(&::FreeAddrInfoW)> owner(found, &::FreeAddrInfoW);
  for (const ADDRINFOW* address = found; address != nullptr; address = address->ai_next) {
    if (address->ai_canonname != nullptr) lookup.entry.fullName = utf8FromWide(address->ai_canonname);
    lookup.entry.endpoints.push_back(endpointOf(*address->ai_addr, address->ai_addrlen, address->ai_family));
  }
  return lookup;
}

std::vector<Endpoint> broadcastEndpoints(std::uint16_t port) {
  std::vector<Endpoint> endpoints;
  ULONG size = 0;
  if (::GetIpAddrTable(nullptr, &size, FALSE) != ERROR_INSUFFICIENT_BUFFER) return endpoints;
  std::vector<std::byte> bytes(size);
  auto* const table = reinterpret_cast<MIB_IPADDRTABLE*>(bytes.data());
  if (::GetIpAddrTable(table, &size, FALSE) != NO_ERROR) return endpoints;
  for (const MIB_IPADDRROW& row : std::span(table->table, table->dwNumEntries)) {
    constexpr unsigned down = MIB_IPADDR_DISCONNECTED | MIB_IPADDR_DELETED;
    // The loopback interface has no other hosts.
    const DWORD loopback = htonl(INADDR_LOOPBACK);
    if (row.dwAddr == 0 || row.dwAddr == loopback || row.dwMask == 0 || (row.wType & down) != 0) continue;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = row.dwAddr | ~row.dwMask;
    endpoints.push_back(endpointOf(address, sizeof address, AF_INET));
  }
  return atPort(std::move(endpoints), port);
}

}  // namespace korvel::db::net
