#pragma once

#include <QString>
#include <string_view>

#include "base/error.h"
#include "control/library_state.h"
#include "ui/texts.h"

namespace korvel::control {

using ui::countText;
using ui::fromUtf8;
using ui::toPath;

/// A text of the fixed table in the current language, by its English identifier.
[[nodiscard]] inline QString loadText(int englishIdentifier) {
  return fromUtf8(settings::loadText(settings::TextId{englishIdentifier}, libraryState().language));
}

/// A text of our own in the current language, by its key.
[[nodiscard]] inline QString ownText(std::string_view key) {
  return ui::ownText(key, libraryState().language);
}

/// The description of a failure in the current language, with the line of the text that failed where it names one.
[[nodiscard]] inline QString failureText(const Error& error) {
  return ui::failureText(error, libraryState().language);
}

}  // namespace korvel::control
