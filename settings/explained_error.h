#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/error.h"
#include "settings/string_table.h"

namespace korvel::settings {

/// An error that we explain ourselves: the sentence `key` of the table of our own texts, its "%1", "%2" ... filled.
[[nodiscard]] Error localizedError(std::int32_t number, std::string key, std::vector<std::string> arguments = {});

/// What to show for an error: our sentence in the user's language, or the engine's own text.
[[nodiscard]] std::string describe(const Error& error, const LanguageOffset& offset);

}  // namespace korvel::settings
