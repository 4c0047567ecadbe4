#include "output/json_writer.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"

namespace korvel::output {

namespace {

void appendJsonString(std::string_view value, std::string& out) {
  const auto appendCode = [&out](unsigned char code) {
    out += "\\u00";
    appendHex(code, out);
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

/// Whether a value needs no escape: nearly all do not.
bool needsNoEscape(std::string_view value) noexcept {
  return std::all_of(value.begin(), value.end(), [](char c) {
    return static_cast<unsigned char>(c) >= 0x20 && static_cast<unsigned char>(c) < 0x7F && c != '"' && c != '\\';
  });
}

/// Whether all of the value is there: false where bytes that are not UTF-8 had to be replaced.
bool appendJsonText(std::string_view value, std::string& out) {
  if (needsNoEscape(value)) {
    ((out += '"') += value) += '"';
    return true;
  }
  if (isValidUtf8(value)) {
    appendJsonString(value, out);
    return true;
  }
  appendJsonString(replaceInvalidUtf8(value), out);
  return false;
}

/// The members' beginnings, `"name":`, of the records of one result set; `complete` becomes false
/// where bytes of a name had to be replaced.
std::vector<std::string> jsonNames(std::span<const db::Field> fields, bool& complete) {
  std::vector<std::string> taken;
  std::vector<std::string> members;
  for (const db::Field& field : fields) {
    std::string name = field.name;
    for (int number = 2; std::find(taken.begin(), taken.end(), name) != taken.end(); ++number)
      name = field.name + "_" + std::to_string(number);
    taken.push_back(name);
    std::string member;
    complete = appendJsonText(name, member) && complete;
    member += ':';
    members.push_back(std::move(member));
  }
  return members;
}

}  // namespace

void JsonWriter::begin(std::span<const db::Field> fields) {
  bool complete = true;
  members_ = jsonNames(fields, complete);
  replacements_.names = replacements_.names || !complete;
}

void JsonWriter::row(std::span<const db::Cell> cells) {
  std::string& out = chunks_.text();
  out += rows_ > 0 ? ",\n{" : "[\n{";
  for (std::size_t i = 0; i < std::min(cells.size(), members_.size()); ++i) {
    if (i > 0) out += ',';
    out += members_[i];
    if (cells[i].isNull)
      out += "null";
    else if (!appendJsonText(cells[i].text, out) && replacements_.values++ == 0) {
      replacements_.firstRow = rows_;
      replacements_.firstColumn = i;
    }
  }
  out += '}';
  ++rows_;
  chunks_.endLine();
}

void JsonWriter::end() {
  chunks_.text() += rows_ > 0 ? "\n]\n" : "[]\n";
  chunks_.flush();
}

}  // namespace korvel::output
