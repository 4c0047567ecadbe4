#pragma once

#include <cstdint>
#include <string_view>

#include "tests/tds_server/journal.h"
#include "tests/tds_server/protocol/packet_stream.h"
#include "tests/tds_server/script.h"

namespace korvel::test::tds {

/// Serves one connection: pre-login, login, then one message after another.
class Session {
 public:
  Session(Descriptor socket, const Flag& stop, const TlsIdentity& identity, const Script& script, Journal& journal,
          std::size_t number);

  /// Returns when the client closes the connection, the script ends it or the server is stopped. Throws nothing.
  void run() noexcept;

 private:
  void serveConnection();
  Protection prelogin(const Received& message);
  void login(const Received& message, Protection protection);
  bool acceptTicket(Login& login, ByteWriter& reply);
  void refuse(const std::vector<Message>& reasons);
  void acknowledgeLogin(const Login& login);

  void handleMessage(const Received& message);
  void reply(const Command& command);
  void perform(const Step& step);
  void acknowledgeAttention();
  void handleTransaction(std::string_view body);
  /// Reads what the client sends in the middle of an answer; only an attention is allowed there.
  void readInterruption();
  void atMoment(Moment moment);

  PacketStream packets_;
  const TlsIdentity& identity_;
  const Script& script_;
  Journal& journal_;
  const std::size_t number_;
  const Behaviour behaviour_;
  Prepared prepared_;
  std::uint64_t transaction_ = 0;
};

}  // namespace korvel::test::tds
