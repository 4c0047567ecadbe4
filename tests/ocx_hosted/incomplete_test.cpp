// The control's files in a folder without the toolkit's. A process that has the toolkit would find it all the same.
#include <gmock/gmock.h>
#include <windows.h>

#include <array>
#include <filesystem>
#include <string>

#include "base/wide_text_windows.h"
#include "tests/ocx/loaded_control.h"

namespace korvel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

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
