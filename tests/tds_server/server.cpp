#include "tests/tds_server/server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>

#include "tests/tds_server/session.h"
#include "tests/tds_server/socket.h"

namespace korvel::test::tds {

TdsServer::TdsServer(std::uint16_t port) {
  LoopbackSocket bound = bindLoopback(SOCK_STREAM, port);
  listener_ = std::move(bound.socket);
  port_ = bound.port;
  listening_ = std::thread([this] { listen(); });
}

TdsServer::~TdsServer() {
  stop();
}

void TdsServer::stop() {
  if (!listening_.joinable()) return;
  stop_.raise();
  listening_.join();
  for (std::thread& connection : connections_) connection.join();
  connections_.clear();
  listener_.reset();
}

void TdsServer::at(Moment moment, const Steps& steps) {
  script_.change([&](Behaviour& behaviour) { behaviour.moments[moment] = steps; });
}

void TdsServer::setEncryption(Encryption encryption) {
  script_.change([&](Behaviour& behaviour) { behaviour.encryption = encryption; });
}

void TdsServer::refuseLogin(const std::vector<Message>& reasons) {
  script_.change([&](Behaviour& behaviour) { behaviour.refusal = reasons; });
}

void TdsServer::ignoreAttentions() {
  script_.change([](Behaviour& behaviour) { behaviour.attentions = AttentionBehaviour::ignored; });
}

void TdsServer::answerAttentionsAt(const Gate& gate) {
  script_.change([&](Behaviour& behaviour) { behaviour.attentionGate = gate; });
}

void TdsServer::limitPackets(std::size_t bytes) {
  script_.change([&](Behaviour& behaviour) { behaviour.packetLimit = bytes; });
}

void TdsServer::checkTickets(const std::filesystem::path& keytab) {
  script_.change([&](Behaviour& behaviour) { behaviour.keytab = keytab; });
}

std::vector<std::string> TdsServer::texts() const {
  std::vector<std::string> texts;
  for (const Command& command : record().commands) texts.push_back(command.text);
  return texts;
}

void TdsServer::listen() {
  std::array<pollfd, 2> ready{pollfd{stop_.descriptor(), POLLIN, 0}, pollfd{listener_.get(), POLLIN, 0}};
  for (;;) {
    if (::poll(ready.data(), ready.size(), -1) < 0) continue;
    if (ready[0].revents != 0) return;
    Descriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (socket.get() >= 0) accept(std::move(socket));
  }
}

void TdsServer::accept(Descriptor socket) {
  const int yes = 1;
  ::setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  std::size_t number = 0;
  journal_.note([&](Record& record) {
    number = record.connections++;
    ++record.openConnections;
  });
  connections_.emplace_back([this, number, client = std::move(socket)]() mutable {
    Session(std::move(client), stop_, identity_, script_, journal_, number).run();
    journal_.note([](Record& record) { --record.openConnections; });
  });
}

}  // namespace korvel::test::tds
