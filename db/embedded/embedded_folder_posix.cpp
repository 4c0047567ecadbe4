#include <pwd.h>
#include <unistd.h>

#include <array>

#include "base/paths.h"
#include "db/embedded/embedded_folder.h"
#include "settings/registry.h"

namespace korvel::db {
namespace {

std::filesystem::path environmentPath(const char* name) {
  return pathFromUtf8(settings::GetEnvironment(name));
}

std::filesystem::path homeFolder() {
  if (auto home = environmentPath("HOME"); home.is_absolute()) return home;
  passwd user{};
  passwd* found = nullptr;
  std::array<char, 4096> texts{};
  const bool known = ::getpwuid_r(::getuid(), &user, texts.data(), texts.size(), &found) == 0 && found != nullptr;
  return pathFromUtf8(known ? user.pw_dir : "/");
}

}  // namespace

std::filesystem::path userDataFolder() {
  // A relative XDG_DATA_HOME is to be ignored, says the base directory convention.
  if (auto folder = environmentPath("XDG_DATA_HOME"); folder.is_absolute()) return folder;
  return homeFolder() / ".local" / "share";
}

}  // namespace korvel::db
