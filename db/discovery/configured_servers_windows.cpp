// The data sources of the user and of the machine. The registry keeps them as an odbc.ini would: a key for each, its
// entries as values.
#include <windows.h>

#include <algorithm>
#include <array>
#include <memory>

#include "base/text.h"
#include "base/wide_text_windows.h"
#include "db/discovery/configured_servers.h"

namespace korvel::db {

namespace {

struct CloseKey {
  void operator()(HKEY key) const noexcept { RegCloseKey(key); }
};
using Key = std::unique_ptr<std::remove_pointer_t<HKEY>, CloseKey>;

/// `half` says whether the entries of programs of 64 or of 32 bits are meant, where the system keeps them apart.
Key opened(HKEY above, const wchar_t* path, REGSAM half = 0) {
  HKEY key = nullptr;
  return Key(RegOpenKeyExW(above, path, 0, KEY_READ | half, &key) == ERROR_SUCCESS ? key : nullptr);
}

/// A line of the section for a value that is a text of one line; nothing for others.
std::string lineOf(HKEY key, const wchar_t* name) {
  constexpr DWORD mostUnits = 1024;
  std::wstring text(mostUnits, L'\0');
  DWORD type = REG_NONE;
  DWORD bytes = mostUnits * sizeof(wchar_t);
  const LSTATUS status = RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &bytes);
  if (status != ERROR_SUCCESS || type != REG_SZ) return {};
  text.resize(bytes / sizeof(wchar_t));
  text.resize(std::min(text.find_first_of(std::wstring_view(L"\0\r\n", 3)), text.size()));
  return utf8FromWide(name) + "=" + utf8FromWide(text) + "\n";
}

struct Sources {
  HKEY root;
  REGSAM half;
};
/// Plants run many a program of 32 bits, whose data sources the machine keeps apart; those of a user are the same.
const std::array<Sources, 3> allSources = {
    {{HKEY_CURRENT_USER, 0}, {HKEY_LOCAL_MACHINE, KEY_WOW64_64KEY}, {HKEY_LOCAL_MACHINE, KEY_WOW64_32KEY}}};

std::string sectionsBelow(const Sources& where) {
  constexpr std::size_t longestKeyName = 256;
  const Key sources = opened(where.root, L"SOFTWARE\\ODBC\\ODBC.INI", where.half);
  std::string sections;
  if (!sources) return sections;
  std::array<wchar_t, longestKeyName> name{};
  for (DWORD i = 0;; ++i) {
    auto length = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(sources.get(), i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
      return sections;
    const Key source = opened(sources.get(), name.data());
    if (!source) continue;
    sections += "[" + utf8FromWide({name.data(), length}) + "]\n";
    for (const wchar_t* entry : {L"Driver", L"Server", L"Port"}) sections += lineOf(source.get(), entry);
  }
}

}  // namespace

std::vector<std::string> configuredServers() {
  std::vector<std::string> servers;
  for (const Sources& sources : allSources) {
    for (std::string& server : serversOfOdbcConfiguration(sectionsBelow(sources))) {
      const bool isKnown = std::any_of(servers.begin(), servers.end(), [&](const std::string& known) {
        return equalsIgnoringAsciiCase(known, server);
      });
      if (!isKnown) servers.push_back(std::move(server));
    }
  }
  return servers;
}

}  // namespace korvel::db
