#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace korvel::output {

/// An empty file of this user's alone that goes with the object. Throws Error with a FileError.
class ScratchFile {
 public:
  explicit ScratchFile(const std::filesystem::path& folder);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// Throws where the disk has no room for so many bytes in it; the file is empty afterwards.
  void checkRoom(std::uint64_t bytes) const;

 private:
  std::filesystem::path path_;
};

/// The name of a file or folder that is there, as functions of the C library take it; empty where they cannot take it.
[[nodiscard]] std::string nameForTheLibrary(const std::filesystem::path& path);

}  // namespace korvel::output
