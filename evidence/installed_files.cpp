#include "evidence/installed_files.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "evidence/manifest.h"

namespace korvel::evidence {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view dataFolder = "korvel-audit-viewer";
constexpr std::string_view shareFolder = "share";
constexpr std::string_view listName = "checksums.sha256";
constexpr std::string_view partBeginning = "checksums-";
constexpr std::string_view listEnding = ".sha256";
constexpr std::uintmax_t mostListBytes = std::uintmax_t{1} << 22U;

bool isListName(std::string_view name) {
  return name == listName || (name.starts_with(partBeginning) && name.ends_with(listEnding));
}

/// Lists lie in PREFIX/share/korvel-audit-viewer, or, where everything is in one folder, beside the programs.
fs::path rootOf(const fs::path& list) {
  std::error_code failure;
  const fs::path folder = absolutePath(list, failure).parent_path();
  const bool isInData = folder.filename() == dataFolder && folder.parent_path().filename() == shareFolder;
  return isInData ? folder.parent_path().parent_path() : folder;
}

InstalledFile checkFile(const fs::path& root, const NamedSum& sum, const ReadProgress& progress) {
  InstalledFile file{sum.name, sum.sha256, {}, false, {}};
  const fs::path path = root / pathFromUtf8(sum.name);
  std::error_code failure;
  const fs::file_type type = files::status(path, failure).type();
  if (type == fs::file_type::not_found) {
    file.isMissing = true;
    return file;
  }
  // A pipe would be waited for.
  if (type != fs::file_type::regular) {
    file.failure = "it is no file";
    return file;
  }
  try {
    file.found = sumOfFile(path, progress).sha256;
  } catch (const Error& error) {
    file.failure = error.description();
  }
  return file;
}

}  // namespace

std::vector<fs::path> placesOfLists(const fs::path& programFolder) {
  return {programFolder.parent_path() / shareFolder / dataFolder, programFolder};
}

std::vector<fs::path> installedLists(const fs::path& programFolder) {
  for (const fs::path& place : placesOfLists(programFolder)) {
    std::error_code failure;
    std::vector<fs::path> lists;
    for (const fs::path& entry : files::listFolder(place, failure))
      if (isListName(utf8FromPath(entry.filename()))) lists.push_back(entry);
    std::sort(lists.begin(), lists.end());
    if (!lists.empty()) return lists;
  }
  return {};
}

std::vector<InstalledFile> checkInstalledFiles(const fs::path& list, const ReadProgress& progress) {
  std::error_code failure;
  // The list is small, a device has no end.
  const auto isNoList = [&] { return Error(unspecifiedFailure, utf8FromPath(list) + " is no list of checksums"); };
  if (!fs::is_regular_file(files::status(list, failure)) || files::size(list, failure) > mostListBytes)
    throw isNoList();
  const auto sums = readSums(readFile(list));
  if (!sums || sums->empty()) throw isNoList();
  const fs::path root = rootOf(list);
  std::vector<InstalledFile> checked;
  for (const NamedSum& sum : *sums) checked.push_back(checkFile(root, sum, progress));
  return checked;
}

}  // namespace korvel::evidence
