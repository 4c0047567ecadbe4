#include "host/form_file.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QMetaProperty>
#include <QSaveFile>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>

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

QString inConfigurationFolder(const QString& name) {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QStringLiteral("/korvel/") + name;
}

bool isThere(const QString& path) {
  return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

/// Puts the object that a file holds into `content`. Returns why there is none, else an empty text.
QString readObject(const QString& path, const ViewerLanguage& language, QJsonObject& content) {
  // A form is some hundred bytes; whatever is larger than this is none.
  constexpr qint64 largest = 1 << 20;

  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return file.errorString();
  QJsonParseError failure{};
  const QJsonDocument document = QJsonDocument::fromJson(file.read(largest), &failure);
  if (file.error() != QFileDevice::NoError) return file.errorString();
  if (failure.error != QJsonParseError::NoError || !document.isObject()) return language.text("host.formNoObject");
  content = document.object();
  return {};
}

}  // namespace

QString rememberedPath() {
  return inConfigurationFolder(QStringLiteral("viewer-remembered.json"));
}

QString FormFile::standardPath() {
  return inConfigurationFolder(QStringLiteral("viewer-form.json"));
}

QString FormFile::load(const ViewerLanguage& language) {
  if (!isThere(path_)) return {};
  isNew_ = false;
  QString failure = readObject(path_, language, content_);
  if (!failure.isEmpty()) leaveAsItIs();
  return failure;
}

QString FormFile::save(const QVariantMap& properties) {
  if (untouchable_) return {};
  QJsonObject wanted = content_;
  // Properties that equal their default are left out of what is saved: they go from the file as well.
  for (const QString& name : storedProperties()) wanted.remove(name);
  for (auto property = properties.begin(); property != properties.end(); ++property)
    wanted.insert(property.key(), QJsonValue::fromVariant(property.value()));
  if (!isNew_ && wanted == content_) return {};

  QString failure = write(wanted);
  if (!failure.isEmpty()) return failure;
  content_ = wanted;
  isNew_ = false;
  return {};
}

void FormFile::keepText(const QString& name, const QString& text) {
  if (untouchable_) return;
  QJsonObject current;
  if (!readObject(path_, ViewerLanguage(), current).isEmpty() || current.value(name) == text) return;
  current.insert(name, text);
  if (write(current).isEmpty()) content_.insert(name, text);
}

QString FormFile::write(const QJsonObject& content) const {
  std::error_code failure;
  std::filesystem::create_directories(QFileInfo(path_).filesystemAbsolutePath(), failure);
  if (failure) return QString::fromLocal8Bit(failure.message().c_str());
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly)) return file.errorString();
  file.write(QJsonDocument(content).toJson());
  return file.commit() ? QString() : file.errorString();
}

}  // namespace korvel::host
