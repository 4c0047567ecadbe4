#include "tests/support/tds/session.h"

#include <algorithm>
#include <utility>

#include "tests/support/tds/bytes.h"
#include "tests/support/tds/gss_acceptor.h"

namespace korvel::test::tds {
namespace {

/// The script ends the connection.
struct EndOfScript {};
/// The client wants no more of the answer.
struct Attention {};

const std::string serverName = "PEER";

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

/// What drivers say on their own account; a server has nothing to answer.
bool isSmallTalk(const Command& command) {
  return startsWithWord(command.text, "set") || startsWithWord(command.text, "use") ||
         command.procedure == "sp_prepare" || command.procedure == "sp_unprepare";
}

}  // namespace

Session::Session(Descriptor socket, const Flag& stop, const TlsIdentity& identity, const Script& script,
                 Journal& journal, std::size_t number)
    : channel_(std::move(socket), stop),
      identity_(identity),
      script_(script),
      journal_(journal),
      number_(number),
      manners_(script.manners()) {}

void Session::run() noexcept {
  try {
    converse();
  } catch (const Disconnected&) {
  } catch (const Stopped&) {
  } catch (const EndOfScript&) {
  } catch (const std::exception& error) {
    journal_.note([&](Record& record) { record.complaints.emplace_back(error.what()); });
  }
}

void Session::converse() {
  atMoment(Moment::accepted);
  Protection protection = Protection::none;
  Received message = channel_.receive();
  if (message.type == PacketType::prelogin) {
    protection = prelogin(message);
    message = channel_.receive();
  }
  if (message.type != PacketType::login) throw ProtocolError("no login where one is due");
  login(message, protection);
  atMoment(Moment::loggedIn);
  for (;;) serve(channel_.receive());
}

Protection Session::prelogin(const Received& message) {
  const Prelogin wishes = parsePrelogin(message.body);
  atMoment(Moment::preloginReceived);
  channel_.send(preloginReply(answerTo(wishes.encryption, manners_.encryption)));
  channel_.endMessage();
  atMoment(Moment::preloginAnswered);
  const Protection protection = agreed(wishes.encryption, manners_.encryption);
  if (protection == Protection::impossible) throw EndOfScript{};
  if (protection != Protection::none) channel_.startTls(identity_);
  return protection;
}

void Session::login(const Received& message, Protection protection) {
  Login login = parseLogin(message.body);
  login.loginEncrypted = protection != Protection::none;
  login.sessionEncrypted = protection == Protection::all;
  if (protection == Protection::loginOnly) channel_.endTls();
  channel_.setPacketSize(std::clamp<std::size_t>(login.packetSize == 0 ? 4096 : login.packetSize, 512,
                                                 std::max<std::size_t>(manners_.packetLimit, 512)));
  atMoment(Moment::loginReceived);
  ByteWriter lastWord;
  const bool ticketAccepted = !login.integrated || manners_.keytab.empty() || acceptTicket(login, lastWord);
  journal_.note([&](Record& record) { record.logins.push_back(login); });
  if (!ticketAccepted) refuse({{18452, "Login failed. The login is from an untrusted domain.", 14, 1, 0}});
  if (!manners_.refusal.empty()) refuse(manners_.refusal);
  channel_.send(lastWord.bytes());
  welcome(login);
}

bool Session::acceptTicket(Login& login, ByteWriter& reply) {
  try {
    GssAcceptor acceptor(manners_.keytab);
    std::string answer = acceptor.accept(login.sspi);
    while (!acceptor.done()) {
      ByteWriter token;
      writeSspi(token, answer);
      channel_.send(token.bytes());
      channel_.endMessage();
      const Received next = channel_.receive();
      if (next.type != PacketType::sspi) throw ProtocolError("the client broke off its integrated login");
      answer = acceptor.accept(next.body);
    }
    login.principal = acceptor.principal();
    if (!answer.empty()) writeSspi(reply, answer);
    return true;
  } catch (const TicketRefused& refused) {
    journal_.note([&](Record& record) { record.complaints.emplace_back(refused.what()); });
    return false;
  }
}

void Session::refuse(const std::vector<Message>& reasons) {
  ByteWriter out;
  for (const Message& reason : reasons) writeError(out, reason, serverName);
  writeDone(out, {DoneToken::batch, doneError, 0});
  channel_.send(out.bytes());
  channel_.endMessage();
  throw EndOfScript{};
}

void Session::welcome(const Login& login) {
  const std::string database = login.database.empty() ? "master" : login.database;
  const std::string size = std::to_string(channel_.packetSize());
  ByteWriter out;
  writeChange(out, Change::database, database, "master");
  writeInfo(out, {5701, "Changed database context to '" + database + "'.", 10, 2, 0}, serverName);
  writeCollationChange(out);
  writeChange(out, Change::language, "us_english", "");
  writeInfo(out, {5703, "Changed language setting to us_english.", 10, 1, 0}, serverName);
  writeLoginAcknowledged(out, "Microsoft SQL Server");
  writeChange(out, Change::packetSize, size, size);
  if (login.wantsUtf8) writeUtf8Acknowledged(out);
  writeDone(out, {});
  channel_.send(out.bytes());
  channel_.endMessage();
}

void Session::serve(const Received& message) {
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
      heedAttention();
      return;
    case PacketType::transaction:
      manageTransaction(message.body);
      return;
    default:
      throw ProtocolError("a message that the peer does not know: " + std::to_string(static_cast<int>(message.type)));
  }
}

void Session::reply(const Command& command) {
  std::shared_ptr<const Answer> answer = script_.answerTo(command);
  if (!answer && isSmallTalk(command)) answer = std::make_shared<const Answer>();
  if (!answer) {
    const std::string complaint = "nothing has been scripted for: " + command.text;
    journal_.note([&](Record& record) { record.complaints.push_back(complaint); });
    answer = std::make_shared<const Answer>(Answer().error({50000, complaint}));
  }
  std::optional<std::int32_t> handle;
  if (command.prepares()) {
    handle = static_cast<std::int32_t>(prepared_.size()) + 1;
    prepared_[*handle] = command.text;
  }
  try {
    for (const Step& step : answer->steps()) perform(step);
    channel_.send(answer->ending(command.isCall(), handle));
    channel_.endMessage();
  } catch (const Attention&) {
    heedAttention();
  }
}

void Session::manageTransaction(std::string_view body) {
  constexpr unsigned begin = 5;
  constexpr unsigned commit = 7;
  constexpr unsigned rollback = 8;
  constexpr unsigned beginsAnother = 1;
  ByteReader in(body);
  in.raw(in.little<std::uint32_t>() - 4);  // all the headers that travel before a request
  const auto request = in.little<unsigned>(2);
  ByteWriter out;
  const auto beginOne = [&] {
    writeTransactionChange(out, Change::begun, ++transaction_);
    journal_.note([](Record& record) { record.transactions.emplace_back("begin"); });
  };
  if (request == begin) {
    beginOne();
  } else if (request == commit || request == rollback) {
    writeTransactionChange(out, request == commit ? Change::committed : Change::rolledBack, transaction_);
    journal_.note([&](Record& record) { record.transactions.emplace_back(request == commit ? "commit" : "rollback"); });
    in.raw(in.byte());  // a name
    if ((in.byte() & beginsAnother) != 0) beginOne();
  } else {
    throw ProtocolError("a request about transactions that the peer does not know: " + std::to_string(request));
  }
  writeDone(out, {DoneToken::batch, 0, 0});
  channel_.send(out.bytes());
  channel_.endMessage();
}

void Session::perform(const Step& step) {
  if (!std::holds_alternative<SendTokens>(step)) channel_.flush();
  std::visit(Overloaded{[&](const SendTokens& tokens) {
                          if (channel_.somethingArrived()) readInterruption();
                          channel_.send(tokens.bytes);
                        },
                        [&](const SendRaw& raw) { channel_.sendRaw(raw.bytes); },
                        [&](const WaitFor& wait) {
                          wait.gate.noteReached();
                          if (channel_.waitForArrival(wait.gate.descriptor())) readInterruption();
                        },
                        [&](const StaySilent&) {
                          if (channel_.waitForArrival(-1)) readInterruption();
                        },
                        [&](const Close& close) {
                          if (close.reset) channel_.resetOnClose();
                          throw EndOfScript{};
                        }},
             step);
}

void Session::heedAttention() {
  journal_.note([](Record& record) { ++record.attentions; });
  if (manners_.attentions == AttentionManners::ignored) channel_.ignoreEverything();
  if (manners_.attentionGate) {
    manners_.attentionGate->noteReached();
    channel_.waitFor(manners_.attentionGate->descriptor());
  }
  ByteWriter out;
  writeDone(out, {DoneToken::batch, doneAttention, 0});
  channel_.send(out.bytes());
  channel_.endMessage();
}

void Session::readInterruption() {
  if (channel_.receive().type != PacketType::attention) throw ProtocolError("a command in the middle of an answer");
  throw Attention{};
}

void Session::atMoment(Moment moment) {
  const auto found = manners_.moments.find(moment);
  if (found == manners_.moments.end()) return;
  for (const Step& step : found->second.list()) {
    if (const auto* wait = std::get_if<WaitFor>(&step)) {
      wait->gate.noteReached();
      channel_.waitFor(wait->gate.descriptor());
    } else if (std::holds_alternative<StaySilent>(step)) {
      channel_.ignoreEverything();
    } else {
      perform(step);
    }
  }
}

}  // namespace korvel::test::tds
