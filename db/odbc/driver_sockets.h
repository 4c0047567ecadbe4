#pragma once

#include <cstdint>
#include <memory>

namespace korvel::db::odbc {

/// The connections that a driver opens to a port inside this process. A driver that waits for a server's word heeds its
/// own timeouts only sometimes; shutting its connection down from outside makes it give up at once. Where the system
/// lets nobody but administrators do so, the driver's own timeout is what ends the wait.
class DriverSockets {
 public:
  DriverSockets();
  ~DriverSockets();
  DriverSockets(const DriverSockets&) = delete;
  DriverSockets& operator=(const DriverSockets&) = delete;

  /// Connections to the port that are opened from here on are taken for the driver's: one login at a time.
  void expect(std::uint16_t port);
  /// The login is over: those that are open now stay known, later ones are somebody else's.
  void keep();
  void shutDown() const noexcept;

 private:
  struct Connections;  // as the system knows them
  std::unique_ptr<Connections> connections_;
};

}  // namespace korvel::db::odbc
