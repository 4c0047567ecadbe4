#include "host/installed_data.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

class InstalledData : public ::testing::Test {
 protected:
  QString made(const QString& name) const {
    const QDir root(QString::fromStdString(folder.path().string()));
    EXPECT_TRUE(root.mkpath(name));
    return root.filePath(name);
  }

  test::TemporaryFolder folder;
};

TEST_F(InstalledData, theBooksOfAnInstalledTreeAreInItsSharedFolder) {
  const QString programs = made("tree/bin");
  const QString shared = made("tree/share/korvel-audit-viewer");
  QFile book(shared + "/KorvelAuditViewerHelp_Eng.chm");
  ASSERT_TRUE(book.open(QIODevice::WriteOnly));
  EXPECT_EQ(helpFolder(programs), QDir::cleanPath(shared));
}

TEST_F(InstalledData, pagesAreEnough) {
  const QString programs = made("tree/bin");
  made("tree/share/korvel-audit-viewer/KorvelAuditViewerHelp_Eng");
  EXPECT_EQ(helpFolder(programs), QDir::cleanPath(programs + "/../share/korvel-audit-viewer"));
}

TEST_F(InstalledData, withoutBooksThereTheyAreBesideTheProgram) {
  const QString programs = made("tree/bin");
  EXPECT_EQ(helpFolder(programs), programs);
  made("tree/share/korvel-audit-viewer");
  EXPECT_EQ(helpFolder(programs), programs);
}

}  // namespace
}  // namespace korvel::host
