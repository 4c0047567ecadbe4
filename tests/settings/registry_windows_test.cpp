#include <aclapi.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <memory>
#include <string>

#include "base/error.h"
#include "base/wide_text_windows.h"
#include "settings/registry.h"
#include "settings/registry_advapi32.h"
#include "tests/support/program_output_windows.h"

namespace korvel::settings {
namespace {

/// The keys that the product uses also as a program of 32 bits.
constexpr REGSAM allRights = KEY_ALL_ACCESS | KEY_WOW64_64KEY;

/// Opens a key of the machine's software, or makes it. Null without the right to.
HKEY openedSoftware(const std::wstring& path) {
  HKEY key = nullptr;
  RegCreateKeyExW(HKEY_LOCAL_MACHINE, (L"SOFTWARE" + path).c_str(), 0, nullptr, 0, allRights, nullptr, &key, nullptr);
  return key;
}

/// The real registry, below a key that the tests create and delete.
struct WindowsRegistry : testing::Test {
  WindowsRegistry() {
    forget();
    const HKEY key = openedSoftware(path);
    mayWrite = key != nullptr;
    if (mayWrite) RegCloseKey(key);
    forget();
  }
  ~WindowsRegistry() override { forget(); }
  void forget() const {
    const HKEY software = openedSoftware({});
    if (software == nullptr) return;
    RegDeleteTreeW(software, path.c_str() + 1);
    RegCloseKey(software);
  }
  void SetUp() override {
    if (!mayWrite) GTEST_SKIP() << "no right to write to the registry of the machine";
  }

  [[nodiscard]] std::string get(const std::string& key, const std::string& section = "AuditViewerTest") const {
    return registry.GetSetting(application, section, key, "default");
  }
  void save(const std::string& key, const std::string& value) const {
    registry.SaveSetting(application, "AuditViewerTest", key, value);
  }
  static std::uint32_t numberOf(const std::function<void()>& operation, std::string* description = nullptr) {
    try {
      operation();
    } catch (const Error& error) {
      if (description != nullptr) *description = error.description();
      return static_cast<std::uint32_t>(error.number());
    }
    return 0;
  }
  /// Stores a value as another program would.
  void store(const wchar_t* name, DWORD type, const void* bytes, DWORD size) const {
    const HKEY key = openedSoftware(path + L"\\AuditViewerTest");
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(bytes), size), ERROR_SUCCESS);
    RegCloseKey(key);
  }

  const std::string application = "MolvaneTest";
  const std::wstring path = L"\\MolvaneTest";
  RegistryAdvapi32 backend;
  Registry registry{backend};
  bool mayWrite = true;
};

TEST_F(WindowsRegistry, HoldsWhatIsSavedWhereEverybodyFindsIt) {
  save("Language", "10000");
  EXPECT_EQ(get("Language"), "10000");
  const std::string shown = test::outputOf("reg query HKLM\\SOFTWARE\\MolvaneTest\\AuditViewerTest /reg:64");
  EXPECT_NE(shown.find("Language"), std::string::npos) << shown;
  EXPECT_NE(shown.find("REG_SZ"), std::string::npos) << shown;
  EXPECT_NE(shown.find("10000"), std::string::npos) << shown;
}

TEST_F(WindowsRegistry, ReadsWhatOthersHaveStored) {
  test::outputOf(
      "reg add HKLM\\SOFTWARE\\MolvaneTest\\AuditViewerTest /v ViewerAppPath /t REG_SZ /d C:\\x.exe /f /reg:64");
  EXPECT_EQ(get("ViewerAppPath"), "C:\\x.exe");
}

TEST_F(WindowsRegistry, CountsATerminatorThatWasNotStored) {
  save("Language", "10000");
  std::unique_ptr<SettingsKey> key;
  ASSERT_EQ(backend.openForReading("SOFTWARE\\MolvaneTest\\AuditViewerTest", key), Win32Error::success);
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  EXPECT_EQ(key->querySize("Language", type, size), Win32Error::success);
  EXPECT_EQ(type, 1U);
  EXPECT_EQ(size, 6U);
}

TEST_F(WindowsRegistry, ReadsStringsWithAndWithoutTerminator) {
  store(L"with", REG_SZ, L"20000", 6 * sizeof(wchar_t));
  store(L"without", REG_SZ, L"20000", 5 * sizeof(wchar_t));
  store(L"empty", REG_SZ, L"", 0);
  store(L"terminator", REG_SZ, L"", sizeof(wchar_t));
  EXPECT_EQ(get("with"), "20000");
  EXPECT_EQ(get("without"), "20000");
  EXPECT_EQ(get("empty"), "");
  EXPECT_EQ(get("terminator"), "");
}

TEST_F(WindowsRegistry, HoldsTextsOfAllLanguages) {
  save("Größe ポ", "Ölstand 日本 😀");
  EXPECT_EQ(get("Größe ポ"), "Ölstand 日本 😀");
  save("long", std::string(100'000, 'x'));
  EXPECT_EQ(get("long"), std::string(100'000, 'x'));
}

TEST_F(WindowsRegistry, WhatIsMissingIsTheDefault) {
  EXPECT_EQ(get("Language", "nowhere"), "default");
  save("a", "b");
  EXPECT_EQ(get("Language"), "default");
}

TEST_F(WindowsRegistry, BlanksAroundASectionDoNotCountAndAroundAKeyDo) {
  save("Language", "10000");
  save(" Language ", "other");
  EXPECT_EQ(registry.GetSetting("  MolvaneTest ", " AuditViewerTest  ", "Language", ""), "10000");
  EXPECT_EQ(get(" Language "), "other");
  EXPECT_EQ(numberOf([&] { static_cast<void>(get("   ")); }), 0x800403EAU);
}

TEST_F(WindowsRegistry, OtherTypesFailWithTheirType) {
  const DWORD number = 10000;
  store(L"Language", REG_DWORD, &number, sizeof number);
  std::string description;
  EXPECT_EQ(numberOf([&] { static_cast<void>(get("Language")); }, &description), 0x800407D4U);
  EXPECT_EQ(description, "Registry data not a string");
}

TEST_F(WindowsRegistry, NamesThatNoKeyCanHaveFailWithTheSystemsNumber) {
  EXPECT_EQ(numberOf([&] { save("Language", "\xFF"); }), 0x800407D0U + ERROR_NO_UNICODE_TRANSLATION);
  EXPECT_EQ(numberOf([&] { save(std::string("a\0b", 3), "x"); }), 0x800407D0U + ERROR_INVALID_PARAMETER);
}

TEST_F(WindowsRegistry, WithoutTheRightToWriteSavingFailsWithFive) {
  save("Language", "10000");
  const HKEY key = openedSoftware(path + L"\\AuditViewerTest");
  ASSERT_NE(key, nullptr);
  // An empty access list: only the owner has a right, to change the list.
  ACL nobody{};
  ASSERT_NE(InitializeAcl(&nobody, sizeof nobody, ACL_REVISION), 0);
  const DWORD status =
      SetSecurityInfo(key, SE_REGISTRY_KEY, DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                      nullptr, &nobody, nullptr);
  HKEY again = nullptr;
  const LSTATUS opened =
      RegOpenKeyExW(HKEY_LOCAL_MACHINE, (L"SOFTWARE" + path + L"\\AuditViewerTest").c_str(), 0, allRights, &again);
  if (opened == ERROR_SUCCESS) RegCloseKey(again);
  std::string description;
  const std::uint32_t number = numberOf([&] { save("Language", "20000"); }, &description);
  SetSecurityInfo(key, SE_REGISTRY_KEY, DACL_SECURITY_INFORMATION | UNPROTECTED_DACL_SECURITY_INFORMATION, nullptr,
                  nullptr, nullptr, nullptr);
  RegCloseKey(key);
  if (status != ERROR_SUCCESS || opened != ERROR_ACCESS_DENIED)
    GTEST_SKIP() << "this system lets everybody into every key: status " << status << ", opened " << opened;
  EXPECT_EQ(number, 0x800407D5U);
  EXPECT_EQ(description, "Could not open/create registry section");
}

TEST(WindowsEnvironment, IsUtf8) {
  ASSERT_NE(SetEnvironmentVariableW(L"KORVEL_TEST_TEXT", L"Gr\u00F6\u00DFe \u20AC \u65E5"), 0);
  EXPECT_EQ(GetEnvironment("KORVEL_TEST_TEXT"), "Größe € 日");
  SetEnvironmentVariableW(L"KORVEL_TEST_TEXT", nullptr);
  EXPECT_EQ(GetEnvironment("KORVEL_TEST_TEXT"), "");
}

}  // namespace
}  // namespace korvel::settings
