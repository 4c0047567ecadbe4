#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "base/text.h"
#include "db/embedded/embedded_connection.h"
#include "db/open_connection.h"
#include "settings/explained_error.h"
#include "settings/registry.h"

namespace korvel::db {
namespace {

std::filesystem::path environmentPath(const char* name) {
  return settings::GetEnvironment(name);
}

std::filesystem::path homeFolder() {
  if (auto home = environmentPath("HOME"); home.is_absolute()) return home;
  passwd user{};
  passwd* found = nullptr;
  std::array<char, 4096> texts{};
  const bool known = ::getpwuid_r(::getuid(), &user, texts.data(), texts.size(), &found) == 0 && found != nullptr;
  return known ? user.pw_dir : "/";
}

std::filesystem::path userDataFolder() {
  // A relative XDG_DATA_HOME is to be ignored, says the base directory convention.
  if (auto folder = environmentPath("XDG_DATA_HOME"); folder.is_absolute()) return folder;
  return homeFolder() / ".local" / "share";
}

/// The longest name that the server gives a database.
constexpr std::size_t longestDatabaseName = 128;

struct FolderSentence {
  int systemNumber;
  const char* key;
};
constexpr std::array folderSentences = {
    FolderSentence{ENOENT, "failure.noFolder"},
    FolderSentence{ENOTDIR, "failure.notAFolder"},
    FolderSentence{EACCES, "failure.folderDenied"},
    FolderSentence{EPERM, "failure.folderDenied"},
};

}  // namespace

bool isEmbeddedDatabaseName(std::string_view database) {
  if (database.empty() || database.size() > longestDatabaseName) return false;
  if (database.front() == '.' || database.find("..") != std::string_view::npos) return false;
  return std::none_of(database.begin(), database.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '\x7f' || c == '/' || c == '\\' || c == ':';
  });
}

Error folderFailure(const std::filesystem::path& folder, int systemNumber) {
  for (const FolderSentence& sentence : folderSentences)
    if (sentence.systemNumber == systemNumber)
      return settings::explainedError(systemNumber, sentence.key, {folder.string()});
  return settings::explainedError(systemNumber, "failure.folderUnreadable",
                                  {folder.string(), std::generic_category().message(systemNumber)});
}

bool isEmbeddedServer(std::string_view server) {
  return equalsIgnoringAsciiCase(server, embeddedServerName) || std::filesystem::path(server).is_absolute();
}

std::filesystem::path embeddedFolder() {
  if (const auto named = environmentPath("KORVEL_AUDIT_DATA"); !named.empty()) {
    std::error_code noWorkingFolder;
    auto folder = std::filesystem::absolute(named, noWorkingFolder);
    if (noWorkingFolder) throw folderFailure(named, noWorkingFolder.value());
    return folder;
  }
  return userDataFolder() / "korvel" / "audit";
}

std::filesystem::path embeddedFolderOf(std::string_view server) {
  return equalsIgnoringAsciiCase(server, embeddedServerName) ? embeddedFolder() : std::filesystem::path(server);
}

std::filesystem::path embeddedDatabaseFile(const std::filesystem::path& folder, std::string_view database) {
  if (!isEmbeddedDatabaseName(database))
    throw settings::explainedError(EINVAL, "db.notAName",
                                   {replaceAll(std::string(database), std::string(1, '\0'), "\\0")});
  return folder / (std::string(database) + ".db");
}

}  // namespace korvel::db
