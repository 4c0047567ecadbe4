#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "base/error.h"
#include "settings/string_table.h"

namespace korvel::ui {

[[nodiscard]] inline QString fromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

[[nodiscard]] inline std::filesystem::path toPath(const QString& text) {
  return {text.toStdU16String()};
}

/// A text of our own, by its key.
[[nodiscard]] inline QString ownText(std::string_view key, const settings::LanguageOffset& language) {
  return fromUtf8(settings::ownText(key, language));
}

/// The description of a failure in a language, without the line of a text that it may name.
[[nodiscard]] inline QString describe(const Error& error, const settings::LanguageOffset& language) {
  return fromUtf8(settings::describe(error, language));
}

/// The description of a failure in a language, with the line of the text that failed where it names one.
[[nodiscard]] inline QString failureText(const Error& error, const settings::LanguageOffset& language) {
  const QString description = ui::describe(error, language);
  return error.line() ? ui::ownText("error.atLine", language).arg(description, QString::number(*error.line()))
                      : description;
}

/// A number of records or characters for our own texts, its digits grouped as in the locale. Fixed texts take plain
/// digits.
[[nodiscard]] inline QString countText(std::uint64_t count) {
  return QLocale().toString(static_cast<qulonglong>(count));
}

}  // namespace korvel::ui
