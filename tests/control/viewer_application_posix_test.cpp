// The viewer's path where settings are a file and paths of Windows are not absolute.
#include "base/atomic_file.h"
#include "korvel/ViewerApplication.h"
#include "tests/control/viewer_path_fixture.h"

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

}  // namespace
}  // namespace korvel
