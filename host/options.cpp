#include "host/options.h"

#include <QRegularExpression>

namespace korvel::host {
namespace {

struct OptionRow {
  const char* name;
  const char* value;    // placeholder, null for an option without a value
  const char* helpKey;  // in the table of our own texts
  /// Takes the value; false if it is none for this option.
  bool (*take)(const QString& value, Options& options);
};

bool takeType(const QString& value, Options& options) {
  if (value == QLatin1String("audit")) options.databaseType = 0;
  if (value == QLatin1String("mu")) options.databaseType = 1;
  return options.databaseType.has_value();
}

bool takeSize(const QString& value, Options& options) {
  static const QRegularExpression form(QStringLiteral("\\A([0-9]{1,5})x([0-9]{1,5})\\z"));
  const QRegularExpressionMatch match = form.match(value);
  if (!match.hasMatch()) return false;
  // A picture beyond this is a slip of the finger that would take gigabytes.
  constexpr int largest = 16384;
  const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
  if (size.isEmpty() || size.width() > largest || size.height() > largest) return false;
  options.size = size;
  return true;
}

template <std::optional<QString> Options::*member, bool mayBeEmpty>
bool takeText(const QString& value, Options& options) {
  if (value.isEmpty() && !mayBeEmpty) return false;
  options.*member = value;
  return true;
}

/// The one argument without a name. Whatever has another ending is taken for a slip.
bool takeQueryFile(const QString& value, Options& options) {
  if (options.queryFile || !value.endsWith(QLatin1String(".vqf"), Qt::CaseInsensitive)) return false;
  options.queryFile = value;
  return true;
}

constexpr const char* queryFileName = "FILE.vqf";

constexpr OptionRow rows[] = {
    {"--server", "NAME", "host.help.server", &takeText<&Options::server, true>},
    {"--type", "audit|mu", "host.help.type", &takeType},
    {"--form", "FILE", "host.help.form", &takeText<&Options::formFile, false>},
    {"--shot", "FILE.png", "host.help.shot", &takeText<&Options::shotFile, false>},
    {"--size", "WxH", "host.help.size", &takeSize},
    {"--help", nullptr, "host.help.help", nullptr},
    {"--version", nullptr, "host.help.version", nullptr},
};

const OptionRow* rowOf(const QString& name) {
  for (const OptionRow& row : rows)
    if (name == QLatin1String(row.name)) return &row;
  return nullptr;
}

}  // namespace

ParsedOptions parseOptions(const QStringList& arguments, const ViewerLanguage& language) {
  ParsedOptions parsed;
  const auto refused = [&](const QString& what) {
    parsed.failure = language.text("host.optionsError", what);
    return parsed;
  };
  for (qsizetype i = 0; i < arguments.size(); ++i) {
    const QString& argument = arguments[i];
    if (!argument.startsWith(QLatin1Char('-'))) {
      if (!takeQueryFile(argument, parsed.options)) return refused(argument);
      continue;
    }
    const qsizetype equals = argument.startsWith(QLatin1String("--")) ? argument.indexOf(QLatin1Char('=')) : -1;
    const OptionRow* row = rowOf(equals < 0 ? argument : argument.left(equals));
    if (row == nullptr) return refused(argument);
    if (row->take == nullptr) {
      if (equals >= 0) return refused(argument);
      continue;
    }
    if (equals < 0 && i + 1 >= arguments.size())
      return refused(argument + QLatin1Char(' ') + QLatin1String(row->value));
    const QString value = equals < 0 ? arguments[++i] : argument.mid(equals + 1);
    if (!row->take(value, parsed.options))
      return refused(QStringLiteral("%1 %2 (%1 %3)").arg(QLatin1String(row->name), value, QLatin1String(row->value)));
  }
  return parsed;
}

QList<OptionLine> optionLines(const ViewerLanguage& language) {
  QList<OptionLine> lines{{QLatin1String(queryFileName), QString(), language.text("host.help.file")}};
  for (const OptionRow& row : rows)
    lines.append({QLatin1String(row.name), QLatin1String(row.value), language.text(row.helpKey)});
  return lines;
}

QString helpText(const ViewerLanguage& language) {
  QString text = language.text("host.help.usage") + QStringLiteral("\n\n");
  constexpr int column = 22;
  for (const OptionLine& line : optionLines(language)) {
    QString left = QStringLiteral("  ") + line.name;
    if (!line.value.isEmpty()) left += QLatin1Char(' ') + line.value;
    text += left.leftJustified(column) + line.text + QLatin1Char('\n');
  }
  return text + QLatin1Char('\n') + language.text("host.help.status") + QLatin1Char('\n');
}

bool mentions(const QStringList& arguments, const QString& option) {
  for (const QString& argument : arguments)
    if (argument == option || argument.startsWith(option + QLatin1Char('='))) return true;
  return false;
}

}  // namespace korvel::host
