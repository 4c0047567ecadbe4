#include "tests/tds_server/protocol/column.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

namespace korvel::test::tds {
namespace {

constexpr std::uint16_t unlimitedLength = 0xFFFF;
constexpr std::uint32_t lobLength = 0x7FFFFFFE;
constexpr std::uint32_t variantLength = 8009;

constexpr std::array typeNames{
    TypeName{"tinyint", Family::integer, 0x26, 0x30, 1},
    TypeName{"smallint", Family::integer, 0x26, 0x34, 2},
    TypeName{"int", Family::integer, 0x26, 0x38, 4},
    TypeName{"bigint", Family::integer, 0x26, 0x7F, 8},
    TypeName{"bit", Family::bit, 0x68, 0x32, 1},
    TypeName{"decimal", Family::decimal, 0x6A, 0, 0},
    TypeName{"numeric", Family::decimal, 0x6C, 0, 0},
    TypeName{"smallmoney", Family::money, 0x6E, 0x7A, 4},
    TypeName{"money", Family::money, 0x6E, 0x3C, 8},
    TypeName{"real", Family::floating, 0x6D, 0x3B, 4},
    TypeName{"float", Family::floating, 0x6D, 0x3E, 8},
    TypeName{"smalldatetime", Family::dateAndTime, 0x6F, 0x3A, 4},
    TypeName{"datetime", Family::dateAndTime, 0x6F, 0x3D, 8},
    TypeName{"date", Family::date, 0x28, 0, 3},
    TypeName{"time", Family::time, 0x29, 0, 0},
    TypeName{"datetime2", Family::dateTime2, 0x2A, 0, 0},
    TypeName{"datetimeoffset", Family::dateTimeOffset, 0x2B, 0, 0},
    TypeName{"uniqueidentifier", Family::guid, 0x24, 0, 16},
    TypeName{"binary", Family::bytes, 0xAD, 0, 0},
    TypeName{"varbinary", Family::bytes, 0xA5, 0, 0},
    TypeName{"char", Family::narrowText, 0xAF, 0, 0},
    TypeName{"varchar", Family::narrowText, 0xA7, 0, 0},
    TypeName{"nchar", Family::wideText, 0xEF, 0, 0},
    TypeName{"nvarchar", Family::wideText, 0xE7, 0, 0},
    TypeName{"xml", Family::xml, 0xF1, 0, 0},
    TypeName{"text", Family::narrowLob, 0x23, 0, 0},
    TypeName{"ntext", Family::wideLob, 0x63, 0, 0},
    TypeName{"image", Family::byteLob, 0x22, 0, 0},
    TypeName{"sql_variant", Family::variant, 0x62, 0, 0},
};

// The first is the default. The flags are: ignore case, kana and width.
constexpr std::array collations{
    Collation{"cp1252", 0x00D00409, 52, "CP1252"}, Collation{"cp1250", 0x00D00405, 0, "CP1250"},
    Collation{"cp1251", 0x00D00419, 0, "CP1251"},  Collation{"cp1253", 0x00D00408, 0, "CP1253"},
    Collation{"cp1254", 0x00D0041F, 0, "CP1254"},  Collation{"cp932", 0x00D00411, 0, "CP932"},
    Collation{"cp936", 0x00D00804, 0, "CP936"},    Collation{"utf8", 0x24D00409, 0, "UTF-8"},
};

template <class Table>
const auto& named(const Table& table, std::string_view name, std::string_view declaration) {
  const auto found = std::find_if(table.begin(), table.end(), [&](const auto& entry) { return entry.name == name; });
  if (found == table.end()) throw std::invalid_argument("no such type: " + std::string(declaration));
  return *found;
}

/// The words and numbers of a declaration, separated by brackets, commas and blanks.
class Words {
 public:
  explicit Words(std::string_view text) : rest_(text) {}
  std::string_view next() {
    const auto first = rest_.find_first_not_of(" (),");
    if (first == std::string_view::npos) return {};
    rest_.remove_prefix(first);
    const std::string_view word = rest_.substr(0, rest_.find_first_of(" (),"));
    rest_.remove_prefix(word.size());
    return word;
  }

 private:
  std::string_view rest_;
};

bool hasScaleOnly(Family family) {
  return family == Family::time || family == Family::dateTime2 || family == Family::dateTimeOffset;
}

}  // namespace

Column::Column(std::string columnName, std::string_view declaration)
    : name(std::move(columnName)), collation(&collations.front()) {
  Words words(declaration);
  type = &named(typeNames, words.next(), declaration);
  if (hasScaleOnly(type->family)) scale = 7;
  if (type->family == Family::xml) unlimited = true;
  bool first = true;
  for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
    unsigned number = 0;
    const bool isNumber =
        std::from_chars(word.data(), word.data() + word.size(), number).ptr == word.data() + word.size();
    if (word == "not") {
      nullable = false;
    } else if (word == "null") {
    } else if (word == "max") {
      unlimited = true;
    } else if (word == "collate") {
      collation = &named(collations, words.next(), declaration);
    } else if (!isNumber || number > 8000) {
      throw std::invalid_argument("no such type: " + std::string(declaration));
    } else if (type->family == Family::decimal) {
      (first ? precision : scale) = static_cast<std::uint8_t>(number);
      first = false;
    } else if (hasScaleOnly(type->family)) {
      scale = static_cast<std::uint8_t>(number);
    } else {
      length = static_cast<std::uint16_t>(number);
    }
  }
  const bool sized =
      type->family == Family::bytes || type->family == Family::narrowText || type->family == Family::wideText;
  if (precision < 1 || precision > 38 || (sized && length == 0 && !unlimited))
    throw std::invalid_argument("no such type: " + std::string(declaration));
}

void writeCollation(ByteWriter& out, const Collation& collation) {
  out.little(collation.localeAndFlags).byte(collation.sortId);
}

unsigned decimalSize(unsigned precision) {
  return precision <= 9 ? 5 : precision <= 19 ? 9 : precision <= 28 ? 13 : 17;
}

void writeTypeInfo(ByteWriter& out, const Column& column) {
  const TypeName& type = *column.type;
  if (type.fixedToken != 0 && !column.nullable) {
    out.byte(type.fixedToken);
    return;
  }
  out.byte(type.token);
  const auto textLength = [&](unsigned bytesPerUnit) {
    out.little(column.unlimited ? unlimitedLength : static_cast<std::uint16_t>(column.length * bytesPerUnit));
  };
  // A LOB column names its table: one part, the table's name.
  const auto tableName = [&] { out.byte(1).longText("Korvel_Audit_Trails"); };
  switch (type.family) {
    case Family::integer:
    case Family::bit:
    case Family::money:
    case Family::floating:
    case Family::dateAndTime:
    case Family::guid:
      out.byte(type.size);
      break;
    case Family::decimal:
      out.byte(decimalSize(column.precision)).byte(column.precision).byte(column.scale);
      break;
    case Family::date:
      break;
    case Family::time:
    case Family::dateTime2:
    case Family::dateTimeOffset:
      out.byte(column.scale);
      break;
    case Family::bytes:
      textLength(1);
      break;
    case Family::narrowText:
      textLength(1);
      writeCollation(out, *column.collation);
      break;
    case Family::wideText:
      textLength(2);
      writeCollation(out, *column.collation);
      break;
    case Family::xml:
      out.byte(0);  // no schema collection
      break;
    case Family::narrowLob:
    case Family::wideLob:
      out.little(lobLength);
      writeCollation(out, *column.collation);
      tableName();
      break;
    case Family::byteLob:
      out.little(lobLength);
      tableName();
      break;
    case Family::variant:
      out.little(variantLength);
      break;
  }
}

}  // namespace korvel::test::tds
