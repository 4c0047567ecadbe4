#include "cli/server_path.h"

#include <filesystem>
#include <system_error>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "db/connection_string.h"
#include "db/embedded/embedded_folder.h"
#include "db/open_connection.h"

namespace korvel::cli {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view databaseExtension = ".db";

/// No name of a host holds a slash or begins with a dot; a backslash alone is that of an instance.
bool looksLikeAPath(std::string_view server) {
  return server.find('/') != std::string_view::npos || server == "." || server == ".." || server.starts_with(".\\") ||
         server.starts_with("..\\");
}

fs::file_type typeOf(const fs::path& path) {
  std::error_code ignored;
  return files::status(path, ignored).type();
}

}  // namespace

std::optional<std::string> connectionName(const std::string& name) {
  if (!db::connectionStringRoundTrips(name, name)) return std::nullopt;
  return name;
}

std::optional<std::string> resolveServerPath(std::string& server, std::string* database, bool databaseNamed) {
  if (looksLikeAPath(server) && !db::isEmbeddedServer(server)) {
    std::error_code failure;
    fs::path whole = absolutePath(pathFromUtf8(server), failure).lexically_normal();
    if (failure) return server + " cannot be found: there is no working folder";
    if (!whole.has_filename() && whole.has_relative_path()) whole = whole.parent_path();  // a separator at the end
    server = utf8FromPath(whole);
  }
  if (database != nullptr && db::isEmbeddedServer(server) && server != db::embeddedServerName) {
    const fs::path path = pathFromUtf8(server);
    if (typeOf(path) == fs::file_type::regular) {
      if (!hasExtension(path, databaseExtension))
        return server + " is a file; name its folder with --server, and NAME.db in it with --database NAME";
      const std::string name = utf8FromPath(path.stem());
      if (databaseNamed && *database != name)
        return server + " is the database " + name + "; leave out --database, or name the folder";
      server = utf8FromPath(path.parent_path());
      *database = name;
    }
  }
  if (server.empty() || connectionName(server)) return std::nullopt;
  return server + " cannot be named: the path holds a semicolon, or blanks or quotes at its ends";
}

std::optional<std::string> folderNote(const std::string& server) {
  if (server.empty() || db::isEmbeddedServer(server) || typeOf(pathFromUtf8(server)) != fs::file_type::directory)
    return std::nullopt;
  return "there is a folder of that name: --server ./" + server;
}

}  // namespace korvel::cli
