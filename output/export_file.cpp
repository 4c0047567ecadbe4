#include "output/export_file.h"

#include "base/files.h"
#include "output/windows_error.h"

namespace korvel::output {

namespace fs = std::filesystem;

namespace {

template <typename Work>
void translating(Work work) {
  try {
    work();
  } catch (const Error& error) {
    throw asWindowsError(error, FileTask::write);
  }
}

}  // namespace

ExportFile::ExportFile(const fs::path& target) {
  std::error_code ignored;
  if (fs::is_directory(files::linkStatus(target, ignored))) throw windowsError(errorPathFileAccess);
  translating([&] { file_.emplace(target, AtLink::replace); });
}

void ExportFile::write(std::string_view bytes) {
  translating([&] { file_->write(bytes); });
}

void ExportFile::commit() {
  translating([&] { file_->commit(); });
}

}  // namespace korvel::output
