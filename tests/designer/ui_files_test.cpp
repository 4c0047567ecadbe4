// Forms that a program has from Qt Designer: compiled by uic, or loaded by QUiLoader, which makes the control by the
// plug-in. The four properties are kept as a property bag keeps them.
#include <korvel/AuditViewer.h>

#include <QBuffer>
#include <QFile>
#include <QSignalSpy>
#include <QUiLoader>
#include <memory>
#include <type_traits>

#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"
#include "ui_all_four.h"
#include "ui_defaults.h"

namespace korvel::test {
namespace {

class UiFiles : public ::testing::Test {
 protected:
  static std::unique_ptr<QWidget> loaded(QByteArray form) {
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(QStringLiteral(KORVEL_PLUGIN_FOLDER));
    QBuffer file(&form);
    std::unique_ptr<QWidget> window(loader.load(&file));
    EXPECT_NE(window, nullptr) << loader.errorString().toStdString();
    return window;
  }
  static QByteArray formFile(const char* name) {
    QFile file(QStringLiteral(KORVEL_FORMS "/") + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
  }
  /// A form whose control has one property more than none, as it stands in the file.
  static QByteArray formWith(const char* property, const char* value) {
    QByteArray form = formFile("defaults.ui");
    const QByteArray control = R"(<widget class="korvel::AuditViewer" name="viewer"/>)";
    EXPECT_TRUE(form.contains(control));
    return form.replace(control, QByteArray(control).replace("/>", ">") + "<property name=\"" + property + "\">" +
                                     value + "</property></widget>");
  }
  static AuditViewer& viewerIn(const QWidget& window) {
    auto* viewer = window.findChild<AuditViewer*>("viewer");
    if (viewer == nullptr) throw std::runtime_error("the form has no control");
    return *viewer;
  }
  static QVariantMap bagOf(const AuditViewer& viewer) { return viewer.WriteProperties().toMap(); }
  /// What a control makes of a bag.
  static QVariantMap read(const QVariantMap& bag) {
    AuditViewer viewer;
    viewer.InitProperties();
    const QString failure = viewer.ReadProperties(bag);
    EXPECT_EQ(failure, "");
    return bagOf(viewer);
  }

  TemporaryFolder folder;
  OwnSettings settings{folder.path()};
};

const QVariantMap allFour{
    {"ViewSideTools", false}, {"ViewToolBar", false}, {"DefaultSQLServer", "PLANT-SQL"}, {"DatabaseType", 1}};

TEST_F(UiFiles, CompiledFormsHaveTheDefaultsOfABagWithoutValues) {
  QWidget window;
  Ui::Defaults form;
  form.setupUi(&window);
  EXPECT_EQ(bagOf(*form.viewer), read({}));
}

TEST_F(UiFiles, LoadedFormsHaveTheDefaultsOfABagWithoutValues) {
  EXPECT_EQ(bagOf(viewerIn(*loaded(formFile("defaults.ui")))), read({}));
}

TEST_F(UiFiles, CompiledFormsKeepAllFourProperties) {
  QWidget window;
  Ui::AllFour form;
  form.setupUi(&window);
  EXPECT_EQ(bagOf(*form.viewer), allFour);
}

TEST_F(UiFiles, LoadedFormsKeepAllFourProperties) {
  EXPECT_EQ(bagOf(viewerIn(*loaded(formFile("all_four.ui")))), allFour);
}

// The same value in a form file and in a bag comes to the same, where the bag can read it.
struct StoredValue {
  const char* property;
  const char* inForm;
  QVariant inBag;
};
const StoredValue storedValues[] = {
    {"ViewSideTools", "<bool>true</bool>", true},
    {"ViewSideTools", "<bool>false</bool>", false},
    {"ViewSideTools", "<number>1</number>", 1},
    {"ViewSideTools", "<number>-1</number>", -1},
    {"ViewSideTools", "<number>0</number>", 0},
    {"ViewToolBar", "<string>False</string>", "False"},
    {"ViewToolBar", "<string>true</string>", "true"},
    {"DefaultSQLServer", "<string>PLANT-SQL\\AUDIT</string>", "PLANT-SQL\\AUDIT"},
    {"DefaultSQLServer", "<string>(None)</string>", "(None)"},
    {"DefaultSQLServer", "<string/>", ""},
    {"DefaultSQLServer", "<number>7</number>", 7},
    {"DatabaseType", "<number>0</number>", 0},
    {"DatabaseType", "<number>-7</number>", -7},
    {"DatabaseType", "<number>2147483647</number>", 2147483647},
    {"DatabaseType", "<string>1</string>", "1"},
    {"DatabaseType", "<double>1.6</double>", 1.6},
};

TEST_F(UiFiles, LoadedValuesAreReadAsFromABag) {
  for (const StoredValue& value : storedValues) {
    const QVariantMap bag{{value.property, value.inBag}};
    EXPECT_EQ(bagOf(viewerIn(*loaded(formWith(value.property, value.inForm)))), read(bag))
        << value.property << ' ' << value.inForm;
  }
}

TEST_F(UiFiles, ValuesThatEqualTheirDefaultAreNotInTheBagAfterwards) {
  const QByteArray form = formWith("DatabaseType", "<number>0</number>");
  EXPECT_FALSE(bagOf(viewerIn(*loaded(form))).contains("DatabaseType"));
  const QByteArray noServer = formWith("DefaultSQLServer", "<string>(None)</string>");
  EXPECT_FALSE(bagOf(viewerIn(*loaded(noServer))).contains("DefaultSQLServer"));
}

TEST_F(UiFiles, LoadedValuesThatCannotBeReadLeaveTheDefault) {
  for (const char* value : {"<string>perhaps</string>", "<string/>", "<color><red>1</red></color>"})
    EXPECT_EQ(bagOf(viewerIn(*loaded(formWith("DatabaseType", value)))), read({})) << value;
  for (const char* property : {"ViewSideTools", "ViewToolBar"})
    EXPECT_EQ(bagOf(viewerIn(*loaded(formWith(property, "<string>perhaps</string>")))), read({})) << property;
}

TEST_F(UiFiles, CompiledFormsWithATextInPlaceOfABooleanOrANumberDoNotCompile) {
  static_assert(std::is_invocable_v<decltype(&AuditViewer::setViewSideTools), AuditViewer&, bool>);
  static_assert(!std::is_invocable_v<decltype(&AuditViewer::setViewSideTools), AuditViewer&, QString>);
  static_assert(!std::is_invocable_v<decltype(&AuditViewer::setViewToolBar), AuditViewer&, QString>);
  static_assert(!std::is_invocable_v<decltype(&AuditViewer::setDatabaseType), AuditViewer&, QString>);
}

TEST_F(UiFiles, ALoadedFormSelectsItsDatabaseWhenItIsShown) {
  const auto window = loaded(formFile("all_four.ui"));
  const QSignalSpy selected(&viewerIn(*window), &AuditViewer::DatabaseSelected);
  EXPECT_EQ(selected.count(), 0);
  window->show();
  ASSERT_EQ(selected.count(), 1);
  EXPECT_EQ(selected.first().first().toString(), "PLANT-SQL - [Korvel_Audit_MU]");
}

}  // namespace
}  // namespace korvel::test
