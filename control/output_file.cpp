#include "control/output_file.h"

#include <utility>

#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "settings/string_table.h"

namespace korvel::control {

namespace fs = std::filesystem;

namespace {

/// A message about the output alone would not say what is in the way.
void checkCompanions(const fs::path& target) {
  for (const fs::path& file : {evidence::manifestOf(target), evidence::sumsOf(target)}) {
    std::error_code failure;
    files::checkReplaceable(file, failure);
    if (!failure) continue;
    const Error error = asFileError(systemError(systemErrorNumber(failure), "cannot write"), FileAccess::write);
    throw settings::localizedError(error.number(), "export.manifestBlocked", {utf8FromPath(file)});
  }
}

}  // namespace

OutputFile::OutputFile(const fs::path& target, ManifestMaker manifest) : manifest_(std::move(manifest)) {
  if (!manifest_) {
    alone_.emplace(target);
    return;
  }
  std::error_code ignored;
  if (fs::is_directory(files::symlinkStatus(target, ignored))) throw fileError(FileError::pathFileAccess);
  checkCompanions(target);
  // As ExportFile does it: another user may have put a link there.
  output::writingFile([&] { proven_.emplace(target, SymlinkPolicy::replace); });
}

void OutputFile::write(std::string_view bytes) {
  if (alone_) return alone_->write(bytes);
  output::writingFile([&] { proven_->write(bytes); });
}

void OutputFile::commit() {
  if (alone_) return alone_->commit();
  evidence::Manifest manifest = manifest_();
  output::writingFile([&] { proven_->commit(std::move(manifest)); });
}

}  // namespace korvel::control
