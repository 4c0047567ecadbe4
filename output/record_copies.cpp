#include "output/record_copies.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <vector>

#include "base/text.h"

namespace korvel::output {

namespace {

using results::ColumnIndex;
using results::RowId;
using results::RowStore;

void appendCsvQuoted(std::string_view value, std::string& out) {
  out += '"';
  for (const char c : value) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

bool needsCsvQuotes(std::string_view value) noexcept {
  // Outer blanks are quoted as well: some readers drop them otherwise.
  return value.empty() || value.front() == ' ' || value.back() == ' ' ||
         value.find_first_of(",\"\r\n") != std::string_view::npos;
}

void appendCsvField(const db::Cell& cell, std::string& out) {
  if (cell.isNull) return;
  if (needsCsvQuotes(cell.text))
    appendCsvQuoted(cell.text, out);
  else
    out += cell.text;
}

/// The names of the record's columns: those of the widest result set that the store holds.
std::vector<std::string> columnNames(const results::ResultList& list) {
  std::vector<std::string> names;
  const RowStore* store = list.store();
  if (store != nullptr) {
    for (std::size_t i = 0; i < store->rowCount() && names.empty(); ++i) {
      const auto fields = store->fieldsOf({static_cast<std::uint32_t>(i)});
      if (fields.size() == store->columnCount())
        for (const db::Field& field : fields) names.push_back(field.name);
    }
  }
  if (names.empty())
    for (const results::ColumnHeader& column : list.columns()) names.push_back(column.caption);
  return names;
}

void appendJsonString(std::string_view value, std::string& out) {
  constexpr std::string_view figures = "0123456789abcdef";
  const auto appendCode = [&out, figures](unsigned code) {
    out += "\\u00";
    out += figures[code >> 4U];
    out += figures[code & 0xFU];
  };
  out += '"';
  for (std::size_t i = 0; i < value.size(); ++i) {
    const auto byte = static_cast<unsigned char>(value[i]);
    if (byte == '"' || byte == '\\') {
      out += '\\';
      out += value[i];
    } else if (byte == '\n') {
      out += "\\n";
    } else if (byte == '\r') {
      out += "\\r";
    } else if (byte == '\t') {
      out += "\\t";
    } else if (byte < 0x20 || byte == 0x7F) {
      appendCode(byte);
    } else if (byte == 0xC2 && i + 1 < value.size() && static_cast<unsigned char>(value[i + 1]) < 0xA0) {
      // U+0080 to U+009F drive some terminals, and JSON is often looked at in one.
      appendCode(static_cast<unsigned char>(value[++i]));
    } else {
      out += value[i];
    }
  }
  out += '"';
}

void appendJsonText(std::string_view value, std::string& out) {
  if (isValidUtf8(value))
    appendJsonString(value, out);
  else
    appendJsonString(replaceInvalidUtf8(value), out);
}

/// The members' beginnings, `"name":`, of the records of one result set.
std::vector<std::string> jsonNames(std::span<const db::Field> fields) {
  std::vector<std::string> taken;
  std::vector<std::string> members;
  for (const db::Field& field : fields) {
    std::string name = field.name;
    for (int number = 2; std::find(taken.begin(), taken.end(), name) != taken.end(); ++number)
      name = field.name + "_" + std::to_string(number);
    taken.push_back(name);
    std::string member;
    appendJsonText(name, member);
    member += ':';
    members.push_back(std::move(member));
  }
  return members;
}

}  // namespace

void writeCsv(const results::ResultList& list, const ByteSink& sink) {
  ChunkedText chunks(sink);
  std::string& out = chunks.text();
  const std::vector<std::string> names = columnNames(list);
  for (std::size_t column = 0; column < names.size(); ++column) {
    if (column > 0) out += ',';
    appendCsvField({names[column], false}, out);
  }
  out += "\r\n";
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    const RowId id = list.rowId({row});
    for (std::size_t column = 0; column < names.size(); ++column) {
      if (column > 0) out += ',';
      appendCsvField(list.store()->cell(id, ColumnIndex{column}), out);
    }
    out += "\r\n";
    chunks.endLine();
  }
  chunks.flush();
}

void writeJson(const results::ResultList& list, const ByteSink& sink) {
  ChunkedText chunks(sink);
  std::string& out = chunks.text();
  const db::Field* fieldsOfNames = nullptr;
  std::vector<std::string> names;
  out += '[';
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    const RowId id = list.rowId({row});
    const auto fields = list.store()->fieldsOf(id);
    if (row == 0 || fields.data() != fieldsOfNames || fields.size() != names.size()) {
      names = jsonNames(fields);
      fieldsOfNames = fields.data();
    }
    out += row == 0 ? "\n{" : ",\n{";
    for (std::size_t column = 0; column < names.size(); ++column) {
      if (column > 0) out += ',';
      out += names[column];
      const db::Cell cell = list.store()->cell(id, ColumnIndex{column});
      if (cell.isNull)
        out += "null";
      else
        appendJsonText(cell.text, out);
    }
    out += '}';
    chunks.endLine();
  }
  out += list.rowCount() == 0 ? "]\n" : "\n]\n";
  chunks.flush();
}

}  // namespace korvel::output
