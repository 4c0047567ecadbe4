#pragma once

#include <QString>
#include <QVariant>

namespace korvel::control {

/// Where a container keeps the properties of a control that it saves with its form.
class PropertyBag {
 public:
  explicit PropertyBag(QVariantMap values = {}) : values_(std::move(values)) {}

  /// The stored value, or `defaultValue` where there is none.
  [[nodiscard]] QVariant ReadProperty(const QString& name, const QVariant& defaultValue) const;
  /// Stores the value unless it equals the default. A True has all bits set, that is -1 as a number: it does not equal
  /// a default of 1, although 1 reads back as True.
  void WriteProperty(const QString& name, const QVariant& value, const QVariant& defaultValue);

  [[nodiscard]] const QVariantMap& values() const noexcept { return values_; }

 private:
  QVariantMap values_;
};

/// The bag that a container hands over: a map, or nothing at all for an empty one. Throws Error "Type mismatch" for
/// whatever else it may be.
[[nodiscard]] PropertyBag toBag(const QVariant& container);

/// What a property of the type makes of a stored value. Throw Error "Type mismatch" for a value that is none.
[[nodiscard]] bool toBoolean(const QVariant& value);
[[nodiscard]] int toLong(const QVariant& value);
[[nodiscard]] QString toText(const QVariant& value);

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
