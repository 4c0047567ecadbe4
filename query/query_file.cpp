#include "query/query_file.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <system_error>

#include "base/atomic_file.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "db/embedded/embedded_folder.h"
#include "results/memory_watch.h"
#include "settings/code_page.h"
#include "settings/string_table.h"

namespace korvel::query {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view lineEnd = "\r\n";

/// Far beyond any query: a file of this size was chosen by mistake, and a text box would not stand it.
constexpr std::uintmax_t largestFileBytes = std::uintmax_t{64} << 20U;

Error unreadable(const fs::path& file, int systemErrorNumber) {
  return settings::localizedError(systemErrorNumber, "queryFile.unreadable",
                                  {utf8FromPath(file), systemMessage(systemErrorNumber)});
}

}  // namespace

std::string queryFileBytes(std::string_view text) {
  return settings::toCodePage(text).append(lineEnd);
}

bool fitsQueryFile(std::string_view text) {
  return settings::fitsCodePage(text);
}

void saveQueryFile(const fs::path& file, std::string_view text) {
  if (db::isDatabaseFile(file))
    throw settings::localizedError(systemErrorNumber(std::errc::operation_not_permitted), "queryFile.isDatabase",
                                   {utf8FromPath(file)});
  try {
    writeFileAtomically(file, queryFileBytes(text));
  } catch (const Error& error) {
    const int number = error.number();
    throw settings::localizedError(number, "queryFile.unwritable", {utf8FromPath(file), systemMessage(number)});
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

std::string textOfQueryFile(std::string_view bytes) {
  std::string lines;
  lines.reserve(bytes.size() + lineEnd.size());
  while (!bytes.empty()) {
    const std::size_t size = std::min(bytes.find('\r'), bytes.size());
    lines.append(bytes.substr(0, size)).append(lineEnd);
    bytes.remove_prefix(size);
    if (bytes.starts_with(lineEnd))
      bytes.remove_prefix(lineEnd.size());
    else if (!bytes.empty())
      bytes.remove_prefix(1);
  }
  return settings::fromCodePage(lines);
}

std::string loadQueryFile(const fs::path& file) {
  std::error_code failure;
  const fs::file_status status = files::status(file, failure);
  if (failure && status.type() != fs::file_type::not_found) throw unreadable(file, systemErrorNumber(failure));
  if (fs::is_directory(status)) throw unreadable(file, systemErrorNumber(std::errc::is_a_directory));
  // A pipe, for one, would be waited for without end.
  if (fs::exists(status) && !fs::is_regular_file(status))
    throw unreadable(file, systemErrorNumber(std::errc::invalid_argument));
  if (const auto size = files::size(file, failure); !failure && size > largestFileBytes)
    throw unreadable(file, systemErrorNumber(std::errc::file_too_large));
  try {
    return textOfQueryFile(readFile(file));
  } catch (const Error& error) {
    throw unreadable(file, error.number());
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

}  // namespace korvel::query
