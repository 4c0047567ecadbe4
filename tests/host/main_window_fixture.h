#pragma once

#include <gtest/gtest.h>

#include <string>

#include "base/atomic_file.h"
#include "host/main_window.h"
#include "settings/registry.h"
#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {

inline const ViewerLanguage english;

class MainWindowTest : public ::testing::Test {
 protected:
  MainWindowTest() { options.formFile = QString::fromStdString((folder / "form.json").string()); }
  void writeForm(const std::string& text) { writeFileAtomically(folder / "form.json", text); }
  std::string formText() { return readFile(folder / "form.json"); }
  static void set(const char* key, const std::string& value) {
    settings::Registry(*settings::platformBackend()).SaveSetting("Molvane", "AuditViewer", key, value);
  }

  test::TemporaryFolder folder;
  test::OwnSettings settings{folder.path()};
  Options options;
};

}  // namespace korvel::host
