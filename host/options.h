#pragma once

#include <QSize>
#include <QStringList>
#include <optional>

#include "korvel/ViewerApplication.h"

namespace korvel::host {

/// What the command line asks for.
struct Options {
  std::optional<QString> server;
  std::optional<int> databaseType;
  std::optional<QString> formFile;
  std::optional<QString> shotFile;
  std::optional<QSize> size;
  /// A query file that is to be opened.
  std::optional<QString> queryFile;
};

struct ParsedOptions {
  Options options;
  /// What is not understood, a sentence in the language; empty where all of it is.
  QString failure;
};

/// Reads the arguments after the program's name. "--name value" and "--name=value" are the same.
[[nodiscard]] ParsedOptions parseOptions(const QStringList& arguments, const ViewerLanguage& language);

/// An argument of the command line, as help and manual page show it.
struct OptionLine {
  QString name;
  QString value;  ///< what stands for its value; empty for an option without one
  QString text;   ///< what it does
};

/// All of them, in the order of the help.
[[nodiscard]] QList<OptionLine> optionLines(const ViewerLanguage& language);

/// The answer to --help.
[[nodiscard]] QString helpText(const ViewerLanguage& language);

/// Whether an option stands among the raw arguments, wherever and in whichever form. For what must be known before the
/// others can be read.
[[nodiscard]] bool mentions(const QStringList& arguments, const QString& option);

}  // namespace korvel::host
