#include "tests/tds_server/protocol/token_stream.h"

#include <stdexcept>

#include "tests/tds_server/protocol/column.h"

namespace korvel::test::tds {
namespace {

enum Token : std::uint8_t {
  returnStatusToken = 0x79,
  columnsToken = 0x81,
  errorToken = 0xAA,
  infoToken = 0xAB,
  returnValueToken = 0xAC,
  loginToken = 0xAD,
  featuresToken = 0xAE,
  rowToken = 0xD1,
  bitmapRowToken = 0xD2,
  environmentChangeToken = 0xE3,
  sspiToken = 0xED,
};

constexpr std::uint16_t nullableFlag = 0x01;
constexpr std::uint8_t utf8Feature = 0x0A;
const std::string serverName = "TDSSERVER";

void writeCountedToken(ByteWriter& out, Token token, const ByteWriter& body) {
  out.byte(token).counted(body.bytes(), 2);
}

void writeMessage(ByteWriter& out, Token token, const Message& message) {
  ByteWriter body;
  body.little(message.number).byte(message.state).byte(message.severity).longText(message.text);
  body.shortText(serverName).shortText(message.procedure).little(message.line);
  writeCountedToken(out, token, body);
}

void requireOneValueAColumn(std::span<const Column> columns, std::span<const Value> values) {
  if (columns.size() != values.size()) throw std::invalid_argument("a row needs one value a column");
}

}  // namespace

void writeColumns(ByteWriter& out, std::span<const Column> columns) {
  out.byte(columnsToken).little(static_cast<std::uint16_t>(columns.size()));
  for (const Column& column : columns) {
    out.little(std::uint32_t{0}).little(static_cast<std::uint16_t>(column.nullable ? nullableFlag : 0));
    writeTypeInfo(out, column);
    out.shortText(column.name);
  }
}

void writeRow(ByteWriter& out, std::span<const Column> columns, std::span<const Value> values, std::size_t chunkSize) {
  requireOneValueAColumn(columns, values);
  out.byte(rowToken);
  for (std::size_t i = 0; i < columns.size(); ++i) writeValue(out, columns[i], values[i], chunkSize);
}

void writeBitmapRow(ByteWriter& out, std::span<const Column> columns, std::span<const Value> values,
                    std::size_t chunkSize) {
  requireOneValueAColumn(columns, values);
  out.byte(bitmapRowToken);
  std::string bitmap((columns.size() + 7) / 8, '\0');
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (values[i].isNull()) bitmap[i / 8] = static_cast<char>(bitmap[i / 8] | 1 << (i % 8));
  out.raw(bitmap);
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (!values[i].isNull()) writeValue(out, columns[i], values[i], chunkSize);
}

void writeError(ByteWriter& out, const Message& message) {
  writeMessage(out, errorToken, message);
}

void writeInfo(ByteWriter& out, const Message& message) {
  writeMessage(out, infoToken, message);
}

void writeDone(ByteWriter& out, const Done& done) {
  out.byte(static_cast<unsigned>(done.token)).little(done.flags).little(std::uint16_t{0}).little(done.rowCount);
}

void writeReturnStatus(ByteWriter& out, std::int32_t status) {
  out.byte(returnStatusToken).little(status);
}

void writeReturnHandle(ByteWriter& out, std::int32_t handle) {
  out.byte(returnValueToken).little(std::uint16_t{0}).shortText("").byte(1);
  out.little(std::uint32_t{0}).little(std::uint16_t{0});
  out.byte(0x26).byte(4).byte(4).little(handle);
}

void writeEnvironmentChange(ByteWriter& out, EnvironmentChange change, const std::string& now,
                            const std::string& before) {
  ByteWriter body;
  body.byte(static_cast<unsigned>(change)).shortText(now).shortText(before);
  writeCountedToken(out, environmentChangeToken, body);
}

void writeTransactionChange(ByteWriter& out, EnvironmentChange change, std::uint64_t transaction) {
  ByteWriter number;
  number.little(transaction);
  const std::string_view now =
      change == EnvironmentChange::begun ? std::string_view(number.bytes()) : std::string_view{};
  const std::string_view before =
      change == EnvironmentChange::begun ? std::string_view{} : std::string_view(number.bytes());
  ByteWriter body;
  body.byte(static_cast<unsigned>(change)).counted(now, 1).counted(before, 1);
  writeCountedToken(out, environmentChangeToken, body);
}

void writeCollationChange(ByteWriter& out) {
  const Column anyColumn("", "char(1)");
  ByteWriter collation;
  writeCollation(collation, *anyColumn.collation);
  ByteWriter body;
  body.byte(static_cast<unsigned>(EnvironmentChange::collation)).counted(collation.bytes(), 1).byte(0);
  writeCountedToken(out, environmentChangeToken, body);
}

void writeLoginAcknowledged(ByteWriter& out, const std::string& programName) {
  ByteWriter body;
  constexpr std::uint32_t tdsVersion = 0x74000004;
  constexpr std::uint32_t programVersion = 0x0F0007D0;  // 15.0.2000
  body.byte(1).big(tdsVersion).shortText(programName).big(programVersion);
  writeCountedToken(out, loginToken, body);
}

void writeUtf8Acknowledged(ByteWriter& out) {
  out.byte(featuresToken).byte(utf8Feature).little(std::uint32_t{1}).byte(1).byte(0xFF);
}

void writeSspi(ByteWriter& out, std::string_view token) {
  out.byte(sspiToken).counted(token, 2);
}

}  // namespace korvel::test::tds
