#include "tests/support/tds/column.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>

namespace korvel::test::tds {
namespace {

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

// The first is the one a server has when nobody chose another. The flags are ignore case, kana and width.
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

/// The words and numbers of a declaration; brackets, commas and blanks only part them.
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

bool hasScaleAlone(Family family) {
  return family == Family::time || family == Family::dateTime2 || family == Family::dateTimeOffset;
}

}  // namespace

Column::Column(std::string columnName, std::string_view declaration)
    : name(std::move(columnName)), collation(&collations.front()) {
  Words words(declaration);
  type = &named(typeNames, words.next(), declaration);
  if (hasScaleAlone(type->family)) scale = 7;
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
    } else if (hasScaleAlone(type->family)) {
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

std::int64_t Value::integer() const {
  if (const auto* number = std::get_if<std::int64_t>(&value_)) return *number;
  throw std::invalid_argument("the column wants an integer");
}

double Value::floating() const {
  if (const auto* number = std::get_if<double>(&value_)) return *number;
  return static_cast<double>(integer());
}

std::string Value::text() const {
  if (const auto* text = std::get_if<std::string>(&value_)) return *text;
  return std::to_string(integer());
}

}  // namespace korvel::test::tds
