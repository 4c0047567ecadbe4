#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "db/net/socket.h"

namespace korvel::db::net {

// The packets of the server's protocol, as far as they are needed before the login.

inline constexpr unsigned char packetTypePreLogin = 0x12;
inline constexpr unsigned char packetTypeReply = 0x04;
inline constexpr std::size_t packetHeaderBytes = 8;
inline constexpr std::size_t largestPacketBody = 4096 - packetHeaderBytes;

struct Packet {
  unsigned char type = 0;
  std::string body;
};

[[nodiscard]] std::string preLoginPacket(std::string_view body, bool last = true);
/// Sends what stands before the login, however long it is; nothing where `bytes` is empty. Throws Error.
void sendPreLogin(const Socket& socket, std::string_view bytes, const Deadline& deadline);
/// The next packet. Throws Error, also for a header that promises less than itself.
[[nodiscard]] Packet receivePacket(const Socket& socket, const Deadline& deadline);

[[nodiscard]] inline unsigned byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}
[[nodiscard]] inline std::size_t wordAt(std::string_view bytes, std::size_t at) {
  return (byteAt(bytes, at) << 8U) | byteAt(bytes, at + 1);
}
void appendWord(std::string& bytes, std::size_t value);

/// Throws the error for an answer that is none of this protocol.
[[noreturn]] void refuseAnswer();

/// The server's answer about encryption, before the login.
enum class ServerEncryption : std::uint8_t { off = 0, on = 1, notSupported = 2, required = 3 };

struct PreLoginAnswer {
  std::string version;  ///< "16.0.1000"
  ServerEncryption encryption = ServerEncryption::notSupported;
};

/// Checks whether a server that has just accepted a connection uses the protocol at all. The driver's own login
/// timeout does not cover a server that accepts and stays silent; this exchange does. Throws Error: a timeout, a
/// connection that was closed, or an answer that is none of this protocol.
[[nodiscard]] PreLoginAnswer exchangePreLogin(const Socket& socket, const Deadline& deadline);

}  // namespace korvel::db::net
