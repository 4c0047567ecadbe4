#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "control/printed_list.h"

namespace korvel::control {

/// Commands of ExecWB by their standard numbers.
enum class ReportCommand { print = 6, printPreview = 7 };
/// How ExecWB runs a command.
enum class ExecOption { doDefault = 0, promptUser = 2 };

/// The component `WebBrowser1`: takes a report, signals when it is loaded, and prints or previews it. Its pages are
/// laid out from the rows that the report's file was written from, because the file lacks characters that its code page
/// does not hold. Nothing in the rows is run, opened or fetched.
class ReportViewer final : public QObject {
  Q_OBJECT

 public:
  /// Dialogs belong to `owner`, which also owns the viewer.
  explicit ReportViewer(QWidget& owner);
  ~ReportViewer() override;

  /// Takes a report by its file and its rows; DocumentComplete follows when the event loop runs next, once, also where
  /// Navigate is called again before.
  void Navigate(const QString& path, PrintedList list);
  /// Prints, after the print dialog with promptUser, or shows the preview. A cancelled dialog does nothing. Throws
  /// Error where the printer does not take it.
  void ExecWB(ReportCommand command, ExecOption option);

 Q_SIGNALS:
  void DocumentComplete(const QString& path);
  /// The report was printed into a file that has a manifest beside it.
  void ProvenFileWritten(const QString& file);

 private:
  void print(ExecOption option);
  void preview();

  QWidget& owner_;
  QString path_;
  PrintedList list_;
  bool announced_ = false;
};

}  // namespace korvel::control
