#include "db/net/socket.h"

#include <algorithm>
#include <future>
#include <map>
#include <utility>

#include "base/error.h"
#include "base/system_errors.h"
#include "db/net/detached_thread.h"
#include "db/net/socket_calls.h"

namespace korvel::db::net {

namespace {

/// Waits until one of the sockets has something to be received; false when the deadline passes first.
bool waitToReceive(std::span<const Socket> sockets, std::vector<bool>& ready, const Deadline& deadline) {
  for (;;) {
    int error = 0;
    const int count = waitUntilReadable(sockets, ready, deadline.left(), error);
    if (count > 0) return true;
    if (count < 0) throw systemError(error, "cannot wait for the network");
    if (deadline.passed()) return false;
  }
}

bool waitToSend(const Socket& socket, const Deadline& deadline) {
  for (;;) {
    int error = 0;
    const int count = waitUntilWritable(socket, deadline.left(), error);
    if (count > 0) return true;
    if (count < 0) throw systemError(error, "cannot wait for the network");
    if (deadline.passed()) return false;
  }
}

/// Nothing on success, else the error number.
int tryConnect(const Socket& socket, const Endpoint& endpoint, const Deadline& deadline) {
  const CallResult result = startConnect(socket, endpoint);
  if (result.outcome == CallOutcome::done) return 0;
  if (result.outcome != CallOutcome::later) return result.error;
  if (!waitToSend(socket, deadline)) return socketErrors.timedOut;
  return pendingError(socket);
}

/// A resolver that hangs must not hang the viewer.
std::future<Lookup> startLookup(const std::string& host, std::uint16_t port) {
  return runDetached([host, port] { return lookUp(host, port); });
}

bool isDone(const std::future<Lookup>& lookup, const Deadline& deadline) {
  return lookup.wait_for(deadline.left()) == std::future_status::ready;
}

}  // namespace

bool isTimeout(int systemErrorNumber) noexcept {
  return systemErrorNumber == socketErrors.timedOut;
}

HostEntry resolveHost(const std::string& host, std::uint16_t port, const Deadline& deadline) {
  const std::string what = "cannot find the computer " + host;
  std::future<Lookup> pending = startLookup(host, port);
  if (!isDone(pending, deadline)) throw systemError(socketErrors.timedOut, what);
  Lookup lookup = pending.get();
  if (lookup.error != 0 && lookup.text.empty()) throw systemError(lookup.error, what);
  if (lookup.error != 0) throw Error(lookup.error, what + ": " + lookup.text);
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
  constexpr unsigned byteBits = 8;
  for (Endpoint& endpoint : endpoints) {
    endpoint.bytes.at(portOffset) = static_cast<char>(static_cast<unsigned char>(port >> byteBits));
    endpoint.bytes.at(portOffset + 1) = static_cast<char>(static_cast<unsigned char>(port));
  }
  return endpoints;
}

Socket connectTcp(std::span<const Endpoint> endpoints, const Deadline& deadline) {
  int lastError = socketErrors.noAddress;
  std::size_t remaining = endpoints.size();
  for (const Endpoint& endpoint : endpoints) {
    // An address that drops packets must not use up the time of those after it.
    const Deadline share(deadline.left() / static_cast<long>(remaining--));
    Socket socket = openSocket(endpoint.family, SocketKind::stream, lastError);
    if (socket.isOpen()) lastError = tryConnect(socket, endpoint, share);
    if (socket.isOpen() && lastError == 0) return socket;
  }
  throw systemError(lastError, "cannot connect");
}

void sendAll(const Socket& socket, std::string_view bytes, const Deadline& deadline) {
  while (!bytes.empty()) {
    const CallResult sent = sendSome(socket, bytes);
    if (sent.outcome == CallOutcome::done) {
      bytes.remove_prefix(sent.bytes);
      continue;
    }
    if (sent.outcome != CallOutcome::later) throw systemError(sent.error, "cannot send");
    if (!waitToSend(socket, deadline)) throw systemError(socketErrors.timedOut, "cannot send");
  }
}

std::string receiveExactly(const Socket& socket, std::size_t size, const Deadline& deadline) {
  std::string bytes(size, '\0');
  std::vector<bool> ready;
  std::size_t got = 0;
  while (got < size) {
    const CallResult received = receiveSome(socket, std::as_writable_bytes(std::span(bytes)).subspan(got));
    if (received.outcome == CallOutcome::done) {
      if (received.bytes == 0) throw systemError(socketErrors.closedByOther, "the other side closed the connection");
      got += received.bytes;
      continue;
    }
    if (received.outcome != CallOutcome::later) throw systemError(received.error, "cannot receive");
    if (!waitToReceive({&socket, 1}, ready, deadline)) throw systemError(socketErrors.timedOut, "no answer");
  }
  return bytes;
}

void DatagramSockets::send(std::span<const Endpoint> endpoints, std::string_view request) {
  for (const Endpoint& endpoint : endpoints) {
    int error = 0;
    Socket socket = openSocket(endpoint.family, SocketKind::datagram, error);
    if (!socket.isOpen()) continue;
    if (startConnect(socket, endpoint).outcome != CallOutcome::done) continue;
    if (sendSome(socket, request).outcome != CallOutcome::done) continue;
    sockets_.push_back(std::move(socket));
  }
}

void DatagramSockets::resend(std::string_view request) {
  // The refusal of the question before is reported here, too.
  std::erase_if(sockets_,
                [&](const Socket& socket) { return sendSome(socket, request).outcome == CallOutcome::refused; });
}

void DatagramSockets::broadcast(std::span<const Endpoint> endpoints, std::string_view request) {
  std::map<int, Socket> byFamily;
  for (const Endpoint& endpoint : endpoints) {
    auto found = byFamily.find(endpoint.family);
    if (found == byFamily.end()) {
      int error = 0;
      found = byFamily.emplace(endpoint.family, openSocket(endpoint.family, SocketKind::datagram, error)).first;
      enableBroadcast(found->second);
    }
    (void)sendTo(found->second, endpoint, request);  // networks that refuse are no error
  }
  for (auto& [family, socket] : byFamily)
    if (socket.isOpen()) sockets_.push_back(std::move(socket));
}

bool DatagramSockets::receive(std::vector<std::byte>& bytes, std::size_t limit, const Deadline& deadline) {
  std::vector<bool> ready;
  while (!sockets_.empty()) {
    if (!waitToReceive(sockets_, ready, deadline)) return false;
    for (std::size_t i = sockets_.size(); i-- > 0;) {
      if (!ready[i]) continue;
      bytes.resize(limit);
      const CallResult received = receiveSome(sockets_[i], bytes);
      if (received.outcome == CallOutcome::done) {
        bytes.resize(received.bytes);
        return true;
      }
      // A connected socket reports that the port of its host is closed.
      if (received.outcome != CallOutcome::later) sockets_.erase(sockets_.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  return false;
}

}  // namespace korvel::db::net
