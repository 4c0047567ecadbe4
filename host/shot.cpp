#include "host/shot.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMessageBox>
#include <QPixmap>
#include <QSaveFile>

#include "host/command_line.h"

namespace korvel::host {
namespace {

void complain(const QString& text) {
  writeErrors(text + QLatin1Char('\n'));
}

QString writePicture(const QPixmap& picture, const QString& path) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return file.errorString();
  if (!picture.save(&file, "PNG") || !file.commit()) return file.errorString();
  return {};
}

}  // namespace

UnattendedMessages::UnattendedMessages(QObject* application) {
  application->installEventFilter(this);
}

bool UnattendedMessages::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show) {
    if (auto* box = qobject_cast<QMessageBox*>(watched)) {
      texts_.append(box->text());
      anyCritical_ |= box->icon() == QMessageBox::Critical;
      QMetaObject::invokeMethod(box, &QDialog::reject, Qt::QueuedConnection);
    }
  }
  return QObject::eventFilter(watched, event);
}

ExitStatus takeShot(MainWindow& window, const QString& file, const UnattendedMessages& messages,
                    const ViewerLanguage& language) {
  window.show();
  AuditViewer& viewer = window.viewer();
  const qsizetype beforeQuery = messages.texts().size();
  // Who opens a query file has not asked for its answer, nor for another one.
  if (!window.openAskedFile() && !messages.anyCritical()) {
    viewer.TriggerQuery();
    viewer.DisplayNoOfRecords();
  }
  for (const QString& text : messages.texts()) complain(text);
  if (messages.anyCritical()) return ExitStatus::databaseFailed;
  if (viewer.LastFailureTime().isValid()) {
    complain(language.text("host.queryFailed",
                           QString::number(viewer.LastFailureNumber()) + QLatin1Char(':') + viewer.LastFailureText()));
    return ExitStatus::databaseFailed;
  }
  QCoreApplication::processEvents();
  const QString failure = writePicture(window.grab(), file);
  if (!failure.isEmpty()) {
    complain(language.text("host.shotUnwritable", file, failure));
    return ExitStatus::pictureFailed;
  }
  return messages.texts().size() == beforeQuery ? ExitStatus::done : ExitStatus::noRecords;
}

}  // namespace korvel::host
