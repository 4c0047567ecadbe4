#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tests/support/tds/column.h"

namespace korvel::test::tds {

/// What a server says in words: an error, or (severity up to 10) a PRINT or a warning.
struct Message {
  std::int32_t number = 0;
  std::string text;
  std::uint8_t severity = 16;
  std::uint8_t state = 1;
  std::int32_t line = 1;
  std::string procedure = {};
};

/// How a statement ended; the three tokens differ in whether a procedure or a batch speaks.
enum class DoneToken : std::uint8_t { batch = 0xFD, procedure = 0xFE, inProcedure = 0xFF };
enum DoneFlag : std::uint16_t { doneMore = 0x01, doneError = 0x02, doneCount = 0x10, doneAttention = 0x20 };
struct Done {
  DoneToken token = DoneToken::batch;
  std::uint16_t flags = 0;
  std::uint64_t rowCount = 0;
};

enum class Change : std::uint8_t {
  database = 1,
  language = 2,
  packetSize = 4,
  collation = 7,
  begun = 8,
  committed = 9,
  rolledBack = 10
};

// Each appends one token.
void writeColumns(ByteWriter& out, std::span<const Column> columns);
/// Throws std::invalid_argument where the values do not fit the columns.
void writeRow(ByteWriter& out, std::span<const Column> columns, std::span<const Value> values, std::size_t pieceSize);
/// The same row in the form that names its nulls in a bitmap.
void writeBitmapRow(ByteWriter& out, std::span<const Column> columns, std::span<const Value> values,
                    std::size_t pieceSize);
void writeError(ByteWriter& out, const Message& message, const std::string& serverName);
void writeInfo(ByteWriter& out, const Message& message, const std::string& serverName);
void writeDone(ByteWriter& out, const Done& done);
void writeReturnStatus(ByteWriter& out, std::int32_t status);
/// An output parameter of type int: the handle of a prepared statement.
void writeReturnHandle(ByteWriter& out, std::int32_t handle);
void writeChange(ByteWriter& out, Change change, const std::string& now, const std::string& before);
/// A transaction has begun, or ended, which the server names by a number.
void writeTransactionChange(ByteWriter& out, Change change, std::uint64_t transaction);
void writeCollationChange(ByteWriter& out);
void writeLoginAcknowledged(ByteWriter& out, const std::string& programName);
void writeUtf8Acknowledged(ByteWriter& out);
/// The server's next word in an integrated login.
void writeSspi(ByteWriter& out, std::string_view token);

}  // namespace korvel::test::tds
