#include <windows.h>
// Behind it.
#include <shlobj.h>

#include <memory>

#include "base/error.h"
#include "base/system_errors.h"
#include "db/embedded/embedded_folder.h"

namespace korvel::db {
namespace {

struct TaskMemoryFreer {
  void operator()(wchar_t* text) const noexcept { CoTaskMemFree(text); }
};

}  // namespace

// What is of one machine: databases do not travel with a profile that follows its user.
std::filesystem::path userDataFolder() {
  wchar_t* text = nullptr;
  const HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_DEFAULT, nullptr, &text);
  const std::unique_ptr<wchar_t, TaskMemoryFreer> folder(text);
  if (FAILED(result)) throw systemError(static_cast<int>(result), "cannot find the folder of the user's data");
  return {folder.get()};
}

}  // namespace korvel::db
