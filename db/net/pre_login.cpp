#include "db/net/pre_login.h"

#include <cstddef>
#include <string_view>

#include "base/error.h"

namespace korvel::db::net {

namespace {

constexpr unsigned char optionVersion = 0x00;
constexpr unsigned char optionEncryption = 0x01;
constexpr unsigned char optionTerminator = 0xFF;
constexpr std::size_t optionBytes = 5;

std::string request() {
  constexpr std::size_t versionBytes = 6;
  constexpr std::size_t tableBytes = 2 * optionBytes + 1;
  std::string body;
  body.push_back(static_cast<char>(optionVersion));
  appendWord(body, tableBytes);
  appendWord(body, versionBytes);
  body.push_back(static_cast<char>(optionEncryption));
  appendWord(body, tableBytes + versionBytes);
  appendWord(body, 1);
  body.push_back(static_cast<char>(optionTerminator));
  body.append(versionBytes, '\0');
  body.push_back(static_cast<char>(ServerEncryption::on));

  return preLoginPacket(body);
}

/// Whether the option was the one about encryption, without which there is no answer.
bool readOption(PreLoginAnswer& answer, unsigned option, std::string_view value) {
  if (option == optionVersion && value.size() >= 4)
    answer.version = std::to_string(byteAt(value, 0)) + "." + std::to_string(byteAt(value, 1)) + "." +
                     std::to_string(wordAt(value, 2));
  if (option == optionEncryption && !value.empty()) {
    if (byteAt(value, 0) > static_cast<unsigned>(ServerEncryption::required)) refuseAnswer();
    answer.encryption = static_cast<ServerEncryption>(byteAt(value, 0));
    return true;
  }
  return false;
}

}  // namespace

void appendWord(std::string& bytes, std::size_t value) {
  bytes.push_back(static_cast<char>(static_cast<unsigned char>(value >> 8U)));
  bytes.push_back(static_cast<char>(static_cast<unsigned char>(value & 0xFFU)));
}

std::string preLoginPacket(std::string_view body, bool last) {
  std::string packet;
  packet.push_back(static_cast<char>(packetTypePreLogin));
  packet.push_back(last ? '\x01' : '\x00');
  appendWord(packet, packetHeaderBytes + body.size());
  packet.append(4, '\0');
  packet += body;
  return packet;
}

void sendPreLogin(const Socket& socket, std::string_view bytes, const Deadline& deadline) {
  while (!bytes.empty()) {
    const std::string_view part = bytes.substr(0, largestPacketBody);
    bytes.remove_prefix(part.size());
    sendAll(socket, preLoginPacket(part, bytes.empty()), deadline);
  }
}

Packet receivePacket(const Socket& socket, const Deadline& deadline) {
  const std::string header = receiveExactly(socket, packetHeaderBytes, deadline);
  const std::size_t size = wordAt(header, 2);
  // The type is looked at first: what is no packet at all must not make us wait for bytes that never come.
  const auto type = static_cast<unsigned char>(header[0]);
  if ((type != packetTypePreLogin && type != packetTypeReply) || size < packetHeaderBytes) refuseAnswer();
  return {type, receiveExactly(socket, size - packetHeaderBytes, deadline)};
}

void refuseAnswer() {
  constexpr std::int32_t internalErrorThere = 1359;
  throw Error(internalErrorThere, "the answer is none of the server's protocol");
}

PreLoginAnswer exchangePreLogin(const Socket& socket, const Deadline& deadline) {
  sendAll(socket, request(), deadline);
  const auto [type, body] = receivePacket(socket, deadline);
  if (type != packetTypeReply || body.empty()) refuseAnswer();

  PreLoginAnswer answer;
  bool complete = false;
  for (std::size_t at = 0; at < body.size() && byteAt(body, at) != optionTerminator; at += optionBytes) {
    if (at + optionBytes > body.size()) refuseAnswer();
    const std::size_t offset = wordAt(body, at + 1);
    const std::size_t length = wordAt(body, at + 3);
    if (offset + length > body.size()) refuseAnswer();
    complete |= readOption(answer, byteAt(body, at), std::string_view(body).substr(offset, length));
  }
  if (!complete) refuseAnswer();
  return answer;
}

}  // namespace korvel::db::net
