#include "tests/tds_server/session.h"

#include <algorithm>
#include <utility>

#include "tests/tds_server/kerberos/gss_acceptor.h"
#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test::tds {
namespace {

/// The script ends the connection.
struct EndOfScript {};
/// The client has sent an attention: it wants no more of the answer.
struct Attention {};

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

bool startsWithWord(const std::string& text, std::string_view word) {
  return text.size() > word.size() && text[word.size()] == ' ' &&
         std::equal(word.begin(), word.end(), text.begin(), [](char a, char b) { return a == (b | 0x20); });
}

/// Commands that drivers send without being asked to; the server answers them with an empty result.
bool isSessionSetup(const Command& command) {
  return startsWithWord(command.text, "set") || startsWithWord(command.text, "use") ||
         command.procedure == "sp_prepare" || command.procedure == "sp_unprepare";
}

}  // namespace

Session::Session(Descriptor socket, const Flag& stop, const TlsIdentity& identity, const Script& script,
                 Journal& journal, std::size_t number)
    : packets_(std::move(socket), stop),
      identity_(identity),
      script_(script),
      journal_(journal),
      number_(number),
      behaviour_(script.behaviour()) {}

void Session::run() noexcept {
  try {
    serveConnection();
  } catch (const Disconnected&) {
  } catch (const Stopped&) {
  } catch (const EndOfScript&) {
  } catch (const std::exception& error) {
    journal_.note([&](Record& record) { record.problems.emplace_back(error.what()); });
  }
}

void Session::serveConnection() {
  atMoment(Moment::accepted);
  Protection protection = Protection::none;
  Received message = packets_.receive();
  if (message.type == PacketType::prelogin) {
    protection = prelogin(message);
    message = packets_.receive();
  }
  if (message.type != PacketType::login) throw ProtocolError("a login was expected");
  login(message, protection);
  atMoment(Moment::loggedIn);
  for (;;) handleMessage(packets_.receive());
}

Protection Session::prelogin(const Received& message) {
  const Prelogin requested = parsePrelogin(message.body);
  atMoment(Moment::preloginReceived);
  packets_.send(preloginReply(answerTo(requested.encryption, behaviour_.encryption)));
  packets_.endMessage();
  atMoment(Moment::preloginAnswered);
  const Protection protection = agreed(requested.encryption, behaviour_.encryption);
  if (protection == Protection::impossible) throw EndOfScript{};
  if (protection != Protection::none) packets_.startTls(identity_);
  return protection;
}

void Session::login(const Received& message, Protection protection) {
  Login login = parseLogin(message.body);
  login.loginEncrypted = protection != Protection::none;
  login.sessionEncrypted = protection == Protection::all;
  if (protection == Protection::loginOnly) packets_.endTls();
  packets_.setPacketSize(std::clamp<std::size_t>(login.packetSize == 0 ? 4096 : login.packetSize, 512,
                                                 std::max<std::size_t>(behaviour_.packetLimit, 512)));
  atMoment(Moment::loginReceived);
  ByteWriter finalToken;
  const bool ticketAccepted = !login.integrated || behaviour_.keytab.empty() || acceptTicket(login, finalToken);
  journal_.note([&](Record& record) { record.logins.push_back(login); });
  if (!ticketAccepted) refuse({{18452, "Login failed. The login is from an untrusted domain.", 14, 1, 0}});
  if (!behaviour_.refusal.empty()) refuse(behaviour_.refusal);
  packets_.send(finalToken.bytes());
  acknowledgeLogin(login);
}

bool Session::acceptTicket(Login& login, ByteWriter& reply) {
  try {
    GssAcceptor acceptor(behaviour_.keytab);
    std::string answer = acceptor.accept(login.sspi);
    while (!acceptor.done()) {
      ByteWriter token;
      writeSspi(token, answer);
      packets_.send(token.bytes());
      packets_.endMessage();
      const Received next = packets_.receive();
      if (next.type != PacketType::sspi) throw ProtocolError("the client aborted its integrated login");
      answer = acceptor.accept(next.body);
    }
    login.principal = acceptor.principal();
    if (!answer.empty()) writeSspi(reply, answer);
    return true;
  } catch (const TicketRefused& refused) {
    journal_.note([&](Record& record) { record.problems.emplace_back(refused.what()); });
    return false;
  }
}

void Session::refuse(const std::vector<Message>& reasons) {
  ByteWriter out;
  for (const Message& reason : reasons) writeError(out, reason);
  writeDone(out, {DoneToken::batch, doneError, 0});
  packets_.send(out.bytes());
  packets_.endMessage();
  throw EndOfScript{};
}

void Session::acknowledgeLogin(const Login& login) {
  const std::string database = login.database.empty() ? "master" : login.database;
  const std::string size = std::to_string(packets_.packetSize());
  ByteWriter out;
  writeEnvironmentChange(out, EnvironmentChange::database, database, "master");
  writeInfo(out, {5701, "Changed database context to '" + database + "'.", 10, 2, 0});
  writeCollationChange(out);
  writeEnvironmentChange(out, EnvironmentChange::language, "us_english", "");
  writeInfo(out, {5703, "Changed language setting to us_english.", 10, 1, 0});
  writeLoginAcknowledged(out, "Microsoft SQL Server");
  writeEnvironmentChange(out, EnvironmentChange::packetSize, size, size);
  if (login.wantsUtf8) writeUtf8Acknowledged(out);
  writeDone(out, {});
  packets_.send(out.bytes());
  packets_.endMessage();
}

void Session::handleMessage(const Received& message) {
  switch (message.type) {
    case PacketType::batch:
    case PacketType::call: {
      Command command =
          message.type == PacketType::batch ? parseBatch(message.body) : parseCall(message.body, prepared_);
      command.connection = number_;
      journal_.note([&](Record& record) { record.commands.push_back(command); });
      reply(command);
      return;
    }
    case PacketType::attention:
      acknowledgeAttention();
      return;
    case PacketType::transaction:
      handleTransaction(message.body);
      return;
    default:
      throw ProtocolError("unknown message type: " + std::to_string(static_cast<int>(message.type)));
  }
}

void Session::reply(const Command& command) {
  std::shared_ptr<const Answer> answer = script_.answerTo(command);
  if (!answer && isSessionSetup(command)) answer = std::make_shared<const Answer>();
  if (!answer) {
    const std::string problem = "nothing has been scripted for: " + command.text;
    journal_.note([&](Record& record) { record.problems.push_back(problem); });
    answer = std::make_shared<const Answer>(Answer().error({50000, problem}));
  }
  std::optional<std::int32_t> handle;
  if (command.prepares()) {
    handle = static_cast<std::int32_t>(prepared_.size()) + 1;
    prepared_[*handle] = command.text;
  }
  try {
    for (const Step& step : answer->steps()) perform(step);
    packets_.send(answer->ending(command.isCall(), handle));
    packets_.endMessage();
  } catch (const Attention&) {
    acknowledgeAttention();
  }
}

void Session::handleTransaction(std::string_view body) {
  constexpr unsigned begin = 5;
  constexpr unsigned commit = 7;
  constexpr unsigned rollback = 8;
  constexpr unsigned beginsAnother = 1;
  ByteReader in(body);
  skipHeaders(in);
  const auto request = in.little<unsigned>(2);
  ByteWriter out;
  const auto beginTransaction = [&] {
    writeTransactionChange(out, EnvironmentChange::begun, ++transaction_);
    journal_.note([](Record& record) { record.transactions.emplace_back("begin"); });
  };
  if (request == begin) {
    beginTransaction();
  } else if (request == commit || request == rollback) {
    writeTransactionChange(out, request == commit ? EnvironmentChange::committed : EnvironmentChange::rolledBack,
                           transaction_);
    journal_.note([&](Record& record) { record.transactions.emplace_back(request == commit ? "commit" : "rollback"); });
    in.raw(in.byte());  // a name
    if ((in.byte() & beginsAnother) != 0) beginTransaction();
  } else {
    throw ProtocolError("unknown transaction request: " + std::to_string(request));
  }
  writeDone(out, {DoneToken::batch, 0, 0});
  packets_.send(out.bytes());
  packets_.endMessage();
}

void Session::perform(const Step& step) {
  if (!std::holds_alternative<SendTokens>(step)) packets_.flush();
  std::visit(Overloaded{[&](const SendTokens& tokens) {
                          if (packets_.somethingArrived()) readInterruption();
                          packets_.send(tokens.bytes);
                        },
                        [&](const SendRaw& raw) { packets_.sendRaw(raw.bytes); },
                        [&](const WaitFor& wait) {
                          wait.gate.noteReached();
                          if (packets_.waitForArrival(wait.gate.descriptor())) readInterruption();
                        },
                        [&](const StaySilent&) {
                          if (packets_.waitForArrival(-1)) readInterruption();
                        },
                        [&](const Close& close) {
                          if (close.reset) packets_.resetOnClose();
                          throw EndOfScript{};
                        }},
             step);
}

void Session::acknowledgeAttention() {
  journal_.note([](Record& record) { ++record.attentions; });
  if (behaviour_.attentions == AttentionBehaviour::ignored) packets_.ignoreEverything();
  if (behaviour_.attentionGate) {
    behaviour_.attentionGate->noteReached();
    packets_.waitFor(behaviour_.attentionGate->descriptor());
  }
  ByteWriter out;
  writeDone(out, {DoneToken::batch, doneAttention, 0});
  packets_.send(out.bytes());
  packets_.endMessage();
}

void Session::readInterruption() {
  if (packets_.receive().type != PacketType::attention)
    throw ProtocolError("a command was received in the middle of an answer");
  throw Attention{};
}

void Session::atMoment(Moment moment) {
  const auto found = behaviour_.moments.find(moment);
  if (found == behaviour_.moments.end()) return;
  for (const Step& step : found->second.list()) {
    if (const auto* wait = std::get_if<WaitFor>(&step)) {
      wait->gate.noteReached();
      packets_.waitFor(wait->gate.descriptor());
    } else if (std::holds_alternative<StaySilent>(step)) {
      packets_.ignoreEverything();
    } else {
      perform(step);
    }
  }
}

}  // namespace korvel::test::tds
