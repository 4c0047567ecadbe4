#include "query/forms/query_file_drop.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

#include "query/query_file.h"

namespace korvel::query {

std::optional<QString> draggedQueryFile(const QMimeData& data) {
  const QList<QUrl> urls = data.urls();
  if (urls.size() != 1 || !urls.first().isLocalFile()) return std::nullopt;
  const QFileInfo file(urls.first().toLocalFile());
  const QLatin1String extension(queryFileExtension.data(), static_cast<qsizetype>(queryFileExtension.size()));
  if (file.suffix().compare(extension, Qt::CaseInsensitive) != 0 || file.isDir()) return std::nullopt;
  return file.filePath();
}

QueryFileDrop::QueryFileDrop(QWidget& target) : QObject(&target) {
  target.setAcceptDrops(true);
  target.installEventFilter(this);
}

bool QueryFileDrop::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: {
      auto* drop = static_cast<QDropEvent*>(event);
      const auto path = draggedQueryFile(*drop->mimeData());
      if (!path || !drop->possibleActions().testFlag(Qt::CopyAction)) break;
      // Always a copy: the file must not be moved.
      drop->setDropAction(Qt::CopyAction);
      drop->accept();
      if (event->type() == QEvent::Drop) Q_EMIT dropped(*path);
      return true;
    }
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace korvel::query
