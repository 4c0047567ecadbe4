#include "evidence/workbook_rows.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "base/error.h"
#include "base/numbers.h"
#include "evidence/xml_reader.h"
#include "evidence/zip_archive.h"
#include "output/workbook_cell.h"

namespace korvel::evidence {

namespace {

constexpr std::size_t mostColumns = 16'384;
constexpr std::size_t mostRowsOfASheet = 1'048'576;
constexpr std::size_t mostSheets = 10'000;
constexpr std::size_t lettersOfAlphabet = 26;

constexpr std::string_view workbookPart = "xl/workbook.xml";
constexpr std::string_view relationsPart = "xl/_rels/workbook.xml.rels";
constexpr std::string_view sharedStringsPart = "xl/sharedStrings.xml";

using Token = XmlReader::Token;

[[noreturn]] void refuse(const std::string& why) {
  throw Error(unspecifiedFailure, why);
}

/// A part of the archive as XML.
class XmlPart {
 public:
  XmlPart(ZipArchive& archive, const ZipArchive::Part& part)
      : bytes_(archive, part), xml_([this] { return bytes_.next(); }) {}
  [[nodiscard]] XmlReader& xml() noexcept { return xml_; }

 private:
  ZipPartReader bytes_;
  XmlReader xml_;
};

/// The text of the element that has begun: of its elements "t", apart from readings of it.
std::string textOfElement(XmlReader& xml) {
  std::string text;
  std::size_t depth = 1;
  std::size_t phonetic = 0;
  bool inText = false;
  while (depth > 0) {
    const Token token = xml.next();
    if (token == Token::done) refuse("it ends within a text of a cell");
    if (token == Token::text) {
      if (inText && phonetic == 0) text += xml.text();
      continue;
    }
    const int step = token == Token::begin ? 1 : -1;
    depth += static_cast<std::size_t>(step);
    if (xml.name() == "t") inText = token == Token::begin;
    if (xml.name() == "rPh") phonetic += static_cast<std::size_t>(step);
  }
  return output::workbookText(text);
}

/// What stands between begin and end of an element.
std::string plainText(XmlReader& xml) {
  std::string text;
  for (std::size_t depth = 1; depth > 0;) {
    switch (xml.next()) {
      case Token::done:
        refuse("it ends within a cell");
      case Token::begin:
        ++depth;
        break;
      case Token::end:
        --depth;
        break;
      case Token::text:
        text += xml.text();
        break;
    }
  }
  return text;
}

/// The column of a cell's place, "AB12"; nothing where there is none.
std::optional<std::size_t> columnOf(std::string_view place) {
  std::size_t column = 0;
  for (const char c : place) {
    if (c < 'A' || c > 'Z') break;
    column = column * lettersOfAlphabet + static_cast<std::size_t>(c - 'A') + 1;
    if (column > mostColumns) return std::nullopt;
  }
  return column == 0 ? std::nullopt : std::optional(column - 1);
}

struct Value {
  std::string text;
  bool isNull = true;
};

class WorkbookReader {
 public:
  WorkbookReader(std::string_view bytes, const RowTaker& take, const WorkbookLimits& limits)
      : archive_(bytes, limits.unpackedBytes), take_(take), rowsLeft_(limits.rows) {}

  void read() {
    const std::vector<std::string> sheets = sheetParts();
    if (sheets.empty()) refuse("it has no sheet");
    readSharedStrings();
    for (const std::string& sheet : sheets) readSheet(part(sheet));
  }

 private:
  const ZipArchive::Part& part(std::string_view name) const {
    const ZipArchive::Part* const found = archive_.find(name);
    if (found == nullptr) refuse("its part " + std::string(name) + " is missing");
    return *found;
  }

  /// The parts of the sheets, in their order.
  std::vector<std::string> sheetParts() {
    std::map<std::string, std::string> targets;
    XmlPart relations(archive_, part(relationsPart));
    while (relations.xml().next() != Token::done) {
      const auto id = relations.xml().attribute("Id");
      const auto target = relations.xml().attribute("Target");
      if (relations.xml().name() == "Relationship" && id && target) targets[*id] = *target;
    }
    std::vector<std::string> parts;
    XmlPart workbook(archive_, part(workbookPart));
    for (Token token = Token::begin; (token = workbook.xml().next()) != Token::done;) {
      if (token != Token::begin || workbook.xml().name() != "sheet") continue;
      const auto id = workbook.xml().attribute("id");
      const auto target = id ? targets.find(*id) : targets.end();
      if (target == targets.end()) refuse("a sheet of it cannot be found");
      if (parts.size() == mostSheets) refuse("it has more sheets than are read");
      parts.push_back(target->second.starts_with('/') ? target->second.substr(1) : "xl/" + target->second);
    }
    return parts;
  }

  /// A spreadsheet program keeps texts apart from the sheets.
  void readSharedStrings() {
    const ZipArchive::Part* const found = archive_.find(sharedStringsPart);
    if (found == nullptr) return;
    XmlPart strings(archive_, *found);
    for (Token token = Token::begin; (token = strings.xml().next()) != Token::done;)
      if (token == Token::begin && strings.xml().name() == "si") shared_.push_back(textOfElement(strings.xml()));
  }

  void readSheet(const ZipArchive::Part& sheet) {
    XmlPart opened(archive_, sheet);
    XmlReader& xml = opened.xml();
    fields_.clear();
    std::size_t number = 0;   // of the row before
    std::size_t skipped = 0;  // rows without a value since the last one with one
    for (Token token = Token::begin; (token = xml.next()) != Token::done;) {
      if (token != Token::begin || xml.name() != "row") continue;
      const auto told = xml.attribute("r");
      const std::size_t row = told ? parseInteger<std::size_t>(*told).value_or(0) : number + 1;
      if (row <= number || row > mostRowsOfASheet) refuse("the rows of a sheet are not in order");
      skipped += row - number - 1;
      number = row;
      readRow(xml);
      if (values_.empty()) {
        ++skipped;
        continue;
      }
      // The names of the columns are not behind an empty row.
      for (; skipped > 0 && !fields_.empty(); --skipped) give({});
      skipped = 0;
      if (fields_.empty())
        for (Value& value : values_) fields_.push_back({std::move(value.text)});
      else
        give(values_);
    }
  }

  /// The values of a row, up to the last one that is not null. Names of columns may be empty.
  void readRow(XmlReader& xml) {
    values_.clear();
    std::size_t next = 0;
    std::size_t used = 0;
    for (;;) {
      const Token token = xml.next();
      if (token == Token::done) refuse("it ends within a row");
      if (token == Token::end && xml.name() == "row") break;
      if (token != Token::begin || xml.name() != "c") continue;
      const auto place = xml.attribute("r");
      const auto column = place ? columnOf(*place) : std::optional(next);
      if (!column || *column >= mostColumns) refuse("a cell has no place in its sheet");
      next = *column + 1;
      if (values_.size() < next) values_.resize(next);
      values_[*column] = readCell(xml);
      if (!values_[*column].isNull || fields_.empty()) used = std::max(used, next);
    }
    values_.resize(used);
  }

  Value readCell(XmlReader& xml) {
    const std::string type = xml.attribute("t").value_or("n");
    std::optional<std::string> value;
    std::string formula;
    for (;;) {
      const Token token = xml.next();
      if (token == Token::done) refuse("it ends within a cell");
      if (token == Token::end && xml.name() == "c") break;
      if (token != Token::begin) continue;
      if (xml.name() == "v")
        value = plainText(xml);
      else if (xml.name() == "is")
        value = textOfElement(xml);
      else if (xml.name() == "f")
        formula = "=" + plainText(xml) + " ";
    }
    if (!value && formula.empty()) return {};
    // A formula may show what a value shows; ours has none.
    Value read{formula + (value ? meantBy(type, *value) : std::string()), false};
    if (read.text.empty()) return {};
    return read;
  }

  [[nodiscard]] std::string meantBy(const std::string& type, const std::string& value) const {
    if (type == "s") {
      const auto index = parseInteger<std::size_t>(value);
      if (!index || *index >= shared_.size()) refuse("a cell has a text that the workbook does not have");
      return shared_[*index];
    }
    if (type == "str") return output::workbookText(value);
    if (type != "n") return value;
    double number = 0;
    const auto [stop, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    return error == std::errc{} && stop == value.data() + value.size() ? output::workbookNumberText(number) : value;
  }

  void give(const std::vector<Value>& values) {
    if (rowsLeft_ == 0) refuse("it has far more rows than were written");
    --rowsLeft_;
    const std::size_t width = std::max(fields_.size(), values.size());
    cells_.assign(width, {{}, true});
    for (std::size_t i = 0; i < values.size(); ++i) cells_[i] = {values[i].text, values[i].isNull};
    if (values.size() <= fields_.size()) return take_(fields_, cells_);
    // A value beside the columns belongs to the row, too.
    std::vector<db::Field> wider = fields_;
    wider.resize(width);
    take_(wider, cells_);
  }

  ZipArchive archive_;
  const RowTaker& take_;
  std::size_t rowsLeft_;
  std::vector<std::string> shared_;
  std::vector<db::Field> fields_;
  std::vector<Value> values_;
  std::vector<db::Cell> cells_;
};

}  // namespace

void readWorkbookRows(std::string_view bytes, const RowTaker& take, const WorkbookLimits& limits) {
  WorkbookReader(bytes, take, limits).read();
}

}  // namespace korvel::evidence
