#include "output/workbook_cell.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "base/numbers.h"
#include "base/text.h"
#include "output/typed_value.h"

namespace korvel::output {

namespace {

/// Cuts UTF-8 text to the units that a cell holds; whether there was something to cut.
bool cutToUnits(std::string& text) {
  if (text.size() <= mostCellUnits) return false;  // no character has more units than bytes
  std::size_t units = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t at = text.size() - rest.size();
    const auto character = takeCodePoint(rest);
    constexpr char32_t firstOfTwoUnits = 0x10000;
    units += character && *character >= firstOfTwoUnits ? 2U : 1U;
    if (units > mostCellUnits) {
      text.resize(at);
      return true;
    }
  }
  return false;
}

/// Makes `text` what XML can carry and a C string can hold; whether it was something else.
bool makeText(std::string& text) {
  constexpr std::string_view replacement = "\xEF\xBF\xBD";
  const auto contains = [&text](std::string_view part) { return text.find(part) != std::string::npos; };
  bool changed = false;
  if (!isValidUtf8(text)) {
    text = replaceInvalidUtf8(text);
    changed = true;
  }
  for (const std::string_view refused :
       {std::string_view("\0", 1), std::string_view("\xEF\xBF\xBE"), std::string_view("\xEF\xBF\xBF")})
    if (contains(refused)) {
      text = replaceAll(std::move(text), refused, replacement);
      changed = true;
    }
  return changed;
}

constexpr std::string_view codeBeginning = "_x";
constexpr std::size_t codeDigits = 4;
constexpr std::size_t codeEnd = codeBeginning.size() + codeDigits;  // of _x0041_, without what closes it

/// Whether the four bytes from `at` on are hexadecimal digits.
bool isCodeAt(std::string_view text, std::size_t at) noexcept {
  const std::string_view code = at + codeDigits <= text.size() ? text.substr(at, codeDigits) : std::string_view{};
  return !code.empty() && std::all_of(code.begin(), code.end(), [](char c) { return hexDigitValue(c).has_value(); });
}

/// Readers take _x0041_ for the character of that code, also where a value holds just these seven characters. The code
/// of the underscore before it keeps it what it is. A control character is written as such a code, so it ends one, too.
void keepWhatLooksLikeACode(std::string& text) {
  std::string kept;
  std::size_t taken = 0;
  for (auto at = text.find(codeBeginning); at != std::string::npos; at = text.find(codeBeginning, at + 1)) {
    if (!isCodeAt(text, at + codeBeginning.size()) || at + codeEnd >= text.size()) continue;
    const char last = text[at + codeEnd];
    if (last != '_' && static_cast<unsigned char>(last) >= ' ') continue;
    kept.append(text, taken, at - taken).append("_x005F_");
    taken = at + 1;
  }
  if (taken > 0) text = kept.append(text, taken);
}

std::string numberText(double number, int digits) {
  NumberText text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits);
  return {text.data(), static_cast<std::size_t>(end.ptr - text.data())};
}

}  // namespace

void WorkbookCell::assign(db::ColumnKind column, const db::Cell& value) {
  kind_ = Kind::empty;
  wasCut_ = false;
  wasNoText_ = false;
  if (value.isNull || value.text.empty()) return;
  const auto set = [this](Kind kind, double number) {
    kind_ = kind;
    number_ = number;
  };
  switch (column) {
    case db::ColumnKind::number:
      if (const auto number = losslessNumber(value.text)) return set(Kind::number, *number);
      break;
    case db::ColumnKind::dateTime:
      if (const auto date = spreadsheetDate(value.text)) return set(Kind::date, *date);
      break;
    case db::ColumnKind::boolean:
      if (const auto boolean = booleanFrom(value.text)) return set(Kind::boolean, *boolean ? 1 : 0);
      break;
    case db::ColumnKind::text:
    case db::ColumnKind::binary:
      break;
  }
  assignText(value.text);
}

void WorkbookCell::assignText(std::string_view value) {
  kind_ = value.empty() ? Kind::empty : Kind::text;
  text_.assign(value);
  wasNoText_ = makeText(text_);
  keepWhatLooksLikeACode(text_);
  wasCut_ = cutToUnits(text_);
}

db::Cell WorkbookCell::readBack() {
  switch (kind_) {
    case Kind::empty:
      return {{}, true};
    case Kind::number:
    case Kind::date: {
      // Workbooks are written with 16 digits.
      constexpr int writtenDigits = 16;
      const std::string written = numberText(number_, writtenDigits);
      double read = 0;
      std::from_chars(written.data(), written.data() + written.size(), read);
      readBack_ = workbookNumberText(read);
      break;
    }
    case Kind::boolean:
      readBack_ = number_ != 0 ? "1" : "0";
      break;
    case Kind::text:
      readBack_ = workbookText(text_);
      break;
  }
  return {readBack_, false};
}

std::string workbookNumberText(double number) {
  constexpr int keptDigits = 15;
  return numberText(number, keptDigits);
}

std::string workbookText(std::string_view coded) {
  std::string text;
  std::size_t taken = 0;
  for (auto at = coded.find(codeBeginning); at != std::string_view::npos; at = coded.find(codeBeginning, at)) {
    const bool isCode =
        isCodeAt(coded, at + codeBeginning.size()) && at + codeEnd < coded.size() && coded[at + codeEnd] == '_';
    if (!isCode) {
      at += codeBeginning.size();
      continue;
    }
    char32_t code = 0;
    for (const char digit : coded.substr(at + codeBeginning.size(), codeDigits))
      code = code * 16 + hexDigitValue(digit).value_or(0);
    text.append(coded.substr(taken, at - taken));
    appendCodePoint(code, text);
    taken = at = at + codeEnd + 1;
  }
  text.append(coded.substr(taken));
  return text;
}

}  // namespace korvel::output
