#include "db/embedded/embedded_folder.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <system_error>

#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "db/embedded/embedded_connection.h"
#include "db/open_connection.h"
#include "settings/registry.h"
#include "settings/string_table.h"

namespace korvel::db {
namespace {

/// The longest name that the server gives a database.
constexpr std::size_t longestDatabaseName = 128;

struct FolderSentence {
  std::errc condition;
  const char* key;
};
constexpr std::array folderSentences = {
    FolderSentence{std::errc::no_such_file_or_directory, "failure.noFolder"},
    FolderSentence{std::errc::not_a_directory, "failure.notAFolder"},
    FolderSentence{std::errc::permission_denied, "failure.folderDenied"},
    FolderSentence{std::errc::operation_not_permitted, "failure.folderDenied"},
};

}  // namespace

bool isEmbeddedDatabaseName(std::string_view database) {
  if (database.empty() || database.size() > longestDatabaseName) return false;
  if (database.front() == '.' || database.find("..") != std::string_view::npos) return false;
  return std::none_of(database.begin(), database.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == '\x7f' || c == '/' || c == '\\' || c == ':';
  });
}

Error folderFailure(const std::filesystem::path& folder, int systemErrorNumber) {
  for (const FolderSentence& sentence : folderSentences)
    if (isSystemError(systemErrorNumber, sentence.condition))
      return settings::localizedError(systemErrorNumber, sentence.key, {utf8FromPath(folder)});
  return settings::localizedError(systemErrorNumber, "failure.folderUnreadable",
                                  {utf8FromPath(folder), systemMessage(systemErrorNumber)});
}

bool isEmbeddedServer(std::string_view server) {
  return equalsIgnoringAsciiCase(server, embeddedServerName) || isAbsolute(pathFromUtf8(server));
}

std::filesystem::path embeddedFolder() {
  if (const auto named = pathFromUtf8(settings::GetEnvironment("KORVEL_AUDIT_DATA")); !named.empty()) {
    std::error_code noWorkingFolder;
    auto folder = absolutePath(named, noWorkingFolder);
    if (noWorkingFolder) throw folderFailure(named, systemErrorNumber(noWorkingFolder));
    return folder;
  }
  return userDataFolder() / "korvel" / "audit";
}

std::filesystem::path embeddedFolderOf(std::string_view server) {
  return equalsIgnoringAsciiCase(server, embeddedServerName) ? embeddedFolder() : pathFromUtf8(server);
}

std::filesystem::path embeddedDatabaseFile(const std::filesystem::path& folder, std::string_view database) {
  if (!isEmbeddedDatabaseName(database))
    throw settings::localizedError(systemErrorNumber(std::errc::invalid_argument), "db.notAName",
                                   {replaceAll(std::string(database), std::string(1, '\0'), "\\0")});
  return folder / pathFromUtf8(std::string(database) + ".db");
}

bool isDatabaseFile(const std::filesystem::path& file) {
  constexpr std::string_view signature{"SQLite format 3\0", 16};
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(files::status(file, ignored))) return false;
  std::array<char, signature.size()> start{};
  std::ifstream in(extendedLengthPath(file), std::ios::binary);
  in.read(start.data(), static_cast<std::streamsize>(start.size()));
  return in && std::string_view(start.data(), start.size()) == signature;
}

}  // namespace korvel::db
