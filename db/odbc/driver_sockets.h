#pragma once

#include <cstdint>
#include <memory>

namespace korvel::db::odbc {

/// The connections that a driver opens to a port inside this process. FreeTDS applies its own timeouts only to some of
/// its waits for the server; shutting its connection down makes every wait end at once. SQLCancel and closing the
/// connection handle do not suffice. Without the shutdown these tests hang with FreeTDS 1.3.17 and unixODBC 2.3.11:
/// Stopping.aServerThatIgnoresAttentionsLosesItsConnection,
/// Stopping.aLoginThatIsNotAnsweredIsGivenUpAndOthersDoNotWaitForIt and
/// Stopping.aLoginThatIsStillConnectingIsGivenUpAndOthersDoNotWaitForIt;
/// Stopping.aServerThatIgnoresAttentionsLosesItsConnectionBetweenTwoRowsToo fails. With SQLDisconnect from the watchdog
/// in its place the same three hang and the fourth crashes in the driver. Where the system requires administrator's
/// rights for the shutdown, the driver's own timeout ends the wait.
class DriverSockets {
 public:
  DriverSockets();
  ~DriverSockets();
  DriverSockets(const DriverSockets&) = delete;
  DriverSockets& operator=(const DriverSockets&) = delete;

  /// Connections to the port that are opened from here on are taken for the driver's: one login at a time.
  void expect(std::uint16_t port);
  /// The login is over: the connections that are open now are the driver's, later ones are not.
  void keep();
  void shutDown() const noexcept;

 private:
  struct Connections;  // as the system knows them
  std::unique_ptr<Connections> connections_;
};

}  // namespace korvel::db::odbc
