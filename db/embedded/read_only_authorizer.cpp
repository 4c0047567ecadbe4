#include "db/embedded/read_only_authorizer.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>

#include "base/text.h"

namespace korvel::db {
namespace {

/// Functions that load code or reach into the engine. The shell's own writefile, readfile and edit are not part of the
/// library; they stand here in case a host's SQLite brings them along.
constexpr std::array<std::string_view, 5> refusedFunctions = {"load_extension", "fts3_tokenizer", "writefile",
                                                              "readfile", "edit"};

/// Pragmas that only tell. With an argument most pragmas change something, so those that need one are marked.
struct Pragma {
  std::string_view name;
  bool mayHaveArgument;
};
constexpr std::array allowedPragmas = {
    Pragma{"table_info", true},       Pragma{"table_xinfo", true},       Pragma{"table_list", true},
    Pragma{"index_list", true},       Pragma{"index_info", true},        Pragma{"index_xinfo", true},
    Pragma{"foreign_key_list", true}, Pragma{"foreign_key_check", true}, Pragma{"integrity_check", true},
    Pragma{"quick_check", true},      Pragma{"database_list", false},    Pragma{"collation_list", false},
    Pragma{"function_list", false},   Pragma{"module_list", false},      Pragma{"pragma_list", false},
    Pragma{"compile_options", false}, Pragma{"encoding", false},         Pragma{"page_size", false},
    Pragma{"page_count", false},      Pragma{"freelist_count", false},   Pragma{"schema_version", false},
    Pragma{"user_version", false},    Pragma{"application_id", false},   Pragma{"data_version", false},
};

bool allowsPragma(std::string_view name, bool hasArgument) {
  return std::any_of(allowedPragmas.begin(), allowedPragmas.end(), [&](const Pragma& pragma) {
    return equalsIgnoringAsciiCase(pragma.name, name) && (pragma.mayHaveArgument || !hasArgument);
  });
}

bool allowsFunction(std::string_view name) {
  return std::none_of(refusedFunctions.begin(), refusedFunctions.end(),
                      [&](std::string_view refused) { return equalsIgnoringAsciiCase(refused, name); });
}

std::string_view orEmpty(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

}  // namespace

void ReadOnlyAuthorizer::install(sqlite3* handle) {
  sqlite3_set_authorizer(handle, authorize, this);
}

int ReadOnlyAuthorizer::authorize(void* self, int action, const char* first, const char* second, const char*,
                                  const char*) {
  return static_cast<ReadOnlyAuthorizer*>(self)->allows(action, first, second) ? SQLITE_OK : SQLITE_DENY;
}

bool ReadOnlyAuthorizer::allows(int action, const char* first, const char* second) {
  switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_RECURSIVE:
      return true;
    case SQLITE_UPDATE:
      // So SQLite announces that it makes a table-valued function (json_each, pragma_table_list) known to the
      // connection. A statement that does mean to change the schema table does not get past the engine, nor past the
      // reading test.
      return orEmpty(first) == "sqlite_master";
    case SQLITE_PRAGMA:
      if (allowsPragma(orEmpty(first), second != nullptr)) return true;
      refused_ = "PRAGMA " + std::string(orEmpty(first));
      return false;
    case SQLITE_FUNCTION:
      if (allowsFunction(orEmpty(second))) return true;
      refused_ = std::string(orEmpty(second)) + "()";
      return false;
    default:
      return false;
  }
}

}  // namespace korvel::db
