#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "db/net/socket.h"

namespace korvel::db::odbc {

/// The connections that a driver opens to a port inside this process. A driver that waits for a server's word heeds its
/// own timeouts only sometimes; shutting its connection down from outside makes it give up at once.
class DriverSockets {
 public:
  /// Connections to the port that are opened from here on are taken for the driver's: one login at a time.
  void expect(std::uint16_t port);
  /// The login is over: those that are open now stay known, later ones are somebody else's.
  void keep();
  void shutDown() const noexcept;

 private:
  std::uint16_t port_ = 0;  ///< 0: nothing is expected
  std::set<int> before_;
  /// Descriptors of our own to the same connections: a number that the driver gives back may be anybody's next.
  std::vector<net::Socket> own_;
};

}  // namespace korvel::db::odbc
