#include <winsock2.h>
// After the sockets, whose types it uses.
#include <iphlpapi.h>

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>
#include <vector>

#include "db/odbc/driver_sockets.h"

namespace korvel::db::odbc {

namespace {

/// The system promises nothing about the upper half of a port.
constexpr DWORD portBits = 0xFFFF;

/// A connection as the system's table names it: by both of its ends, in network order.
struct Ends {
  DWORD localAddress = 0;
  DWORD localPort = 0;
  DWORD remoteAddress = 0;
  DWORD remotePort = 0;

  friend bool operator==(const Ends&, const Ends&) = default;
};

bool contains(const std::vector<Ends>& list, const Ends& ends) {
  return std::find(list.begin(), list.end(), ends) != list.end();
}

/// The connections of this process to a port. Those of IPv6 are left out: the system ends none of them.
std::vector<Ends> connectionsTo(std::uint16_t port) {
  const auto fill = [](void* table, DWORD& size) {
    return ::GetExtendedTcpTable(table, &size, FALSE, AF_INET, TCP_TABLE_OWNER_PID_CONNECTIONS, 0);
  };
  std::vector<std::byte> bytes;
  DWORD size = 0;
  DWORD result = fill(nullptr, size);
  // The table may grow between two calls.
  while (result == ERROR_INSUFFICIENT_BUFFER) {
    bytes.resize(size);
    result = fill(bytes.data(), size);
  }
  std::vector<Ends> found;
  if (result != NO_ERROR || bytes.size() < sizeof(MIB_TCPTABLE_OWNER_PID)) return found;
  const auto* const table = reinterpret_cast<const MIB_TCPTABLE_OWNER_PID*>(bytes.data());
  for (const MIB_TCPROW_OWNER_PID& row : std::span(table->table, table->dwNumEntries))
    if (row.dwOwningPid == ::GetCurrentProcessId() && (row.dwRemotePort & portBits) == ::htons(port))
      found.push_back({row.dwLocalAddr, row.dwLocalPort & portBits, row.dwRemoteAddr, row.dwRemotePort & portBits});
  return found;
}

/// Without an administrator's rights the system refuses.
void end(const Ends& ends) noexcept {
  MIB_TCPROW row{};
  row.dwState = MIB_TCP_STATE_DELETE_TCB;
  row.dwLocalAddr = ends.localAddress;
  row.dwLocalPort = ends.localPort;
  row.dwRemoteAddr = ends.remoteAddress;
  row.dwRemotePort = ends.remotePort;
  ::SetTcpEntry(&row);
}

}  // namespace

struct DriverSockets::Connections {
  std::uint16_t port = 0;  ///< 0: nothing is expected
  std::vector<Ends> before;
  std::vector<Ends> own;
};

DriverSockets::DriverSockets() : connections_(std::make_unique<Connections>()) {}

DriverSockets::~DriverSockets() = default;

void DriverSockets::expect(std::uint16_t port) {
  connections_->port = port;
  connections_->before = connectionsTo(port);
}

void DriverSockets::keep() {
  for (const Ends& ends : connectionsTo(connections_->port))
    if (!contains(connections_->before, ends)) connections_->own.push_back(ends);
  connections_->port = 0;
}

void DriverSockets::shutDown() const noexcept {
  for (const Ends& ends : connections_->own) end(ends);
  if (connections_->port == 0) return;
  try {
    for (const Ends& ends : connectionsTo(connections_->port))
      if (!contains(connections_->before, ends)) end(ends);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory there is nothing that could be ended
  }
}

}  // namespace korvel::db::odbc
