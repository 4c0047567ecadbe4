#pragma once

#include <QObject>
#include <optional>

class QMimeData;
class QWidget;

namespace korvel::query {

/// The path of the query file that is being dragged; nothing where it is anything else, or more than one file.
[[nodiscard]] std::optional<QString> draggedQueryFile(const QMimeData& data);

/// Lets a query file be dropped on a widget and on those in it that do not want it themselves.
class QueryFileDrop final : public QObject {
  Q_OBJECT

 public:
  /// Belongs to `target`.
  explicit QueryFileDrop(QWidget& target);

  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  void dropped(const QString& path);
};

}  // namespace korvel::query
