#include "evidence/snapshot_failures.h"

#include <sqlite3.h>

#include <system_error>

#include "base/paths.h"
#include "base/system_errors.h"
#include "settings/string_table.h"

namespace korvel::evidence {

using settings::localizedError;

Error unwritable(const std::filesystem::path& file, int systemErrorNumber, const std::string& reason) {
  const auto means = [&](std::errc condition) { return isSystemError(systemErrorNumber, condition); };
  if (means(std::errc::permission_denied) || means(std::errc::operation_not_permitted) ||
      means(std::errc::read_only_file_system))
    return localizedError(systemErrorNumber, "snapshot.notAllowed", {utf8FromPath(file.parent_path())});
  if (means(std::errc::no_space_on_device) || means(std::errc::file_too_large))
    return localizedError(systemErrorNumber, "snapshot.diskFull", {utf8FromPath(file)});
  return localizedError(systemErrorNumber, "snapshot.unwritable", {utf8FromPath(file), reason});
}

Error unwritable(const std::filesystem::path& file, const Error& failure) {
  if (!failure.textKey().empty()) return failure;
  return unwritable(file, failure.number(), failure.description());
}

Error unreadable(const std::filesystem::path& file, const Error& failure) {
  if (!failure.textKey().empty()) return failure;
  constexpr std::int32_t firstBits = 0xFF;
  switch (failure.number() & firstBits) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return localizedError(failure.number(), "compare.locked", {utf8FromPath(file)});
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_ERROR:  // a table or a column is missing
    case SQLITE_IOERR:
      return localizedError(failure.number(), "compare.damaged", {utf8FromPath(file), failure.description()});
    default:
      return failure;
  }
}

}  // namespace korvel::evidence
