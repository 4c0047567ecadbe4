#include <QMessageBox>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QTimer>
#include <QVBoxLayout>
#include <optional>

#include "base/error.h"
#include "control/qt_control_services.h"
#include "tests/control/viewer_fixture.h"

namespace korvel::test {
namespace {

using control::libraryState;
using ui::MessageIcon;
using Lifecycle = ViewerTest;
using Properties = ViewerTest;
using PublicFace = ViewerTest;

QStringList namesOf(QMetaMethod::MethodType type) {
  const QMetaObject& face = AuditViewer::staticMetaObject;
  QStringList names;
  for (int i = face.methodOffset(); i < face.methodCount(); ++i)
    if (face.method(i).methodType() == type) names.append(QString::fromLatin1(face.method(i).methodSignature()));
  return names;
}

TEST_F(PublicFace, MembersStandInTypeLibraryOrder) {
  EXPECT_EQ(namesOf(QMetaMethod::Slot),
            (QStringList{
                "SelectALL()", "UnselectALL()", "ExportNotepad()", "ExportExcel()", "GetExportPath(QString,int)",
                "ChangeFont()", "DisplayNoOfRecords()", "TriggerQuery()", "ExpandAll()", "SelectDatabase()",
                "UnlockControls()", "LockControls()", "ViewTools(bool)", "BuildMenu()", "BuildToolbar()",
                "ShowKeyField(bool)", "ListViewColSetup()", "BuildPopup(QString)", "TriggerAdvancedQuery(QString)",
                "SwitchLanguage()", "BuildMisc()", "OpenDefaultSQLServer()",
                // Not in the type library, and therefore after its members.
                "HelpContents()", "HelpSearch()", "HelpOnFocus()", "ShowAbout()", "PrintReport()", "PreviewReport()",
                "TakeSnapshot()", "CompareWithSnapshot()", "OpenQueryFile(QString)", "OpenDatabase(QString,QString)"}));
}

TEST_F(PublicFace, EventsStandInTypeLibraryOrder) {
  EXPECT_EQ(namesOf(QMetaMethod::Signal),
            (QStringList{"DatabaseSelected(QString)", "ExitApp()", "PropertyChanged(QString)", "LastFailureChanged()",
                         "LanguageChanged()", "SnapshotTextChanged()"}));
}

TEST_F(PublicFace, PropertiesStandInTypeLibraryOrder) {
  const QMetaObject& face = AuditViewer::staticMetaObject;
  QStringList names;
  for (int i = face.propertyOffset(); i < face.propertyCount(); ++i)
    names.append(QLatin1String(face.property(i).name()));
  EXPECT_EQ(names, (QStringList{"DatabaseType", "ViewSideTools", "ViewToolBar", "DefaultSQLServer", "LastFailureNumber",
                                "LastFailureText", "LastFailureTime", "SnapshotText"}));
}

TEST_F(PublicFace, DatabaseTypesHaveTheirValues) {
  const QMetaEnum types = QMetaEnum::fromType<AuditViewer::DatabaseTypeEnum>();
  EXPECT_EQ(types.keyToValue("Korvel_Audit"), 0);
  EXPECT_EQ(types.keyToValue("Korvel_AuditMU"), 1);
  EXPECT_EQ(types.keyCount(), 2);
}

TEST_F(PublicFace, MembersAreCallableByName) {
  const auto viewer = shownViewer();
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "UnselectALL"));
  EXPECT_FALSE(treeText(*viewer).contains("[x]"));
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "ViewTools", Q_ARG(bool, false)));
  EXPECT_TRUE(element(*viewer, "frameFilter")->isHidden());
  ASSERT_TRUE(viewer->setProperty("DatabaseType", 1));
  EXPECT_EQ(viewer->DatabaseType(), 1);
}

TEST_F(PublicFace, DescriptionsOfPropertiesAreCarriedAlong) {
  const QMetaObject& face = AuditViewer::staticMetaObject;
  QStringList descriptions;
  for (int i = face.classInfoOffset(); i < face.classInfoCount(); ++i)
    descriptions.append(QLatin1String(face.classInfo(i).name()) + ": " + face.classInfo(i).value());
  EXPECT_EQ(descriptions,
            (QStringList{"ViewSideTools: Returns/sets a value that determines whether the side tools are visible",
                         "ViewToolBar: Returns/sets a value that determines whether the toolbar is visible"}));
}

TEST_F(PublicFace, ExpandAllByName) {
  const auto viewer = shownViewer();
  auto* tree = element<QTreeWidget>(*viewer, "tvTreeView");
  {
    // Without signals the tree is not changed again.
    const QSignalBlocker quiet(tree);
    tree->collapseAll();
  }
  ASSERT_FALSE(node(*viewer, "Runtime")->isExpanded());
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "ExpandAll"));
  for (const char* root : {"Configuration", "Runtime", "Document Control"})
    EXPECT_TRUE(node(*viewer, root)->isExpanded()) << root;
}

TEST_F(PublicFace, ExpandAllPassesOverNodesOfCertainKeysAndImagesAndTheLast) {
  const auto viewer = shownViewer();
  auto* tree = element<QTreeWidget>(*viewer, "tvTreeView");
  QTreeWidgetItem* const last = node(*viewer, "Document Control/Restore");
  const QSignalBlocker quiet(tree);
  // Leaves have nothing to expand: the last node gets a child, and so does the one before it.
  QTreeWidgetItem* const lastButOne = node(*viewer, "Document Control/Rollback");
  for (QTreeWidgetItem* leaf : {last, lastButOne}) leaf->addChild(new QTreeWidgetItem);
  node(*viewer, "Configuration")->setData(0, Qt::UserRole, "root");
  node(*viewer, "Runtime")->setData(0, Qt::UserRole + 2, "pix");
  tree->collapseAll();
  viewer->ExpandAll();
  EXPECT_FALSE(node(*viewer, "Configuration")->isExpanded());
  EXPECT_FALSE(node(*viewer, "Runtime")->isExpanded());
  EXPECT_TRUE(node(*viewer, "Document Control")->isExpanded());
  EXPECT_TRUE(lastButOne->isExpanded());
  EXPECT_FALSE(last->isExpanded());
}

TEST_F(PublicFace, DisplayNoOfRecordsByName) {
  const auto viewer = shownViewer();
  server.resultSets = {{record("1", "CS"), record("2", "CS")}};
  viewer->TriggerQuery();
  // The query itself leaves the count to its callers.
  ASSERT_EQ(recordsPanel(*viewer), "0 Records on current tab");
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "DisplayNoOfRecords"));
  EXPECT_EQ(recordsPanel(*viewer), "2 Records on current tab");
}

TEST_F(PublicFace, BuildMiscByName) {
  const auto viewer = shownViewer();
  ASSERT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), "Date Range");
  libraryState().language = settings::LanguageOffset("10000");
  ASSERT_TRUE(QMetaObject::invokeMethod(viewer.get(), "BuildMisc"));
  const auto german = [](int identifier) {
    const std::string_view text = settings::loadTextByIdentifier(identifier);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  };
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), german(20040));
  EXPECT_EQ(element<QLabel>(*viewer, "lblDateRange")->text(), german(20042));
  EXPECT_EQ(element(*viewer, "btQuery")->toolTip(), german(20046));
}

TEST_F(Lifecycle, ANewViewerStartsWithEverythingCheckedAndOpen) {
  const auto viewer = newViewer();
  EXPECT_EQ(treeText(*viewer),
            "[x] Configuration\n"
            "  [x] Korvel Explorer\n"
            "  [x] Alarms\n"
            "  [x] Tag Logging\n"
            "  [x] User Archives\n"
            "[x] Runtime\n"
            "  [x] Custom Operator Actions\n"
            "  [x] User Archives\n"
            "[x] Document Control\n"
            "  [x] Check IN\n"
            "  [x] Check OUT\n"
            "  [x] Rollback\n"
            "  [x] Restore\n");
  for (const char* root : {"Configuration", "Runtime", "Document Control"})
    EXPECT_TRUE(node(*viewer, root)->isExpanded());
  EXPECT_EQ(element<QTabWidget>(*viewer, "SSTab1")->currentIndex(), 0);
  EXPECT_EQ(libraryState().printFont.name, "Courier");
  EXPECT_EQ(libraryState().printFont.size, 9);
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
  EXPECT_TRUE(server.connectionStrings.empty());
}

TEST_F(Lifecycle, StandardListsHaveTheirColumnsAndTheCustomListHasNone) {
  const auto viewer = newViewer();
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(list(*viewer, i)->model()->columnCount(), 18) << i;
    EXPECT_EQ(list(*viewer, i)->model()->headerData(0, Qt::Horizontal).toString(), "Entry ID") << i;
    EXPECT_EQ(list(*viewer, i)->model()->headerData(17, Qt::Horizontal).toString(), "Summer Time") << i;
  }
  EXPECT_EQ(list(*viewer, 5)->model()->columnCount(), 0);
}

TEST_F(Lifecycle, PagesHaveTheirFixedCaptions) {
  settings.values["Language"] = "10000";
  const auto viewer = newViewer();
  const auto* tabs = element<QTabWidget>(*viewer, "SSTab1");
  QStringList captions;
  for (int i = 0; i < tabs->count(); ++i) captions.append(tabs->tabText(i));
  EXPECT_EQ(captions,
            (QStringList{"ALL Audits", "Configuration", "Runtime", "Document Control", "KorvelAudit", "Custom"}));
}

TEST_F(Lifecycle, AnAbsentLanguageIsEnglish) {
  const auto viewer = newViewer();
  EXPECT_EQ(libraryState().language.text(), "0");
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), "Date Range");
  EXPECT_EQ(element<QLabel>(*viewer, "lblDateRange")->text(), "No Date Range Selected");
}

TEST_F(Lifecycle, TheStoredLanguageCaptionsTheSideControls) {
  settings.values["Language"] = "20000";
  const auto viewer = newViewer();
  EXPECT_EQ(libraryState().language.text(), "20000");
  const auto text = [](int english) {
    const std::string_view french = settings::loadTextByIdentifier(english + 20000);
    return QString::fromUtf8(french.data(), static_cast<qsizetype>(french.size()));
  };
  EXPECT_EQ(element(*viewer, "frameFilter")->property("title").toString(), text(10039));
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), text(10040));
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btClearDateRange")->text(), text(10041));
  EXPECT_EQ(element<QLabel>(*viewer, "lblDateRange")->text(), text(10042));
  EXPECT_EQ(element(*viewer, "frameTools")->property("title").toString(), text(10043));
  EXPECT_EQ(element(*viewer, "btSelectDB")->toolTip(), text(10044));
  EXPECT_EQ(element(*viewer, "btDBInfo")->toolTip(), text(10045));
  EXPECT_EQ(element(*viewer, "btQuery")->toolTip(), text(10046));
  EXPECT_EQ(element(*viewer, "btClear")->toolTip(), text(10047));
  EXPECT_EQ(element(*viewer, "btSelectALL")->toolTip(), text(10048));
  EXPECT_EQ(element(*viewer, "btUnselectALL")->toolTip(), text(10049));
  EXPECT_EQ(element(*viewer, "btExcel")->toolTip(), text(10050));
}

TEST_F(Lifecycle, AFailingInitializeReportsItAndStops) {
  settings.openFailure = Win32Error::accessDenied;
  const auto viewer = newViewer();
  ASSERT_EQ(recorder->messages.size(), 1U);
  const int number = static_cast<int>(0x80040000U + 2005U);
  EXPECT_EQ(recorder->messages[0],
            (ShownMessage{
                MessageIcon::critical, "",
                QString::number(number) + ":Error in Initialize.  Error Message: Could not open registry section"}));
  // Partly built: neither columns nor tree, and still a control that can be shown.
  EXPECT_EQ(list(*viewer, 0)->model()->columnCount(), 0);
  EXPECT_EQ(treeText(*viewer), "");
  viewer->show();
  viewer->TriggerQuery();
  EXPECT_TRUE(viewer->isVisible());
}

TEST_F(Lifecycle, ASettingsFileThatIsNotUnderstoodIsNamed) {
  settings.openFailure = Win32Error::badDatabase;
  settings.file = "/home/plant/settings.reg";
  const auto viewer = newViewer();
  ASSERT_EQ(recorder->messages.size(), 1U);
  EXPECT_EQ(recorder->messages[0].text,
            QString::number(static_cast<int>(0x80040000U + 3009U)) +
                ":Error in Initialize.  Error Message: Could not open registry section. The settings file "
                "/home/plant/settings.reg cannot be understood. Correct it, or rename it: then a new one is written");
}

TEST_F(Lifecycle, AStepThatFailsLaterLeavesWhatWasBuiltAndEndsTheRest) {
  libraryState().printFont.name = "untouched";
  recorder->onFormAsked = [] { throw Error(57, "device unavailable"); };
  const auto viewer = newViewer();
  EXPECT_THAT(recorder->messages,
              ::testing::ElementsAre(ShownMessage{MessageIcon::critical, "",
                                                  "57:Error in Initialize.  Error Message: device unavailable"}));
  // It failed while elements were locked: columns and captions exist, the tree and what follows it do not.
  EXPECT_EQ(list(*viewer, 0)->model()->columnCount(), 18);
  EXPECT_EQ(element<QAbstractButton>(*viewer, "btDateRangeFilter")->text(), "Date Range");
  EXPECT_EQ(treeText(*viewer), "");
  EXPECT_EQ(libraryState().printFont.name, "untouched");
  recorder->onFormAsked = nullptr;
  viewer->show();
  EXPECT_TRUE(viewer->isVisible());
}

TEST_F(Lifecycle, InitializeSetsThePrintFont) {
  libraryState().printFont = {"Arial", 20};
  const auto viewer = newViewer();
  EXPECT_EQ(libraryState().printFont.name, "Courier");
  EXPECT_EQ(libraryState().printFont.size, 9);
}

TEST_F(Lifecycle, ShowAppliesTheSideToolsBeforeItConnects) {
  const auto viewer = newViewer();
  EXPECT_EQ(viewer->ReadProperties(QVariantMap{{"ViewSideTools", false}, {"DefaultSQLServer", "S"}}), "");
  std::optional<bool> hidden;
  QObject::connect(viewer.get(), &AuditViewer::DatabaseSelected,
                   [&] { hidden = element(*viewer, "frameFilter")->isHidden(); });
  viewer->show();
  EXPECT_EQ(hidden, true);
}

TEST_F(Lifecycle, ShowConnectsToNothingWithoutAServer) {
  for (const char* none : {"", "(None)"}) {
    const auto viewer = newViewer();
    const QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
    viewer->setDefaultSQLServer(none);
    viewer->show();
    EXPECT_EQ(selected.count(), 0) << none;
    EXPECT_EQ(libraryState().connection.ConnectionString, "") << none;
    EXPECT_FALSE(element(*viewer, "btQuery")->isEnabled()) << none;
  }
}

TEST_F(Lifecycle, EveryShowConnectsToAnyOtherServer) {
  for (const char* name : {"S", " ", "(none)", "None"}) {
    const auto viewer = newViewer();
    const QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
    viewer->setDefaultSQLServer(name);
    EXPECT_EQ(selected.count(), 0) << name;
    viewer->show();
    viewer->hide();
    viewer->show();
    EXPECT_EQ(selected.count(), 2) << name;
  }
}

TEST_F(Lifecycle, AWindowThatComesBackFromTheTaskBarIsNoNewShow) {
  const auto viewer = shownViewer();
  const QSignalSpy selected(viewer.get(), &AuditViewer::DatabaseSelected);
  viewer->setWindowState(Qt::WindowMinimized);
  QCoreApplication::processEvents();
  viewer->setWindowState(Qt::WindowNoState);
  QCoreApplication::processEvents();
  EXPECT_EQ(selected.count(), 0);
}

TEST_F(Lifecycle, AControlInsideAHostIsShownWithIt) {
  QWidget host;
  auto* layout = new QVBoxLayout(&host);
  auto* viewer = new AuditViewer(&host);
  layout->addWidget(viewer);
  viewer->setDefaultSQLServer("S");
  const QSignalSpy selected(viewer, &AuditViewer::DatabaseSelected);
  host.show();
  EXPECT_EQ(selected.count(), 1);
}

TEST_F(Lifecycle, AViewerMayDieWhileItsMessageIsShown) {
  auto viewer = shownViewer();
  server.resultSets = {{}};
  recorder->onMessage = [&] { viewer.reset(); };
  viewer->findChild<QAbstractButton*>("btQuery")->click();
  EXPECT_EQ(viewer, nullptr);
  EXPECT_EQ(recorder->pointers.back(), ui::Pointer::standard);
}

TEST_F(Lifecycle, AViewerMayDieWhileAPropertyIsAnnounced) {
  auto viewer = shownViewer();
  QObject::connect(viewer.get(), &AuditViewer::PropertyChanged, [&] { viewer.reset(); });
  viewer->setViewSideTools(false);
  EXPECT_EQ(viewer, nullptr);
}

TEST_F(Properties, EachSettingAnnouncesItself) {
  const auto viewer = newViewer();
  QSignalSpy changed(viewer.get(), &AuditViewer::PropertyChanged);
  viewer->setViewSideTools(false);
  viewer->setViewToolBar(false);
  viewer->setDefaultSQLServer("S");
  viewer->setDatabaseType(1);
  viewer->setDatabaseType(1);
  QStringList names;
  for (const QList<QVariant>& call : changed) names.append(call[0].toString());
  EXPECT_EQ(names, (QStringList{"ViewSideTools", "ViewToolBar", "DefaultSQLServer", "DatabaseType", "DatabaseType"}));
}

TEST_F(Properties, AreStoredBeforeTheyAreAnnouncedAndShownAfterwards) {
  const auto viewer = shownViewer();
  QStringList values;
  QObject::connect(viewer.get(), &AuditViewer::PropertyChanged, [&](const QString& name) {
    values.append(name + '=' + viewer->property(name.toUtf8().constData()).toString());
    EXPECT_TRUE(element(*viewer, "frameFilter")->isVisible()) << name.toStdString();
    EXPECT_EQ(element(*viewer, "SmartToolbar")->isVisible(), values.size() < 3) << name.toStdString();
  });
  viewer->setDefaultSQLServer("T");
  viewer->setViewToolBar(false);
  viewer->setDatabaseType(1);
  viewer->setViewSideTools(false);
  EXPECT_EQ(values, (QStringList{"DefaultSQLServer=T", "ViewToolBar=false", "DatabaseType=1", "ViewSideTools=false"}));
}

TEST_F(Properties, SideToolsFollowTheirPropertyAtOnce) {
  const auto viewer = shownViewer();
  ASSERT_TRUE(element(*viewer, "frameFilter")->isVisible());
  viewer->setViewSideTools(false);
  for (const char* name : {"tvTreeView", "frameFilter", "btDateRangeFilter", "btClearDateRange", "frameTools"})
    EXPECT_FALSE(element(*viewer, name)->isVisible()) << name;
  viewer->setViewSideTools(true);
  for (const char* name : {"tvTreeView", "frameFilter", "btDateRangeFilter", "btClearDateRange", "frameTools"})
    EXPECT_TRUE(element(*viewer, name)->isVisible()) << name;
}

TEST_F(Properties, AReadValueTakesEffectAtTheNextShow) {
  const auto viewer = shownViewer();
  const QSignalSpy changed(viewer.get(), &AuditViewer::PropertyChanged);
  EXPECT_EQ(viewer->ReadProperties(QVariantMap{{"ViewSideTools", false}}), "");
  EXPECT_FALSE(viewer->ViewSideTools());
  EXPECT_TRUE(element(*viewer, "frameFilter")->isVisible());
  EXPECT_EQ(changed.count(), 0);
  viewer->hide();
  viewer->show();
  EXPECT_FALSE(element(*viewer, "frameFilter")->isVisible());
}

TEST_F(Properties, UntilThenElementsAreLaidOutByTheValueThatWasAppliedLast) {
  const auto viewer = shownViewer();
  const QWidget* tabs = element(*viewer, "SSTab1");
  const int beside = tabs->x();
  const QSize smallest = viewer->minimumSizeHint();
  EXPECT_EQ(viewer->ReadProperties(QVariantMap{{"ViewSideTools", false}}), "");
  viewer->resize(1100, 700);
  EXPECT_EQ(tabs->x(), beside);
  EXPECT_EQ(viewer->minimumSizeHint(), smallest);
  viewer->setViewToolBar(false);
  EXPECT_EQ(tabs->x(), beside);
  QFont font = viewer->font();
  font.setPointSize(font.pointSize() + 1);
  viewer->setFont(font);
  EXPECT_EQ(tabs->x(), beside);
  viewer->ViewTools(true);
  EXPECT_EQ(tabs->x(), beside);
  viewer->hide();
  viewer->show();
  const int alone = tabs->x();
  EXPECT_LT(alone, beside);
  viewer->InitProperties();
  viewer->resize(1000, 600);
  EXPECT_EQ(tabs->x(), alone);
  viewer->setViewSideTools(true);
  EXPECT_EQ(tabs->x(), beside);
}

TEST_F(Properties, ABagRoundTripKeepsAllFour) {
  const auto viewer = newViewer();
  viewer->setViewSideTools(false);
  viewer->setDefaultSQLServer("AUDITSRV");
  viewer->setDatabaseType(1);
  const auto other = newViewer();
  EXPECT_EQ(other->ReadProperties(viewer->WriteProperties()), "");
  EXPECT_FALSE(other->ViewSideTools());
  EXPECT_TRUE(other->ViewToolBar());
  EXPECT_EQ(other->DefaultSQLServer(), "AUDITSRV");
  EXPECT_EQ(other->DatabaseType(), 1);
  other->InitProperties();
  EXPECT_EQ(other->WriteProperties(), QVariant(QVariantMap{{"ViewSideTools", true}, {"ViewToolBar", true}}));
}

TEST_F(Properties, ABadBagIsPassedToTheContainer) {
  const auto viewer = newViewer();
  EXPECT_EQ(viewer->ReadProperties(QVariantMap{{"DatabaseType", "many"}}), "13:Type mismatch");
  EXPECT_THAT(recorder->messages, ::testing::IsEmpty());
}

TEST_F(Properties, WhatIsNoBagIsPassedToTheContainer) {
  const auto viewer = newViewer();
  viewer->setDefaultSQLServer("S");
  for (const QVariant& bag : {QVariant("text"), QVariant(7), QVariant(QVariantList{QVariantMap()})}) {
    EXPECT_EQ(viewer->ReadProperties(bag), "13:Type mismatch") << bag.typeName();
    EXPECT_EQ(viewer->DefaultSQLServer(), "S") << bag.typeName();
  }
  EXPECT_EQ(viewer->ReadProperties(QVariantHash{{"DefaultSQLServer", "T"}}), "");
  EXPECT_EQ(viewer->DefaultSQLServer(), "T");
  EXPECT_EQ(viewer->ReadProperties(QVariant()), "");
  EXPECT_EQ(viewer->DefaultSQLServer(), "(None)");
}

TEST_F(Properties, TwoInstancesKeepTheirOwnPropertiesAndShareTheSelection) {
  const auto first = shownViewer();
  const auto second = newViewer();
  second->setDefaultSQLServer("T");
  second->setDatabaseType(1);
  EXPECT_EQ(first->DefaultSQLServer(), "S");
  second->resize(1000, 700);
  second->show();
  EXPECT_EQ(libraryState().connection.CurrentServer, "T");
  // The first one's next query goes to what the second has selected.
  server.resultSets = {{record("1", "CS")}};
  first->TriggerQuery();
  EXPECT_THAT(
      server.connectionStrings,
      ::testing::ElementsAre("Provider=SQLOLEDB; Server=T; Database=Korvel_Audit_MU; Integrated Security=SSPI;"));
}

TEST_F(Properties, ANewInstanceIsLockedThoughAnotherHasSelectedADatabase) {
  const auto first = shownViewer();
  const auto second = newViewer();
  EXPECT_TRUE(element(*first, "btQuery")->isEnabled());
  EXPECT_FALSE(element(*second, "btQuery")->isEnabled());
}

}  // namespace
}  // namespace korvel::test
