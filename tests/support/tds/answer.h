#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tests/support/tds/gate.h"
#include "tests/support/tds/tokens.h"

namespace korvel::test::tds {

/// Bytes of the answer's token stream, to travel in packets.
struct SendTokens {
  std::string bytes;
};
/// Bytes that go onto the connection as they stand, with no packet around them.
struct SendRaw {
  std::string bytes;
};
struct WaitFor {
  Gate gate;
};
/// Says nothing more until the client gives up or the peer is stopped.
struct StaySilent {};
/// Ends the connection; `reset` does it the rude way.
struct Close {
  bool reset = false;
};
using Step = std::variant<SendTokens, SendRaw, WaitFor, StaySilent, Close>;

/// What the peer does at a moment of the conversation where it would otherwise simply go on.
class Steps {
 public:
  Steps& raw(std::string bytes) { return add(SendRaw{std::move(bytes)}); }
  Steps& waitFor(const Gate& gate) { return add(WaitFor{gate}); }
  Steps& silence() { return add(StaySilent{}); }
  Steps& close() { return add(Close{}); }
  Steps& reset() { return add(Close{true}); }
  [[nodiscard]] const std::vector<Step>& list() const { return steps_; }

 private:
  Steps& add(Step step) {
    steps_.push_back(std::move(step));
    return *this;
  }
  std::vector<Step> steps_;
};

/// What the peer answers to a command, written down as it is to be seen:
///
///     Answer().result({{"Nr", "int"}, {"Name", "nvarchar(30)"}}).row({1, "pump"}).row({2, null})
///             .print("one more").result({{"Nr", "int"}}).error({208, "Invalid object name 'x'."})
///
/// A result ends where the next thing begins, and the answer ends in good order, unless the script says otherwise.
/// Everything is encoded while it is written down; sending costs nothing but copying.
class Answer {
 public:
  /// The results are those of a procedure, called by its bare name. Stands before everything else.
  Answer& procedure();

  Answer& result(std::vector<Column> columns);
  Answer& row(const std::vector<Value>& values);
  /// The same row in the form that names its nulls in a bitmap.
  Answer& bitmapRow(const std::vector<Value>& values);
  /// `count` rows; `make` gets the row's number from 0.
  Answer& rows(std::size_t count, const std::function<std::vector<Value>(std::size_t)>& make);
  /// Ends the open result.
  Answer& done();
  /// A result without columns: "(n rows affected)".
  Answer& affected(std::uint64_t rows);
  /// What PRINT says. Inside an open result the text comes between its rows.
  Answer& print(const std::string& text);
  /// A message of severity up to 10; like print, but with a number.
  Answer& warning(Message message);
  /// An error; ends the open result, which keeps its rows.
  Answer& error(const Message& message);

  /// The size of the pieces in which the values of unlimited columns travel from here on.
  Answer& pieces(std::size_t size);

  // Trouble.
  /// An error token alone, with nothing after it that would end the statement.
  Answer& bareError(const Message& message);
  /// Bytes in the token stream as they stand.
  Answer& tokens(std::string_view bytes);
  /// Takes back the last `count` bytes of the token stream: `row(...).cut(3)` is a row without its end.
  Answer& cut(std::size_t count);
  /// Ends the message here, with no token that would end the answer.
  Answer& abandon();
  Answer& raw(std::string bytes) { return interrupt(SendRaw{std::move(bytes)}); }
  Answer& waitFor(const Gate& gate) { return interrupt(WaitFor{gate}); }
  Answer& silence() { return interrupt(StaySilent{}); }
  Answer& close() { return interrupt(Close{}); }
  Answer& reset() { return interrupt(Close{true}); }

  // For the peer.
  /// All but the end. A piece of the token stream in it ends with a whole token, unless the script cut one.
  [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }
  /// The end of the token stream. `called`: a procedure call ended, which hands back `handle` where there is one.
  [[nodiscard]] std::string ending(bool called, std::optional<std::int32_t> handle) const;

 private:
  Answer& interrupt(Step step);
  Answer& addRow(const std::vector<Value>& values, bool bitmap);
  /// The token stream, ready for one more token.
  ByteWriter& stream();
  void moveStreamToSteps();
  [[nodiscard]] Done openDone(unsigned flags) const;
  void closeResult();
  /// Writes the end of the statement before: now it is known that something follows.
  void settle();

  std::vector<Step> steps_;
  ByteWriter stream_;
  std::vector<Column> columns_;
  std::optional<Done> pending_;
  std::uint64_t rowCount_ = 0;
  std::size_t pieceSize_ = 8000;
  bool resultOpen_ = false;
  bool procedure_ = false;
  bool abandoned_ = false;
};

}  // namespace korvel::test::tds
