#include <string>

#include "output/export_folder.h"
#include "output/windows_error.h"
#include "settings/registry.h"

namespace korvel::output {

namespace fs = std::filesystem;

fs::path exportPath(std::string_view name) {
  const auto utf8Path = [](const std::string& text) { return fs::path(std::u8string(text.begin(), text.end())); };
  const std::string windir = settings::GetEnvironment("windir");
  if (!windir.empty()) return utf8Path(windir + "\\" + std::string(name));
  // The profile's folders are the user's alone already.
  const std::string profile = settings::GetEnvironment("LOCALAPPDATA");
  if (profile.empty()) throw windowsError(errorPathNotFound);
  const fs::path folder = utf8Path(profile) / "korvel" / "export";
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (failure) throw asWindowsError(systemError(failure.value(), "cannot create a folder"), FileTask::write);
  if (fs::is_symlink(folder, failure)) throw windowsError(errorPathFileAccess);
  return folder / std::string(name);
}

}  // namespace korvel::output
