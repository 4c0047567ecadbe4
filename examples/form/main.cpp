// A host whose window was drawn in Qt Designer. The form holds the properties that the control starts with; what is
// changed at run time is kept in a settings file, by the rules of the control's own properties.
//   form SETTINGS-FILE [SERVER]
#include <korvel/AuditViewer.h>
#include <korvel/ViewerApplication.h>

#include <QApplication>
#include <QSettings>

#include "ui_audit_form.h"

namespace {

const QString group = QStringLiteral("AuditViewer");

/// A stored form is read whole: a name that is absent has its default, not the value in the form file. Numbers and
/// words are what the settings file has of them; the control knows them all.
QString load(korvel::AuditViewer& viewer, QSettings& settings) {
  if (!settings.childGroups().contains(group)) return {};
  settings.beginGroup(group);
  QVariantMap bag;
  for (const QString& name : settings.childKeys()) bag.insert(name, settings.value(name));
  settings.endGroup();
  return viewer.ReadProperties(bag);
}

/// What equals its default is not in the bag, so the group is emptied first.
void save(const korvel::AuditViewer& viewer, QSettings& settings) {
  settings.remove(group);
  settings.beginGroup(group);
  const QVariantMap bag = viewer.WriteProperties().toMap();
  for (auto value = bag.begin(); value != bag.end(); ++value) settings.setValue(value.key(), value.value());
  settings.endGroup();
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  korvel::applyPreferredPalette(application);
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() < 2) qFatal("usage: form SETTINGS-FILE [SERVER]");
  QSettings settings(arguments[1], QSettings::IniFormat);

  QWidget window;
  Ui::AuditForm form;
  form.setupUi(&window);
  korvel::AuditViewer& viewer = *form.viewer;
  const QString failure = load(viewer, settings);
  if (!failure.isEmpty()) korvel::showWarning(&window, window.windowTitle(), failure);
  // From here on each property that is set is kept.
  QObject::connect(&viewer, &korvel::AuditViewer::PropertyChanged, &window, [&] { save(viewer, settings); });
  if (arguments.size() > 2) viewer.setDefaultSQLServer(arguments[2]);
  QObject::connect(&viewer, &korvel::AuditViewer::DatabaseSelected, form.heading, &QLabel::setText);

  window.show();
  return QApplication::exec();
}
