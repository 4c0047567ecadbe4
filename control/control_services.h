#pragma once

#include <QString>
#include <QStringList>
#include <cstddef>
#include <memory>
#include <optional>

#include "ui/dialog_services.h"

class QPrinter;
class QWidget;

namespace korvel::output::pages {
class ReportSheets;
}

namespace korvel::control {

/// What a help file is opened on, by HTML Help's command numbers.
enum class HelpCommand { contents = 1, index = 2 };

/// Names of the forms that a control shows.
namespace form_name {
inline const QString serverBrowser = QStringLiteral("frmSQLServerBrowser");
inline const QString dateRange = QStringLiteral("frmAdvancedFilters");
inline const QString fields = QStringLiteral("frmFields");
inline const QString fileList = QStringLiteral("frmFileList");
inline const QString printFont = QStringLiteral("frmPrintFont");
inline const QString about = QStringLiteral("frmAbout");
}  // namespace form_name

/// What the control shows to the user, apart from its own surface. Every call that shows a dialog returns when it is
/// closed.
class ControlServices : public ui::DialogServices {
 public:
  /// The folder that was chosen, nothing for a cancelled dialog. `showFiles` shows the files in it as well; it is a
  /// folder that is chosen all the same.
  virtual std::optional<QString> chooseFolder(QWidget* owner, const QString& title, bool showFiles) = 0;
  /// A file of one of these kinds, "Name (*.end);;Other (*.other)": one that is there, or the place of one that will be
  /// written, which the user agreed to replace. Nothing for a cancelled dialog.
  virtual std::optional<QString> chooseFile(QWidget* owner, const QString& title, const QString& kinds,
                                            ui::ChosenFile use) = 0;
  /// A line of text; empty for a cancelled box.
  virtual QString inputBox(QWidget* owner, const QString& prompt, const QString& title) = 0;
  /// A question; every other way of closing the box answers no.
  virtual bool confirm(QWidget* owner, const QString& title, const QString& text) = 0;
  /// A question with these answers, of which the first is the default: the place of the one that was given, nothing
  /// for every other way of closing the box.
  virtual std::optional<std::size_t> choose(QWidget* owner, const QString& title, const QString& text,
                                            const QStringList& answers) = 0;
  /// Whether a form of that name exists.
  [[nodiscard]] virtual bool hasForm(const QString& name) const = 0;
  /// Shows a form modally, owned by the control; returns when it is closed. Only for a form that exists.
  virtual void showForm(QWidget* owner, const QString& name) = 0;
  /// Opens a help file in the platform's viewer and returns at once. An empty path shows nothing; problems with any
  /// other path are reported to the user by the viewer.
  virtual void openHelp(QWidget* owner, const QString& file, HelpCommand command) = 0;
  /// Opens a help file as openHelp() does, at a topic: "page.html", or "page.html#name" for a name in it.
  virtual void openHelpTopic(QWidget* owner, const QString& file, const QString& topic) = 0;
  /// Starts the text editor on a file, in a window of its own, and returns at once. Throws Error with the numbers of
  /// outputs where there is none.
  virtual void startEditor(const QString& file) = 0;
  /// Shows the dialog for the printer and its options; false for a cancelled dialog.
  virtual bool choosePrinter(QWidget* owner, QPrinter& printer) = 0;
  /// Shows the laid-out pages of a report; returns when the preview is closed, true if the user chose to print them.
  virtual bool showPreview(QWidget* owner, std::unique_ptr<output::pages::ReportSheets> sheets) = 0;
};

}  // namespace korvel::control
