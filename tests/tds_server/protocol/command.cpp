#include "tests/tds_server/protocol/command.h"

#include <array>
#include <bit>
#include <optional>

namespace korvel::test::tds {
namespace {

constexpr std::array<const char*, 16> numberedProcedures{"",
                                                         "sp_cursor",
                                                         "sp_cursoropen",
                                                         "sp_cursorprepare",
                                                         "sp_cursorexecute",
                                                         "sp_cursorprepexec",
                                                         "sp_cursorunprepare",
                                                         "sp_cursorfetch",
                                                         "sp_cursoroption",
                                                         "sp_cursorclose",
                                                         "sp_executesql",
                                                         "sp_prepare",
                                                         "sp_execute",
                                                         "sp_prepexec",
                                                         "sp_prepexecrpc",
                                                         "sp_unprepare"};

std::optional<std::string> chunkedValue(ByteReader& reader) {
  if (reader.little<std::uint64_t>() == ~std::uint64_t{0}) return std::nullopt;
  std::string value;
  while (const auto size = reader.little<std::uint32_t>()) value += reader.raw(size);
  return value;
}

/// A value after its type, as text. Knows the types that drivers send parameters in.
std::optional<std::string> parameterText(ByteReader& reader) {
  const unsigned token = reader.byte();
  switch (token) {
    case 0x26:    // integers
    case 0x68: {  // bit
      reader.byte();
      const unsigned size = reader.byte();
      if (size == 0) return std::nullopt;
      const auto value = reader.little<std::uint64_t>(size);
      const unsigned unused = 64 - 8 * size;
      return std::to_string(static_cast<std::int64_t>(value << unused) >> unused);
    }
    case 0x6D: {  // floating
      reader.byte();
      const unsigned size = reader.byte();
      if (size == 0) return std::nullopt;
      if (size == 4) return std::to_string(std::bit_cast<float>(reader.little<std::uint32_t>()));
      return std::to_string(std::bit_cast<double>(reader.little<std::uint64_t>()));
    }
    case 0xA5:    // bytes
    case 0xA7:    // varchar
    case 0xAF:    // char
    case 0xE7:    // nvarchar
    case 0xEF: {  // nchar
      const auto limit = reader.little<std::uint16_t>();
      if (token != 0xA5) reader.raw(5);
      std::optional<std::string> bytes;
      if (limit == 0xFFFF) {
        bytes = chunkedValue(reader);
      } else if (const auto size = reader.little<std::uint16_t>(); size != 0xFFFF) {
        bytes = std::string(reader.raw(size));
      }
      if (bytes && (token == 0xE7 || token == 0xEF)) bytes = fromUtf16(*bytes);
      return bytes;
    }
    case 0x22:    // image
    case 0x23:    // text
    case 0x63: {  // ntext
      reader.raw(token == 0x22 ? 4 : 9);
      const auto size = reader.little<std::uint32_t>();
      if (size == ~std::uint32_t{0}) return std::nullopt;
      const std::string_view bytes = reader.raw(size);
      return token == 0x63 ? fromUtf16(bytes) : std::string(bytes);
    }
    default:
      throw ProtocolError("unsupported parameter type: " + std::to_string(token));
  }
}

std::string callText(const Command& command) {
  std::string text = "EXEC " + command.procedure;
  const char* separator = " ";
  for (const std::string& parameter : command.parameters) {
    text += separator + (parameter == "NULL" ? parameter : "'" + parameter + "'");
    separator = ", ";
  }
  return text;
}

/// Which parameter holds the text of the statement, by the procedure.
std::optional<std::size_t> textParameter(const std::string& procedure) {
  if (procedure == "sp_executesql") return 0;
  if (procedure == "sp_prepare" || procedure == "sp_prepexec") return 2;
  return std::nullopt;
}

}  // namespace

void skipHeaders(ByteReader& reader) {
  const auto size = reader.little<std::uint32_t>();
  if (size < 4) throw ProtocolError("the headers are shorter than their length");
  reader.raw(size - 4);
}

Command parseBatch(std::string_view body) {
  ByteReader reader(body);
  skipHeaders(reader);
  Command command;
  command.text = fromUtf16(reader.rest());
  return command;
}

Command parseCall(std::string_view body, const Prepared& prepared) {
  ByteReader reader(body);
  skipHeaders(reader);
  Command command;
  if (const auto length = reader.little<std::uint16_t>(); length != 0xFFFF) {
    command.procedure = reader.text(length);
  } else if (const auto number = reader.little<std::uint16_t>(); number < numberedProcedures.size()) {
    command.procedure = numberedProcedures[number];
  } else {
    throw ProtocolError("unknown procedure number: " + std::to_string(number));
  }
  reader.little<std::uint16_t>();
  while (!reader.atEnd()) {
    reader.text(reader.byte());  // the parameter's name
    reader.byte();
    command.parameters.push_back(parameterText(reader).value_or("NULL"));
  }
  if (const auto index = textParameter(command.procedure); index && *index < command.parameters.size()) {
    command.text = command.parameters[*index];
  } else if (command.procedure == "sp_execute" && !command.parameters.empty()) {
    const auto found = prepared.find(std::stoi(command.parameters[0]));
    if (found == prepared.end()) throw ProtocolError("unknown prepared statement: " + command.parameters[0]);
    command.text = found->second;
  } else {
    command.text = callText(command);
  }
  return command;
}

}  // namespace korvel::test::tds
