#pragma once

#include <gtest/gtest.h>

#include <string>

#include "settings/registry.h"
#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"

namespace korvel {

class ViewerPath : public ::testing::Test {
 protected:
  static std::string stored() {
    return settings::Registry(*settings::platformBackend()).GetSetting("Molvane", "AuditViewer", "ViewerAppPath", "0");
  }
  static void store(const std::string& path) {
    settings::Registry(*settings::platformBackend()).SaveSetting("Molvane", "AuditViewer", "ViewerAppPath", path);
  }

  test::TemporaryFolder folder;
  test::OwnSettings settings{folder.path()};
};

}  // namespace korvel
