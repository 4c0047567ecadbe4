#include "output/export_file.h"

#include "base/files.h"
#include "base/system_errors.h"

namespace korvel::output {

namespace fs = std::filesystem;

namespace {

template <typename Work>
void translating(Work work) {
  try {
    work();
  } catch (const Error& error) {
    throw asFileError(error, FileAccess::write);
  }
}

}  // namespace

ExportFile::ExportFile(const fs::path& target) {
  std::error_code ignored;
  if (fs::is_directory(files::symlinkStatus(target, ignored))) throw fileError(FileError::pathFileAccess);
  translating([&] { file_.emplace(target, SymlinkPolicy::replace); });
}

void ExportFile::write(std::string_view bytes) {
  translating([&] { file_->write(bytes); });
}

void ExportFile::commit() {
  translating([&] { file_->commit(); });
}

}  // namespace korvel::output
