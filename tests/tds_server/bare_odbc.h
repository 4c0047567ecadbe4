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

/// The diagnostic records of a call: "42S02 208 Invalid object name 'x'."
using Diagnostics = std::vector<std::string>;

/// A client that calls ODBC directly: for tests of the server, and as the reference of a benchmark. Each element of an
/// answer becomes one line of text, in the order of arrival:
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

  /// Timeout of a command in seconds; 0: none.
  void setTimeout(unsigned seconds) { timeout_ = seconds; }
  /// Runs a command and returns its answer.
  std::vector<std::string> execute(const std::string& text);
  /// The same through SQLPrepare and SQLExecute.
  std::vector<std::string> prepareAndExecute(const std::string& text);
  /// Runs a command, reads `rows` rows of its first result, calls `then` while the rest is still to come, and cancels.
  void executeAndLeave(
      const std::string& text, std::size_t rows, const std::function<void()>& then = [] {});
  /// Runs a command and reads everything; returns the number of cells.
  std::size_t executeAndCount(const std::string& text);

 private:
  class Statement;

  void* environment_;
  void* connection_;
  bool connected_ = false;
  unsigned timeout_ = 0;
};

}  // namespace korvel::test
