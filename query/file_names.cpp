#include "query/file_names.h"

#include <algorithm>
#include <array>
#include <new>
#include <system_error>

#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "query/query_file.h"
#include "results/memory_watch.h"
#include "settings/string_table.h"

namespace korvel::query {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view everyFile = "*.*";
constexpr std::string_view anyName = "*.";

// What systems say of such names.
constexpr std::int32_t invalidName = 123;
constexpr std::int32_t nameTooLong = 206;

/// The longest name of a file, in bytes, that every file system takes, less what is appended while the file is written
/// (a point and six characters) and the extension with its point.
constexpr std::size_t longestFileName = 255;
constexpr std::size_t longestName = longestFileName - 7 - 1 - queryFileExtension.size();

/// Names of devices on Windows, whatever follows behind a point.
constexpr std::array<std::string_view, 32> deviceNames = {
    "CON",  "PRN",  "AUX",  "NUL",  "CONIN$", "CONOUT$", "COM0", "COM1", "COM2", "COM3", "COM4",
    "COM5", "COM6", "COM7", "COM8", "COM9",   "COM¹",    "COM²", "COM³", "LPT0", "LPT1", "LPT2",
    "LPT3", "LPT4", "LPT5", "LPT6", "LPT7",   "LPT8",    "LPT9", "LPT¹", "LPT²", "LPT³",
};

bool isDevice(std::string_view name) {
  name = trimBlanks(name.substr(0, name.find('.')));
  return std::any_of(deviceNames.begin(), deviceNames.end(),
                     [name](std::string_view device) { return equalsIgnoringAsciiCase(name, device); });
}

constexpr bool isForbidden(char c) noexcept {
  return static_cast<unsigned char>(c) < 0x20 || c == '\x7f' ||
         std::string_view("/\\<>:\"|?*").find(c) != std::string_view::npos;
}

/// `name` as a sentence can show it.
std::string shown(std::string_view name) {
  std::string text = replaceInvalidUtf8(name);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
  return text;
}

/// Whether case-folded `name` matches case-folded `pattern`, character by character.
bool matches(std::string_view name, std::string_view pattern) {
  // Where the last "*" stood, and what it has taken so far: the only place to which one ever has to go back.
  std::optional<std::string_view> afterStar;
  std::string_view taken;
  for (;;) {
    if (pattern.starts_with('*')) {
      pattern.remove_prefix(1);
      afterStar = pattern;
      taken = name;
      continue;
    }
    if (name.empty() && pattern.empty()) return true;
    std::string_view rest = name;
    if (!name.empty()) static_cast<void>(takeCodePoint(rest));
    const std::string_view character = name.substr(0, name.size() - rest.size());
    if (!character.empty() && pattern.starts_with('?')) {
      pattern.remove_prefix(1);
    } else if (!character.empty() && pattern.starts_with(character)) {
      pattern.remove_prefix(character.size());
    } else {
      if (!afterStar || taken.empty()) return false;
      static_cast<void>(takeCodePoint(taken));
      pattern = *afterStar;
      name = taken;
      continue;
    }
    name = rest;
  }
}

Error folderUnreadable(const std::string& folder, int systemErrorNumber) {
  return settings::localizedError(systemErrorNumber, "queryFile.folderUnreadable",
                                  {folder, systemMessage(systemErrorNumber)});
}

}  // namespace

std::optional<Error> fileNameProblem(std::string_view name) {
  using settings::localizedError;
  if (name.empty()) return std::nullopt;
  if (name.size() > longestName)
    return localizedError(nameTooLong, "queryFile.nameTooLong", {std::to_string(longestName)});
  if (!isValidUtf8(name) || std::any_of(name.begin(), name.end(), isForbidden))
    return localizedError(invalidName, "queryFile.nameCharacter", {shown(name), "/ \\ < > : \" | ? *"});
  if (name.ends_with('.') || name.ends_with(' '))
    return localizedError(invalidName, "queryFile.nameEnd", {shown(name)});
  if (isDevice(name)) return localizedError(invalidName, "queryFile.nameDevice", {shown(name)});
  return std::nullopt;
}

std::string withSeparator(std::string folder) {
  if (!folder.ends_with(folderSeparator)) folder += folderSeparator;
  return folder;
}

std::string filePattern(std::string_view extension) {
  if (trimBlanks(extension).empty()) return std::string(everyFile);
  return extension.starts_with(anyName) ? std::string(extension) : std::string(anyName).append(extension);
}

bool matchesFilePattern(std::string_view name, std::string_view pattern) {
  return pattern == everyFile || matches(caseFolded(name), caseFolded(pattern));
}

std::vector<std::string> listedFiles(const std::string& folder, std::string_view extension) {
  const std::string place = withSeparator(folder);
  const std::string pattern = filePattern(extension);
  try {
    std::vector<std::string> names;
    std::error_code failure;
    for (const fs::path& entry : files::listFolder(pathFromUtf8(place), failure)) {
      std::string name = utf8FromPath(entry.filename());
      // An entry that cannot be looked at, a link into nowhere for one, is no file to open.
      std::error_code unknown;
      if (matchesFilePattern(name, pattern) && fs::is_regular_file(files::status(entry, unknown)))
        names.push_back(std::move(name));
    }
    if (failure) throw folderUnreadable(place, systemErrorNumber(failure));
    return names;
  } catch (const std::bad_alloc&) {
    throw results::outOfMemory();
  }
}

}  // namespace korvel::query
