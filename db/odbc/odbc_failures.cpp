#include "db/odbc/odbc_failures.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "settings/string_table.h"

namespace korvel::db::odbc {

namespace {

// Numbers that data access users know for failures that the server never numbered.
constexpr std::int32_t timeoutExpired = -2147217871;  // 0x80040E31
constexpr std::int32_t connectionLost = 10054;
constexpr std::int32_t driverNotFound = 126;

constexpr std::int32_t databaseCannotBeOpened = 4060;
/// Logins that the server refuses: unknown or untrusted user, single-user mode, disabled or locked account, password
/// that must be changed.
constexpr std::array<std::int32_t, 8> refusedLogins = {18456, 18452, 18450, 18461, 18470, 18486, 18487, 18488};

/// Sentences about failures that are also events for listeners.
struct EventOfSentence {
  std::string_view key;
  ServerEventKind kind;
};
constexpr std::array<EventOfSentence, 6> eventsOfSentences = {{
    {"failure.loginRefused", ServerEventKind::remoteLoginFailed},
    {"failure.databaseRefused", ServerEventKind::remoteLoginFailed},
    {"failure.loginSilent", ServerEventKind::queryTimeout},
    {"failure.commandTimeout", ServerEventKind::queryTimeout},
    {"failure.loginBroken", ServerEventKind::connectionBroken},
    {"failure.connectionLost", ServerEventKind::connectionBroken},
}};

bool isServersWord(const Diagnostic& diagnostic) {
  return diagnostic.number > 0 && !diagnostic.isInformation() && !diagnostic.tellsOfLostConnection();
}

/// The driver manager found no driver of that name, or could not load it.
bool tellsOfUnusableDriver(const Diagnostic& diagnostic) {
  return diagnostic.state.starts_with("IM") || diagnostic.message.starts_with("Can't open lib");
}

template <typename Condition>
const Diagnostic* firstOf(const std::vector<Diagnostic>& diagnostics, Condition holds) {
  const auto found = std::find_if(diagnostics.begin(), diagnostics.end(), holds);
  return found == diagnostics.end() ? nullptr : &*found;
}

/// The most telling of the messages about a lost connection: the last, for the first ones only say that it is so.
std::string lossOf(const std::vector<Diagnostic>& diagnostics) {
  const auto last = std::find_if(diagnostics.rbegin(), diagnostics.rend(), [](const Diagnostic& diagnostic) {
    return diagnostic.tellsOfLostConnection() && diagnostic.number != 0;
  });
  if (last != diagnostics.rend()) return last->message;
  return diagnostics.empty() ? "the driver says no more" : diagnostics.front().message;
}

}  // namespace

std::string shownAddress(const ServerAddress& address) {
  return address.host + ":" + std::to_string(address.port);
}

Error loginFailure(const std::vector<Diagnostic>& diagnostics, const LoginRequest& request, bool timedOut) {
  using settings::localizedError;
  const std::string server = shownAddress(request.address);
  if (firstOf(diagnostics, [](const Diagnostic& d) { return d.number == databaseCannotBeOpened; }) != nullptr)
    return localizedError(databaseCannotBeOpened, "failure.databaseRefused", {server, request.database});
  if (const Diagnostic* const unusable = firstOf(diagnostics, tellsOfUnusableDriver))
    return localizedError(driverNotFound, "failure.driverUnusable", {request.driver.name, unusable->message});
  const Diagnostic* const refused = firstOf(diagnostics, [](const Diagnostic& d) {
    return std::find(refusedLogins.begin(), refusedLogins.end(), d.number) != refusedLogins.end();
  });
  if (refused != nullptr) return localizedError(refused->number, "failure.loginRefused", {server, refused->message});
  if (const Diagnostic* const said = firstOf(diagnostics, isServersWord)) return {said->number, said->message};
  if (timedOut || firstOf(diagnostics, [](const Diagnostic& d) { return d.tellsOfTimeout(); }) != nullptr)
    return localizedError(timeoutExpired, "failure.loginSilent", {server});
  return localizedError(connectionLost, "failure.loginBroken", {server, lossOf(diagnostics)});
}

std::optional<ServerEvent> eventOfFailure(const std::vector<Diagnostic>& diagnostics, const Error& failure) {
  const auto* const found = std::find_if(eventsOfSentences.begin(), eventsOfSentences.end(),
                                         [&](const EventOfSentence& entry) { return entry.key == failure.textKey(); });
  if (found == eventsOfSentences.end()) return std::nullopt;
  if (found->kind != ServerEventKind::remoteLoginFailed) return ServerEvent{found->kind, failure.description()};
  const Diagnostic* const said =
      firstOf(diagnostics, [&](const Diagnostic& d) { return d.number == failure.number(); });
  if (said == nullptr) return ServerEvent{found->kind, failure.description(), 0, failure.number()};
  return ServerEvent{found->kind, said->message, said->severity, said->number, said->messageState};
}

Error commandFailure(const std::vector<Diagnostic>& diagnostics, const ServerAddress& address,
                     std::chrono::seconds timeout, bool timedOut) {
  using settings::localizedError;
  if (const Diagnostic* const said = firstOf(diagnostics, isServersWord))
    return {said->number, said->message, said->line};
  if (timedOut || firstOf(diagnostics, [](const Diagnostic& d) { return d.tellsOfTimeout(); }) != nullptr)
    return localizedError(timeoutExpired, "failure.commandTimeout",
                          {shownAddress(address), std::to_string(timeout.count())});
  if (firstOf(diagnostics, [](const Diagnostic& d) { return d.tellsOfLostConnection(); }) != nullptr)
    return localizedError(connectionLost, "failure.connectionLost", {shownAddress(address), lossOf(diagnostics)});
  if (const Diagnostic* const error = firstOf(diagnostics, [](const Diagnostic& d) { return !d.isInformation(); }))
    return {unspecifiedFailure, error->message};
  return {unspecifiedFailure, lossOf(diagnostics)};
}

}  // namespace korvel::db::odbc
