#include "db/discovery/configured_servers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <map>

#include "base/text.h"

namespace korvel::db {

namespace {

using Section = std::map<std::string, std::string>;  // keys case-folded

/// Calls `visit` with each section's name and entries, in the order of the file.
void readSections(std::string_view text, const std::function<void(const std::string&, const Section&)>& visit) {
  std::string name;
  Section section;
  const auto finish = [&] {
    if (!name.empty()) visit(name, section);
    section.clear();
  };
  while (!text.empty()) {
    const auto end = text.find('\n');
    const std::string_view line = trimWhitespace(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.empty() || line.front() == '#' || line.front() == ';') continue;
    if (line.front() == '[') {
      finish();
      // A heading that is not closed heads nothing.
      name = line.back() == ']' ? trimWhitespace(line.substr(1, line.size() - 2)) : std::string_view{};
      continue;
    }
    const auto equals = line.find('=');
    if (equals != std::string_view::npos)
      section[caseFolded(trimWhitespace(line.substr(0, equals)))] = trimWhitespace(line.substr(equals + 1));
  }
  finish();
}

std::string valueOf(const Section& section, const char* key) {
  const auto found = section.find(key);
  return found == section.end() ? std::string{} : found->second;
}

/// Whether a section is about a server of this protocol: older versions belong to another product.
bool speaksOurVersion(const Section& section) {
  constexpr int firstVersion = 7;
  const std::string version = valueOf(section, "tds version");
  int major = 0;
  const auto [end, error] = std::from_chars(version.data(), version.data() + version.size(), major);
  return error != std::errc{} || major >= firstVersion;
}

/// Hosts that do not exist: the examples in the file that the driver's package installs.
constexpr std::array<std::string_view, 2> sampleHosts = {"ntmachine.domain.com", "symachine.domain.com"};

bool isSample(std::string_view host) {
  return std::any_of(sampleHosts.begin(), sampleHosts.end(),
                     [&](std::string_view sample) { return equalsIgnoringAsciiCase(host, sample); });
}

/// What names of this protocol's drivers and of their files hold, case-folded.
constexpr std::array<std::string_view, 6> driverMarks = {"freetds",   "tdsodbc",  "sql server",
                                                         "msodbcsql", "sqlsrv32", "sqlncli"};

bool isOurs(std::string_view driver) {
  return std::any_of(driverMarks.begin(), driverMarks.end(),
                     [&](std::string_view mark) { return driver.find(mark) != std::string_view::npos; });
}

std::string typedName(const std::string& host, const std::string& instance, const std::string& port) {
  if (!port.empty() && port != "1433") return host + "," + port;
  return instance.empty() ? host : host + "\\" + instance;
}

}  // namespace

std::vector<std::string> serversOfFreeTdsConfiguration(std::string_view text) {
  std::vector<std::string> servers;
  readSections(text, [&](const std::string& name, const Section& section) {
    const std::string host = valueOf(section, "host");
    if (equalsIgnoringAsciiCase(name, "global") || host.empty()) return;
    if (isSample(host) || !speaksOurVersion(section)) return;
    servers.push_back(typedName(host, valueOf(section, "instance"), valueOf(section, "port")));
  });
  return servers;
}

std::vector<std::string> serversOfOdbcConfiguration(std::string_view text) {
  std::vector<std::string> servers;
  readSections(text, [&](const std::string& name, const Section& section) {
    const std::string server = valueOf(section, "server");
    if (equalsIgnoringAsciiCase(name, "ODBC Data Sources") || equalsIgnoringAsciiCase(name, "ODBC") || server.empty())
      return;
    // A data source of another product also has a server; only those of this protocol's drivers are ours.
    const std::string driver = caseFolded(valueOf(section, "driver"));
    if (isOurs(driver)) servers.push_back(typedName(server, {}, valueOf(section, "port")));
  });
  return servers;
}

}  // namespace korvel::db
