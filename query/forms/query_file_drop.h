#pragma once

#include <QObject>
#include <optional>

class QMimeData;
class QWidget;

namespace korvel::query {

/// The path of the query file that is being dragged; nothing where it is anything else, or more than one file.
[[nodiscard]] std::optional<QString> draggedQueryFile(const QMimeData& data);

/// Accepts a query file dropped on a widget or on its children that do not handle the drop themselves.
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
