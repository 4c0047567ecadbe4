#pragma once

#include <QAccessible>
#include <QDateTime>
#include <QTextEdit>
#include <QWidget>

#include "settings/string_table.h"

class QLabel;
class QToolButton;

namespace korvel::host {

/// Read-only text that is as high as it needs to be for its width, up to a few lines; then it scrolls.
class WrappedText final : public QTextEdit {
  Q_OBJECT

 public:
  explicit WrappedText(QWidget* parent = nullptr);
  void setContent(const QString& text);

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
};

/// The bar above the control that says why the last query failed. Hidden while there is nothing to say; it never takes
/// the focus by itself.
class FailureBar final : public QWidget {
  Q_OBJECT

 public:
  explicit FailureBar(QWidget* parent = nullptr);

  /// Shows a failure in the words of that language; reads it out to who cannot see it.
  void showFailure(int number, const QString& text, const QDateTime& time, const settings::LanguageOffset& language);

  /// The bar's own words in another language; what the failure says itself stays as it was said.
  void setLanguage(const settings::LanguageOffset& language);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int number_ = 0;
  QDateTime time_;
  QLabel* heading_;
  WrappedText* reason_;
  QToolButton* close_;
};

}  // namespace korvel::host
