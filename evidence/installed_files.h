#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "evidence/file_sum.h"

namespace korvel::evidence {

/// A file that an installation's list of sums names, and what is in its place now.
struct InstalledFile {
  std::string name;  ///< as the list names it
  Digest expected;
  std::optional<Digest> found;  ///< nothing where the file could not be read
  bool isMissing = false;
  std::string failure;  ///< why it could not be read

  [[nodiscard]] bool isUnchanged() const noexcept { return found == expected; }
};

/// Where the lists of an installation can be, for a program in this folder: the data folder beside "bin", and the
/// folder itself.
[[nodiscard]] std::vector<std::filesystem::path> placesOfLists(const std::filesystem::path& programFolder);
/// The lists in the first of the places that has any ("checksums.sha256", and one for each part that was installed by
/// itself, "checksums-PART.sha256"), by name.
[[nodiscard]] std::vector<std::filesystem::path> installedLists(const std::filesystem::path& programFolder);

/// Compares the files that a list names with it. Names are relative to the prefix of the installation, for a list
/// outside of a data folder to the folder of the list. Throws Error where the list is none.
[[nodiscard]] std::vector<InstalledFile> checkInstalledFiles(const std::filesystem::path& list,
                                                             const ReadProgress& progress = {});

}  // namespace korvel::evidence
