// Where the control's libraries and plug-ins come from, and what is said where they are missing.
#include <gmock/gmock.h>
#include <windows.h>
// after windows.h
#include <psapi.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "base/wide_text_windows.h"
#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using testing::Contains;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::string comparable(const std::wstring& path) {
  return utf8FromWide(std::filesystem::path(path).generic_wstring());
}

/// The files of this process but those of the system.
std::vector<std::string> ownFiles() {
  std::array<HMODULE, 512> all{};
  DWORD bytes = 0;
  ::EnumProcessModules(::GetCurrentProcess(), all.data(), sizeof(all), &bytes);
  std::array<wchar_t, MAX_PATH> text{};
  ::GetWindowsDirectoryW(text.data(), static_cast<UINT>(text.size()));
  const std::string system = comparable(text.data());
  std::vector<std::string> files;
  for (std::size_t index = 0; index < bytes / sizeof(HMODULE) && index < all.size(); ++index) {
    ::GetModuleFileNameW(all.at(index), text.data(), static_cast<DWORD>(text.size()));
    const std::string file = comparable(text.data());
    if (::_strnicmp(file.c_str(), system.c_str(), system.size()) != 0) files.push_back(file);
  }
  return files;
}

std::string packageFolder() {
  return comparable(std::filesystem::absolute(lossyWideFromUtf8(KORVEL_PACKAGE_FOLDER)).wstring());
}

/// What this process had before any test loaded the control. The toolkit's own files stay when the control's go.
class FilesAtStart final : public testing::Environment {
 public:
  void SetUp() override { files() = ownFiles(); }
  static std::vector<std::string>& files() {
    static std::vector<std::string> taken;
    return taken;
  }
};
// The test framework owns it.
[[maybe_unused]] const testing::Environment* const filesAtStart = testing::AddGlobalTestEnvironment(new FilesAtStart);

std::vector<std::string> loadedSince() {
  std::vector<std::string> files = ownFiles();
  const std::vector<std::string>& before = FilesAtStart::files();
  std::erase_if(files,
                [&](const std::string& file) { return std::find(before.begin(), before.end(), file) != before.end(); });
  return files;
}

using HostedPackage = HostedControl;

TEST_F(HostedPackage, LibrariesAndPlugInsComeFromItsFolderAlone) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  const std::vector<std::string> files = loadedSince();
  EXPECT_THAT(files, Each(StartsWith(packageFolder() + '/')));
  for (const char* name :
       {"/KorvelAuditViewerHosting.dll", "/KorvelAuditViewerOCX.dll", "/Qt6Widgets.dll", "/platforms/qwindows.dll"})
    EXPECT_THAT(files, Contains(EndsWith(name)));
  const BSTR folders = look<PluginFolders>("pluginFolders")();
  EXPECT_EQ(comparable(folders), packageFolder());
  ::SysFreeString(folders);
}

TEST(IncompletePackage, IsSaidInWords) {
  const LoadedControl file(KORVEL_INCOMPLETE_FOLDER);
  ocx::ComPointer<IClassFactory> factory;
  EXPECT_EQ(file.factory(factory), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
  EXPECT_FALSE(factory);
  const std::string said = utf8FromWide(lastFailure());
  EXPECT_THAT(said, StartsWith("KorvelAuditViewerOCX: The Korvel Audit Viewer control cannot load "));
  EXPECT_THAT(said, HasSubstr("or one of the libraries that it needs, is missing or damaged"));
  EXPECT_EQ(file.canUnload(), S_OK);
}

TEST(IncompletePackage, IsNotRegistered) {
  const LoadedControl file(KORVEL_INCOMPLETE_FOLDER);
  EXPECT_EQ(file.registerForUser(), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
  EXPECT_THAT(utf8FromWide(lastFailure()), HasSubstr("KorvelAuditViewerHosting.dll"));
  // Another copy may be, by another test program.
  std::array<wchar_t, MAX_PATH> registered{};
  auto bytes = static_cast<DWORD>(sizeof(registered));
  ::RegGetValueW(HKEY_CURRENT_USER, L"Software\\Classes\\CLSID\\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\\InprocServer32",
                 nullptr, RRF_RT_REG_SZ, nullptr, registered.data(), &bytes);
  EXPECT_NE(std::filesystem::path(registered.data()).parent_path().filename(), "incomplete");
}

}  // namespace
}  // namespace korvel::test
