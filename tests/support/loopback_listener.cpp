#include "tests/support/loopback_listener.h"

#include <array>
#include <chrono>
#include <string>

#include "base/error.h"

namespace korvel::test {

using namespace std::chrono_literals;
using db::net::Endpoint;
using db::net::Socket;

namespace {

constexpr auto patience = 20s;

Socket openedFor(db::net::SocketKind kind, std::uint16_t& port) {
  const Endpoint anybody = db::net::resolveHost("127.0.0.1", 0, db::net::Deadline(patience)).endpoints.at(0);
  int error = 0;
  Socket socket = db::net::openSocket(anybody.family, kind, error);
  const bool ready =
      socket.isOpen() && bindToLoopback(socket, port) && (kind == db::net::SocketKind::datagram || listenOn(socket));
  if (!ready) throw Error(error, "cannot listen on 127.0.0.1");
  return socket;
}

}  // namespace

LoopbackListener::LoopbackListener(db::net::SocketKind kind) : socket_(openedFor(kind, port_)) {}

std::vector<Endpoint> LoopbackListener::endpoints() const {
  return db::net::resolveHost("127.0.0.1", port_, db::net::Deadline(patience)).endpoints;
}

bool LoopbackListener::waitForSomebody() const {
  const db::net::Deadline deadline(patience);
  std::vector<bool> ready;
  int error = 0;
  while (!deadline.passed())
    if (db::net::waitUntilReadable({&socket_, 1}, ready, deadline.left(), error) > 0) return true;
  return false;
}

Socket LoopbackListener::accept() const {
  Socket accepted = waitForSomebody() ? acceptOn(socket_) : Socket(db::net::noSocket);
  if (!accepted.isOpen()) throw Error(0, "nobody connects");
  return accepted;
}

bool LoopbackListener::answer(std::string_view reply) const {
  if (!waitForSomebody()) return false;
  const auto sender = senderOf(socket_);
  return sender && db::net::sendTo(socket_, *sender, reply).outcome == db::net::CallOutcome::done;
}

}  // namespace korvel::test
