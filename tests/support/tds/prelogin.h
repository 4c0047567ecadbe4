#pragma once

#include <string>
#include <string_view>

namespace korvel::test::tds {

/// What the peer thinks of encryption.
enum class Encryption {
  /// Cannot: a client that insists has to go.
  unsupported,
  /// Can, and leaves it to the client; the login packet alone is encrypted where neither side asks for more.
  available,
  /// Insists: a client that cannot has to go.
  required,
};

/// What the two sides agreed on.
enum class Protection { none, loginOnly, all, impossible };

/// The bytes that stand for a wish in a pre-login message.
enum class EncryptionByte : unsigned char { off = 0, on = 1, notSupported = 2, required = 3 };

struct Prelogin {
  EncryptionByte encryption = EncryptionByte::notSupported;
  /// The instance that the client thinks it talks to; empty for the default one.
  std::string instance;
};

/// Throws ProtocolError for a message whose options point outside it.
[[nodiscard]] Prelogin parsePrelogin(std::string_view body);
[[nodiscard]] EncryptionByte answerTo(EncryptionByte client, Encryption server);
[[nodiscard]] Protection agreed(EncryptionByte client, Encryption server);
[[nodiscard]] std::string preloginReply(EncryptionByte encryptionByte);

}  // namespace korvel::test::tds
