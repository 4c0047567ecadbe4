#pragma once

#include <QDialog>
#include <string>
#include <vector>

#include "query/forms/field_picker.h"

class QListWidget;
class QPushButton;

namespace korvel::query {

/// The dialog that lists the query files of the chosen folder and lets one of them be chosen.
class frmFileList final : public QDialog {
  Q_OBJECT

 public:
  frmFileList(QueryDialogContext context, QWidget* owner);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Form_Load();
  void btOK_Click();
  /// The cancel button, escape and the close box.
  void btCancel_Click();

  QueryDialogContext context_;
  QListWidget* List1_;
  QPushButton* btOK_;
  QPushButton* btCancel_;
  /// Names as the system stores them: the displayed text of a name that is not valid text would open no file.
  std::vector<std::string> names_;
  bool loaded_ = false;
};

}  // namespace korvel::query
