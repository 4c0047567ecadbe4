#include "tests/support/tds/prelogin.h"

#include <array>

#include "tests/support/tds/bytes.h"

namespace korvel::test::tds {
namespace {

enum Option : unsigned { version = 0, encryption = 1, instance = 2, thread = 3, mars = 4, end = 0xFF };

}  // namespace

Prelogin parsePrelogin(std::string_view body) {
  Prelogin wishes;
  ByteReader options(body);
  for (unsigned option = options.byte(); option != Option::end; option = options.byte()) {
    const auto offset = options.big<std::size_t>(2);
    const auto size = options.big<std::size_t>(2);
    if (offset > body.size() || size > body.size() - offset)
      throw ProtocolError("a pre-login option points outside the packet");
    const std::string_view value = body.substr(offset, size);
    if (option == Option::encryption) wishes.encryption = static_cast<EncryptionByte>(ByteReader(value).byte());
    if (option == Option::instance) wishes.instance = std::string(value.substr(0, value.find('\0')));
  }
  return wishes;
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
  const char wish = static_cast<char>(encryptionByte);
  const std::array entries{
      Entry{Option::version, "\x0F\x00\x10\x00\x00\x00"sv},
      Entry{Option::encryption, {&wish, 1}},
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

}  // namespace korvel::test::tds
