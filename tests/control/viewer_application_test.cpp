#include "korvel/ViewerApplication.h"

#include <QDir>
#include <QMessageBox>
#include <QStyle>

#include "korvel/AuditViewer.h"
#include "tests/control/viewer_path_fixture.h"
#include "tests/control/when_modal.h"

namespace korvel {
namespace {

TEST(ViewerLanguage, HasTheTextsOfFiveLanguages) {
  QStringList texts;
  for (const char* offset : {"0", "10000", "20000", "30000", "40000"})
    texts.append(ViewerLanguage(offset).text("host.formUnreadable", "a", "b"));
  EXPECT_EQ(texts.first(), "The form file a cannot be read: b");
  EXPECT_EQ(texts.removeDuplicates(), 0);
}

TEST(ViewerLanguage, IsEnglishWhereTheOffsetIsNoneOfThem) {
  EXPECT_EQ(ViewerLanguage("15000").text("host.noDisplay"), ViewerLanguage().text("host.noDisplay"));
}

TEST(ViewerLanguage, HasNoTextForAnUnknownKey) {
  EXPECT_EQ(ViewerLanguage().text("host.thereIsNoSuchKey"), "");
}

TEST(ViewerStyle, IsTheStyleOfTheControl) {
  QWidget window;
  applyViewerStyle(window);
  QWidget child(&window);
  const AuditViewer viewer;
  EXPECT_EQ(child.style(), viewer.style());
}

TEST(ViewerIcon, HasAllSizes) {
  for (const int side : {16, 24, 32, 48, 64, 256}) EXPECT_EQ(viewerIcon().pixmap(side).width(), side);
}

TEST(Warning, ShowsItsTextAsItIs) {
  QString shown;
  const control::WhenModal answer([&](QWidget* dialog) {
    auto* box = qobject_cast<QMessageBox*>(dialog);
    if (box != nullptr && box->textFormat() == Qt::PlainText) shown = box->text();
    dialog->close();
  });
  showWarning(nullptr, "Title", "<b>not bold</b>");
  EXPECT_EQ(shown, "<b>not bold</b>");
}

TEST_F(ViewerPath, IsSetIfItIsNotSet) {
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
}  // namespace korvel
