#pragma once

#include <QDialog>
#include <memory>

#include "query/query_choices.h"
#include "settings/string_table.h"
#include "ui/dialog_services.h"

class QListWidget;
class QPushButton;

namespace korvel::query {

/// What the dialogs of custom queries need; references outlive the dialog.
struct QueryDialogContext {
  QueryChoices& choices;
  const settings::LanguageOffset& language;
  std::shared_ptr<ui::DialogServices> services;
};

/// The dialog that makes a query of the audit trail's columns that are selected in it.
class frmFields final : public QDialog {
  Q_OBJECT

 public:
  frmFields(QueryDialogContext context, QWidget* owner);

 private:
  void Command1_Click();

  QueryDialogContext context_;
  QListWidget* ListView1_;
  QPushButton* Command1_;
};

}  // namespace korvel::query
