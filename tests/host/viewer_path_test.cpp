#include "host/viewer_path.h"

#include <QDir>

#include "tests/host/viewer_path_fixture.h"

namespace korvel::host {
namespace {

TEST_F(ViewerPath, IsSetWhereNobodyHasSetIt) {
  EXPECT_EQ(stored(), "0");
  provideViewerPath("/opt/Größe/bin");
  EXPECT_EQ(stored(), QDir::toNativeSeparators("/opt/Größe/bin/KorvelAuditViewer.exe").toStdString());
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
  EXPECT_EQ(stored(), QDir::toNativeSeparators("/opt/bin/KorvelAuditViewer.exe").toStdString());
}

TEST_F(ViewerPath, ThatIsNoFullPathIsNotJudged) {
  for (const char* path : {"0", "KorvelAuditViewer.exe", "gone/KorvelAuditViewer.exe"}) {
    store(path);
    provideViewerPath("/opt/bin");
    EXPECT_EQ(stored(), path);
  }
}

}  // namespace
}  // namespace korvel::host
