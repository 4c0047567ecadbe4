#include "tests/support/tds/login.h"

#include <algorithm>

#include "tests/support/tds/bytes.h"

namespace korvel::test::tds {
namespace {

constexpr std::uint8_t integratedFlag = 0x80;
constexpr std::uint8_t readOnlyFlag = 0x20;
constexpr std::uint8_t extensionFlag = 0x10;
constexpr std::uint8_t utf8Feature = 0x0A;
constexpr std::uint8_t lastFeature = 0xFF;

std::string_view partAt(std::string_view body, std::size_t offset, std::size_t size) {
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
  ByteReader features(partAt(body, offset, body.size() - std::min<std::size_t>(offset, body.size())));
  bool found = false;
  for (unsigned feature = features.byte(); feature != lastFeature; feature = features.byte()) {
    found |= feature == utf8Feature;
    features.raw(features.little<std::uint32_t>());
  }
  return found;
}

}  // namespace

Login parseLogin(std::string_view body) {
  Login login;
  ByteReader reader(body);
  if (reader.little<std::uint32_t>() != body.size()) throw ProtocolError("a login packet lies about its length");
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
    return partAt(body, offset, reader.little<std::uint16_t>() * unitSize);
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
