#include <windows.h>

#include <gtest/gtest.h>

#include <QByteArray>
#include <QtGlobal>
#include <string>

#include "ui/style/system_appearance.h"

namespace korvel::ui {
namespace {

/// A key in place of the user's own while it lives.
class UsersKey {
 public:
  UsersKey() {
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, key_), ERROR_SUCCESS);
  }
  ~UsersKey() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, name_.c_str());
  }
  UsersKey(const UsersKey&) = delete;
  UsersKey& operator=(const UsersKey&) = delete;

  static void setLight(DWORD light) {
    EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                              L"AppsUseLightTheme", REG_DWORD, &light, sizeof(light)),
              ERROR_SUCCESS);
  }

 private:
  std::wstring name_ = L"Software\\korvel-test-look-" + std::to_wstring(GetCurrentProcessId());
  HKEY key_ = nullptr;
};

TEST(WindowsLook, IsDarkWhereTheUserWantsDarkApplications) {
  const UsersKey user;
  EXPECT_EQ(readSystemAppearance().dark, std::nullopt);
  UsersKey::setLight(0);
  EXPECT_EQ(readSystemAppearance().dark, true);
  UsersKey::setLight(1);
  EXPECT_EQ(readSystemAppearance().dark, false);
}

TEST(WindowsLook, IsThatOfWindowsUnlessOursIsAskedForOrDarkWindowsAre) {
  const UsersKey user;
  const auto isNative = [](const QByteArray& theme) {
    const QByteArray before = qgetenv("KORVEL_THEME");
    qputenv("KORVEL_THEME", theme);
    const bool native = readSystemAppearance().native;
    qputenv("KORVEL_THEME", before);
    return native;
  };
  EXPECT_TRUE(isNative(""));
  EXPECT_FALSE(isNative("light"));
  EXPECT_FALSE(isNative("dark"));
  UsersKey::setLight(0);
  EXPECT_FALSE(isNative(""));
  EXPECT_TRUE(isNative("native"));
}

TEST(WindowsLook, ReportsAChangeWhenItIsAskedAgain) {
  const UsersKey user;
  UsersKey::setLight(0);
  refreshSystemAppearance();
  EXPECT_EQ(systemAppearance().dark, true);
  UsersKey::setLight(1);
  EXPECT_EQ(systemAppearance().dark, true);
  refreshSystemAppearance();
  EXPECT_EQ(systemAppearance().dark, false);
}

}  // namespace
}  // namespace korvel::ui
