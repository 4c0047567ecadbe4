#include "designer/audit_viewer_plugin.h"

#include <korvel/AuditViewer.h>
#include <korvel/ViewerApplication.h>

#include <QIcon>
#include <QMetaClassInfo>
#include <QXmlStreamWriter>

namespace korvel::designer {
namespace {

const QString className = QStringLiteral("korvel::AuditViewer");
const QString header = QStringLiteral("korvel/AuditViewer.h");

/// What the tool tips of Qt Designer say of a property that carries no description itself.
struct Description {
  const char* property;
  const char* text;
};
constexpr Description descriptions[] = {
    {"DefaultSQLServer",
     "The server whose audit database is selected when the control is shown; (None) or empty for none"},
    {"DatabaseType", "Which audit database of that server: 0 for Korvel_Audit, any other value for Korvel_Audit_MU"},
};

void writeProperty(QXmlStreamWriter& xml, const QString& property, const QString& type, const QString& value) {
  xml.writeStartElement("property");
  xml.writeAttribute("name", property);
  xml.writeTextElement(type, value);
  xml.writeEndElement();
}

void writeToolTip(QXmlStreamWriter& xml, const char* property, const char* text) {
  xml.writeStartElement("tooltip");
  xml.writeAttribute("name", QLatin1String(property));
  xml.writeCharacters(QLatin1String(text));
  xml.writeEndElement();
}

}  // namespace

QString AuditViewerPlugin::name() const {
  return className;
}
QString AuditViewerPlugin::group() const {
  return QStringLiteral("Korvel");
}
QString AuditViewerPlugin::toolTip() const {
  return QStringLiteral("Korvel Audit Viewer");
}
QString AuditViewerPlugin::whatsThis() const {
  return QStringLiteral(
      "A viewer for audit trails: filter tree, result lists and custom queries in one control. It selects its database "
      "when the program shows the form.");
}
QString AuditViewerPlugin::includeFile() const {
  return '<' + header + '>';
}
QIcon AuditViewerPlugin::icon() const {
  return viewerIcon();
}

QWidget* AuditViewerPlugin::createWidget(QWidget* parent) {
  return new AuditViewer(parent);
}

void AuditViewerPlugin::initialize(QDesignerFormEditorInterface* /*core*/) {
  if (!initialized_) useDesignMode();
  initialized_ = true;
}

QString AuditViewerPlugin::domXml() const {
  const QMetaObject& control = AuditViewer::staticMetaObject;
  QString text;
  QXmlStreamWriter xml(&text);
  xml.writeStartElement("ui");
  xml.writeAttribute("language", "c++");
  xml.writeAttribute("displayname", "Audit Viewer");

  xml.writeStartElement("widget");
  xml.writeAttribute("class", className);
  xml.writeAttribute("name", "auditViewer");
  writeProperty(xml, "ViewSideTools", "bool", "true");
  writeProperty(xml, "ViewToolBar", "bool", "true");
  xml.writeEndElement();

  xml.writeStartElement("customwidgets");
  xml.writeStartElement("customwidget");
  xml.writeTextElement("class", className);
  xml.writeTextElement("extends", "QWidget");
  xml.writeStartElement("propertyspecifications");
  for (int i = control.classInfoOffset(); i < control.classInfoCount(); ++i)
    writeToolTip(xml, control.classInfo(i).name(), control.classInfo(i).value());
  for (const Description& description : descriptions) writeToolTip(xml, description.property, description.text);
  // A server's name is one line, and nothing that a translator may change.
  xml.writeStartElement("stringpropertyspecification");
  xml.writeAttribute("name", "DefaultSQLServer");
  xml.writeAttribute("notr", "true");
  xml.writeAttribute("type", "singleline");
  xml.writeEndDocument();
  return text;
}

}  // namespace korvel::designer
