#include "tests/tds_server/protocol/login.h"

#include <algorithm>
#include <array>

#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test::tds {
namespace {

enum Option : unsigned { version = 0, encryption = 1, instance = 2, thread = 3, mars = 4, end = 0xFF };

constexpr std::uint8_t integratedFlag = 0x80;
constexpr std::uint8_t readOnlyFlag = 0x20;
constexpr std::uint8_t extensionFlag = 0x10;
constexpr std::uint8_t utf8Feature = 0x0A;
constexpr std::uint8_t lastFeature = 0xFF;

std::string_view fieldAt(std::string_view body, std::size_t offset, std::size_t size) {
  if (offset > body.size() || size > body.size() - offset)
    throw ProtocolError("a login field points outside the packet");
  return body.substr(offset, size);
}

std::string unscrambled(std::string_view scrambled) {
  std::string plain;
  for (const char c : scrambled) {
    const unsigned value = static_cast<unsigned char>(c) ^ 0xA5U;
    plain += static_cast<char>((value << 4 | value >> 4) & 0xFF);
  }
  return plain;
}

bool asksForUtf8(std::string_view body, std::string_view extension) {
  const auto offset = ByteReader(extension).little<std::uint32_t>();
  ByteReader features(fieldAt(body, offset, body.size() - std::min<std::size_t>(offset, body.size())));
  bool found = false;
  for (unsigned feature = features.byte(); feature != lastFeature; feature = features.byte()) {
    found |= feature == utf8Feature;
    features.raw(features.little<std::uint32_t>());
  }
  return found;
}

}  // namespace

Prelogin parsePrelogin(std::string_view body) {
  Prelogin requested;
  ByteReader options(body);
  for (unsigned option = options.byte(); option != Option::end; option = options.byte()) {
    const auto offset = options.big<std::size_t>(2);
    const auto size = options.big<std::size_t>(2);
    if (offset > body.size() || size > body.size() - offset)
      throw ProtocolError("a pre-login option points outside the packet");
    const std::string_view value = body.substr(offset, size);
    if (option == Option::encryption) requested.encryption = static_cast<EncryptionByte>(ByteReader(value).byte());
    if (option == Option::instance) requested.instance = std::string(value.substr(0, value.find('\0')));
  }
  return requested;
}

EncryptionByte answerTo(EncryptionByte client, Encryption server) {
  if (server == Encryption::unsupported) return EncryptionByte::notSupported;
  if (client == EncryptionByte::on || client == EncryptionByte::required) return EncryptionByte::on;
  if (server == Encryption::required) return EncryptionByte::required;
  return client;
}

Protection agreed(EncryptionByte client, Encryption server) {
  const bool clientInsists = client == EncryptionByte::on || client == EncryptionByte::required;
  switch (server) {
    case Encryption::unsupported:
      return clientInsists ? Protection::impossible : Protection::none;
    case Encryption::required:
      return client == EncryptionByte::notSupported ? Protection::impossible : Protection::all;
    case Encryption::available:
      break;
  }
  if (clientInsists) return Protection::all;
  return client == EncryptionByte::off ? Protection::loginOnly : Protection::none;
}

std::string preloginReply(EncryptionByte encryptionByte) {
  struct Entry {
    Option option;
    std::string_view value;
  };
  using namespace std::string_view_literals;
  const char encryptionValue = static_cast<char>(encryptionByte);
  const std::array entries{
      Entry{Option::version, "\x0F\x00\x10\x00\x00\x00"sv},
      Entry{Option::encryption, {&encryptionValue, 1}},
      Entry{Option::instance, "\0"sv},
      Entry{Option::thread, {}},
      Entry{Option::mars, "\0"sv},
  };
  ByteWriter head;
  ByteWriter values;
  const std::size_t headSize = entries.size() * 5 + 1;
  for (const Entry& entry : entries) {
    head.byte(entry.option).big(headSize + values.bytes().size(), 2).big(entry.value.size(), 2);
    values.raw(entry.value);
  }
  head.byte(Option::end);
  return head.take() + values.bytes();
}

Login parseLogin(std::string_view body) {
  Login login;
  ByteReader reader(body);
  if (reader.little<std::uint32_t>() != body.size()) throw ProtocolError("wrong length in a login packet");
  login.tdsVersion = reader.little<std::uint32_t>();
  login.packetSize = reader.little<std::uint32_t>();
  reader.raw(12);  // the client's version, its process, the primary connection
  reader.byte();
  login.integrated = (reader.byte() & integratedFlag) != 0;
  login.readOnlyIntent = (reader.byte() & readOnlyFlag) != 0;
  const bool extended = (reader.byte() & extensionFlag) != 0;
  reader.raw(8);  // time zone and locale

  const auto bytes = [&](std::size_t unitSize) {
    const auto offset = reader.little<std::uint16_t>();
    return fieldAt(body, offset, reader.little<std::uint16_t>() * unitSize);
  };
  login.host = fromUtf16(bytes(2));
  login.user = fromUtf16(bytes(2));
  login.password = fromUtf16(unscrambled(bytes(2)));
  login.application = fromUtf16(bytes(2));
  login.server = fromUtf16(bytes(2));
  const std::string_view extension = bytes(1);
  login.library = fromUtf16(bytes(2));
  login.language = fromUtf16(bytes(2));
  login.database = fromUtf16(bytes(2));
  reader.raw(6);  // the client's network address
  login.sspi = bytes(1);
  if (extended) login.wantsUtf8 = asksForUtf8(body, extension);
  return login;
}

}  // namespace korvel::test::tds
