#pragma once

#include <QLocale>
#include <QString>
#include <cstddef>
#include <string_view>

#include "base/error.h"
#include "control/library_state.h"
#include "settings/explained_error.h"

namespace korvel::control {

[[nodiscard]] inline QString fromUtf8(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A text of the fixed table in the current language, by its English identifier.
[[nodiscard]] inline QString loadText(int englishIdentifier) {
  return fromUtf8(settings::loadText(settings::TextId{englishIdentifier}, libraryState().language));
}

/// A text of our own in the current language, by its key.
[[nodiscard]] inline QString ownText(std::string_view key) {
  return fromUtf8(settings::ownText(key, libraryState().language));
}

/// What a failure says in the current language, with the line of the text that failed where it names one.
[[nodiscard]] inline QString failureText(const Error& error) {
  const QString description = fromUtf8(settings::describe(error, libraryState().language));
  return error.line() ? ownText("error.atLine").arg(description, QString::number(*error.line())) : description;
}

/// A number of records or characters in a text of our own, its digits grouped as the locale has it. Texts that are
/// fixed to the letter take plain digits.
[[nodiscard]] inline QString countText(std::size_t count) {
  return QLocale().toString(static_cast<qulonglong>(count));
}

}  // namespace korvel::control
