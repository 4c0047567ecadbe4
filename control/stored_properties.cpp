#include "control/stored_properties.h"

namespace korvel::control {
namespace {

// The default of the two booleans is deliberately this small integer: it reads back as True, but no stored boolean
// equals it, so both are always written.
const QVariant booleanDefault{1};
const QVariant serverDefault{QStringLiteral("(None)")};
const QVariant typeDefault{0};

const QString viewSideTools = QStringLiteral("ViewSideTools");
const QString viewToolBar = QStringLiteral("ViewToolBar");
const QString defaultSqlServer = QStringLiteral("DefaultSQLServer");
const QString databaseType = QStringLiteral("DatabaseType");

}  // namespace

void readProperties(const PropertyBag& bag, StoredProperties& properties) {
  properties.ViewSideTools = toBoolean(bag.ReadProperty(viewSideTools, booleanDefault));
  properties.ViewToolBar = toBoolean(bag.ReadProperty(viewToolBar, booleanDefault));
  properties.DefaultSQLServer = toText(bag.ReadProperty(defaultSqlServer, serverDefault));
  properties.DatabaseType = toLong(bag.ReadProperty(databaseType, typeDefault));
}

void writeProperties(const StoredProperties& properties, PropertyBag& bag) {
  bag.WriteProperty(viewSideTools, properties.ViewSideTools, booleanDefault);
  bag.WriteProperty(viewToolBar, properties.ViewToolBar, booleanDefault);
  bag.WriteProperty(defaultSqlServer, properties.DefaultSQLServer, serverDefault);
  bag.WriteProperty(databaseType, properties.DatabaseType, typeDefault);
}

}  // namespace korvel::control
