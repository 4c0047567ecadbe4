#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "output/export_file.h"
#include "settings/registry.h"

namespace korvel::output {

namespace fs = std::filesystem;

fs::path exportPath(std::string_view name) {
  const std::string windir = settings::GetEnvironment("windir");
  // Joined as text: a drive alone means its root here, not its current folder.
  if (!windir.empty()) return pathFromUtf8(windir + "\\" + std::string(name));
  // Folders of the profile are private already.
  const std::string profile = settings::GetEnvironment("LOCALAPPDATA");
  if (profile.empty()) throw fileError(FileError::pathNotFound);
  const fs::path folder = pathFromUtf8(profile) / "korvel" / "export";
  std::error_code failure;
  files::createDirectories(folder, failure);
  if (failure) throw asFileError(systemError(systemErrorNumber(failure), "cannot create a folder"), FileAccess::write);
  if (fs::is_symlink(files::symlinkStatus(folder, failure))) throw fileError(FileError::pathFileAccess);
  return folder / name;
}

}  // namespace korvel::output
