// Where the control's libraries and plug-ins come from.
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

// The toolkit keeps pointers into the libraries that use it.
TEST(Package, StaysButForTheControlsFileAsTheToolkitDoes) {
  {
    const LoadedControl file(KORVEL_PACKAGE_FOLDER);
    EXPECT_TRUE(file.make());
  }
  EXPECT_EQ(::GetModuleHandleW(L"KorvelAuditViewerOCX.ocx"), nullptr);
  for (const wchar_t* name :
       {L"KorvelAuditViewerHosting.dll", L"KorvelAuditViewerOCX.dll", L"Qt6PrintSupport.dll", L"Qt6Widgets.dll"})
    EXPECT_NE(::GetModuleHandleW(name), nullptr) << utf8FromWide(name);
}

}  // namespace
}  // namespace korvel::test
