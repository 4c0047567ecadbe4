#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <vector>

namespace korvel::db {

/// A database as the browser lists it.
struct DatabaseInfo {
  std::string name;
  bool isSystem = false;
  std::string path;  ///< empty where the server does not tell it
};

enum class ServerEventKind { commandSent, connectionBroken, queryTimeout, remoteLoginFailed, serverMessage };

/// Something that happens on a connection while databases are listed. The numbers are the server's, for a failed login
/// and a message only.
struct ServerEvent {
  ServerEventKind kind = ServerEventKind::serverMessage;
  std::string text;
  int severity = 0;
  int messageNumber = 0;
  int messageState = 0;
};

using ServerListener = std::function<void(const ServerEvent&)>;

/// Options of a server object before it connects.
struct BrowserOptions {
  bool secureLogin;       ///< the running user's own login; the only one there is
  bool reconnects;        ///< a connection that breaks is opened once more
  bool prefixesMessages;  ///< names of the components before the server's words; they are never shown
  friend bool operator==(const BrowserOptions&, const BrowserOptions&) = default;
};
[[nodiscard]] constexpr BrowserOptions browserOptions(bool connectionOption) noexcept {
  return connectionOption ? BrowserOptions{true, false, false} : BrowserOptions{true, true, false};
}

/// Finds servers and lists their databases.
class ServerDirectory {
 public:
  virtual ~ServerDirectory() = default;
  /// Receives events, where it is set; called on the thread that lists, within that call.
  ServerListener onEvent;
  /// Ends what is under way on connections to servers. Set before the call that lists.
  std::stop_token stop;
  /// The servers of the network, those that the user's configuration names and those of this computer; by name, each
  /// once.
  virtual std::vector<std::string> networkServers() = 0;
  /// The instances of this computer, the embedded engine among them.
  virtual std::vector<std::string> localServers() = 0;
  /// The databases of a server in the server's order, under the user's own login. Throws Error.
  virtual std::vector<DatabaseInfo> databases(const std::string& server, const BrowserOptions& options) = 0;
};

}  // namespace korvel::db
