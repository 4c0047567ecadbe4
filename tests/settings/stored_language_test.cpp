#include "settings/registry.h"

#include <gtest/gtest.h>

#include "base/atomic_file.h"
#include "base/error.h"
#include "settings/registry_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::settings {
namespace {

TEST(StoredLanguage, IsTheTextOfTheSetting) {
  const test::TemporaryFolder folder;
  RegistryFile store(folder / "settings.reg");
  EXPECT_EQ(storedLanguage(store).text(), "0");
  Registry(store).SaveSetting("Molvane", "AuditViewer", "Language", "30000");
  EXPECT_EQ(storedLanguage(store).text(), "30000");
}

TEST(StoredLanguage, AStoreThatCannotBeReadIsAFailure) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "settings.reg", "no settings at all");
  RegistryFile store(folder / "settings.reg");
  EXPECT_THROW(static_cast<void>(storedLanguage(store)), Error);
}

}  // namespace
}  // namespace korvel::settings
