#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <ifaddrs.h>
#include <net/if.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <memory>
#include <random>
#include <set>

#include "base/error.h"
#include "db/discovery/resolution_client.h"
#include "db/discovery/resolution_protocol.h"
#include "tests/db/collected_answer.h"
#include "tests/tds_server/resolution_responder.h"

namespace korvel::db {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using test::tds::Instance;
using test::tds::instanceOn;
using test::tds::resolutionReply;
using test::tds::ResolutionResponder;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

std::vector<InstanceInfo> parsed(const std::string& reply, std::size_t limit = listReplyLimit) {
  return parseResolutionReply(std::as_bytes(std::span(reply)), limit);
}
/// The names to connect to, of a reply that holds exactly this text.
std::vector<std::string> namesIn(const std::string& text) {
  std::vector<std::string> names;
  for (const auto& instance : parsed(resolutionReply(text, static_cast<std::uint16_t>(text.size()))))
    names.push_back(instance.displayName());
  return names;
}

TEST(ResolutionReply, namesInstances) {
  const auto instances =
      parsed(resolutionReply({instanceOn("AUDITSRV", "MSSQLSERVER", 1433), instanceOn("AUDITSRV", "WINCC", 51234)}));
  ASSERT_THAT(instances, SizeIs(2));
  EXPECT_EQ(instances[0].serverName, "AUDITSRV");
  EXPECT_EQ(instances[0].displayName(), "AUDITSRV");
  EXPECT_EQ(instances[1].displayName(), "AUDITSRV\\WINCC");
  EXPECT_EQ(instances[1].tcpPort, 51234);
  EXPECT_FALSE(instances[1].version.empty());
}

TEST(ResolutionReply, aDefaultInstanceOnAnotherPortIsNamedWithIt) {
  EXPECT_THAT(namesIn("ServerName;S;InstanceName;MSSQLSERVER;tcp;14330;;"), ElementsAre("S,14330"));
  EXPECT_THAT(namesIn("ServerName;S;InstanceName;MSSQLSERVER;;"), ElementsAre("S"));
}

TEST(ResolutionReply, readsKeysInAnyOrderAndCase) {
  EXPECT_THAT(namesIn("tcp;1500;instancename;I;SERVERNAME;S;np;\\\\S\\pipe\\sql;;"), ElementsAre("S\\I"));
}

TEST(ResolutionReply, isNeverReadBeyondItsEnd) {
  const std::string whole = resolutionReply({instanceOn("AUDITSRV", "WINCC", 51234), instanceOn("B", "C", 1)});
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const std::string part = whole.substr(0, size);
    const auto exact =
        std::vector<std::byte>(std::as_bytes(std::span(part)).begin(), std::as_bytes(std::span(part)).end());
    EXPECT_LE(parseResolutionReply(exact, listReplyLimit).size(), 1U) << size;
  }
}

TEST(ResolutionReply, wrongLengthsAreIgnored) {
  const std::string text = "ServerName;S;InstanceName;I;tcp;1;;";
  EXPECT_THAT(parsed(resolutionReply(text, 65535)), SizeIs(1));
  EXPECT_THAT(parsed(resolutionReply(text, 10)), IsEmpty());
  EXPECT_THAT(parsed(resolutionReply(text, 0)), IsEmpty());
  EXPECT_THAT(parsed(resolutionReply(text + text, static_cast<std::uint16_t>(2 * text.size())), text.size()),
              SizeIs(1));
}

TEST(ResolutionReply, whatIsNoReplyIsNone) {
  for (const std::string& bytes : {""s, "\x05"s, "\x05\x00"s, "\x05\x00\x00"s, "\x04\x05\x00;;;;;"s, "HTTP/1.1 200 OK"s,
                                   std::string(70'000, ';'), std::string(70'000, '\x05')})
    EXPECT_THAT(parsed(bytes), IsEmpty());
}

TEST(ResolutionReply, namesThatCouldDoHarmAreLeftOut) {
  for (const char* name :
       {"a b", "a{b", "a}b", "a=b", "a'b", "a\"b", "a\\b", "a/b", "a,b", "a\nb", "a\x7F-", "\xff\xfe"}) {
    EXPECT_THAT(namesIn("ServerName;"s + name + ";InstanceName;I;tcp;1;;"), IsEmpty()) << name;
    EXPECT_THAT(namesIn("ServerName;S;InstanceName;"s + name + ";tcp;1;;"), IsEmpty()) << name;
  }
  EXPECT_THAT(namesIn("ServerName;" + std::string(256, 'a') + ";InstanceName;I;;"), IsEmpty());
  EXPECT_THAT(namesIn("ServerName;S;InstanceName;" + std::string(33, 'a') + ";;"), IsEmpty());
  EXPECT_THAT(namesIn("InstanceName;I;;ServerName;S;;"), IsEmpty());
}

TEST(ResolutionReply, portsThatAreNoneAreLeftOut) {
  for (const char* port : {"", "0", "65536", "-1", "14x", " 1433", "99999999999"})
    EXPECT_FALSE(parsed(resolutionReply({{{"ServerName", "S"}, {"InstanceName", "I"}, {"tcp", port}}})).at(0).tcpPort)
        << port;
}

TEST(ResolutionReply, ofAnyBytesIsReadInPeace) {
  std::mt19937 random(4711);
  std::uniform_int_distribution<int> byte(0, 255);
  for (int i = 0; i < 20'000; ++i) {
    std::string reply(static_cast<std::size_t>(byte(random)), '\0');
    for (char& c : reply) c = byte(random) < 60 ? ';' : static_cast<char>(byte(random));
    if (!reply.empty()) reply[0] = '\x05';
    for (const auto& instance : parsed(reply)) {
      EXPECT_LE(instance.serverName.size(), 255U);
      EXPECT_LE(instance.instanceName.size(), 32U);
    }
  }
}

TEST(ResolutionRequest, isOfItsKind) {
  EXPECT_EQ(broadcastRequest(), "\x02");
  EXPECT_EQ(hostRequest(), "\x03");
  EXPECT_EQ(instanceRequest("WINCC"), "\x04WINCC\0"s);
  for (const std::string& name : {""s, "a b"s, "a\0b"s, std::string(33, 'a'), "a;b"s})
    EXPECT_THROW((void)instanceRequest(name), Error) << name;
}

class ResolutionClientTest : public ::testing::Test {
 protected:
  std::uint16_t portOf(const std::string& instance) {
    const net::Deadline deadline(10s);
    return client_.portOfInstance("AUDITSRV", net::resolveHost("localhost", 0, deadline).endpoints, instance, deadline);
  }
  /// The message about an instance whose port is not found.
  std::string reason(const std::string& instance) {
    const auto error = test::errorOf([&] { (void)portOf(instance); });
    if (!error) return "found";
    EXPECT_EQ(error->textArguments(), (std::vector<std::string>{"AUDITSRV", instance}));
    return error->textKey();
  }

  ResolutionResponder server_;
  ResolutionClient client_{server_.port()};
};

TEST_F(ResolutionClientTest, findsThePortOfAnInstance) {
  server_.announce({instanceOn("AUDITSRV", "WINCC", 51234), instanceOn("AUDITSRV", "OTHER", 51235)});
  EXPECT_EQ(portOf("wincc"), 51234);
  EXPECT_TRUE(server_.waitForRequests(1));
  EXPECT_THAT(server_.requests(), ElementsAre("\x04wincc\0"s));
}

TEST_F(ResolutionClientTest, saysWhereThereIsNone) {
  server_.announce({{{"ServerName", "S"}, {"InstanceName", "PIPES"}, {"np", "x"}}});
  EXPECT_EQ(reason("PIPES"), "failure.instanceWithoutTcp");
  server_.replyWith({resolutionReply({instanceOn("S", "ANOTHER", 1)})});
  EXPECT_EQ(reason("WINCC"), "failure.instanceUnknown");
}

TEST_F(ResolutionClientTest, asksASilentHostForAllItsInstances) {
  // Real responders do not answer for an instance that they do not have.
  server_.announce({instanceOn("S", "ANOTHER", 1)});
  EXPECT_EQ(reason("WINCC"), "failure.instanceUnknown");
}

TEST_F(ResolutionClientTest, asksAgainAfterALostDatagram) {
  std::atomic<int> asked = 0;
  server_.replyBy([&](std::string_view request) -> std::vector<std::string> {
    if (asked++ == 0) return {};
    return request.front() == '\x04' ? std::vector{resolutionReply({instanceOn("S", "WINCC", 51234)})}
                                     : std::vector<std::string>{};
  });
  EXPECT_EQ(portOf("WINCC"), 51234);
  asked = 0;
  server_.replyBy([&](std::string_view) -> std::vector<std::string> {
    return asked++ == 0 ? std::vector<std::string>{} : std::vector{resolutionReply({instanceOn("S", "A", 1)})};
  });
  EXPECT_THAT(client_.instancesOf("localhost"), SizeIs(1));
}

TEST_F(ResolutionClientTest, doesNotWaitForASilentHost) {
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(reason("WINCC"), "failure.instanceSilent");
  EXPECT_LT(std::chrono::steady_clock::now() - before, 8s);
  EXPECT_GE(server_.requests().size(), 2U);
}

TEST_F(ResolutionClientTest, waitsForAReplyThatMakesSense) {
  server_.replyWith({"", "\x05", "nonsense", resolutionReply({instanceOn("S", "WINCC", 51234)})});
  EXPECT_EQ(portOf("WINCC"), 51234);
}

TEST_F(ResolutionClientTest, listsTheInstancesOfAHost) {
  server_.announce({instanceOn("S", "A", 1), instanceOn("S", "B", 2)});
  EXPECT_THAT(client_.instancesOf("localhost"), SizeIs(2));
  EXPECT_TRUE(server_.waitForRequests(1));
  EXPECT_THAT(server_.requests(), ElementsAre("\x03"));
  EXPECT_THAT(client_.instancesOf("no-such-computer.invalid"), IsEmpty());
}

TEST_F(ResolutionClientTest, aClosedPortIsReportedAtOnce) {
  std::uint16_t closed = 0;
  {
    const ResolutionResponder gone;
    closed = gone.port();
  }
  EXPECT_THAT(ResolutionClient(closed).instancesOf("localhost"), IsEmpty());
}

TEST_F(ResolutionClientTest, asksManyHostsAtOnce) {
  server_.announce({instanceOn("S", "A", 1)});
  std::vector<std::string> hosts;
  for (int i = 1; i <= 20; ++i) hosts.push_back("127.0.0." + std::to_string(i));  // only the first one listens
  hosts.emplace_back("no-such-computer.invalid");
  const auto before = std::chrono::steady_clock::now();
  const auto found = client_.allInstances(hosts, 1500ms);
  EXPECT_LT(std::chrono::steady_clock::now() - before, 15s);
  EXPECT_THAT(found, SizeIs(1));
}

TEST_F(ResolutionClientTest, allRepliesAreGathered) {
  server_.replyWith({resolutionReply({instanceOn("S", "A", 1)}), "nonsense", resolutionReply({instanceOn("T", "B", 2)}),
                     resolutionReply({instanceOn("S", "A", 1)})});
  const std::vector<std::string> hosts{"127.0.0.1"};
  EXPECT_THAT(client_.allInstances(hosts, 500ms), SizeIs(3));
}

TEST(Broadcast, reachesListenersOnAnInterface) {
  ResolutionResponder everywhere(0, "0.0.0.0");
  everywhere.announce({instanceOn("S", "A", 1)});
  const std::vector<std::string> hosts{"127.255.255.255"};
  EXPECT_THAT(ResolutionClient(everywhere.port()).allInstances(hosts, 1000ms), Not(IsEmpty()));
  // Real interfaces get another request, the broadcast.
  EXPECT_THAT(everywhere.requests(), Contains(hostRequest()));
}

/// "a.b.c.d" of every interface with broadcast, computed from its address and mask.
std::multiset<std::string> broadcastAddresses() {
  std::multiset<std::string> addresses;
  ifaddrs* first = nullptr;
  if (::getifaddrs(&first) != 0) return addresses;
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owner(first, &::freeifaddrs);
  for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
    constexpr unsigned wanted = IFF_UP | IFF_BROADCAST;
    if ((entry->ifa_flags & wanted) != wanted || entry->ifa_addr == nullptr || entry->ifa_netmask == nullptr) continue;
    if (entry->ifa_addr->sa_family != AF_INET) continue;
    sockaddr_in address{};
    sockaddr_in mask{};
    std::memcpy(&address, entry->ifa_addr, sizeof address);
    std::memcpy(&mask, entry->ifa_netmask, sizeof mask);
    addresses.insert(::inet_ntoa({address.sin_addr.s_addr | ~mask.sin_addr.s_addr}));
  }
  return addresses;
}

TEST(Broadcast, goesToEveryInterface) {
  std::multiset<std::string> addresses;
  for (const net::Endpoint& endpoint : net::broadcastEndpoints(1434)) {
    sockaddr_in address{};
    ASSERT_EQ(endpoint.bytes.size(), sizeof address);
    std::memcpy(&address, endpoint.bytes.data(), sizeof address);
    EXPECT_EQ(endpoint.family, AF_INET);
    EXPECT_EQ(ntohs(address.sin_port), 1434);
    addresses.insert(::inet_ntoa(address.sin_addr));
  }
  EXPECT_EQ(addresses, broadcastAddresses());
}

TEST_F(ResolutionClientTest, aFloodIsCutOff) {
  std::vector<Instance> many;
  many.reserve(300);
  for (int i = 0; i < 300; ++i) many.push_back(instanceOn("S", "I" + std::to_string(i), 1));
  server_.replyWith(std::vector<std::string>(40, resolutionReply(many)));
  const std::vector<std::string> hosts{"127.0.0.1"};
  EXPECT_LE(client_.allInstances(hosts, 1000ms).size(), 4096U + 512U);
}

}  // namespace
}  // namespace korvel::db
