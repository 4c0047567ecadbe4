#pragma once

#include <QDialog>
#include <memory>

#include "output/print_font.h"
#include "settings/string_table.h"
#include "ui/dialog_services.h"

class QLabel;
class QPushButton;

namespace korvel::output {

/// What the dialog of the print font needs; references outlive the dialog.
struct PrintFontContext {
  PrintFont& font;
  const settings::LanguageOffset& language;
  std::shared_ptr<ui::DialogServices> services;
};

/// The dialog in which the font of printed reports is chosen. What is chosen takes effect at once and stays when the
/// dialog closes.
class frmPrintFont final : public QDialog {
  Q_OBJECT

 public:
  frmPrintFont(PrintFontContext context, QWidget* owner);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Form_Activate();
  void btChangeFont_Click();
  void btDefault_Click();
  [[nodiscard]] QString text(const char* key) const;

  PrintFontContext context_;
  QLabel* lblFontName_;
  QLabel* lblFontSize_;
  QPushButton* btChangeFont_;
  QPushButton* btDefault_;
  QPushButton* btClose_;
};

}  // namespace korvel::output
