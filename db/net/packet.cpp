#include "db/net/packet.h"

#include <cstdint>

#include "base/error.h"

namespace korvel::db::net {

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

}  // namespace korvel::db::net
