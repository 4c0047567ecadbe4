#include "db/odbc/login_ticket.h"

namespace korvel::db::odbc {

TicketState acquireTicket(const std::string& /*servicePrincipal*/, const net::Deadline& /*deadline*/) {
  // Who has signed in to Windows can prove it, by a ticket or otherwise; the driver leaves the choice to the system.
  return TicketState::leftToSystem;
}

}  // namespace korvel::db::odbc
