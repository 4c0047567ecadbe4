#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace korvel::output {

/// An empty file that only this user can open, removed with the object. Throws Error with a FileError.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::filesystem::path& folder);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
  /// Throws where the disk has no room for so many bytes in it; the file is empty afterwards.
  void checkRoom(std::uint64_t bytes) const;

 private:
  std::filesystem::path path_;
};

/// The name of a file or folder that is there, as functions of the C library take it; empty where they cannot take it.
[[nodiscard]] std::string cLibraryPath(const std::filesystem::path& path);

}  // namespace korvel::output
