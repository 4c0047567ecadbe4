#include <gtest/gtest.h>
#include <korvel/AuditViewer.h>

#include <QMetaProperty>
#include <QPluginLoader>
#include <QXmlStreamReader>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include "tests/support/own_settings.h"
#include "tests/support/temporary_folder.h"

namespace korvel::test {
namespace {

/// The plug-in as Qt loads it from its file, in a process with settings of its own.
class DesignerPlugin : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(plugin(), nullptr) << loader_.errorString().toStdString(); }

  QDesignerCustomWidgetInterface* plugin() { return qobject_cast<QDesignerCustomWidgetInterface*>(loader_.instance()); }

  TemporaryFolder folder;
  OwnSettings settings{folder.path()};

 private:
  QPluginLoader loader_{QStringLiteral(KORVEL_PLUGIN)};
};

/// Elements of the plug-in's own form by their name, attribute "name" and text.
struct FormElement {
  QString element;
  QString name;
  QString text;
};

std::vector<FormElement> elementsOf(const QString& xml) {
  std::vector<FormElement> elements;
  QXmlStreamReader reader(xml);
  while (!reader.atEnd()) {
    const auto token = reader.readNext();
    if (token == QXmlStreamReader::StartElement)
      elements.push_back({reader.name().toString(), reader.attributes().value("name").toString(), {}});
    else if (token == QXmlStreamReader::Characters && !elements.empty())
      elements.back().text += reader.text();
  }
  EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
  return elements;
}

QMap<QString, QString> named(const QString& xml, const QString& element) {
  QMap<QString, QString> found;
  for (const FormElement& each : elementsOf(xml))
    if (each.element == element) found.insert(each.name, each.text);
  return found;
}

QStringList storedProperties() {
  const QMetaObject& control = AuditViewer::staticMetaObject;
  QStringList names;
  for (int i = control.propertyOffset(); i < control.propertyCount(); ++i)
    if (control.property(i).isStored()) names.append(QLatin1String(control.property(i).name()));
  names.sort();
  return names;
}

TEST_F(DesignerPlugin, NamesTheControlAsProgramsKnowIt) {
  EXPECT_EQ(plugin()->name(), QLatin1String(AuditViewer::staticMetaObject.className()));
  EXPECT_EQ(plugin()->group(), "Korvel");
  EXPECT_EQ(plugin()->includeFile(), "<korvel/AuditViewer.h>");
  EXPECT_FALSE(plugin()->isContainer());
  EXPECT_NE(plugin()->toolTip(), "");
  EXPECT_NE(plugin()->whatsThis(), "");
  for (const int side : {16, 24, 48}) EXPECT_EQ(plugin()->icon().pixmap(side).width(), side);
}

TEST_F(DesignerPlugin, DescribesEachStoredPropertyAndNoOther) {
  EXPECT_EQ(named(plugin()->domXml(), "tooltip").keys(), storedProperties());
}

TEST_F(DesignerPlugin, HasTheDescriptionsThatTheControlCarries) {
  const QMap<QString, QString> tooltips = named(plugin()->domXml(), "tooltip");
  const QMetaObject& control = AuditViewer::staticMetaObject;
  ASSERT_GT(control.classInfoCount(), control.classInfoOffset());
  for (int i = control.classInfoOffset(); i < control.classInfoCount(); ++i)
    EXPECT_EQ(tooltips.value(control.classInfo(i).name()), QLatin1String(control.classInfo(i).value()));
  for (const QString& text : tooltips) EXPECT_GT(text.size(), 20);
}

TEST_F(DesignerPlugin, PutsTheTwoBooleansIntoANewForm) {
  EXPECT_EQ(named(plugin()->domXml(), "property").keys(), (QStringList{"ViewSideTools", "ViewToolBar"}));
}

TEST_F(DesignerPlugin, ValuesOfANewFormAreThoseOfANewControl) {
  AuditViewer viewer;
  viewer.setViewSideTools(false);
  viewer.setViewToolBar(false);
  viewer.InitProperties();
  const QVariantMap bag = viewer.WriteProperties().toMap();
  std::vector<FormElement> elements = elementsOf(plugin()->domXml());
  QVariantMap form;
  for (std::size_t i = 0; i + 1 < elements.size(); ++i)
    if (elements[i].element == "property") form.insert(elements[i].name, elements[i + 1].text == "true");
  EXPECT_EQ(form, bag);
}

TEST_F(DesignerPlugin, ServerNamesAreOneLineThatIsNotTranslated) {
  QXmlStreamReader reader(plugin()->domXml());
  while (!reader.atEnd() && reader.name() != QLatin1String("stringpropertyspecification")) reader.readNext();
  EXPECT_EQ(reader.attributes().value("name"), QLatin1String("DefaultSQLServer"));
  EXPECT_EQ(reader.attributes().value("notr"), QLatin1String("true"));
  EXPECT_EQ(reader.attributes().value("type"), QLatin1String("singleline"));
}

TEST_F(DesignerPlugin, MakesAControlWithItsPropertiesAndEvents) {
  QWidget form;
  QWidget* const widget = plugin()->createWidget(&form);
  ASSERT_NE(qobject_cast<AuditViewer*>(widget), nullptr);
  EXPECT_EQ(widget->parentWidget(), &form);
  const QMetaObject& control = *widget->metaObject();
  for (const QString& name : named(plugin()->domXml(), "tooltip").keys()) {
    const QMetaProperty property = control.property(control.indexOfProperty(name.toLatin1().constData()));
    EXPECT_TRUE(property.isWritable() && property.isDesignable()) << name.toStdString();
  }
  EXPECT_GE(control.indexOfSignal("DatabaseSelected(QString)"), 0);
  EXPECT_GE(control.indexOfSignal("ExitApp()"), 0);
}

}  // namespace
}  // namespace korvel::test
