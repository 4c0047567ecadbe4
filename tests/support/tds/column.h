#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "tests/support/tds/bytes.h"

namespace korvel::test::tds {

/// How the values of a type are laid out on the wire.
enum class Family {
  integer,
  bit,
  decimal,
  money,
  floating,
  dateAndTime,
  date,
  time,
  dateTime2,
  dateTimeOffset,
  guid,
  bytes,
  narrowText,
  wideText,
  xml,
  narrowLob,
  wideLob,
  byteLob,
  variant,
};

/// One name of a server's types: the token of its nullable form, and of its fixed form where it has one.
struct TypeName {
  std::string_view name;
  Family family;
  std::uint8_t token;
  std::uint8_t fixedToken;
  /// Bytes of a value, where the name alone settles that; 0 elsewhere.
  std::uint8_t size;
};

/// A code page as the server's collations name it.
struct Collation {
  std::string_view name;
  std::uint32_t localeAndFlags;
  std::uint8_t sortId;
  const char* iconvName;
};

/// A declared column, as one writes it in a CREATE TABLE: Column{"Nr", "int not null"}, "decimal(18,4)",
/// "nvarchar(max)", "varchar(20) collate cp1251". Columns are nullable unless they say otherwise.
/// Throws std::invalid_argument for a declaration it does not know.
struct Column {
  Column(std::string columnName, std::string_view declaration);

  std::string name;
  const TypeName* type;
  const Collation* collation;
  bool nullable = true;
  /// The length is "max": values travel in pieces.
  bool unlimited = false;
  /// Characters or bytes, as declared.
  std::uint16_t length = 0;
  std::uint8_t precision = 18;
  std::uint8_t scale = 0;
};

/// NULL, as a value of a row.
inline constexpr std::monostate null{};

/// One value of a row. Texts are UTF-8; dates, decimals, amounts and GUIDs are texts in their usual form
/// ("2024-02-29 13:45:59.1234567 +02:00", "-12.3400"); bytes are a text too, "0xCAFE" or the bytes themselves.
class Value {
 public:
  // Implicit on purpose: a row is written as a plain list.
  Value(std::monostate) {}
  template <class Number>
  requires std::is_integral_v<Number> Value(Number number) : value_(static_cast<std::int64_t>(number)) {}
  Value(double number) : value_(number) {}
  Value(std::string text) : value_(std::move(text)) {}
  Value(std::string_view text) : value_(std::string(text)) {}
  Value(const char* text) : value_(std::string(text)) {}

  [[nodiscard]] bool isNull() const { return std::holds_alternative<std::monostate>(value_); }
  /// Each throws std::invalid_argument where the value is of another kind.
  [[nodiscard]] std::int64_t integer() const;
  [[nodiscard]] double floating() const;
  [[nodiscard]] std::string text() const;
  [[nodiscard]] bool isInteger() const { return std::holds_alternative<std::int64_t>(value_); }

 private:
  std::variant<std::monostate, std::int64_t, double, std::string> value_;
};

/// The type's description in a COLMETADATA token.
void writeTypeInfo(ByteWriter& out, const Column& column);
/// One value in a row of `column`. `pieceSize` is the size of the pieces in which unlimited values travel.
void writeValue(ByteWriter& out, const Column& column, const Value& value, std::size_t pieceSize);

}  // namespace korvel::test::tds
