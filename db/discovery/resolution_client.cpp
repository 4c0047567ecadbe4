#include "db/discovery/resolution_client.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "settings/string_table.h"

namespace korvel::db {

namespace {

constexpr std::int32_t instanceNotFound = 1225;

/// More instances than any network has: bounds the memory that forged replies can take.
constexpr std::size_t mostInstances = 4096;

/// A conversation with one host, at all its addresses: what it says counts whichever of them it comes from, since they
/// share one responder.
class HostInquiry {
 public:
  /// `first` is sent now, and again until a reply arrives, from then on together with `later` where there is such.
  HostInquiry(std::span<const net::Endpoint> host, std::string first, std::string later, const net::Deadline& deadline)
      : first_(std::move(first)), later_(std::move(later)), deadline_(deadline), round_(deadline.within(askAgainTime)) {
    datagrams_.send(host, first_);
  }

  /// The instances of the next reply that names some; none when the time is over or no more replies can come.
  std::vector<InstanceInfo> next() {
    std::vector<std::byte> reply;
    while (datagrams_.expectsAnswers() && !deadline_.passed()) {
      if (!datagrams_.receive(reply, listReplyLimit, round_)) {
        resend();
        continue;
      }
      auto instances = parseResolutionReply(reply, listReplyLimit);
      if (!instances.empty()) return instances;
    }
    return {};
  }

 private:
  void resend() {
    round_ = deadline_.within(askAgainTime);
    datagrams_.resend(first_);
    if (!later_.empty()) datagrams_.resend(later_);
  }

  std::string first_;
  std::string later_;
  net::Deadline deadline_;
  net::Deadline round_;
  net::DatagramSockets datagrams_;
};

}  // namespace

std::uint16_t ResolutionClient::portOfInstance(const std::string& hostName, std::span<const net::Endpoint> host,
                                               const std::string& instance, const net::Deadline& deadline) const {
  const auto fail = [&](const char* key) {
    return settings::localizedError(instanceNotFound, key, {hostName, instance});
  };
  const std::vector<net::Endpoint> responders = net::atPort({host.begin(), host.end()}, port_);
  // Responders say nothing of an instance that they do not know; but they name those that they do.
  HostInquiry inquiry(responders, instanceRequest(instance), hostRequest(), deadline.within(hostReplyTime));
  bool answered = false;
  for (auto found = inquiry.next(); !found.empty(); found = inquiry.next()) {
    answered = true;
    const auto match = std::find_if(found.begin(), found.end(), [&](const InstanceInfo& info) {
      return equalsIgnoringAsciiCase(info.instanceName, instance);
    });
    if (match == found.end()) continue;
    if (!match->tcpPort) throw fail("failure.instanceWithoutTcp");
    return *match->tcpPort;
  }
  throw fail(answered ? "failure.instanceUnknown" : "failure.instanceSilent");
}

std::vector<InstanceInfo> ResolutionClient::instancesOf(const std::string& host) const {
  try {
    const net::Deadline deadline(hostReplyTime);
    const auto found = net::resolveHost(host, port_, deadline);
    return HostInquiry(found.endpoints, hostRequest(), {}, deadline).next();
  } catch (const Error&) {
    return {};  // a host that cannot be found has no instances to show
  }
}

std::vector<InstanceInfo> ResolutionClient::allInstances(std::span<const std::string> hosts,
                                                         std::chrono::milliseconds time) const {
  net::DatagramSockets datagrams;
  datagrams.broadcast(net::broadcastEndpoints(port_), broadcastRequest());
  // Servers answer a broadcast while the names of the hosts are still looked up.
  const net::Deadline deadline(time);
  datagrams.broadcast(net::resolveHosts(hosts, port_, deadline.within(hostReplyTime)), hostRequest());
  std::vector<InstanceInfo> all;
  std::vector<std::byte> reply;
  while (all.size() < mostInstances && datagrams.receive(reply, listReplyLimit, deadline))
    for (InstanceInfo& instance : parseResolutionReply(reply, listReplyLimit)) all.push_back(std::move(instance));
  return all;
}

}  // namespace korvel::db
