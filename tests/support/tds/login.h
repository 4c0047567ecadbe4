#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace korvel::test::tds {

/// What a client says about itself in its login packet. Texts are UTF-8, as they came: a NUL inside one is kept.
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
  /// The user's own login, and the token that proves it.
  bool integrated = false;
  std::string sspi;
  bool readOnlyIntent = false;
  bool wantsUtf8 = false;
  /// How the login packet travelled, and what came after it.
  bool loginEncrypted = false;
  bool sessionEncrypted = false;
  /// The principal whose ticket was accepted; empty where none was looked at.
  std::string principal;
};

/// Reads the body of a login message. Throws ProtocolError for anything that does not fit together.
[[nodiscard]] Login parseLogin(std::string_view body);

}  // namespace korvel::test::tds
