// The control in the registry: written whole or not at all, and gone without a trace.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/wide_text_windows.h"
#include "ocx/registration.h"
#include "ocx/registry_entries.h"
#include "tests/ocx/registry_text.h"

namespace korvel::ocx {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* control = "\\CLSID\\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}";
constexpr const wchar_t* memberInterface = L"Interface\\{733363B4-5C9A-440E-BEF2-15728BA57F8E}";
constexpr const wchar_t* libraryVersion = L"TypeLib\\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\\1.0";

std::wstring ocxFile() {
  return std::filesystem::absolute(lossyWideFromUtf8(KORVEL_OCX)).make_preferred().wstring();
}

/// Classes of its own, so that nothing else changes them.
class Registration : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, classesKey_, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                                nullptr, &classes_, nullptr),
              ERROR_SUCCESS);
    ASSERT_EQ(writeEntries(classes_, {{L"CLSID\\{another}", {}, L"Another"}}), ERROR_SUCCESS);
  }
  void TearDown() override {
    ::RegCloseKey(classes_);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, classesKey_);
  }
  [[nodiscard]] std::string text() const { return test::registryText(classes_, {}); }

  HKEY classes_ = nullptr;

 private:
  const wchar_t* classesKey_ = L"Software\\KorvelRegistrationTest";
};

/// A registration, with the places of its file and its folder.
constexpr const char* wholeRegistration = R"(
\CLSID
\CLSID\{676D23DE-17D5-4B24-A17D-AF04FED5F34D}
\CLSID\{676D23DE-17D5-4B24-A17D-AF04FED5F34D} =Korvel Audit Viewer property page
\CLSID\{676D23DE-17D5-4B24-A17D-AF04FED5F34D}\InprocServer32
\CLSID\{676D23DE-17D5-4B24-A17D-AF04FED5F34D}\InprocServer32 =FILE
\CLSID\{676D23DE-17D5-4B24-A17D-AF04FED5F34D}\InprocServer32 ThreadingModel=Apartment
\CLSID\{another}
\CLSID\{another} =Another
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15} =Korvel Audit Viewer
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Control
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Control =
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Implemented Categories
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Implemented Categories\{40FC6ED4-2438-11CF-A3DB-080036F12502}
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Implemented Categories\{40FC6ED4-2438-11CF-A3DB-080036F12502} =
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\InprocServer32
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\InprocServer32 =FILE
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\InprocServer32 ThreadingModel=Apartment
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\MiscStatus
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\MiscStatus =0
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\MiscStatus\1
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\MiscStatus\1 =131473
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\ProgID
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\ProgID =KorvelAuditViewerOCX.AuditViewer.1
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\ToolboxBitmap32
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\ToolboxBitmap32 =FILE, 1
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\TypeLib
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\TypeLib ={03B940E8-C152-4AF9-8F62-C570081FD9CC}
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Verb
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Verb\1
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Verb\1 =&Properties,0,2
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Version
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\Version =1.0
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\VersionIndependentProgID
\CLSID\{EB5171F2-0C78-46CE-ADBF-8311DED82E15}\VersionIndependentProgID =KorvelAuditViewerOCX.AuditViewer
\Interface
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E}
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E} =_AuditViewerEvents
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E}\ProxyStubClsid32
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E}\ProxyStubClsid32 ={00020420-0000-0000-C000-000000000046}
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E}\TypeLib
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E}\TypeLib ={03B940E8-C152-4AF9-8F62-C570081FD9CC}
\Interface\{326CEFCC-A2CC-4DDA-95AD-3C7182C95A5E}\TypeLib Version=1.0
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E}
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E} =_AuditViewer
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E}\ProxyStubClsid32
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E}\ProxyStubClsid32 ={00020424-0000-0000-C000-000000000046}
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E}\TypeLib
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E}\TypeLib ={03B940E8-C152-4AF9-8F62-C570081FD9CC}
\Interface\{733363B4-5C9A-440E-BEF2-15728BA57F8E}\TypeLib Version=1.0
\KorvelAuditViewerOCX.AuditViewer
\KorvelAuditViewerOCX.AuditViewer =Korvel Audit Viewer
\KorvelAuditViewerOCX.AuditViewer\CLSID
\KorvelAuditViewerOCX.AuditViewer\CLSID ={EB5171F2-0C78-46CE-ADBF-8311DED82E15}
\KorvelAuditViewerOCX.AuditViewer\CurVer
\KorvelAuditViewerOCX.AuditViewer\CurVer =KorvelAuditViewerOCX.AuditViewer.1
\KorvelAuditViewerOCX.AuditViewer.1
\KorvelAuditViewerOCX.AuditViewer.1 =Korvel Audit Viewer
\KorvelAuditViewerOCX.AuditViewer.1\CLSID
\KorvelAuditViewerOCX.AuditViewer.1\CLSID ={EB5171F2-0C78-46CE-ADBF-8311DED82E15}
\TypeLib
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0 =Korvel Audit Viewer control
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\0
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\0\PLATFORM
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\0\PLATFORM =FILE
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\FLAGS
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\FLAGS =0
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\HELPDIR
\TypeLib\{03B940E8-C152-4AF9-8F62-C570081FD9CC}\1.0\HELPDIR =FOLDER
)";

const std::string ownPlatform = sizeof(void*) == 8 ? "win64" : "win32";
const std::string otherPlatform = sizeof(void*) == 8 ? "win32" : "win64";

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t place = text.find(what); place != std::string::npos; place = text.find(what, place + with.size()))
    text.replace(place, what.size(), with);
  return text;
}

TEST_F(Registration, HasAllThatContainersLookFor) {
  ASSERT_EQ(registerControl(classes_, ocxFile()), S_OK);
  const std::string file = utf8FromWide(ocxFile());
  const std::string folder = file.substr(0, file.find_last_of('\\'));
  const std::string whole = replaced(wholeRegistration, "PLATFORM", ownPlatform);
  EXPECT_EQ(text(), replaced(replaced(whole, "=FILE", "=" + file), "=FOLDER", "=" + folder));
}

TEST_F(Registration, RegisteringAgainChangesNothing) {
  ASSERT_EQ(registerControl(classes_, ocxFile()), S_OK);
  const std::string once = text();
  ASSERT_EQ(registerControl(classes_, ocxFile()), S_OK);
  EXPECT_EQ(text(), once);
}

TEST_F(Registration, UnregisteringLeavesWhatBelongsToOthers) {
  const std::string before = text();
  ASSERT_EQ(registerControl(classes_, ocxFile()), S_OK);
  ASSERT_NE(text(), before);
  ASSERT_EQ(unregisterControl(classes_, ocxFile()), S_OK);
  EXPECT_EQ(text(), before);
  EXPECT_EQ(unregisterControl(classes_, ocxFile()), S_OK) << "a second time";
  EXPECT_EQ(text(), before);
}

TEST_F(Registration, ARefusedKeyLeavesNothingHalfWritten) {
  // Below a key that lives only until the machine is restarted, the system refuses one that stays.
  HKEY obstacle = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(classes_, memberInterface, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                              &obstacle, nullptr),
            ERROR_SUCCESS);
  ::RegCloseKey(obstacle);
  const std::string before = text();
  EXPECT_EQ(registerControl(classes_, ocxFile()), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
  EXPECT_EQ(text(), before);
}

TEST_F(Registration, ARefusedKeyLeavesAnEarlierRegistrationAsItWas) {
  const std::vector<RegistryEntry> earlier{{L"CLSID\\{one}\\InprocServer32", {}, L"C:\\earlier.ocx"},
                                           {L"CLSID\\{one}\\InprocServer32", L"ThreadingModel", L"Both"}};
  ASSERT_EQ(writeEntries(classes_, earlier), ERROR_SUCCESS);
  HKEY obstacle = nullptr;
  ASSERT_EQ(::RegCreateKeyExW(classes_, L"Interface", 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                              &obstacle, nullptr),
            ERROR_SUCCESS);
  ::RegCloseKey(obstacle);
  const std::string before = text();
  EXPECT_NE(writeEntries(classes_, {{L"CLSID\\{one}\\InprocServer32", {}, L"C:\\later.ocx"},
                                    {L"CLSID\\{one}\\InprocServer32", L"ThreadingModel", L"Apartment"},
                                    {L"CLSID\\{one}\\Control", {}, {}},
                                    {L"Interface\\{two}", {}, L"Two"}}),
            ERROR_SUCCESS);
  EXPECT_EQ(text(), before);
}

TEST_F(Registration, ACopyThatWasRegisteredLaterStays) {
  ASSERT_EQ(registerControl(classes_, ocxFile()), S_OK);
  const std::wstring key = lossyWideFromUtf8(control).substr(1) + L"\\InprocServer32";
  ASSERT_EQ(writeEntries(classes_, {{key, {}, L"C:\\Later\\KorvelAuditViewerOCX.ocx"}}), ERROR_SUCCESS);
  const std::string before = text();
  EXPECT_EQ(unregisterControl(classes_, ocxFile()), S_OK);
  EXPECT_EQ(text(), before);
}

TEST_F(Registration, TheOtherProcessorWidthKeepsItsTypeLibrary) {
  ASSERT_EQ(registerControl(classes_, ocxFile()), S_OK);
  const std::wstring other = std::wstring(libraryVersion) + L"\\0\\" + lossyWideFromUtf8(otherPlatform);
  ASSERT_EQ(writeEntries(classes_, {{other, {}, L"C:\\Other\\KorvelAuditViewerOCX.ocx"}}), ERROR_SUCCESS);
  ASSERT_EQ(unregisterControl(classes_, ocxFile()), S_OK);
  EXPECT_EQ(valueOf(classes_, other), L"C:\\Other\\KorvelAuditViewerOCX.ocx");
  EXPECT_EQ(valueOf(classes_, libraryVersion), L"Korvel Audit Viewer control");
  EXPECT_THAT(text(), Not(HasSubstr(ownPlatform)));
  EXPECT_THAT(text(), Not(HasSubstr(control)));
}

TEST_F(Registration, AFileWithoutATypeLibraryIsRefused) {
  const std::string before = text();
  EXPECT_TRUE(FAILED(registerControl(classes_, L"C:\\windows\\system32\\kernel32.dll")));
  EXPECT_TRUE(FAILED(registerControl(classes_, L"C:\\no such folder\\KorvelAuditViewerOCX.ocx")));
  EXPECT_EQ(text(), before);
}

/// regsvr32 with `options` on the control's file; its exit code.
int regsvr32(const std::wstring& options) {
  std::wstring command = L"regsvr32.exe /s " + options + L" \"" + ocxFile() + L'"';
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process{};
  if (::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) == 0)
    throw std::runtime_error("regsvr32 does not start");
  ::WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 0;
  ::GetExitCodeProcess(process.hProcess, &code);
  ::CloseHandle(process.hThread);
  ::CloseHandle(process.hProcess);
  return static_cast<int>(code);
}

/// The classes of everybody are thousands of keys: they are read as seldom as possible.
std::string classesOfMachine() {
  return test::registryText(HKEY_LOCAL_MACHINE, L"Software\\Classes");
}
std::string classesOfUser() {
  return test::registryText(HKEY_CURRENT_USER, L"Software\\Classes");
}

/// The file that is registered for the control below `root`, empty for none.
std::wstring registeredFile(HKEY root) {
  return valueOf(root, L"Software\\Classes" + lossyWideFromUtf8(control) + L"\\InprocServer32");
}

/// Whether the system finds the control by its name, and its type library.
void expectFound() {
  CLSID found{};
  EXPECT_EQ(::CLSIDFromProgID(L"KorvelAuditViewerOCX.AuditViewer", &found), S_OK);
  CLSID expected{};
  EXPECT_EQ(::CLSIDFromString(L"{EB5171F2-0C78-46CE-ADBF-8311DED82E15}", &expected), S_OK);
  EXPECT_TRUE(IsEqualGUID(found, expected));
  GUID library{};
  EXPECT_EQ(::CLSIDFromString(L"{03B940E8-C152-4AF9-8F62-C570081FD9CC}", &library), S_OK);
  ITypeLib* loaded = nullptr;
  EXPECT_EQ(::LoadRegTypeLib(library, 1, 0, 0, &loaded), S_OK);
  if (loaded != nullptr) loaded->Release();
}

TEST(RegistrationProgram, RegistersForTheMachine) {
  const std::string before = classesOfMachine();
  ASSERT_EQ(regsvr32(L""), 0);
  EXPECT_EQ(registeredFile(HKEY_LOCAL_MACHINE), ocxFile());
  EXPECT_EQ(registeredFile(HKEY_CURRENT_USER), L"");
  expectFound();
  ASSERT_EQ(regsvr32(L"/u"), 0);
  EXPECT_EQ(classesOfMachine(), before);
}

// Wine does not show a user's classes among those of the machine: whether the system finds them there is not asked.
TEST(RegistrationProgram, RegistersForOneUser) {
  // A new user may have no classes at all; the key of classes itself stays.
  ASSERT_EQ(writeEntries(HKEY_CURRENT_USER, {{L"Software\\Classes", L"KorvelTest", L"1"}}), ERROR_SUCCESS);
  const std::string before = classesOfUser();
  ASSERT_EQ(regsvr32(L"/n /i:user"), 0);
  EXPECT_EQ(registeredFile(HKEY_CURRENT_USER), ocxFile());
  EXPECT_EQ(registeredFile(HKEY_LOCAL_MACHINE), L"");
  ASSERT_EQ(regsvr32(L"/u /n /i:user"), 0);
  EXPECT_EQ(classesOfUser(), before);
  ::RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Software\\Classes", L"KorvelTest");
}

TEST(RegistrationProgram, RefusesToInstallForWhomItDoesNotKnow) {
  EXPECT_NE(regsvr32(L"/n /i:everybody"), 0);
  EXPECT_EQ(registeredFile(HKEY_LOCAL_MACHINE), L"");
  EXPECT_EQ(registeredFile(HKEY_CURRENT_USER), L"");
}

}  // namespace
}  // namespace korvel::ocx
