#pragma once

#include <QObject>
#include <QStringList>

#include "host/main_window.h"

namespace korvel::host {

/// Closes message boxes of a window that no user sees, and keeps their texts.
class UnattendedMessages final : public QObject {
  Q_OBJECT

 public:
  /// Watches the whole application as long as this object exists.
  explicit UnattendedMessages(QObject* application);

  [[nodiscard]] const QStringList& texts() const noexcept { return texts_; }
  /// Whether one of them told of an operation that failed.
  [[nodiscard]] bool anyCritical() const noexcept { return anyCritical_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QStringList texts_;
  bool anyCritical_ = false;
};

/// The program's exit statuses.
enum class ExitStatus { done = 0, noRecords = 1, wrongUsage = 2, databaseFailed = 3, pictureFailed = 4 };

/// Shows the window, opens the query file that its options name or else runs the standard query, and renders the window
/// into a PNG file. A viewer that could not be built whole runs no query, and without an answer there is no picture.
/// What went wrong is written to standard error.
[[nodiscard]] ExitStatus takeShot(MainWindow& window, const QString& file, const UnattendedMessages& messages,
                                  const ViewerLanguage& language);

}  // namespace korvel::host
