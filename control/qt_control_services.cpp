#include "control/qt_control_services.h"

#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QInputDialog>
#include <QPointer>
#include <QPushButton>
#include <memory>
#include <utility>

#include "control/file_programs.h"
#include "control/forms/about.h"
#include "control/forms/report_preview.h"
#include "control/library_state.h"
#include "control/message_boxes.h"
#include "control/size_memory.h"
#include "control/system_dialogs.h"
#include "control/texts.h"
#include "db/forms/server_browser.h"
#include "output/forms/print_font_form.h"
#include "query/forms/date_range_form.h"
#include "query/forms/field_picker.h"
#include "query/forms/file_list.h"
#include "ui/message_box.h"
#include "ui/style/theme.h"
#include "ui/style/viewer_style.h"

namespace korvel::control {
namespace {

constexpr int inputBoxWidth = 340;

QMessageBox::Icon boxIcon(ui::MessageIcon icon) {
  switch (icon) {
    case ui::MessageIcon::critical:
      return QMessageBox::Critical;
    case ui::MessageIcon::information:
      return QMessageBox::Information;
    case ui::MessageIcon::none:
      break;
  }
  return QMessageBox::NoIcon;
}

/// The ordinary arrow while a dialog waits for its answer: an hourglass over an OK button says that it cannot be
/// pressed.
class PointerForDialog {
 public:
  PointerForDialog() : covered_(QGuiApplication::overrideCursor() != nullptr) {
    if (covered_) QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
  }
  ~PointerForDialog() {
    if (covered_) QGuiApplication::restoreOverrideCursor();
  }
  PointerForDialog(const PointerForDialog&) = delete;
  PointerForDialog& operator=(const PointerForDialog&) = delete;

 private:
  bool covered_;
};

/// What a folder is chosen for: the title of the dialog, which is all that a host says of it. Queries are opened where
/// they were saved.
QString purposeOf(const QString& title) {
  const bool isOfQueries =
      title == QLatin1String("Browse for Custom Query Path") || title == QLatin1String("Browse for Custom Query File");
  return isOfQueries ? QStringLiteral("queries") : title;
}

QDialog* makeServerBrowser(QWidget* owner) {
  LibraryState& state = libraryState();
  const Platform& world = platform();
  const QString name = form_name::serverBrowser;
  db::BrowserMemory memory;
  memory.splitter = state.remembered.splitter(name);
  for (const RecentDatabase& each : state.remembered.databases()) memory.recent.append({each.server, each.database});
  memory.forget = [] { libraryState().remembered.forgetDatabases(); };
  auto* const browser = new db::frmSQLServerBrowser(
      {state.connection, state.language, world.services, world.openDirectory, memory}, owner);
  // Closed in whatever way.
  rememberSize(*browser);
  const Twips splitter = browser->splitter();
  QObject::connect(browser, &QDialog::finished, browser, [browser, name, splitter] {
    if (browser->splitter() != splitter) libraryState().remembered.setSplitter(name, browser->splitter());
  });
  return browser;
}

QDialog* makeDateRange(QWidget* owner) {
  LibraryState& state = libraryState();
  query::DateRangeContext range{state.dateRange, state.language, platform().services};
  range.newestDay = state.newestDay;
  return new query::frmAdvancedFilters(std::move(range), owner);
}

template <typename Form>
QDialog* makeQueryForm(QWidget* owner) {
  LibraryState& state = libraryState();
  return new Form({state.queryChoices, state.language, platform().services}, owner);
}

QDialog* makePrintFont(QWidget* owner) {
  LibraryState& state = libraryState();
  return new output::frmPrintFont({state.printFont, state.language, platform().services}, owner);
}

QDialog* makeAbout(QWidget* owner) {
  return new frmAbout(libraryVersion(), owner);
}

}  // namespace

QtControlServices::QtControlServices()
    : forms_{{form_name::serverBrowser, &makeServerBrowser},
             {form_name::dateRange, &makeDateRange},
             {form_name::fields, &makeQueryForm<query::frmFields>},
             {form_name::fileList, &makeQueryForm<query::frmFileList>},
             {form_name::printFont, &makePrintFont},
             {form_name::about, &makeAbout}} {}

void QtControlServices::messageBox(QWidget* owner, ui::MessageIcon icon, const QString& title, const QString& text) {
  const PointerForDialog pointer;
  // On the heap: the box is deleted with its owner if that is destroyed while it is open.
  const QPointer<ui::MessageBox> box = new ui::MessageBox(boxIcon(icon), title, text, QMessageBox::Ok, owner);
  box->exec();
  delete box;
}

std::optional<QFont> QtControlServices::chooseFont(QWidget* owner, const QFont& current) {
  const PointerForDialog pointer;
  return chooseSystemFont(owner, current);
}

std::optional<QString> QtControlServices::chooseFolder(QWidget* owner, const QString& title, bool showFiles) {
  const PointerForDialog pointer;
  const QString purpose = purposeOf(title);
  std::optional<QString> folder = chooseSystemFolder(owner, title, showFiles, firstFolder(purpose));
  if (folder) keepFolder(purpose, *folder);
  return folder;
}

QString QtControlServices::firstFolder(const QString& purpose) const {
  QString folder = chosenFolders_.value(purpose);
  if (!folder.isEmpty()) return folder;
  const QString remembered = libraryState().remembered.folder(purpose);
  return QFileInfo(remembered).isDir() ? remembered : lastFolder_;
}

void QtControlServices::keepFolder(const QString& purpose, const QString& folder) {
  chosenFolders_.insert(purpose, folder);
  lastFolder_ = folder;
  skipFailing([&] { libraryState().remembered.setFolder(purpose, folder); });
}

std::optional<QString> QtControlServices::chooseFile(QWidget* owner, const QString& title, const QString& kinds,
                                                     ui::ChosenFile use) {
  const PointerForDialog pointer;
  // Files of one kind are looked for where they were put.
  const QString purpose = kinds.section(QStringLiteral("*"), 1).section(u')', 0, 0).section(u' ', 0, 0);
  const QPointer<QFileDialog> dialog = new QFileDialog(owner, title, firstFolder(purpose), kinds);
  const bool isWritten = use == ui::ChosenFile::written;
  dialog->setAcceptMode(isWritten ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(isWritten ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  // A name without an ending gets that of the chosen kind.
  const auto endKind = [shown = dialog.data()](const QString& kind) {
    shown->setDefaultSuffix(kind.section(QStringLiteral("*."), 1).section(u')', 0, 0));
  };
  endKind(kinds.section(QStringLiteral(";;"), 0, 0));
  QObject::connect(dialog, &QFileDialog::filterSelected, dialog, endKind);
  const bool chosen = dialog->exec() == QDialog::Accepted && dialog;
  const QString file = chosen ? dialog->selectedFiles().value(0) : QString();
  if (chosen) keepFolder(purpose, dialog->directory().absolutePath());
  delete dialog;
  return file.isEmpty() ? std::nullopt : std::optional(file);
}

QString QtControlServices::inputBox(QWidget* owner, const QString& prompt, const QString& title) {
  const PointerForDialog pointer;
  const QPointer<QInputDialog> dialog = new QInputDialog(owner);
  ui::applyStyle(*dialog);
  dialog->setWindowTitle(title);
  dialog->setLabelText(prompt);
  // Room for a name, whatever the length of the prompt.
  dialog->setMinimumWidth(ui::px(dialog, inputBoxWidth));
  const bool typed = dialog->exec() == QDialog::Accepted && dialog;
  QString text = typed ? dialog->textValue() : QString();
  delete dialog;
  return text;
}

bool QtControlServices::confirm(QWidget* owner, const QString& title, const QString& text) {
  const PointerForDialog pointer;
  const QPointer<ui::MessageBox> box =
      new ui::MessageBox(QMessageBox::Question, title, text, QMessageBox::NoButton, owner);
  const QPointer<QPushButton> yes = box->addButton(ownText("dialog.yes"), QMessageBox::YesRole);
  QPushButton* const no = box->addButton(ownText("dialog.no"), QMessageBox::NoRole);
  // Enter must not discard anything.
  box->setDefaultButton(no);
  box->setEscapeButton(no);
  box->exec();
  const bool answer = box && yes && box->clickedButton() == yes;
  delete box;
  return answer;
}

std::optional<std::size_t> QtControlServices::choose(QWidget* owner, const QString& title, const QString& text,
                                                     const QStringList& answers) {
  const PointerForDialog pointer;
  const QPointer<ui::MessageBox> box =
      new ui::MessageBox(QMessageBox::Question, title, text, QMessageBox::NoButton, owner);
  QList<QAbstractButton*> buttons;
  for (const QString& answer : answers) buttons.append(box->addButton(answer, QMessageBox::AcceptRole));
  QPushButton* const cancel = box->addButton(ownText("filter.cancel"), QMessageBox::RejectRole);
  if (!buttons.isEmpty()) box->setDefaultButton(qobject_cast<QPushButton*>(buttons.front()));
  box->setEscapeButton(cancel);
  box->exec();
  // Only compared: the buttons may be gone with the box.
  const qsizetype place = box ? buttons.indexOf(box->clickedButton()) : -1;
  delete box;
  return place < 0 ? std::nullopt : std::optional<std::size_t>(static_cast<std::size_t>(place));
}

void QtControlServices::showForm(QWidget* owner, const QString& name) {
  const auto maker = forms_.value(name);
  if (!maker) return;
  const PointerForDialog pointer;
  const QPointer<QDialog> form = maker(owner);
  if (!form) return;
  form->setModal(true);
  form->exec();
  delete form;
}

void QtControlServices::setPointer(ui::Pointer pointer) {
  const bool wanted = pointer == ui::Pointer::hourglass;
  if (wanted == hourglass_) return;
  hourglass_ = wanted;
  if (wanted)
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QGuiApplication::restoreOverrideCursor();
}

void QtControlServices::openHelp(QWidget* owner, const QString& file, HelpCommand command) {
  reportHelp(owner, file, openHelpFile(owner, file, command));
}

void QtControlServices::openHelpTopic(QWidget* owner, const QString& file, const QString& topic) {
  reportHelp(owner, file, openHelpFile(owner, file, topic));
}

void QtControlServices::reportHelp(QWidget* owner, const QString& file, HelpOutcome outcome) {
  if (outcome == HelpOutcome::done) return;
  const char* const key = outcome == HelpOutcome::noFile ? "help.noFile" : "help.noViewer";
  messageBox(owner, ui::MessageIcon::information, messageTitle(), ownText(key).arg(file));
}

void QtControlServices::startEditor(const QString& file) {
  startTextEditor(file);
}

bool QtControlServices::choosePrinter(QWidget* owner, QPrinter& printer) {
  const PointerForDialog pointer;
  return chooseSystemPrinter(owner, printer);
}

bool QtControlServices::showPreview(QWidget* owner, std::unique_ptr<output::pages::ReportSheets> sheets) {
  const PointerForDialog pointer;
  bool wanted = false;
  const QPointer<ReportPreview> window = new ReportPreview(std::move(sheets), owner);
  rememberSize(*window);
  QObject::connect(window, &ReportPreview::printRequested, window, [&wanted] { wanted = true; });
  window->exec();
  delete window;
  return wanted;
}

}  // namespace korvel::control
