// The plug-in in Qt Designer: its form editor with the widget box and the property editor, not shown.
#include <korvel/AuditViewer.h>

#include <QAbstractButton>
#include <QBuffer>
#include <QFile>
#include <QSignalSpy>
#include <QtDesigner/QDesignerComponents>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtDesigner/QDesignerMemberSheetExtension>
#include <QtDesigner/QDesignerWidgetBoxInterface>
#include <QtDesigner/QExtensionManager>

#include "base/atomic_file.h"
#include "settings/registry.h"
#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

class Designer : public ::testing::Test {
 protected:
  Designer() {
    settings::Registry(*settings::platformBackend()).SaveSetting("Molvane", "AuditViewer", "Language", "10000");
    storedSettings_ = readFile(settingsFile());
    // Qt Designer looks for plug-ins in the folder "designer" of each of them.
    QCoreApplication::addLibraryPath(QStringLiteral(KORVEL_QT_PLUGINS));
    QDesignerComponents::initializeResources();
    core_ = QDesignerComponents::createFormEditor(&owner_);
    core_->setTopLevel(&window_);
    core_->setWidgetBox(QDesignerComponents::createWidgetBox(core_, &window_));
    core_->setPropertyEditor(QDesignerComponents::createPropertyEditor(core_, &window_));
    new QDesignerIntegration(core_, &owner_);
    QDesignerComponents::initializePlugins(core_);
    core_->widgetBox()->setFileName(":/qt-project.org/widgetbox/widgetbox.xml");
    core_->widgetBox()->load();
  }

  [[nodiscard]] std::filesystem::path settingsFile() const { return folder_ / "settings.reg"; }
  [[nodiscard]] bool settingsAreUntouched() const { return readFile(settingsFile()) == storedSettings_; }

  QDesignerFormWindowInterface& opened(QByteArray form) {
    QDesignerFormWindowInterface* const window = core_->formWindowManager()->createFormWindow(&window_);
    QBuffer file(&form);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QString failure;
    EXPECT_TRUE(window->setContents(&file, &failure)) << failure.toStdString();
    core_->formWindowManager()->setActiveFormWindow(window);
    return *window;
  }
  static QByteArray formFile(const char* name) {
    QFile file(QStringLiteral(KORVEL_FORMS "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
  }
  /// A form as Qt Designer makes it of what is dropped on it.
  QDesignerFormWindowInterface& openedFromWidgetBox() {
    const QDesignerWidgetBoxInterface& box = *core_->widgetBox();
    for (int category = 0; category < box.categoryCount(); ++category)
      if (box.category(category).name() == "Korvel") {
        const auto widget = box.category(category).widget(0);
        EXPECT_EQ(widget.name(), "Audit Viewer");
        return opened(widget.domXml().toUtf8());
      }
    throw std::runtime_error("the widget box has no such group");
  }
  static AuditViewer& viewerIn(QDesignerFormWindowInterface& form) {
    auto* viewer = form.findChild<AuditViewer*>();
    if (viewer == nullptr) throw std::runtime_error("the form has no control");
    return *viewer;
  }

  QDesignerFormEditorInterface* core_ = nullptr;

 private:
  TemporaryFolder folder_;
  OwnSettings settings_{folder_.path()};
  EnvironmentVariable configuration_{"XDG_CONFIG_HOME", (folder_ / "config").string()};
  std::string storedSettings_;
  QObject owner_;
  QWidget window_;
};

TEST_F(Designer, WritesNoPropertyThatWasNotChanged) {
  const QString form = opened(formFile("defaults.ui")).contents();
  EXPECT_TRUE(form.contains(R"(class="korvel::AuditViewer")")) << form.toStdString();
  for (const char* name : {"ViewSideTools", "ViewToolBar", "DefaultSQLServer", "DatabaseType", "LastFailure"})
    EXPECT_FALSE(form.contains(name)) << name;
}

TEST_F(Designer, WritesWhatWasChanged) {
  QDesignerFormWindowInterface& form = opened(formFile("defaults.ui"));
  form.cursor()->setWidgetProperty(&viewerIn(form), "DatabaseType", 1);
  EXPECT_EQ(viewerIn(form).DatabaseType(), 1);
  const QString text = form.contents();
  EXPECT_TRUE(text.contains("<number>1</number>")) << text.toStdString();
  EXPECT_FALSE(text.contains("DefaultSQLServer"));
  form.cursor()->resetWidgetProperty(&viewerIn(form), "DatabaseType");
  EXPECT_FALSE(form.contents().contains("DatabaseType"));
}

TEST_F(Designer, KeepsAllFourProperties) {
  const QString first = opened(formFile("all_four.ui")).contents();
  QDesignerFormWindowInterface& again = opened(first.toUtf8());
  EXPECT_EQ(again.contents(), first);
  EXPECT_EQ(
      viewerIn(again).WriteProperties().toMap(),
      (QVariantMap{
          {"ViewSideTools", false}, {"ViewToolBar", false}, {"DefaultSQLServer", "PLANT-SQL"}, {"DatabaseType", 1}}));
}

TEST_F(Designer, WritesTheBooleansOfANewControlAndItsHeader) {
  const QString form = openedFromWidgetBox().contents();
  EXPECT_EQ(form.count("<bool>true</bool>"), 2) << form.toStdString();
  EXPECT_TRUE(form.contains(R"(<header location="global">korvel/AuditViewer.h</header>)")) << form.toStdString();
  EXPECT_FALSE(form.contains("DatabaseType"));
  EXPECT_FALSE(form.contains("DefaultSQLServer\""));
}

TEST_F(Designer, OffersTheEventsAsSignals) {
  QDesignerFormWindowInterface& form = opened(formFile("defaults.ui"));
  auto* sheet = qt_extension<QDesignerMemberSheetExtension*>(core_->extensionManager(), &viewerIn(form));
  ASSERT_NE(sheet, nullptr);
  QStringList signalNames;
  for (int i = 0; i < sheet->count(); ++i)
    if (sheet->isSignal(i) && sheet->isVisible(i)) signalNames.append(sheet->signature(i));
  EXPECT_TRUE(signalNames.contains("DatabaseSelected(QString)"));
  EXPECT_TRUE(signalNames.contains("ExitApp()"));
}

TEST_F(Designer, NeitherConnectsNorReadsOrWritesSettings) {
  QDesignerFormWindowInterface& form = opened(formFile("all_four.ui"));
  AuditViewer& viewer = viewerIn(form);
  const QSignalSpy selected(&viewer, &AuditViewer::DatabaseSelected);
  viewer.setViewToolBar(true);
  form.show();
  core_->topLevel()->show();
  ASSERT_TRUE(viewer.isVisible());
  EXPECT_EQ(selected.count(), 0);
  // The stored language is German.
  EXPECT_EQ(viewer.findChild<QAbstractButton*>("btSelectDB")->toolTip(), "Select Database");
  EXPECT_TRUE(settingsAreUntouched());
}

TEST_F(Designer, CommandsOfAPreviewDoNothing) {
  AuditViewer& viewer = viewerIn(opened(formFile("all_four.ui")));
  const QSignalSpy selected(&viewer, &AuditViewer::DatabaseSelected);
  // Each of them would wait for a dialog.
  viewer.SelectDatabase();
  viewer.ChangeFont();
  viewer.ShowAbout();
  EXPECT_EQ(viewer.GetExportPath("Where", 0), "");
  viewer.OpenDefaultSQLServer();
  viewer.TriggerQuery();
  EXPECT_NE(viewer.LastFailureNumber(), 0);
  EXPECT_TRUE(settingsAreUntouched());
}

}  // namespace
}  // namespace korvel::test
