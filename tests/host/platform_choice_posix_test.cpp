#include <gtest/gtest.h>

#include "host/platform_choice.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

TEST(Platform, AShotNeedsNoDisplayAndAWindowDoes) {
  const test::EnvironmentVariable display("DISPLAY");
  const test::EnvironmentVariable wayland("WAYLAND_DISPLAY");
  const test::EnvironmentVariable platform("QT_QPA_PLATFORM");
  EXPECT_EQ(choosePlatform({}), PlatformChoice::none);
  EXPECT_EQ(choosePlatform({"--server", "S"}), PlatformChoice::none);
  EXPECT_EQ(choosePlatform({"--shot", "a.png"}), PlatformChoice::offscreen);
  EXPECT_EQ(choosePlatform({"--shot=a.png"}), PlatformChoice::offscreen);
}

TEST(Platform, ARequestedPlatformIsNotOverruled) {
  const test::EnvironmentVariable display("DISPLAY");
  const test::EnvironmentVariable wayland("WAYLAND_DISPLAY");
  const test::EnvironmentVariable platform("QT_QPA_PLATFORM");
  for (const char* option : {"-platform", "--platform", "-display", "--display"}) {
    EXPECT_EQ(choosePlatform({option, "x"}), PlatformChoice::usual) << option;
    EXPECT_EQ(choosePlatform({"--shot", "a.png", option, "x"}), PlatformChoice::usual) << option;
  }
  const test::EnvironmentVariable set("QT_QPA_PLATFORM", "x");
  EXPECT_EQ(choosePlatform({}), PlatformChoice::usual);
  EXPECT_EQ(choosePlatform({"--shot", "a.png"}), PlatformChoice::usual);
}

TEST(Platform, ADisplayIsForWindowsOnly) {
  const test::EnvironmentVariable display("DISPLAY");
  const test::EnvironmentVariable wayland("WAYLAND_DISPLAY");
  const test::EnvironmentVariable platform("QT_QPA_PLATFORM");
  for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY"}) {
    const test::EnvironmentVariable set(variable, "x");
    EXPECT_EQ(choosePlatform({}), PlatformChoice::usual) << variable;
    EXPECT_EQ(choosePlatform({"--shot", "a.png"}), PlatformChoice::offscreen) << variable;
  }
}

}  // namespace
}  // namespace korvel::host
