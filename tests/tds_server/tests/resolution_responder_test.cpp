#include "tests/tds_server/resolution_responder.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "tests/tds_server/socket.h"

namespace korvel::test::tds {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

/// A client that sends a request and reads replies.
class Client {
 public:
  explicit Client(std::uint16_t port, const char* address = "127.0.0.1")
      : port_(port), address_(address), socket_(bindLoopback(SOCK_DGRAM).socket) {}

  void ask(const std::string& request) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port_);
    address.sin_addr.s_addr = ::inet_addr(address_);
    ASSERT_EQ(::sendto(socket_.get(), request.data(), request.size(), 0, reinterpret_cast<const sockaddr*>(&address),
                       sizeof address),
              static_cast<ssize_t>(request.size()));
  }
  std::string reply() {
    pollfd ready{socket_.get(), POLLIN, 0};
    if (::poll(&ready, 1, 20'000) != 1) return "nothing";
    return take();
  }
  /// What has arrived by now.
  std::string take() {
    std::string bytes(65'536, '\0');
    const auto size = ::recv(socket_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (size < 0) return "nothing";
    bytes.resize(static_cast<std::size_t>(size));
    return bytes;
  }

 private:
  std::uint16_t port_;
  const char* address_;
  Descriptor socket_;
};

TEST(ResolutionResponder, AnnouncesItsInstances) {
  ResolutionResponder responder;
  responder.announce({instanceOn("PLANT7", "MSSQLSERVER", 1433), instanceOn("PLANT7", "AUDIT", 50123)});
  Client client(responder.port());
  client.ask("\x03");
  EXPECT_EQ(client.reply(),
            "\x05\xAB\x00"s
            "ServerName;PLANT7;InstanceName;MSSQLSERVER;IsClustered;No;Version;15.0.2000.5;tcp;1433;;"
            "ServerName;PLANT7;InstanceName;AUDIT;IsClustered;No;Version;15.0.2000.5;tcp;50123;;"s);
  client.ask(
      "\x04"
      "audit\0"s);
  EXPECT_EQ(client.reply(),
            "\x05\x53\x00ServerName;PLANT7;InstanceName;AUDIT;IsClustered;No;Version;15.0.2000.5;tcp;50123;;"s);
  ASSERT_TRUE(responder.waitForRequests(2));
  EXPECT_THAT(responder.requests(), ElementsAre("\x03"s,
                                                "\x04"
                                                "audit\0"s));
}

TEST(ResolutionResponder, DoesNotReplyForUnknownInstances) {
  ResolutionResponder responder;
  responder.announce({instanceOn("PLANT7", "AUDIT", 50123)});
  Client client(responder.port());
  client.ask(
      "\x04"
      "OTHER\0"s);
  ASSERT_TRUE(responder.waitForRequests(1));
  EXPECT_EQ(client.take(), "nothing");
}

TEST(ResolutionResponder, SeveralHostsShareAPort) {
  ResolutionResponder first;
  ResolutionResponder second(first.port(), "127.0.0.2");
  first.replyWith({"first"});
  second.replyWith({"second"});
  Client one(first.port());
  Client other(second.port(), "127.0.0.2");
  one.ask("\x03");
  other.ask("\x03");
  EXPECT_EQ(one.reply(), "first");
  EXPECT_EQ(other.reply(), "second");
}

TEST(ResolutionResponder, SendsAnyDatagrams) {
  ResolutionResponder responder;
  responder.replyWith({"nonsense", resolutionReply("ServerName;X", 65'535), ""});
  Client client(responder.port());
  client.ask("\x02");
  EXPECT_EQ(client.reply(), "nonsense");
  EXPECT_EQ(client.reply(), "\x05\xFF\xFFServerName;X");
  EXPECT_EQ(client.reply(), "");
}

}  // namespace
}  // namespace korvel::test::tds
