#include "host/form_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

#include "host/host_texts.h"

namespace korvel::host {

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
  properties_ = document.object().toVariantMap();
  return {};
}

QString FormFile::save(const QVariantMap& properties) {
  if (untouchable_) return {};
  const QJsonObject wanted = QJsonObject::fromVariantMap(properties);
  if (!isNew_ && wanted == QJsonObject::fromVariantMap(properties_)) return {};

  QString folder = QFileInfo(path_).absolutePath();
  if (!QDir().mkpath(folder)) return folder;
  QSaveFile file(path_);
  if (!file.open(QIODevice::WriteOnly)) return file.errorString();
  file.write(QJsonDocument(wanted).toJson());
  if (!file.commit()) return file.errorString();
  properties_ = properties;
  isNew_ = false;
  return {};
}

}  // namespace korvel::host
