#include "output/export_file.h"

#include "base/files.h"
#include "base/system_errors.h"

namespace korvel::output {

namespace fs = std::filesystem;

ExportFile::ExportFile(const fs::path& target) {
  std::error_code ignored;
  if (fs::is_directory(files::symlinkStatus(target, ignored))) throw fileError(FileError::pathFileAccess);
  writingFile([&] { file_.emplace(target, SymlinkPolicy::replace); });
}

void ExportFile::write(std::string_view bytes) {
  writingFile([&] { file_->write(bytes); });
}

void ExportFile::commit() {
  writingFile([&] { file_->commit(); });
}

}  // namespace korvel::output
