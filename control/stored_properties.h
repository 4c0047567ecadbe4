#pragma once

#include <QString>

#include "control/property_bag.h"

namespace korvel::control {

/// The four properties that a host stores with its form.
struct StoredProperties {
  bool ViewSideTools = true;
  bool ViewToolBar = true;
  QString DefaultSQLServer = QStringLiteral("(None)");
  int DatabaseType = 0;
};

/// Reads the properties in their order; throws Error at the first that cannot be read, its predecessors being read
/// then.
void readProperties(const PropertyBag& bag, StoredProperties& properties);
/// Writes the properties in their order, those that equal their default left out.
void writeProperties(const StoredProperties& properties, PropertyBag& bag);

}  // namespace korvel::control
