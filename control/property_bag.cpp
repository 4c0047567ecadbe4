#include "control/property_bag.h"

#include <cmath>
#include <limits>
#include <optional>

#include "base/error.h"

namespace korvel::control {
namespace {

constexpr std::int32_t typeMismatch = 13;

Error mismatch() {
  return Error(typeMismatch, "Type mismatch");
}

bool isText(const QVariant& value) {
  return value.typeId() == QMetaType::QString;
}

/// The value as a number: True is -1, all bits set. Nothing for texts and whatever else has none.
std::optional<double> numberOf(const QVariant& value) {
  switch (value.typeId()) {
    case QMetaType::Bool:
      return value.toBool() ? -1.0 : 0.0;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Double:
    case QMetaType::Float:
      return value.toDouble();
    default:
      return std::nullopt;
  }
}

std::optional<double> numberIn(const QVariant& value) {
  if (!isText(value)) return numberOf(value);
  bool ok = false;
  const double number = value.toString().trimmed().toDouble(&ok);
  return ok ? std::optional(number) : std::nullopt;
}

bool sameValue(const QVariant& left, const QVariant& right) {
  if (isText(left) && isText(right)) return left.toString() == right.toString();
  const auto leftNumber = numberOf(left);
  const auto rightNumber = numberOf(right);
  return leftNumber && rightNumber && *leftNumber == *rightNumber;
}

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

QVariant PropertyBag::ReadProperty(const QString& name, const QVariant& defaultValue) const {
  return values_.value(name, defaultValue);
}

void PropertyBag::WriteProperty(const QString& name, const QVariant& value, const QVariant& defaultValue) {
  if (!sameValue(value, defaultValue)) values_.insert(name, value);
}

PropertyBag toBag(const QVariant& container) {
  if (!container.isValid()) return PropertyBag();
  QVariant map = container;
  if (!map.convert(QMetaType::fromType<QVariantMap>())) throw mismatch();
  return PropertyBag(map.toMap());
}

bool toBoolean(const QVariant& value) {
  if (isText(value)) {
    const QString word = value.toString().trimmed();
    if (word.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) return true;
    if (word.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) return false;
  }
  const auto number = numberIn(value);
  if (!number || !std::isfinite(*number)) throw mismatch();
  return *number != 0.0;
}

int toLong(const QVariant& value) {
  const auto number = numberIn(value);
  if (!number || !std::isfinite(*number)) throw mismatch();
  const double whole = std::nearbyint(*number);
  if (whole < double(std::numeric_limits<int>::min()) || whole > double(std::numeric_limits<int>::max()))
    throw mismatch();
  return static_cast<int>(whole);
}

QString toText(const QVariant& value) {
  if (isText(value)) return value.toString();
  if (numberOf(value)) return value.toString();
  throw mismatch();
}

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
