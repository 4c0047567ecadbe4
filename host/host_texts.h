#pragma once

#include <QString>
#include <string_view>

#include "settings/string_table.h"

namespace korvel::host {

/// The product's name, the same in every language.
inline const QString productName = QStringLiteral("Korvel Audit Viewer");

/// The language that the viewer is set to; English where the setting cannot be read.
[[nodiscard]] settings::LanguageOffset currentLanguage();

/// A text of our own with "%1" and "%2" filled.
[[nodiscard]] QString hostText(std::string_view key, const settings::LanguageOffset& language,
                               const QString& first = {}, const QString& second = {});

}  // namespace korvel::host
