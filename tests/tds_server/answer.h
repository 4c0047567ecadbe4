#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tests/tds_server/gate.h"
#include "tests/tds_server/protocol/token_stream.h"

namespace korvel::test::tds {

/// Bytes of the answer's token stream, to travel in packets.
struct SendTokens {
  std::string bytes;
};
/// Bytes written to the connection unchanged, without a packet header.
struct SendRaw {
  std::string bytes;
};
struct WaitFor {
  Gate gate;
};
/// Sends nothing more until the client closes the connection or the server is stopped.
struct StaySilent {};
/// Ends the connection; `reset`: with a TCP reset.
struct Close {
  bool reset = false;
};
using Step = std::variant<SendTokens, SendRaw, WaitFor, StaySilent, Close>;

/// What the server does at a `Moment` of a connection before it goes on.
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

/// The answer to a command, written as the client is to see it:
///
///     Answer().result({{"Nr", "int"}, {"Name", "nvarchar(30)"}}).row({1, "pump"}).row({2, null})
///             .print("one more").result({{"Nr", "int"}}).error({208, "Invalid object name 'x'."})
///
/// A result ends where the next element begins, and the answer ends with its DONE token, unless the script says
/// otherwise. Everything is encoded when it is added; sending only copies.
class Answer {
 public:
  /// The results are those of a procedure, called by its name alone. Must be the first call.
  Answer& procedure();

  Answer& result(std::vector<Column> columns);
  Answer& row(const std::vector<Value>& values);
  /// The same row as an NBCROW token, which marks its nulls in a bitmap.
  Answer& bitmapRow(const std::vector<Value>& values);
  /// `count` rows; `make` gets the row's number from 0.
  Answer& rows(std::size_t count, const std::function<std::vector<Value>(std::size_t)>& make);
  /// Ends the open result.
  Answer& done();
  /// A result without columns: "(n rows affected)".
  Answer& affected(std::uint64_t rows);
  /// A PRINT message. Inside an open result it comes between the rows.
  Answer& print(const std::string& text);
  /// A message of severity up to 10; like print, but with a number.
  Answer& warning(Message message);
  /// An error; ends the open result, which keeps its rows.
  Answer& error(const Message& message);

  /// The size of the chunks in which values of (max) columns are sent from here on.
  Answer& chunks(std::size_t size);

  // Failures.
  /// An error token alone, with nothing after it that would end the statement.
  Answer& bareError(const Message& message);
  /// Bytes added to the token stream unchanged.
  Answer& tokens(std::string_view bytes);
  /// Removes the last `count` bytes of the token stream: `row(...).cut(3)` is an incomplete row.
  Answer& cut(std::size_t count);
  /// Ends the message here, without the DONE token that would end the answer.
  Answer& abandon();
  Answer& raw(std::string bytes) { return interrupt(SendRaw{std::move(bytes)}); }
  Answer& waitFor(const Gate& gate) { return interrupt(WaitFor{gate}); }
  Answer& silence() { return interrupt(StaySilent{}); }
  Answer& close() { return interrupt(Close{}); }
  Answer& reset() { return interrupt(Close{true}); }

  // For the server.
  /// Everything but the end. Each part of the token stream ends with a complete token, unless the script cut one.
  [[nodiscard]] const std::vector<Step>& steps() const { return steps_; }
  /// The end of the token stream. `called`: the end of a procedure call, which returns `handle` where there is one.
  [[nodiscard]] std::string ending(bool called, std::optional<std::int32_t> handle) const;

 private:
  Answer& interrupt(Step step);
  Answer& addRow(const std::vector<Value>& values, bool bitmap);
  /// The token stream, with room for one more token.
  ByteWriter& stream();
  void moveStreamToSteps();
  [[nodiscard]] Done openDone(unsigned flags) const;
  void closeResult();
  /// Writes the pending DONE token of the previous statement: it is now known that something follows.
  void settle();

  std::vector<Step> steps_;
  ByteWriter stream_;
  std::vector<Column> columns_;
  std::optional<Done> pending_;
  std::uint64_t rowCount_ = 0;
  std::size_t chunkSize_ = 8000;
  bool resultOpen_ = false;
  bool procedure_ = false;
  bool abandoned_ = false;
};

}  // namespace korvel::test::tds
