#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include "evidence/manifest.h"
#include "evidence/proven_file.h"
#include "output/export_file.h"

namespace korvel::control {

/// A file that the user gets: alone, or together with its manifest and their sums. Throws Error with a FileError.
class OutputFile {
 public:
  /// Gives the manifest of a file that is completely written, but for what ProvenFile knows.
  using ManifestMaker = std::function<evidence::Manifest()>;

  /// Without `manifest` the file stands alone.
  explicit OutputFile(const std::filesystem::path& target, ManifestMaker manifest = {});

  void write(std::string_view bytes);
  void commit();

 private:
  ManifestMaker manifest_;
  std::optional<output::ExportFile> alone_;
  std::optional<evidence::ProvenFile> proven_;
};

}  // namespace korvel::control
