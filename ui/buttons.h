#pragma once

#include <QBoxLayout>
#include <QPushButton>
#include <QToolButton>

#include "ui/icons/icons.h"

namespace korvel::ui {

/// The filled button of a frame or dialog, which has one at most: icon, text or both, in the accent colour.
class PrimaryButton : public QPushButton {
  Q_OBJECT

 public:
  explicit PrimaryButton(QWidget* parent = nullptr);
  PrimaryButton(IconName name, const QString& text, QWidget* parent = nullptr);
};

/// A button with a border on the surface colour: icon and text.
class SecondaryButton : public QPushButton {
  Q_OBJECT

 public:
  explicit SecondaryButton(const QString& text = {}, QWidget* parent = nullptr);
  SecondaryButton(IconName name, const QString& text, QWidget* parent = nullptr);
};

/// A bordered button with an icon and no text. Its tooltip is also its name for assistive technology.
class IconButton : public QToolButton {
  Q_OBJECT

 public:
  explicit IconButton(IconName name, QWidget* parent = nullptr);
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
};

/// Icon buttons side by side, of equal width, 4 px apart. Hidden buttons leave no gap.
class IconRow : public QWidget {
  Q_OBJECT

 public:
  explicit IconRow(QWidget* parent = nullptr);
  /// Takes the button over as a child and appends it.
  void add(QAbstractButton* button);
};

/// Buttons with texts, of equal width in one row where every text fits, else one below the other: some languages need
/// more room than one row has.
class TextRow : public QWidget {
  Q_OBJECT

 public:
  explicit TextRow(QWidget* parent = nullptr);
  /// Takes the button over as a child and appends it.
  void add(QAbstractButton* button);
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;

 private:
  void arrange();

  QBoxLayout* layout_;
};

[[nodiscard]] bool isPrimary(const QWidget& button);

/// Gives a button its text, and the same without the mark of its letter as its name for assistive technology.
void setButtonText(QAbstractButton& button, const QString& text);

}  // namespace korvel::ui
