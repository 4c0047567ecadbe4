#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tests/tds_server/protocol/tls.h"
#include "tests/tds_server/socket.h"

namespace korvel::test::tds {

/// The server is being stopped; every wait ends with this.
struct Stopped {};
/// The client has closed the connection.
struct Disconnected {};

enum class PacketType : unsigned char {
  batch = 1,
  call = 3,
  reply = 4,
  attention = 6,
  transaction = 14,
  login = 16,
  sspi = 17,
  prelogin = 18,
};

/// A complete message: the bodies of its packets, joined.
struct Received {
  PacketType type;
  std::string body;
};

/// The packets of one connection, plain or through TLS. Used by one thread; each wait ends at once when `stop` is
/// raised.
class PacketStream {
 public:
  PacketStream(Descriptor socket, const Flag& stop);

  /// The next message. Throws Disconnected, Stopped, or ProtocolError for malformed packets.
  Received receive();
  /// Whether data from the client (or its end of stream) can be read.
  bool somethingArrived();
  /// Waits until something arrives or `other` becomes readable (-1: nothing else); true for the former.
  bool waitForArrival(int other);

  /// Waits until `other` becomes readable, without reading from the client.
  void waitFor(int other) { wait(other, POLLIN); }
  /// Reads and discards everything until the client closes the connection.
  void ignoreEverything();

  [[nodiscard]] std::size_t packetSize() const { return packetSize_; }
  void setPacketSize(std::size_t size) { packetSize_ = size; }
  /// Adds to the message being sent; full packets are sent.
  void send(std::string_view bytes);
  /// Sends what has been added although the message goes on.
  void flush();
  /// Ends the message.
  void endMessage(PacketType type = PacketType::reply);
  /// Bytes outside any packet.
  void sendRaw(std::string_view bytes);

  /// Does the TLS handshake inside pre-login packets; from then on everything is encrypted.
  void startTls(const TlsIdentity& identity);
  void endTls() { tls_.reset(); }
  /// Closes with a reset instead of an orderly end.
  void resetOnClose();

 private:
  void appendPacket(std::string_view body, PacketType type, bool last);
  void writeOut();
  void write(std::string_view bytes);
  void writePlain(std::string_view bytes);
  /// The next `size` bytes, decrypted.
  std::string read(std::size_t size);
  std::string readPlain(std::size_t limit);
  void wait(int descriptor, short events);

  Descriptor socket_;
  const Flag& stop_;
  std::unique_ptr<TlsServer> tls_;
  std::size_t packetSize_ = 4096;
  std::string message_;   // not yet in a packet
  std::string outgoing_;  // packets not yet written
  unsigned packetNumber_ = 1;
};

}  // namespace korvel::test::tds
