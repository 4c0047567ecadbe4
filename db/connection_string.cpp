#include "db/connection_string.h"

#include <array>
#include <span>
#include <utility>
#include <vector>

#include "base/system_errors.h"
#include "base/text.h"
#include "db/connection_state.h"
#include "db/open_connection.h"
#include "settings/string_table.h"

namespace korvel::db {
namespace {

[[noreturn]] void refuse(std::string key, std::vector<std::string> arguments = {}) {
  throw settings::localizedError(systemErrorNumber(std::errc::invalid_argument), std::move(key), std::move(arguments));
}

/// Walks over "key=value; key=value;". A value may stand in single or double quotes or in braces, its closing mark
/// doubled where it belongs to the value.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool next(std::string& key, std::string& value) {
    at_ = text_.find_first_not_of("; \t\r\n", at_);
    if (at_ == std::string_view::npos) return false;
    const auto equals = text_.find_first_of("=;", at_);
    if (equals == std::string_view::npos || text_[equals] == ';') refuseFrom(at_);
    key = trimBlanks(text_.substr(at_, equals - at_));
    at_ = text_.find_first_not_of(" \t\r\n", equals + 1);
    if (at_ == std::string_view::npos) at_ = text_.size();
    readValue(value);
    return true;
  }

 private:
  void readValue(std::string& value) {
    const char opening = at_ < text_.size() ? text_[at_] : '\0';
    if (opening == '\'' || opening == '"') return readEnclosed(opening, value);
    if (opening == '{') return readEnclosed('}', value);
    const auto end = text_.find(';', at_);
    value = trimBlanks(text_.substr(at_, end - at_));
    at_ = end == std::string_view::npos ? text_.size() : end;
  }

  void readEnclosed(char closing, std::string& value) {
    const std::size_t start = at_;
    value.clear();
    for (++at_;; ++at_) {
      if (at_ >= text_.size()) refuseFrom(start);
      if (text_[at_] == closing) {
        const bool doubled = at_ + 1 < text_.size() && text_[at_ + 1] == closing;
        if (!doubled) break;
        ++at_;
      }
      value += text_[at_];
    }
    ++at_;
    const auto rest = text_.find_first_not_of(" \t\r\n", at_);
    if (rest != std::string_view::npos && text_[rest] != ';') refuseFrom(start);
    at_ = rest == std::string_view::npos ? text_.size() : rest;
  }

  [[noreturn]] void refuseFrom(std::size_t start) const {
    refuse("db.connectionStringUnclear", {std::string(text_.substr(start))});
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

struct KeyOfPart {
  std::string_view key;
  std::string ConnectionTarget::*part;
};
constexpr std::array keys = {
    KeyOfPart{"Provider", &ConnectionTarget::provider},  KeyOfPart{"Server", &ConnectionTarget::server},
    KeyOfPart{"Data Source", &ConnectionTarget::server}, KeyOfPart{"Address", &ConnectionTarget::server},
    KeyOfPart{"Database", &ConnectionTarget::database},  KeyOfPart{"Initial Catalog", &ConnectionTarget::database},
};

constexpr std::array<std::string_view, 2> integratedKeys = {"Integrated Security", "Trusted_Connection"};
constexpr std::array<std::string_view, 3> integratedValues = {"SSPI", "Yes", "True"};

bool isOneOf(std::string_view text, std::span<const std::string_view> names) {
  for (const std::string_view name : names)
    if (equalsIgnoringAsciiCase(text, name)) return true;
  return false;
}

}  // namespace

std::string buildConnectionString(std::string_view server, std::string_view database) {
  std::string text = "Provider=SQLOLEDB; Server=";
  text += server;
  text += "; Database=";
  text += database;
  text += "; Integrated Security=SSPI;";
  return text;
}

ConnectionTarget parseConnectionString(std::string_view connectionString) {
  if (trimBlanks(connectionString).empty()) refuse("db.noneSelected");
  ConnectionTarget target;
  Reader reader(connectionString);
  for (std::string key, value; reader.next(key, value);) {
    for (const KeyOfPart& known : keys)
      if (equalsIgnoringAsciiCase(key, known.key)) target.*known.part = value;
    if (isOneOf(key, integratedKeys)) target.integratedSecurity = isOneOf(value, integratedValues);
  }
  if (target.server.empty()) refuse("db.noServerNamed");
  if (target.database.empty()) refuse("db.noDatabaseNamed");
  return target;
}

bool connectionStringRoundTrips(std::string_view server, std::string_view database) {
  try {
    const ConnectionTarget target = parseConnectionString(buildConnectionString(server, database));
    return target.server == server && target.database == database;
  } catch (const Error&) {
    return false;
  }
}

}  // namespace korvel::db
