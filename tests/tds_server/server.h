#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/tds_server/journal.h"
#include "tests/tds_server/protocol/tls.h"
#include "tests/tds_server/script.h"

namespace korvel::test::tds {

/// A TDS 7.4 server on 127.0.0.1 that answers from a script, for as long as the object lives:
///
///     TdsServer server;
///     server.answer("SELECT Nr FROM Pumps", Answer().result({{"Nr", "int"}}).row({1}).row({2}));
///     ... let a driver connect to server.port() ...
///     EXPECT_THAT(server.texts(), ElementsAre("SELECT Nr FROM Pumps"));
///
/// Without a script every login is accepted, SET and USE succeed, and any other command is answered with error 50000
/// and noted as a problem. Scripts may be changed at any time: a connection keeps the behaviour that was set when it
/// was accepted, an answer is looked up when its command arrives. All members may be called from any thread.
class TdsServer {
 public:
  /// Listens on `port`, or on a port of the system's choice. Throws std::system_error.
  explicit TdsServer(std::uint16_t port = 0);
  ~TdsServer();
  TdsServer(const TdsServer&) = delete;
  TdsServer& operator=(const TdsServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  /// Ends all connections and stops listening at once. The record is kept.
  void stop();

  // The script.
  /// Sets the answer to exactly this text.
  void answer(const std::string& text, Answer answer) { script_.setAnswer(text, std::move(answer)); }
  /// Sets the answer to every other command; `maker` is called on the connection's thread.
  void answerOthers(AnswerMaker maker) { script_.setOthers(std::move(maker)); }
  /// Sets what happens at a moment of every connection; Steps(): nothing special.
  void at(Moment moment, const Steps& steps);
  void setEncryption(Encryption encryption);
  /// Refuses every login with these errors; empty: accepts logins again.
  void refuseLogin(const std::vector<Message>& reasons);
  /// Connections accepted from here on read an attention and send nothing any more.
  void ignoreAttentions();
  /// Connections accepted from here on answer an attention when the gate is opened.
  void answerAttentionsAt(const Gate& gate);
  void limitPackets(std::size_t bytes);
  /// Checks the tickets of integrated logins with the keys of this keytab.
  void checkTickets(const std::filesystem::path& keytab);
  /// The server's certificate.
  [[nodiscard]] std::string certificatePem() const { return identity_.certificatePem(); }

  // The record.
  [[nodiscard]] Record record() const { return journal_.copy(); }
  /// The texts of the commands, in order of arrival.
  [[nodiscard]] std::vector<std::string> texts() const;
  /// Waits for a condition on the record; false after `testTimeout`.
  template <class Condition>
  [[nodiscard]] bool waitUntil(Condition holds) const {
    return journal_.waitUntil(holds);
  }
  /// Waits until every connection has ended.
  [[nodiscard]] bool waitUntilDisconnected() const {
    return waitUntil([](const Record& record) { return record.openConnections == 0; });
  }

 private:
  void listen();
  void accept(Descriptor socket);

  Descriptor listener_;
  std::uint16_t port_ = 0;
  Flag stop_;
  TlsIdentity identity_;
  Script script_;
  Journal journal_;
  std::vector<std::thread> connections_;  // used by the listening thread alone while that runs
  std::thread listening_;
};

}  // namespace korvel::test::tds
