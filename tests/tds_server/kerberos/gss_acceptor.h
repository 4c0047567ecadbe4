#pragma once

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace korvel::test::tds {

/// A ticket was refused; what() is the message of the GSSAPI library.
struct TicketRefused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The server's side of one integrated login: takes the client's tokens and answers with its own until the client is
/// authenticated.
class GssAcceptor {
 public:
  /// `keytab` holds the keys of the accepted services. Throws TicketRefused where it holds none.
  explicit GssAcceptor(const std::filesystem::path& keytab);
  ~GssAcceptor();
  GssAcceptor(const GssAcceptor&) = delete;
  GssAcceptor& operator=(const GssAcceptor&) = delete;

  /// The reply to the client's token, which may be empty. Throws TicketRefused.
  std::string accept(std::string_view token);
  [[nodiscard]] bool done() const;
  /// The client's principal, once done: "auditor@REALM".
  [[nodiscard]] std::string principal() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace korvel::test::tds
