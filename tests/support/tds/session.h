#pragma once

#include <cstdint>
#include <string_view>

#include "tests/support/tds/channel.h"
#include "tests/support/tds/journal.h"
#include "tests/support/tds/script.h"

namespace korvel::test::tds {

/// One connection from its beginning to its end.
class Session {
 public:
  Session(Descriptor socket, const Flag& stop, const TlsIdentity& identity, const Script& script, Journal& journal,
          std::size_t number);

  /// Talks until the client leaves, the script ends the connection or the peer is stopped. Throws nothing.
  void run() noexcept;

 private:
  void converse();
  Protection prelogin(const Received& message);
  void login(const Received& message, Protection protection);
  bool acceptTicket(Login& login, ByteWriter& reply);
  void refuse(const std::vector<Message>& reasons);
  void welcome(const Login& login);

  void serve(const Received& message);
  void reply(const Command& command);
  void perform(const Step& step);
  void heedAttention();
  void manageTransaction(std::string_view body);
  /// Reads what the client sends in the middle of an answer, which can only be the wish to stop.
  void readInterruption();
  void atMoment(Moment moment);

  Channel channel_;
  const TlsIdentity& identity_;
  const Script& script_;
  Journal& journal_;
  const std::size_t number_;
  const Manners manners_;
  Prepared prepared_;
  std::uint64_t transaction_ = 0;
};

}  // namespace korvel::test::tds
