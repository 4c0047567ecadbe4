#include "evidence/manifest.h"

#include <nlohmann/json.hpp>

#include "base/error.h"
#include "db/embedded/snapshot_tables.h"

namespace korvel::evidence {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view formatName = "korvel-audit-manifest";
constexpr std::uint64_t formatVersion = 1;
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
  if (source.snapshot)
    json["snapshotOf"] = {{"server", source.snapshot->server},
                          {"database", source.snapshot->database},
                          {"taken", source.snapshot->taken}};
  return json;
}

Json questionJson(const Manifest::Question& question) {
  Json json = Json::object();
  if (!question.categories.empty()) json["categories"] = question.categories;
  add(json, "from", question.from);
  add(json, "to", question.to);
  if (!question.categories.empty()) json["beyondLimit"] = question.beyondLimit;
  add(json, "list", question.list);
  json["text"] = question.text;
  json["textSha256"] = hexText(Sha256::of(question.text));
  if (!question.filters.empty()) json["filters"] = question.filters;
  add(json, "sortedBy", question.sortedBy);
  return json;
}

Json stampsJson(const RecordedStamps& stamps) {
  Json json = Json::object();
  json["column"] = stamps.column;
  json["clock"] = stamps.withOffset == 0              ? "local time of the plant; its offset from UTC is not recorded"
                  : stamps.withOffset == stamps.count ? "each with its offset from UTC"
                                                      : "local time of the plant; some with their offset from UTC";
  if (!stamps.flag.empty()) {
    json["summerTimeColumn"] = stamps.flag;
    json["summerTimeValues"] = "1 or true: summer time; 0 or false: standard time";
  }
  for (const RecordedStamps::Twice& twice : stamps.shownTwice)
    json["shownTwice"].push_back({{"from", twice.from}, {"to", twice.to}});
  return json;
}

Json digestsJson(const std::vector<Digest>& digests) {
  Json json = Json::array();
  for (const Digest& each : digests) json.push_back(hexText(each));
  return json;
}

Json rowsJson(const Manifest::Rows& rows) {
  if (rows.inOutput) return {{"columns", rows.columns}, {"count", *rows.inOutput}, {"digest", hexText(rows.digest)}};
  Json json = {{"columns", rows.columns}};
  if (rows.stamps) json["stamps"] = stampsJson(*rows.stamps);
  json["count"] = rows.each.size();
  json["digest"] = hexText(rows.digest);
  json["each"] = digestsJson(rows.each);
  if (!rows.cells.empty()) json["cells"] = digestsJson(rows.cells);
  return json;
}

[[noreturn]] void refuse(const std::string& why) {
  throw Error(unspecifiedFailure, why);
}

[[noreturn]] void refuseMember(const char* name) {
  refuse(std::string("the manifest's \"") + name + "\" is not what a manifest has there");
}

/// A member that has to be there. Never copied: a copy of hostile JSON, nested a million times, would end the program.
const Json& member(const Json& object, const char* name, Json::value_t type) {
  const auto found = object.find(name);
  if (found == object.end()) refuse(std::string("the manifest has no \"") + name + "\"");
  if (found->type() != type) refuseMember(name);
  return *found;
}

const std::string& textMember(const Json& object, const char* name) {
  return member(object, name, Json::value_t::string).get_ref<const std::string&>();
}

std::uint64_t numberMember(const Json& object, const char* name) {
  return member(object, name, Json::value_t::number_unsigned).get<std::uint64_t>();
}

std::vector<std::string> textsMember(const Json& object, const char* name) {
  std::vector<std::string> texts;
  for (const Json& each : member(object, name, Json::value_t::array)) {
    if (!each.is_string()) refuseMember(name);
    texts.push_back(each.get_ref<const std::string&>());
  }
  return texts;
}

Digest digestOf(const std::string& text, const char* name) {
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
  add(json, "begun", manifest.begun);
  add(json, "ended", manifest.ended);
  add(json, "written", manifest.written);
  json["source"] = sourceJson(manifest.source);
  if (!manifest.question.text.empty()) json["question"] = questionJson(manifest.question);
  if (!manifest.lists.empty()) {
    json["lists"] = Json::array();
    for (const Manifest::ListCount& list : manifest.lists)
      json["lists"].push_back({{"caption", list.caption}, {"rows", list.rows}});
  }
  if (manifest.isComplete) json["complete"] = *manifest.isComplete;
  if (!manifest.limitReached.empty()) json["limitReached"] = manifest.limitReached;
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
  const std::uint64_t version = numberMember(json, "version");
  if (version > formatVersion)
    refuse("the manifest has version " + std::to_string(version) + "; this program knows version " +
           std::to_string(formatVersion) + " and needs to be updated");
  if (version != formatVersion) refuseMember("version");
  RecordedOutput recorded;
  const Json& output = member(json, "output", Json::value_t::object);
  recorded.output.name = textMember(output, "name");
  if (!isPlainName(recorded.output.name))
    refuse("the manifest names a file that is not in its own folder: " + recorded.output.name);
  recorded.output.format = textMember(output, "format");
  recorded.output.bytes = numberMember(output, "bytes");
  recorded.output.sha256 = digestOf(textMember(output, "sha256"), "sha256");
  const Json& rows = member(json, "rows", Json::value_t::object);
  recorded.rows.columns = textsMember(rows, "columns");
  recorded.rows.digest = digestOf(textMember(rows, "digest"), "digest");
  if (recorded.output.format == db::snapshotOutputFormat) {
    recorded.rows.inOutput = numberMember(rows, "count");
    return recorded;
  }
  for (const std::string& row : textsMember(rows, "each")) recorded.rows.each.push_back(digestOf(row, "each"));
  if (rows.contains("cells"))
    for (const std::string& row : textsMember(rows, "cells")) recorded.rows.cells.push_back(digestOf(row, "cells"));
  if (numberMember(rows, "count") != recorded.rows.each.size() ||
      (!recorded.rows.cells.empty() && recorded.rows.cells.size() != recorded.rows.each.size()))
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
