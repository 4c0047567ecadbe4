// Sockets over loopback, on every system.
#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <string>

#include "db/net/pre_login.h"
#include "db/net/tls_handshake.h"
#include "tests/db/collected_answer.h"
#include "tests/support/loopback_listener.h"

namespace korvel::db::net {
namespace {

using namespace std::chrono_literals;
using test::errorOf;
using test::LoopbackListener;

constexpr auto patience = 20s;
constexpr auto shortly = 50ms;

/// Two ends of one connection.
struct Pair {
  LoopbackListener listener;
  Socket near = connectTcp(listener.endpoints(), Deadline(patience));
  Socket far = listener.accept();
};

/// A port on which no socket listens.
std::vector<Endpoint> closedPort(SocketKind kind = SocketKind::stream) {
  return LoopbackListener(kind).endpoints();
}

TEST(Sockets, carryBytesBothWays) {
  const Pair pair;
  sendAll(pair.near, "question", Deadline(patience));
  EXPECT_EQ(receiveExactly(pair.far, 8, Deadline(patience)), "question");
  sendAll(pair.far, std::string("an\0swer", 7), Deadline(patience));
  EXPECT_EQ(receiveExactly(pair.near, 2, Deadline(patience)), "an");
  EXPECT_EQ(receiveExactly(pair.near, 5, Deadline(patience)), std::string("\0swer", 5));
}

TEST(Sockets, sendMoreThanTheSystemHoldsAtOnce) {
  const Pair pair;
  const std::string much(16'000'000, 'x');
  auto received =
      std::async(std::launch::async, [&] { return receiveExactly(pair.far, much.size(), Deadline(patience)) == much; });
  sendAll(pair.near, much, Deadline(patience));
  EXPECT_TRUE(received.get());
}

TEST(Sockets, stopSendingToAPeerThatDoesNotRead) {
  const Pair pair;
  const std::string much(64'000'000, 'x');
  const auto error = errorOf([&] { sendAll(pair.near, much, Deadline(shortly)); });
  ASSERT_TRUE(error);
  EXPECT_TRUE(isTimeout(error->number())) << error->number();
}

TEST(Sockets, stopWaitingForASilentPeer) {
  const Pair pair;
  const auto error = errorOf([&] { (void)receiveExactly(pair.near, 1, Deadline(shortly)); });
  ASSERT_TRUE(error);
  EXPECT_TRUE(isTimeout(error->number())) << error->number();
  EXPECT_FALSE(error->description().empty());
}

TEST(Sockets, sayThatTheOtherSideHasClosed) {
  Pair pair;
  sendAll(pair.far, "ab", Deadline(patience));
  pair.far = Socket(noSocket);
  const auto error = errorOf([&] { (void)receiveExactly(pair.near, 3, Deadline(patience)); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), socketErrors.closedByOther);
}

TEST(Sockets, areRefusedAtOnceOnAClosedPort) {
  const auto error = errorOf([] { (void)connectTcp(closedPort(), Deadline(patience)); });
  ASSERT_TRUE(error);
  EXPECT_NE(error->number(), 0);
  EXPECT_FALSE(isTimeout(error->number()));
}

TEST(Sockets, goOnToTheNextAddress) {
  const LoopbackListener listener;
  std::vector<Endpoint> endpoints = closedPort();
  endpoints.push_back(listener.endpoints().at(0));
  const Socket near = connectTcp(endpoints, Deadline(patience));
  const Socket far = listener.accept();
  sendAll(far, "x", Deadline(patience));
  EXPECT_EQ(receiveExactly(near, 1, Deadline(patience)), "x");
}

TEST(Sockets, ofAHostWithoutAnAddressAreNone) {
  const auto error = errorOf([] { (void)connectTcp({}, Deadline(patience)); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), socketErrors.noAddress);
}

TEST(Hosts, areLookedUpByNameAndAddress) {
  EXPECT_FALSE(resolveHost("localhost", 1, Deadline(patience)).endpoints.empty());
  const auto found = resolveHost("127.0.0.1", 0x1234, Deadline(patience)).endpoints;
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found[0].bytes.substr(portOffset, 2), "\x12\x34");
  EXPECT_EQ(atPort(found, 0xABCD)[0].bytes.substr(portOffset, 2), "\xAB\xCD");
  EXPECT_EQ(atPort(found, 0xABCD)[0].bytes.substr(portOffset + 2, 4), std::string("\x7F\0\0\x01", 4));
}

TEST(Hosts, thatAreUnknownAreAnErrorWithItsReason) {
  const auto error = errorOf([] { (void)resolveHost("no-such-computer.invalid", 1, Deadline(patience)); });
  ASSERT_TRUE(error);
  EXPECT_NE(error->number(), 0);
  EXPECT_FALSE(isTimeout(error->number()));
  EXPECT_THAT(error->description(), ::testing::StartsWith("cannot find the computer no-such-computer.invalid: "));
}

TEST(Hosts, areNotWaitedForBeyondTheDeadline) {
  // On a busy machine the answer may arrive first.
  constexpr int mostAttempts = 20;
  std::optional<Error> error;
  for (int i = 0; i < mostAttempts && !(error && isTimeout(error->number())); ++i)
    error = errorOf([] { (void)resolveHost("no-such-computer.invalid", 1, Deadline(0ms)); });
  ASSERT_TRUE(error);
  EXPECT_TRUE(isTimeout(error->number())) << error->number() << ' ' << error->description();
}

TEST(DatagramSockets, receiveTheirAnswer) {
  const LoopbackListener listener(SocketKind::datagram);
  DatagramSockets datagrams;
  datagrams.send(listener.endpoints(), "who");
  ASSERT_TRUE(listener.answer("me"));
  std::vector<std::byte> bytes;
  ASSERT_TRUE(datagrams.receive(bytes, 100, Deadline(patience)));
  EXPECT_EQ(bytes.size(), 2U);
}

TEST(DatagramSockets, takeOfALongAnswerWhatTheyAskedFor) {
  const LoopbackListener listener(SocketKind::datagram);
  DatagramSockets datagrams;
  datagrams.send(listener.endpoints(), "who");
  ASSERT_TRUE(listener.answer("somebody"));
  std::vector<std::byte> bytes;
  ASSERT_TRUE(datagrams.receive(bytes, 4, Deadline(patience)));
  EXPECT_EQ(bytes.size(), 4U);
}

TEST(DatagramSockets, reportAClosedPort) {
  DatagramSockets datagrams;
  datagrams.send(closedPort(SocketKind::datagram), "who");
  std::vector<std::byte> bytes;
  EXPECT_FALSE(datagrams.receive(bytes, 100, Deadline(shortly)));
  // Some systems report it only at the second call.
  constexpr int mostQuestions = 1000;
  for (int i = 0; i < mostQuestions && datagrams.expectsAnswers(); ++i) datagrams.resend("who");
  EXPECT_FALSE(datagrams.expectsAnswers());
}

TEST(DatagramSockets, thatAskEverybodyOutliveARefusal) {
  const LoopbackListener listener(SocketKind::datagram);
  std::vector<Endpoint> everybody = closedPort(SocketKind::datagram);
  everybody.push_back(listener.endpoints().at(0));
  DatagramSockets datagrams;
  datagrams.broadcast(everybody, "who");
  ASSERT_TRUE(listener.answer("me"));
  std::vector<std::byte> bytes;
  ASSERT_TRUE(datagrams.receive(bytes, 100, Deadline(patience)));
  EXPECT_EQ(bytes.size(), 2U);
  EXPECT_TRUE(datagrams.expectsAnswers());
}

TEST(DatagramSockets, waitNoLongerThanTheDeadline) {
  const LoopbackListener silent(SocketKind::datagram);
  DatagramSockets datagrams;
  datagrams.send(silent.endpoints(), "who");
  std::vector<std::byte> bytes;
  EXPECT_FALSE(datagrams.receive(bytes, 100, Deadline(shortly)));
  EXPECT_TRUE(datagrams.expectsAnswers());
}

TEST(BroadcastAddresses, haveThePort) {
  for (const Endpoint& endpoint : broadcastEndpoints(0x1234))
    EXPECT_EQ(endpoint.bytes.substr(portOffset, 2), "\x12\x34");
}

TEST(Greeting, ofAServerThatIsSilentIsATimeout) {
  const Pair pair;
  const auto error = errorOf([&] { (void)exchangePreLogin(pair.near, Deadline(shortly)); });
  ASSERT_TRUE(error);
  EXPECT_TRUE(isTimeout(error->number()));
}

/// The result of a handshake with a server that does this after the client's first message.
template <typename Deed>
std::optional<Error> handshakeError(std::chrono::milliseconds time, const Deed& deed) {
  Pair pair;
  auto asked = std::async(std::launch::async, [&] {
    (void)receivePacket(pair.far, Deadline(patience));
    deed(pair.far);
  });
  const auto error = errorOf([&] { (void)performTlsHandshake(pair.near, "localhost", {}, Deadline(time)); });
  asked.get();
  return error;
}

TEST(TlsHandshake, withASilentServerIsATimeout) {
  const auto error = handshakeError(1s, [](Socket&) {});
  ASSERT_TRUE(error);
  EXPECT_TRUE(isTimeout(error->number())) << error->number() << error->description();
}

TEST(TlsHandshake, withAServerThatClosesReportsIt) {
  const auto error = handshakeError(patience, [](Socket& far) { far = Socket(noSocket); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), socketErrors.closedByOther);
}

TEST(TlsHandshake, withAServerThatRefusesFails) {
  const auto error = handshakeError(patience, [](Socket& far) {
    sendPreLogin(far, std::string_view("\x15\x03\x03\x00\x02\x02\x28", 7), Deadline(patience));
  });
  ASSERT_TRUE(error);
  EXPECT_FALSE(isTimeout(error->number()));
  EXPECT_NE(error->number(), socketErrors.closedByOther);
  EXPECT_FALSE(error->description().empty());
}

}  // namespace
}  // namespace korvel::db::net
