#include "host/form_file.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMetaProperty>
#include <QSaveFile>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>

#include "host/host_texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::host {
namespace {

/// Names of the properties that the control keeps with its form.
QStringList storedProperties() {
  const QMetaObject& face = AuditViewer::staticMetaObject;
  QStringList names;
  for (int i = face.propertyOffset(); i < face.propertyCount(); ++i)
    if (face.property(i).isStored()) names.append(QLatin1String(face.property(i).name()));
  return names;
}

}  // namespace

QString FormFile::standardPath() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/korvel/viewer-form.json");
}

QString FormFile::load(const settings::LanguageOffset& language) {
  // A form is some hundred bytes; whatever is larger than this is none.
  constexpr qint64 largest = 1 << 20;

  QFile file(path_);
  if (!file.exists() && !QFileInfo(path_).isSymLink()) return {};
  isNew_ = false;
  if (!file.open(QIODevice::ReadOnly)) {
    leaveAsItIs();
    return file.errorString();
  }
  QJsonParseError failure{};
  const QJsonDocument document = QJsonDocument::fromJson(file.read(largest), &failure);
  if (file.error() != QFileDevice::NoError) {
    leaveAsItIs();
    return file.errorString();
  }
  if (failure.error != QJsonParseError::NoError || !document.isObject()) {
    leaveAsItIs();
    return hostText("host.formNoObject", language);
  }
  content_ = document.object();
  return {};
}

QString FormFile::save(const QVariantMap& properties) {
  if (untouchable_) return {};
  QJsonObject wanted = content_;
  // Properties that equal their default are left out of what is saved: they go from the file as well.
  for (const QString& name : storedProperties()) wanted.remove(name);
  for (auto property = properties.begin(); property != properties.end(); ++property)
    wanted.insert(property.key(), QJsonValue::fromVariant(property.value()));
  if (!isNew_ && wanted == content_) return {};

  std::error_code failure;
  std::filesystem::create_directories(QFileInfo(path_).filesystemAbsolutePath(), failure);
  if (failure) return QString::fromLocal8Bit(failure.message().c_str());
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly)) return file.errorString();
  file.write(QJsonDocument(wanted).toJson());
  if (!file.commit()) return file.errorString();
  content_ = wanted;
  isNew_ = false;
  return {};
}

}  // namespace korvel::host
