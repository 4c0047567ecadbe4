#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tests/tds_server/protocol/value.h"

namespace korvel::test::tds {

/// An error, or (severity up to 10) a PRINT message or a warning.
struct Message {
  std::int32_t number = 0;
  std::string text;
  std::uint8_t severity = 16;
  std::uint8_t state = 1;
  std::int32_t line = 1;
  std::string procedure = {};
};

/// The end of a statement: DONE, DONEPROC and DONEINPROC tokens.
enum class DoneToken : std::uint8_t { batch = 0xFD, procedure = 0xFE, inProcedure = 0xFF };
enum DoneFlag : std::uint16_t { doneMore = 0x01, doneError = 0x02, doneCount = 0x10, doneAttention = 0x20 };
struct Done {
  DoneToken token = DoneToken::batch;
  std::uint16_t flags = 0;
  std::uint64_t rowCount = 0;
};

/// The kinds of ENVCHANGE token.
enum class EnvironmentChange : std::uint8_t {
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
void writeRow(ByteWriter& out, std::span<const Column> columns, std::span<const Value> values, std::size_t chunkSize);
/// The same row as an NBCROW token, which marks its nulls in a bitmap.
void writeBitmapRow(ByteWriter& out, std::span<const Column> columns, std::span<const Value> values,
                    std::size_t chunkSize);
void writeError(ByteWriter& out, const Message& message);
void writeInfo(ByteWriter& out, const Message& message);
void writeDone(ByteWriter& out, const Done& done);
void writeReturnStatus(ByteWriter& out, std::int32_t status);
/// An output parameter of type int: the handle of a prepared statement.
void writeReturnHandle(ByteWriter& out, std::int32_t handle);
void writeEnvironmentChange(ByteWriter& out, EnvironmentChange change, const std::string& now,
                            const std::string& before);
/// The begin or end of a transaction, identified by a number.
void writeTransactionChange(ByteWriter& out, EnvironmentChange change, std::uint64_t transaction);
void writeCollationChange(ByteWriter& out);
void writeLoginAcknowledged(ByteWriter& out, const std::string& programName);
void writeUtf8Acknowledged(ByteWriter& out);
/// The server's next token of an integrated login.
void writeSspi(ByteWriter& out, std::string_view token);

}  // namespace korvel::test::tds
