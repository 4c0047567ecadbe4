#pragma once

#include <QMessageBox>

namespace korvel::ui {

/// A message box whose title is not cut, and of which Ctrl+C copies title and text. Texts are shown as they are, never
/// as markup.
class MessageBox final : public QMessageBox {
  Q_OBJECT

 public:
  MessageBox(Icon icon, const QString& title, const QString& text, StandardButtons buttons, QWidget* owner);

 protected:
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace korvel::ui
