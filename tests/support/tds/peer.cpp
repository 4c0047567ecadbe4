#include "tests/support/tds/peer.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>

#include "tests/support/tds/loopback.h"
#include "tests/support/tds/session.h"

namespace korvel::test::tds {

TdsPeer::TdsPeer(std::uint16_t port) {
  LoopbackSocket bound = bindLoopback(SOCK_STREAM, port);
  listener_ = std::move(bound.socket);
  port_ = bound.port;
  listening_ = std::thread([this] { listen(); });
}

TdsPeer::~TdsPeer() {
  stop();
}

void TdsPeer::stop() {
  if (!listening_.joinable()) return;
  stop_.raise();
  listening_.join();
  for (std::thread& connection : connections_) connection.join();
  connections_.clear();
  listener_.reset();
}

void TdsPeer::at(Moment moment, const Steps& steps) {
  script_.change([&](Manners& manners) { manners.moments[moment] = steps; });
}

void TdsPeer::setEncryption(Encryption encryption) {
  script_.change([&](Manners& manners) { manners.encryption = encryption; });
}

void TdsPeer::refuseLogin(const std::vector<Message>& reasons) {
  script_.change([&](Manners& manners) { manners.refusal = reasons; });
}

void TdsPeer::ignoreAttentions() {
  script_.change([](Manners& manners) { manners.attentions = AttentionManners::ignored; });
}

void TdsPeer::answerAttentionsAt(const Gate& gate) {
  script_.change([&](Manners& manners) { manners.attentionGate = gate; });
}

void TdsPeer::limitPackets(std::size_t bytes) {
  script_.change([&](Manners& manners) { manners.packetLimit = bytes; });
}

void TdsPeer::checkTickets(const std::filesystem::path& keytab) {
  script_.change([&](Manners& manners) { manners.keytab = keytab; });
}

std::vector<std::string> TdsPeer::texts() const {
  std::vector<std::string> texts;
  for (const Command& command : record().commands) texts.push_back(command.text);
  return texts;
}

void TdsPeer::listen() {
  std::array<pollfd, 2> ready{pollfd{stop_.descriptor(), POLLIN, 0}, pollfd{listener_.get(), POLLIN, 0}};
  for (;;) {
    if (::poll(ready.data(), ready.size(), -1) < 0) continue;
    if (ready[0].revents != 0) return;
    Descriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (socket.get() >= 0) welcome(std::move(socket));
  }
}

void TdsPeer::welcome(Descriptor socket) {
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
