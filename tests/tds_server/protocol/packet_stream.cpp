#include "tests/tds_server/protocol/packet_stream.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>

#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test::tds {
namespace {

constexpr std::size_t headerSize = 8;
constexpr unsigned lastPacketFlag = 0x01;
// Packets are written in batches of about this size: one system call a packet would be slower than the client.
constexpr std::size_t batchSize = std::size_t{64} * 1024;
// A longer message from a client is an error.
constexpr std::size_t longestMessage = std::size_t{64} * 1024 * 1024;

}  // namespace

PacketStream::PacketStream(Descriptor socket, const Flag& stop) : socket_(std::move(socket)), stop_(stop) {}

Received PacketStream::receive() {
  Received message{};
  for (bool last = false; !last;) {
    const std::string head = read(headerSize);
    ByteReader header(head);
    message.type = static_cast<PacketType>(header.byte());
    last = (header.byte() & lastPacketFlag) != 0;
    const auto size = header.big<std::size_t>(2);
    if (size < headerSize) throw ProtocolError("a packet shorter than its header");
    message.body += read(size - headerSize);
    if (message.body.size() > longestMessage) throw ProtocolError("a message is too long");
  }
  return message;
}

bool PacketStream::somethingArrived() {
  pollfd ready{socket_.get(), POLLIN, 0};
  return ::poll(&ready, 1, 0) > 0;
}

bool PacketStream::waitForArrival(int other) {
  std::array<pollfd, 3> ready{pollfd{stop_.descriptor(), POLLIN, 0}, pollfd{socket_.get(), POLLIN, 0},
                              pollfd{other, POLLIN, 0}};
  while (::poll(ready.data(), ready.size(), -1) < 0 && errno == EINTR) {
  }
  if (ready[0].revents != 0) throw Stopped{};
  return ready[1].revents != 0;
}

void PacketStream::ignoreEverything() {
  for (;;) readPlain(batchSize);
}

void PacketStream::send(std::string_view bytes) {
  const std::size_t bodySize = packetSize_ - headerSize;
  if (!message_.empty()) {
    const std::string_view first = bytes.substr(0, bodySize - message_.size());
    message_.append(first);
    bytes.remove_prefix(first.size());
  }
  // A full packet is kept until more is added: the last packet of a message carries a flag.
  if (!bytes.empty() && !message_.empty()) {
    appendPacket(message_, PacketType::reply, false);
    message_.clear();
  }
  for (; bytes.size() > bodySize; bytes.remove_prefix(bodySize))
    appendPacket(bytes.substr(0, bodySize), PacketType::reply, false);
  message_.append(bytes);
}

void PacketStream::flush() {
  if (!message_.empty()) appendPacket(message_, PacketType::reply, false);
  message_.clear();
  writeOut();
}

void PacketStream::endMessage(PacketType type) {
  appendPacket(message_, type, true);
  message_.clear();
  packetNumber_ = 1;
  writeOut();
}

void PacketStream::sendRaw(std::string_view bytes) {
  flush();
  write(bytes);
}

void PacketStream::startTls(const TlsIdentity& identity) {
  auto tls = std::make_unique<TlsServer>(identity);
  for (bool done = false; !done;) {
    const Received part = receive();
    if (part.type != PacketType::prelogin) throw ProtocolError("a TLS handshake was expected");
    tls->feed(part.body);
    done = tls->handshake();
    if (const std::string reply = tls->drain(); !reply.empty()) {
      message_ = reply;
      endMessage(PacketType::prelogin);
    }
  }
  tls_ = std::move(tls);
}

void PacketStream::resetOnClose() {
  const linger now{1, 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

void PacketStream::appendPacket(std::string_view body, PacketType type, bool last) {
  ByteWriter header;
  header.byte(static_cast<unsigned>(type)).byte(last ? lastPacketFlag : 0);
  header.big(body.size() + headerSize, 2).big(0U, 2).byte(packetNumber_++ & 0xFF).byte(0);
  outgoing_.append(header.bytes()).append(body);
  if (outgoing_.size() >= batchSize) writeOut();
}

void PacketStream::writeOut() {
  write(outgoing_);
  outgoing_.clear();
}

void PacketStream::write(std::string_view bytes) {
  if (!tls_) {
    writePlain(bytes);
    return;
  }
  tls_->encrypt(bytes);
  writePlain(tls_->drain());
}

void PacketStream::writePlain(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto sent = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      wait(socket_.get(), POLLOUT);
    } else if (errno != EINTR) {
      throw Disconnected{};
    }
  }
}

std::string PacketStream::read(std::size_t size) {
  std::string bytes;
  while (bytes.size() < size) {
    const std::size_t missing = size - bytes.size();
    if (!tls_) {
      bytes += readPlain(missing);
    } else if (const auto plain = tls_->decrypt(missing)) {
      bytes += *plain;
    } else {
      tls_->feed(readPlain(std::size_t{16} * 1024));
    }
  }
  return bytes;
}

std::string PacketStream::readPlain(std::size_t limit) {
  std::string bytes(limit, '\0');
  for (;;) {
    wait(socket_.get(), POLLIN);
    const auto count = ::recv(socket_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (count > 0) {
      bytes.resize(static_cast<std::size_t>(count));
      return bytes;
    }
    if (count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) throw Disconnected{};
  }
}

void PacketStream::wait(int descriptor, short events) {
  std::array<pollfd, 2> ready{pollfd{stop_.descriptor(), POLLIN, 0}, pollfd{descriptor, events, 0}};
  while (::poll(ready.data(), ready.size(), -1) < 0 && errno == EINTR) {
  }
  if (ready[0].revents != 0) throw Stopped{};
}

}  // namespace korvel::test::tds
