#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvel::test::tds {

/// The server's encryption setting.
enum class Encryption {
  /// Not supported: a client that requires encryption is disconnected.
  unsupported,
  /// Supported, left to the client; where neither side asks for more, the login packet alone is encrypted.
  available,
  /// Required: a client without encryption is disconnected.
  required,
};

/// The result of the negotiation.
enum class Protection { none, loginOnly, all, impossible };

/// The values of the encryption option in a pre-login message.
enum class EncryptionByte : unsigned char { off = 0, on = 1, notSupported = 2, required = 3 };

struct Prelogin {
  EncryptionByte encryption = EncryptionByte::notSupported;
  /// The instance that the client asks for; empty for the default one.
  std::string instance;
};

/// Throws ProtocolError for a message whose options point outside it.
[[nodiscard]] Prelogin parsePrelogin(std::string_view body);
[[nodiscard]] EncryptionByte answerTo(EncryptionByte client, Encryption server);
[[nodiscard]] Protection agreed(EncryptionByte client, Encryption server);
[[nodiscard]] std::string preloginReply(EncryptionByte encryptionByte);

/// The contents of a login packet (LOGIN7). Texts are UTF-8; a NUL inside one is kept.
struct Login {
  std::uint32_t tdsVersion = 0;
  std::uint32_t packetSize = 0;
  std::string host;
  std::string user;
  std::string password;
  std::string application;
  std::string server;
  std::string library;
  std::string language;
  std::string database;
  /// An integrated login, and its first SSPI token.
  bool integrated = false;
  std::string sspi;
  bool readOnlyIntent = false;
  bool wantsUtf8 = false;
  /// Whether the login packet was encrypted, and what follows it.
  bool loginEncrypted = false;
  bool sessionEncrypted = false;
  /// The principal whose ticket was accepted; empty where no ticket was checked.
  std::string principal;
};

/// Reads the body of a login message. Throws ProtocolError for inconsistent contents.
[[nodiscard]] Login parseLogin(std::string_view body);

}  // namespace korvel::test::tds
