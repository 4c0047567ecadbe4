#pragma once

#include <QLabel>

namespace korvel::control {

/// A line of plain text that ends in dots where it does not fit, and is whole in its tooltip then.
class ElidedLabel final : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  /// Sets the text; text() is the whole of it.
  void setContent(const QString& content);
  /// What is to be seen of it.
  [[nodiscard]] QString shownText() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void updateToolTip();
};

}  // namespace korvel::control
