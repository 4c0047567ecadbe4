#include "evidence/manifest.h"

#include <nlohmann/json.hpp>

#include "base/error.h"

namespace korvel::evidence {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view formatName = "korvel-audit-manifest";
constexpr int formatVersion = 1;
constexpr std::size_t digestDigits = 64;

void add(Json& object, const char* name, const std::string& text) {
  if (!text.empty()) object[name] = text;
}

Json sourceJson(const Manifest::Source& source) {
  Json json = Json::object();
  add(json, "server", source.server);
  add(json, "database", source.database);
  add(json, "engine", source.engine);
  add(json, "login", source.login);
  return json;
}

Json questionJson(const Manifest::Question& question) {
  Json json = Json::object();
  if (!question.categories.empty()) json["categories"] = question.categories;
  add(json, "from", question.from);
  add(json, "to", question.to);
  if (!question.categories.empty()) json["beyondLimit"] = question.beyondLimit;
  json["text"] = question.text;
  json["textSha256"] = hexText(Sha256::of(question.text));
  if (!question.filters.empty()) json["filters"] = question.filters;
  add(json, "sortedBy", question.sortedBy);
  return json;
}

Json rowsJson(const Manifest::Rows& rows) {
  Json each = Json::array();
  for (const Digest& row : rows.each) each.push_back(hexText(row));
  return {{"columns", rows.columns},
          {"count", rows.each.size()},
          {"digest", hexText(rows.digest)},
          {"each", std::move(each)}};
}

[[noreturn]] void refuse(const std::string& why) {
  throw Error(unspecifiedFailure, why);
}

/// A member that has to be there, of one type.
template <typename Value>
Value member(const Json& object, const char* name) {
  if (const auto found = object.is_object() ? object.find(name) : object.end();
      object.is_object() && found != object.end()) {
    try {
      return found->template get<Value>();
    } catch (const Json::exception&) {
      refuse(std::string("the manifest's \"") + name + "\" is not what a manifest has there");
    }
  }
  refuse(std::string("the manifest has no \"") + name + "\"");
}

Digest digestMember(const std::string& text, const char* name) {
  const auto digest = digestFromHex(text);
  if (!digest) refuse(std::string("the manifest's \"") + name + "\" is no SHA-256 value");
  return *digest;
}

/// Whether a name is that of a file beside the manifest, on every system.
bool isPlainName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find_first_of("/\\:") == std::string::npos &&
         name.find('\0') == std::string::npos;
}

}  // namespace

std::string manifestText(const Manifest& manifest) {
  Json json;
  json["format"] = formatName;
  json["version"] = formatVersion;
  json["program"] = manifest.program + " " + manifest.programVersion;
  add(json, "user", manifest.user);
  add(json, "computer", manifest.computer);
  json["begun"] = manifest.begun;
  json["ended"] = manifest.ended;
  json["source"] = sourceJson(manifest.source);
  json["question"] = questionJson(manifest.question);
  if (!manifest.lists.empty()) {
    json["lists"] = Json::array();
    for (const Manifest::ListCount& list : manifest.lists)
      json["lists"].push_back({{"caption", list.caption}, {"rows", list.rows}});
  }
  json["complete"] = manifest.isComplete;
  if (!manifest.notes.empty()) json["notes"] = manifest.notes;
  json["output"] = {{"name", manifest.output.name},
                    {"format", manifest.output.format},
                    {"bytes", manifest.output.bytes},
                    {"sha256", hexText(manifest.output.sha256)}};
  json["rows"] = rowsJson(manifest.rows);
  // Names of servers and files may have bytes that are no text.
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

RecordedOutput readManifest(std::string_view text) {
  const Json json = Json::parse(text, nullptr, false);
  if (json.is_discarded()) refuse("the manifest is cut or changed: it is no JSON");
  if (!json.is_object() || !json.contains("format") || json["format"] != formatName)
    refuse("the file is no manifest of an audit trail's output");
  const auto version = member<int>(json, "version");
  if (version > formatVersion)
    refuse("the manifest has version " + std::to_string(version) + "; this program knows version " +
           std::to_string(formatVersion) + " and needs to be updated");
  RecordedOutput recorded;
  const auto output = member<Json>(json, "output");
  recorded.output.name = member<std::string>(output, "name");
  if (!isPlainName(recorded.output.name))
    refuse("the manifest names a file that is not in its own folder: " + recorded.output.name);
  recorded.output.format = member<std::string>(output, "format");
  recorded.output.bytes = member<std::uint64_t>(output, "bytes");
  recorded.output.sha256 = digestMember(member<std::string>(output, "sha256"), "sha256");
  const auto rows = member<Json>(json, "rows");
  recorded.rows.columns = member<std::vector<std::string>>(rows, "columns");
  recorded.rows.digest = digestMember(member<std::string>(rows, "digest"), "digest");
  for (const std::string& row : member<std::vector<std::string>>(rows, "each"))
    recorded.rows.each.push_back(digestMember(row, "each"));
  if (member<std::uint64_t>(rows, "count") != recorded.rows.each.size())
    refuse("the manifest's number of rows is not that of its rows' SHA-256 values");
  return recorded;
}

std::string sumsText(const std::vector<NamedSum>& sums) {
  std::string text;
  for (const NamedSum& sum : sums) {
    std::string name;
    for (const char c : sum.name) {
      if (c == '\\')
        name += "\\\\";
      else if (c == '\n')
        name += "\\n";
      else if (c == '\r')
        name += "\\r";
      else
        name += c;
    }
    if (name != sum.name) text += '\\';
    text += hexText(sum.sha256) + "  " + name + '\n';
  }
  return text;
}

std::optional<std::vector<NamedSum>> readSums(std::string_view text) {
  std::vector<NamedSum> sums;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    const bool escaped = line.starts_with('\\');
    if (escaped) line.remove_prefix(1);
    if (line.size() < digestDigits + 3 || line.substr(digestDigits, 2) != "  ") return std::nullopt;
    const auto digest = digestFromHex(line.substr(0, digestDigits));
    if (!digest) return std::nullopt;
    std::string name;
    const std::string_view written = line.substr(digestDigits + 2);
    for (std::size_t i = 0; i < written.size(); ++i) {
      if (!escaped || written[i] != '\\') {
        name += written[i];
        continue;
      }
      const char code = ++i < written.size() ? written[i] : '\0';
      if (code != '\\' && code != 'n' && code != 'r') return std::nullopt;
      name += code == 'n' ? '\n' : code == 'r' ? '\r' : '\\';
    }
    sums.push_back({*digest, std::move(name)});
  }
  return sums;
}

}  // namespace korvel::evidence
