#pragma once

#include <cstdint>
#include <string>

#include "db/net/deadline.h"

namespace korvel::db::odbc {

/// What is known of a user's ticket before he logs in.
enum class TicketState : std::uint8_t {
  valid,
  leftToSystem,  ///< nothing was asked: the system authenticates the user during the login
};

struct Ticket {
  TicketState state = TicketState::leftToSystem;
  std::string holder{};  ///< as whom the user logs in, "auditor@PLANT.EXAMPLE"; empty where that is not known
};

/// Acquires a Kerberos ticket of the running user for that service before the login, because drivers report all
/// failures alike. Throws Error, each with its own sentence: no ticket, an expired one, a service that the login
/// service does not know, a login service that cannot be reached or does not answer by `deadline`.
Ticket acquireTicket(const std::string& servicePrincipal, const net::Deadline& deadline);

}  // namespace korvel::db::odbc
