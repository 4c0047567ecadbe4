#include "db/discovery/resolution_client.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/error.h"
#include "base/text.h"
#include "db/net/socket.h"

namespace korvel::db {

namespace {

constexpr std::int32_t instanceNotFound = 1225;

/// More instances than any network has; who answers with more wants to fill our memory.
constexpr std::size_t mostInstances = 4096;

/// Sends `request` to every address of the host; the first reply that parses wins, since they share one responder.
std::vector<InstanceInfo> askHost(const std::string& host, std::uint16_t port, const std::string& request,
                                  std::size_t limit, const net::Deadline& deadline) {
  net::Datagrams datagrams;
  datagrams.ask(net::resolveHost(host, port, deadline).endpoints, request);
  std::vector<std::byte> reply;
  while (datagrams.receive(reply, limit, deadline)) {
    auto instances = parseResolutionReply(reply, limit);
    if (!instances.empty()) return instances;
  }
  return {};
}

}  // namespace

std::uint16_t ResolutionClient::portOfInstance(const std::string& host, const std::string& instance,
                                               const net::Deadline& deadline) const {
  const auto found =
      askHost(host, port_, instanceRequest(instance), instanceReplyLimit, deadline.within(hostReplyTime));
  const auto match = std::find_if(found.begin(), found.end(), [&](const InstanceInfo& info) {
    return equalsIgnoringAsciiCase(info.instanceName, instance);
  });
  if (match == found.end())
    throw Error(instanceNotFound, "the computer " + host + " does not tell the port of an instance named " + instance);
  if (!match->tcpPort)
    throw Error(instanceNotFound, "the instance " + instance + " on " + host + " does not listen on TCP");
  return *match->tcpPort;
}

std::vector<InstanceInfo> ResolutionClient::instancesOf(const std::string& host) const {
  try {
    return askHost(host, port_, hostRequest(), listReplyLimit, net::Deadline(hostReplyTime));
  } catch (const Error&) {
    return {};  // a host that cannot be found has no instances to show
  }
}

std::vector<InstanceInfo> ResolutionClient::allInstances(std::span<const std::string> hosts,
                                                         std::chrono::milliseconds time) const {
  net::Datagrams datagrams;
  datagrams.askOpenly(net::broadcastEndpoints(port_), broadcastRequest());
  // Servers answer a broadcast while the names of the hosts are still looked up.
  const net::Deadline deadline(time);
  datagrams.askOpenly(net::resolveHosts(hosts, port_, deadline.within(hostReplyTime)), hostRequest());
  std::vector<InstanceInfo> all;
  std::vector<std::byte> reply;
  while (all.size() < mostInstances && datagrams.receive(reply, listReplyLimit, deadline))
    for (InstanceInfo& instance : parseResolutionReply(reply, listReplyLimit)) all.push_back(std::move(instance));
  return all;
}

}  // namespace korvel::db
