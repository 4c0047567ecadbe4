// The viewer's path where settings are a file and paths of Windows are not absolute, and the mode of what it remembers.
#include "base/atomic_file.h"
#include "control/remembered.h"
#include "korvel/ViewerApplication.h"
#include "tests/control/viewer_path_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel {
namespace {

TEST_F(ViewerPath, OfAnInstallationStays) {
  store("C:\\Program\\KorvelAuditViewer.exe");
  provideViewerPath("/opt/bin");
  EXPECT_EQ(stored(), "C:\\Program\\KorvelAuditViewer.exe");
}

TEST_F(ViewerPath, IsNotWorthAFailure) {
  writeFileAtomically(folder / "settings.reg", "no settings at all");
  provideViewerPath("/opt/bin");
  EXPECT_EQ(readFile(folder / "settings.reg"), "no settings at all");
}

TEST(RememberedFileWithModes, IsForItsUserAlone) {
  const test::TemporaryFolder folder;
  const QString path = QString::fromStdString((folder / "remembered.json").string());
  control::Remembered(path, control::Remembered::Extent::all).addText(control::Remembered::Texts::queries, "Select 1");
  EXPECT_EQ(std::filesystem::status(folder / "remembered.json").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

}  // namespace
}  // namespace korvel
