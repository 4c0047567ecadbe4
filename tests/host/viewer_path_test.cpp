#include "host/viewer_path.h"

#include <gtest/gtest.h>

#include "base/whole_file.h"
#include "settings/registry.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

class ViewerPath : public ::testing::Test {
 protected:
  static std::string stored() {
    return settings::Registry(*settings::platformBackend()).GetSetting("Molvane", "AuditViewer", "ViewerAppPath", "0");
  }
  static void store(const std::string& path) {
    settings::Registry(*settings::platformBackend()).SaveSetting("Molvane", "AuditViewer", "ViewerAppPath", path);
  }

  test::TemporaryFolder folder;
  test::EnvironmentVariable registry{"KORVEL_REGISTRY", (folder / "settings.reg").string()};
};

TEST_F(ViewerPath, IsSetWhereNobodyHasSetIt) {
  EXPECT_EQ(stored(), "0");
  provideViewerPath("/opt/Größe/bin");
  EXPECT_EQ(stored(), "/opt/Größe/bin/KorvelAuditViewer.exe");
}

TEST_F(ViewerPath, OfAnInstallationStays) {
  store("C:\\Program\\KorvelAuditViewer.exe");
  provideViewerPath("/opt/bin");
  EXPECT_EQ(stored(), "C:\\Program\\KorvelAuditViewer.exe");
}

TEST_F(ViewerPath, InAFolderThatExistsStays) {
  const std::string path = (folder / "KorvelAuditViewer.exe").string();
  store(path);
  provideViewerPath("/opt/bin");
  EXPECT_EQ(stored(), path);
}

TEST_F(ViewerPath, FollowsTheProgramThatHasMoved) {
  provideViewerPath(QString::fromStdString((folder / "unpacked/bin").string()));
  provideViewerPath("/opt/bin");
  EXPECT_EQ(stored(), "/opt/bin/KorvelAuditViewer.exe");
}

TEST_F(ViewerPath, ThatIsNoFullPathIsNotJudged) {
  for (const char* path : {"0", "KorvelAuditViewer.exe", "gone/KorvelAuditViewer.exe"}) {
    store(path);
    provideViewerPath("/opt/bin");
    EXPECT_EQ(stored(), path);
  }
}

TEST_F(ViewerPath, IsNotWorthAFailure) {
  writeWholeFile(folder / "settings.reg", "no settings at all");
  provideViewerPath("/opt/bin");
  EXPECT_EQ(readWholeFile(folder / "settings.reg"), "no settings at all");
}

}  // namespace
}  // namespace korvel::host
