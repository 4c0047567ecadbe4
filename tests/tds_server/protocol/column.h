#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/tds_server/protocol/bytes.h"

namespace korvel::test::tds {

/// The wire format of a type's values.
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

/// A type by its name: the token of its nullable form, and of its fixed form where it has one.
struct TypeName {
  std::string_view name;
  Family family;
  std::uint8_t token;
  std::uint8_t fixedToken;
  /// The size of a value in bytes where the name determines it; otherwise 0.
  std::uint8_t size;
};

/// A collation, named after its code page.
struct Collation {
  std::string_view name;
  std::uint32_t localeAndFlags;
  std::uint8_t sortId;
  const char* iconvName;
};

/// A column, declared as in CREATE TABLE: Column{"Nr", "int not null"}, "decimal(18,4)",
/// "nvarchar(max)", "varchar(20) collate cp1251". Columns are nullable unless declared otherwise.
/// Throws std::invalid_argument for an unknown declaration.
struct Column {
  Column(std::string columnName, std::string_view declaration);

  std::string name;
  const TypeName* type;
  const Collation* collation;
  bool nullable = true;
  /// The length is "max": values are sent in chunks.
  bool unlimited = false;
  /// Characters or bytes, as declared.
  std::uint16_t length = 0;
  std::uint8_t precision = 18;
  std::uint8_t scale = 0;
};

/// The type's description in a COLMETADATA token.
void writeTypeInfo(ByteWriter& out, const Column& column);
/// The five bytes of a collation in a column's description.
void writeCollation(ByteWriter& out, const Collation& collation);
/// The size of a decimal's value in bytes, with its sign.
[[nodiscard]] unsigned decimalSize(unsigned precision);

}  // namespace korvel::test::tds
