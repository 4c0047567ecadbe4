#include "settings/explained_error.h"

#include <string_view>
#include <utility>

namespace korvel::settings {

namespace {

/// The sentence with its places filled in one pass, so that an argument that looks like a place stays as it is.
std::string sentence(const std::string& key, const std::vector<std::string>& arguments, const LanguageOffset& offset) {
  const std::string_view text = ownText(key, offset);
  std::string filledText;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool place = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
    const auto argument = place ? static_cast<std::size_t>(text[i + 1] - '1') : arguments.size();
    if (argument < arguments.size()) {
      filledText += arguments[argument];
      ++i;
    } else {
      filledText += text[i];
    }
  }
  return filledText;
}

}  // namespace

Error explainedError(std::int32_t number, std::string key, std::vector<std::string> arguments) {
  Error error(number, sentence(key, arguments, LanguageOffset{}));
  error.setText(std::move(key), std::move(arguments));
  return error;
}

std::string describe(const Error& error, const LanguageOffset& offset) {
  return error.textKey().empty() ? error.description() : sentence(error.textKey(), error.textArguments(), offset);
}

}  // namespace korvel::settings
