#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QStringList>
#include <QUrl>

namespace korvel::test {

/// While it lives, files are recorded instead of being opened by the desktop.
class OpenedFiles : public QObject {
  Q_OBJECT

 public:
  OpenedFiles() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "note"); }
  ~OpenedFiles() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

  [[nodiscard]] const QStringList& files() const { return files_; }

 public Q_SLOTS:
  void note(const QUrl& url) { files_.append(url.toLocalFile()); }

 private:
  QStringList files_;
};

}  // namespace korvel::test
