#pragma once

#include <QHash>
#include <functional>

#include "control/control_services.h"
#include "control/file_programs.h"

class QDialog;

namespace korvel::control {

/// The services as Qt dialogs.
class QtControlServices final : public ControlServices {
 public:
  using FormMaker = std::function<QDialog*(QWidget* owner)>;

  QtControlServices();

  void messageBox(QWidget* owner, ui::MessageIcon icon, const QString& title, const QString& text) override;
  std::optional<QFont> chooseFont(QWidget* owner, const QFont& current) override;
  std::optional<QString> chooseFolder(QWidget* owner, const QString& title, bool showFiles) override;
  std::optional<QString> chooseFile(QWidget* owner, const QString& title, const QString& kinds,
                                    ui::ChosenFile use) override;
  QString inputBox(QWidget* owner, const QString& prompt, const QString& title) override;
  bool confirm(QWidget* owner, const QString& title, const QString& text) override;
  std::optional<std::size_t> choose(QWidget* owner, const QString& title, const QString& text,
                                    const QStringList& answers) override;
  [[nodiscard]] bool hasForm(const QString& name) const override { return forms_.contains(name); }
  void showForm(QWidget* owner, const QString& name) override;
  void setPointer(ui::Pointer pointer) override;
  void openHelp(QWidget* owner, const QString& file, HelpCommand command) override;
  void openHelpTopic(QWidget* owner, const QString& file, const QString& topic) override;
  void startEditor(const QString& file) override;
  bool choosePrinter(QWidget* owner, QPrinter& printer) override;
  bool showPreview(QWidget* owner, std::unique_ptr<output::pages::ReportSheets> sheets) override;

 private:
  /// Says why a help file was not opened.
  void reportHelp(QWidget* owner, const QString& file, HelpOutcome outcome);

  QHash<QString, FormMaker> forms_;
  /// Where a dialog begins: the folder that was chosen last for this purpose, in this run or an earlier one; else the
  /// last one that was chosen at all.
  [[nodiscard]] QString firstFolder(const QString& purpose) const;
  void keepFolder(const QString& purpose, const QString& folder);

  QHash<QString, QString> chosenFolders_;  ///< by purpose
  QString lastFolder_;                     ///< that was chosen
  bool hourglass_ = false;
};

}  // namespace korvel::control
