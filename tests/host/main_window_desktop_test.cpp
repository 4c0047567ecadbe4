// Keys of the window that use the desktop: help files and the dialog for printers.
#include <QApplication>
#include <QTest>
#include <QTimer>
#include <filesystem>

#include "host/shot.h"
#include "tests/host/main_window_fixture.h"
#include "tests/support/opened_files.h"

namespace korvel::host {
namespace {

TEST_F(MainWindowTest, F1IsHelpContents) {
  const test::OpenedFiles opened;
  const std::string help = (folder / "KorvelAuditViewerHelp_Ger.chm").string();
  writeFileAtomically(help, "help");
  set("Language", "10000");
  set("ViewerAppPath", (folder / "KorvelAuditViewer.exe").string());
  MainWindow window(options, english);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QTest::keyClick(window.viewer().findChild<QWidget*>("tvTreeView"), Qt::Key_F1);
  EXPECT_EQ(opened.files(), QStringList{QString::fromStdString(help)});
}

TEST_F(MainWindowTest, F1IsTheTopicOfTheFocus) {
  const test::OpenedFiles opened;
  const std::filesystem::path pages = folder / "KorvelAuditViewerHelp_Eng";
  std::filesystem::create_directory(pages);
  for (const char* page : {"commands.html", "database.html", "index.html"}) writeFileAtomically(pages / page, "help");
  set("ViewerAppPath", (folder / "KorvelAuditViewer.exe").string());
  MainWindow window(options, english);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const auto topicOf = [&](const char* element) {
    auto* const widget = window.findChild<QWidget*>(QLatin1String(element));
    if (widget == nullptr) return QStringLiteral("no ") + QLatin1String(element);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_F1);
    QFile leading(opened.files().value(opened.files().size() - 1));
    if (!leading.open(QIODevice::ReadOnly)) return QStringLiteral("nothing");
    return QString::fromUtf8(leading.readAll()).section("url=", 1).section('"', 0, 0).section('/', -1);
  };
  EXPECT_EQ(topicOf("SmartToolbar_SELECT"), "commands.html#SELECT");
  EXPECT_EQ(topicOf("doorDemo"), "database.html#embedded");
  EXPECT_EQ(topicOf("doorServer"), "database.html#browser");
  EXPECT_EQ(topicOf("doorFolder"), "database.html#embedded");
}

TEST_F(MainWindowTest, F1SaysWhichHelpFileIsMissing) {
  const test::OpenedFiles opened;
  set("ViewerAppPath", "/nowhere/KorvelAuditViewer.exe");
  const UnattendedMessages messages(qApp);
  MainWindow window(options, english);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  QTest::keyClick(&window, Qt::Key_F1);
  EXPECT_EQ(opened.files(), QStringList());
  EXPECT_EQ(messages.texts(), QStringList{"The help file /nowhere/KorvelAuditViewerHelp_Eng.chm was not found."});
}

/// Closes every dialog as soon as it is shown, and records which one it was.
class ClosedDialogs {
 public:
  ClosedDialogs() {
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      QWidget* const dialog = QApplication::activeModalWidget();
      if (dialog == nullptr) return;
      kinds_.append(QString::fromLatin1(dialog->metaObject()->className()));
      dialog->close();
    });
    timer_.start(0);
  }
  [[nodiscard]] const QStringList& kinds() const { return kinds_; }

 private:
  QStringList kinds_;
  QTimer timer_;
};

TEST_F(MainWindowTest, KeysPrintPreviewAndExport) {
  const test::EnvironmentVariable windir("windir", folder.path().string());
  options.server = "S";
  MainWindow window(options, english);
  window.show();
  const auto press = [&window](Qt::Key key, Qt::KeyboardModifiers modifiers) {
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(window.viewer().findChild<QWidget*>("tvTreeView"), key, modifiers);
  };
  {
    const ClosedDialogs dialogs;
    press(Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialogs.kinds().contains("korvel::control::ReportPreview"); }));
    press(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialogs.kinds().contains("QPrintDialog"); }));
  }
  EXPECT_TRUE(std::filesystem::exists(folder / "report.htm"));
  const UnattendedMessages messages(qApp);
  press(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
  press(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(messages.texts(), (QStringList{"Nothing to Export", "Nothing to Export"}));
}

}  // namespace
}  // namespace korvel::host
