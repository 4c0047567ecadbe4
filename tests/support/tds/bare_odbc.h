#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace korvel::test {

/// The name under which FreeTDS is registered with the driver manager; nothing where it is not installed.
[[nodiscard]] std::optional<std::string> installedFreeTds();

/// A connection string for FreeTDS to 127.0.0.1. `more` holds further attributes ("Encryption=off;").
[[nodiscard]] std::string freeTdsString(const std::string& driver, std::uint16_t port, const std::string& more = {});

/// A driver's own words: "42S02 208 Invalid object name 'x'."
using Diagnostics = std::vector<std::string>;

/// ODBC with nothing in between, for tests of the peer and as a yardstick. Everything that an answer holds becomes one
/// line of text in the order in which it came:
///
///     [Nr, Name]      a result's columns
///     1, pump         a row; a null is NULL
///     (2)             a row count alone
///     ! 42S02 208 ..  a diagnostic
class BareOdbc {
 public:
  BareOdbc();
  ~BareOdbc();
  BareOdbc(const BareOdbc&) = delete;
  BareOdbc& operator=(const BareOdbc&) = delete;

  /// Nothing on success, the diagnostics otherwise.
  Diagnostics connect(const std::string& connectionString);
  void disconnect();
  [[nodiscard]] bool connected() const { return connected_; }

  /// Seconds after which a command is given up; 0: never.
  void setTimeout(unsigned seconds) { timeout_ = seconds; }
  /// Runs a command and writes down its answer.
  std::vector<std::string> execute(const std::string& text);
  /// The same through SQLPrepare and SQLExecute.
  std::vector<std::string> prepareAndExecute(const std::string& text);
  /// Runs a command, takes `rows` rows of its first result, calls `then` while the rest is still due, and cancels.
  void executeAndLeave(
      const std::string& text, std::size_t rows, const std::function<void()>& then = [] {});
  /// Runs a command, reads everything and keeps nothing; the number of cells.
  std::size_t executeAndCount(const std::string& text);

 private:
  class Statement;

  void* environment_;
  void* connection_;
  bool connected_ = false;
  unsigned timeout_ = 0;
};

}  // namespace korvel::test
