#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/tds/journal.h"
#include "tests/support/tds/script.h"
#include "tests/support/tds/tls.h"

namespace korvel::test::tds {

/// A server of our own that speaks TDS 7.4 on 127.0.0.1, for as long as the object lives:
///
///     TdsPeer peer;
///     peer.answer("SELECT Nr FROM Pumps", Answer().result({{"Nr", "int"}}).row({1}).row({2}));
///     ... let a driver connect to peer.port() ...
///     EXPECT_THAT(peer.texts(), ElementsAre("SELECT Nr FROM Pumps"));
///
/// What a script does not mention goes its normal way: logins are welcome, SET and USE succeed, any other command is an
/// error 50000 and a complaint. Scripts may be changed at any time; a connection keeps the manners it began with, an
/// answer is looked up when its command arrives. All members may be called from any thread.
class TdsPeer {
 public:
  /// Listens on `port`, or on a port of the system's choice. Throws std::system_error.
  explicit TdsPeer(std::uint16_t port = 0);
  ~TdsPeer();
  TdsPeer(const TdsPeer&) = delete;
  TdsPeer& operator=(const TdsPeer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  /// Ends all connections and stops listening, at once. The record stays.
  void stop();

  // The script.
  /// What is answered to exactly this text, from now on.
  void answer(const std::string& text, Answer answer) { script_.setAnswer(text, std::move(answer)); }
  /// What is answered to every other command; called on the connection's thread.
  void answerOthers(AnswerMaker maker) { script_.setOthers(std::move(maker)); }
  /// What happens at a moment of every connection; Steps() goes back to normal.
  void at(Moment moment, const Steps& steps);
  void setEncryption(Encryption encryption);
  /// Refuses every login with these errors; none: welcomes them again.
  void refuseLogin(const std::vector<Message>& reasons);
  /// Connections from here on read a client's wish to end an answer and say nothing any more.
  void ignoreAttentions();
  /// They answer it when the gate is opened.
  void answerAttentionsAt(const Gate& gate);
  void limitPackets(std::size_t bytes);
  /// Looks at the tickets of integrated logins with the keys of this keytab.
  void checkTickets(const std::filesystem::path& keytab);
  /// The certificate that the peer shows.
  [[nodiscard]] std::string certificatePem() const { return identity_.certificatePem(); }

  // The record.
  [[nodiscard]] Record record() const { return journal_.copy(); }
  /// The commands' texts alone, in order of arrival.
  [[nodiscard]] std::vector<std::string> texts() const;
  /// Waits for something to be on record; false where it did not come about within the test's patience.
  template <class Condition>
  [[nodiscard]] bool waitUntil(Condition holds) const {
    return journal_.waitUntil(holds);
  }
  /// Waits until every client has gone.
  [[nodiscard]] bool waitUntilAlone() const {
    return waitUntil([](const Record& record) { return record.openConnections == 0; });
  }

 private:
  void listen();
  void welcome(Descriptor socket);

  Descriptor listener_;
  std::uint16_t port_ = 0;
  Flag stop_;
  TlsIdentity identity_;
  Script script_;
  Journal journal_;
  std::vector<std::thread> connections_;  // only the listening thread touches it while that runs
  std::thread listening_;
};

}  // namespace korvel::test::tds
