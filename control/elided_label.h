#pragma once

#include <QLabel>

namespace korvel::control {

/// A line of plain text that is elided where it does not fit; the tooltip then shows all of it.
class ElidedLabel final : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  /// Sets the text; text() returns all of it.
  void setContent(const QString& content);
  /// The visible part.
  [[nodiscard]] QString shownText() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void updateToolTip();
};

}  // namespace korvel::control
