#include "db/forms/event_echo.h"

#include <array>

namespace korvel::db {
namespace {

struct EchoRow {
  ServerEventKind kind;
  std::string_view heading;
  bool numbered;  ///< severity, number and state before the text
};

constexpr std::array<EchoRow, 5> rows{{
    {ServerEventKind::commandSent, "CommandSent: ", false},
    {ServerEventKind::connectionBroken, "ConnectionBroken: ", false},
    {ServerEventKind::queryTimeout, "QueryTimeout: ", false},
    {ServerEventKind::remoteLoginFailed, "RemoteLoginFailed: ", true},
    {ServerEventKind::serverMessage, "ServerMessage: ", true},
}};

}  // namespace

std::string eventEchoText(const ServerEvent& event) {
  for (const EchoRow& row : rows) {
    if (row.kind != event.kind) continue;
    std::string text = std::string(row.heading) + "\r\n";
    if (row.numbered) {
      text += "Severity: " + std::to_string(event.severity) + "\r\n";
      text += "MessageNumber: " + std::to_string(event.messageNumber) + "\r\n";
      text += "MessageState: " + std::to_string(event.messageState) + "\r\n";
      text += "Message: ";
    }
    return text + event.text;
  }
  return {};
}

}  // namespace korvel::db
