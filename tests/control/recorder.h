#pragma once

#include <QPrinter>
#include <QSet>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "control/control_services.h"
#include "output/pages/report_sheets.h"

namespace korvel::test {

struct ShownMessage {
  ui::MessageIcon icon;
  QString title;
  QString text;
  friend bool operator==(const ShownMessage&, const ShownMessage&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const ShownMessage& message) {
  const char* const icons[] = {"none", "critical", "information"};
  return out << '[' << icons[static_cast<int>(message.icon)] << "] \"" << message.title.toStdString() << "\" \""
             << message.text.toStdString() << '"';
}

/// Answers the control's requests from a script and records them.
class Recorder final : public control::ControlServices {
 public:
  void messageBox(QWidget* owner, ui::MessageIcon icon, const QString& title, const QString& text) override {
    owners.append(owner);
    messages.push_back({icon, title, text});
    if (onMessage) onMessage();
  }
  std::optional<QFont> chooseFont(QWidget*, const QFont& current) override {
    offeredFont = current;
    return chosenFont;
  }
  std::optional<QString> chooseFolder(QWidget*, const QString& title, bool showFiles) override {
    folderQuestions.append({title, showFiles});
    if (onFolder) onFolder();
    return chosenFolder;
  }
  std::optional<QString> chooseFile(QWidget*, const QString& title, const QString& kinds, ui::ChosenFile use) override {
    fileQuestions.append({title, kinds});
    fileUses.push_back(use);
    return chosenFile;
  }
  QString inputBox(QWidget*, const QString& prompt, const QString& title) override {
    inputQuestions.append({prompt, title});
    return typedText;
  }
  bool confirm(QWidget*, const QString& title, const QString& text) override {
    questions.append({title, text});
    return confirmed;
  }
  std::optional<std::size_t> choose(QWidget*, const QString& title, const QString& text,
                                    const QStringList& answers) override {
    questions.append({title, text});
    offeredAnswers.append(answers);
    return chosenAnswer;
  }
  [[nodiscard]] bool hasForm(const QString& name) const override {
    if (onFormAsked) onFormAsked();
    return forms.contains(name);
  }
  void showForm(QWidget*, const QString& name) override {
    shownForms.append(name);
    if (onForm) onForm();
  }
  void setPointer(ui::Pointer pointer) override {
    pointers.push_back(pointer);
    if (onPointer) onPointer();
  }
  void openHelp(QWidget*, const QString& file, control::HelpCommand command) override {
    helpOpened.append({file, command});
  }
  void openHelpTopic(QWidget*, const QString& file, const QString& topic) override {
    topicsOpened.append({file, topic});
  }

  void startEditor(const QString& file) override {
    edited.append(file);
    if (onEditor) onEditor();
  }
  bool choosePrinter(QWidget*, QPrinter& printer) override {
    ++printerDialogs;
    return onPrinter && onPrinter(printer);
  }
  bool showPreview(QWidget*, std::unique_ptr<output::pages::ReportSheets> sheets) override {
    previewedPages.append(sheets->count());
    if (onPreview) onPreview(*sheets);
    return printFromPreview;
  }

  std::vector<ShownMessage> messages;
  QList<QWidget*> owners;
  std::function<void()> onMessage;
  std::optional<QFont> chosenFont;
  QFont offeredFont;
  QList<std::pair<QString, bool>> folderQuestions;
  std::function<void()> onFolder;
  std::optional<QString> chosenFolder;
  QList<std::pair<QString, QString>> fileQuestions;
  std::vector<ui::ChosenFile> fileUses;
  std::optional<QString> chosenFile;
  QList<std::pair<QString, QString>> inputQuestions;
  QString typedText;
  QList<std::pair<QString, QString>> questions;
  bool confirmed = false;
  QList<QStringList> offeredAnswers;
  std::optional<std::size_t> chosenAnswer;
  QSet<QString> forms;
  std::function<void()> onFormAsked;
  QStringList shownForms;
  std::function<void()> onForm;
  std::vector<ui::Pointer> pointers;
  std::function<void()> onPointer;
  QStringList edited;
  std::function<void()> onEditor;
  int printerDialogs = 0;
  /// Sets the printer up as a user would; false cancels, as does no answer.
  std::function<bool(QPrinter&)> onPrinter;
  QList<int> previewedPages;
  std::function<void(output::pages::ReportSheets&)> onPreview;
  bool printFromPreview = false;
  QList<std::pair<QString, control::HelpCommand>> helpOpened;
  QList<std::pair<QString, QString>> topicsOpened;
};

}  // namespace korvel::test
