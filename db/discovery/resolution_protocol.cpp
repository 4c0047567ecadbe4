#include "db/discovery/resolution_protocol.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/error.h"
#include "base/numbers.h"
#include "base/text.h"

namespace korvel::db {

namespace {

constexpr char broadcastCode = '\x02';
constexpr char hostCode = '\x03';
constexpr char instanceCode = '\x04';
constexpr std::byte replyCode{0x05};
constexpr std::size_t replyHeaderBytes = 3;

constexpr std::size_t longestServerName = 255;
constexpr std::size_t longestInstanceName = 32;
constexpr std::size_t longestVersion = 32;
/// More instances than any host has; a reply that claims more is not worth showing.
constexpr std::size_t mostInstances = 512;

constexpr std::string_view defaultInstance = "MSSQLSERVER";

/// Whether a text may be shown and used as a name: valid UTF-8 without control characters or characters that structure
/// connection strings, no longer than `limit` bytes.
bool isPlainName(std::string_view name, std::size_t limit) {
  if (name.empty() || name.size() > limit || !isValidUtf8(name)) return false;
  return std::none_of(name.begin(), name.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= 0x20U || byte == 0x7FU || std::string_view(";={}'\"\\/,").find(c) != std::string_view::npos;
  });
}

/// Takes the text up to the next semicolon off the front of `rest`. A last piece without one is cut short and not
/// given.
std::optional<std::string_view> takePiece(std::string_view& rest) {
  const auto end = rest.find(';');
  if (end == std::string_view::npos) {
    rest = {};
    return std::nullopt;
  }
  const auto piece = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  return piece;
}

void setProperty(InstanceInfo& instance, std::string_view key, std::string_view value) {
  if (equalsIgnoringAsciiCase(key, "ServerName")) instance.serverName = value;
  if (equalsIgnoringAsciiCase(key, "InstanceName")) instance.instanceName = value;
  if (equalsIgnoringAsciiCase(key, "Version") && isPlainName(value, longestVersion)) instance.version = value;
  if (equalsIgnoringAsciiCase(key, "tcp")) instance.tcpPort = parsePort(value);
}

bool isUsable(const InstanceInfo& instance) {
  return isPlainName(instance.serverName, longestServerName) && isPlainName(instance.instanceName, longestInstanceName);
}

}  // namespace

std::optional<std::uint16_t> parsePort(std::string_view text) {
  const auto port = parseInteger<std::uint16_t>(text);
  return port == 0 ? std::nullopt : port;
}

std::string InstanceInfo::displayName() const {
  if (!equalsIgnoringAsciiCase(instanceName, defaultInstance)) return serverName + "\\" + instanceName;
  constexpr std::uint16_t usualPort = 1433;
  return tcpPort.value_or(usualPort) == usualPort ? serverName : serverName + "," + std::to_string(*tcpPort);
}

std::string broadcastRequest() {
  return {broadcastCode};
}
std::string hostRequest() {
  return {hostCode};
}

std::string instanceRequest(std::string_view instanceName) {
  if (!isPlainName(instanceName, longestInstanceName))
    throw Error(87, "no instance can be named \"" + std::string(instanceName) + "\"");
  std::string request{instanceCode};
  request += instanceName;
  request += '\0';
  return request;
}

std::vector<InstanceInfo> parseResolutionReply(std::span<const std::byte> reply, std::size_t limit) {
  if (reply.size() < replyHeaderBytes || reply[0] != replyCode) return {};
  const std::size_t claimed = std::to_integer<std::size_t>(reply[1]) | (std::to_integer<std::size_t>(reply[2]) << 8U);
  const std::size_t size = std::min({claimed, limit, reply.size() - replyHeaderBytes});
  std::string_view rest(reinterpret_cast<const char*>(reply.data()) + replyHeaderBytes, size);

  std::vector<InstanceInfo> instances;
  InstanceInfo current;
  while (!rest.empty() && instances.size() < mostInstances) {
    const auto key = takePiece(rest);
    if (!key) break;
    if (key->empty()) {  // the second semicolon of two: the instance is complete
      if (isUsable(current)) instances.push_back(current);
      current = {};
      continue;
    }
    const auto value = takePiece(rest);
    if (!value) break;
    setProperty(current, *key, *value);
  }
  return instances;
}

}  // namespace korvel::db
