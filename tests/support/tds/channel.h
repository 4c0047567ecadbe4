#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tests/support/tds/descriptor.h"
#include "tests/support/tds/tls.h"

namespace korvel::test::tds {

/// The peer is being stopped; every wait ends with this.
struct Stopped {};
/// The client has gone.
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

/// A whole message: its packets' bodies, joined.
struct Received {
  PacketType type;
  std::string body;
};

/// One connection's bytes, plain or through TLS, cut into packets. Used by one thread; each wait ends at once when
/// `stop` is raised.
class Channel {
 public:
  Channel(Descriptor socket, const Flag& stop);

  /// The next message. Throws Disconnected, Stopped, or ProtocolError for what is no packet.
  Received receive();
  /// Whether something from the client (or its end) waits to be read.
  bool somethingArrived();
  /// Waits until something arrives or `other` becomes readable (-1: nothing else); true for the former.
  bool waitForArrival(int other);

  /// Waits until `other` becomes readable, whatever the client does meanwhile.
  void waitFor(int other) { wait(other, POLLIN); }
  /// Reads and forgets until the client has gone.
  void ignoreEverything();

  [[nodiscard]] std::size_t packetSize() const { return packetSize_; }
  void setPacketSize(std::size_t size) { packetSize_ = size; }
  /// Adds to the message being sent; full packets leave at once.
  void send(std::string_view bytes);
  /// Ships what is there although the message goes on.
  void flush();
  /// Ends the message.
  void endMessage(PacketType type = PacketType::reply);
  /// Bytes outside any packet.
  void sendRaw(std::string_view bytes);

  /// Shakes hands inside packets of the pre-login; from then on all is encrypted.
  void startTls(const TlsIdentity& identity);
  void endTls() { tls_.reset(); }
  /// Closes with a reset instead of an orderly end.
  void resetOnClose();

 private:
  void appendPacket(std::string_view body, PacketType type, bool last);
  void writeOut();
  void write(std::string_view bytes);
  void writePlain(std::string_view bytes);
  /// `size` bytes of the conversation.
  std::string read(std::size_t size);
  std::string readPlain(std::size_t limit);
  void wait(int descriptor, short events);

  Descriptor socket_;
  const Flag& stop_;
  std::unique_ptr<TlsServer> tls_;
  std::size_t packetSize_ = 4096;
  std::string message_;   // what has not yet become a packet
  std::string outgoing_;  // packets on their way
  unsigned packetNumber_ = 1;
};

}  // namespace korvel::test::tds
