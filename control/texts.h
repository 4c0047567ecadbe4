#pragma once

#include <QString>
#include <string_view>

#include "control/library_state.h"

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

}  // namespace korvel::control
