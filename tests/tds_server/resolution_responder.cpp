#include "tests/tds_server/resolution_responder.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "tests/tds_server/protocol/bytes.h"
#include "tests/tds_server/socket.h"

namespace korvel::test::tds {
namespace {

constexpr char oneInstance = 0x04;
constexpr unsigned replyMark = 0x05;
constexpr std::size_t longestDatagram = 65'507;

bool sameName(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

bool isNamed(const Instance& instance, std::string_view name) {
  return std::any_of(instance.begin(), instance.end(),
                     [&](const auto& pair) { return pair.first == "InstanceName" && sameName(pair.second, name); });
}

}  // namespace

Instance instanceOn(std::string server, std::string name, std::uint16_t port) {
  return {{"ServerName", std::move(server)},
          {"InstanceName", std::move(name)},
          {"IsClustered", "No"},
          {"Version", "15.0.2000.5"},
          {"tcp", std::to_string(port)}};
}

std::string resolutionReply(const std::vector<Instance>& instances) {
  std::string text;
  for (const Instance& instance : instances) {
    for (const auto& [name, value] : instance) text.append(name).append(";").append(value).append(";");
    text += ";";
  }
  return resolutionReply(text, static_cast<std::uint16_t>(text.size()));
}

std::string resolutionReply(std::string_view text, std::uint16_t claimedLength) {
  return ByteWriter().byte(replyMark).little(claimedLength).raw(text).take();
}

ResolutionResponder::ResolutionResponder(std::uint16_t port, const char* address) {
  LoopbackSocket bound = bindLoopback(SOCK_DGRAM, port, address);
  socket_ = std::move(bound.socket);
  port_ = bound.port;
  listening_ = std::thread([this] { listen(); });
}

ResolutionResponder::~ResolutionResponder() {
  stop_.raise();
  listening_.join();
}

void ResolutionResponder::announce(std::vector<Instance> instances) {
  replyBy([all = std::move(instances)](std::string_view request) -> std::vector<std::string> {
    if (request.empty()) return {};
    std::vector<Instance> wanted = all;
    if (request.front() == oneInstance) {
      const std::string name(request.substr(1, request.find('\0', 1) - 1));
      std::erase_if(wanted, [&](const Instance& instance) { return !isNamed(instance, name); });
    }
    if (wanted.empty()) return {};
    return {resolutionReply(wanted)};
  });
}

void ResolutionResponder::replyWith(std::vector<std::string> datagrams) {
  replyBy([fixed = std::move(datagrams)](std::string_view) { return fixed; });
}

void ResolutionResponder::replyBy(Replies replies) {
  const std::lock_guard lock(mutex_);
  replies_ = std::move(replies);
}

std::vector<std::string> ResolutionResponder::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

bool ResolutionResponder::waitForRequests(std::size_t count) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, testTimeout, [&] { return requests_.size() >= count; });
}

void ResolutionResponder::listen() {
  std::array<pollfd, 2> ready{pollfd{stop_.descriptor(), POLLIN, 0}, pollfd{socket_.get(), POLLIN, 0}};
  std::vector<char> buffer(longestDatagram);
  for (;;) {
    if (::poll(ready.data(), ready.size(), -1) < 0) continue;
    if (ready[0].revents != 0) return;
    sockaddr_in client{};
    socklen_t size = sizeof client;
    auto* const address = reinterpret_cast<sockaddr*>(&client);
    const auto count = ::recvfrom(socket_.get(), buffer.data(), buffer.size(), 0, address, &size);
    if (count < 0) continue;
    const std::string request(buffer.data(), static_cast<std::size_t>(count));
    Replies replies;
    {
      const std::lock_guard lock(mutex_);
      replies = replies_;
    }
    const std::vector<std::string> datagrams = replies ? replies(request) : std::vector<std::string>();
    for (const std::string& datagram : datagrams)
      ::sendto(socket_.get(), datagram.data(), datagram.size(), 0, address, size);
    // Recorded after the reply is sent: a test that waits for the request may look for the reply at once.
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
    changed_.notify_all();
  }
}

}  // namespace korvel::test::tds
