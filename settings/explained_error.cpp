#include "settings/explained_error.h"

#include <utility>

namespace korvel::settings {

namespace {

std::string sentence(const std::string& key, const std::vector<std::string>& arguments, const LanguageOffset& offset) {
  return filled(ownText(key, offset), arguments);
}

}  // namespace

Error localizedError(std::int32_t number, std::string key, std::vector<std::string> arguments) {
  Error error(number, sentence(key, arguments, LanguageOffset{}));
  error.setText(std::move(key), std::move(arguments));
  return error;
}

std::string describe(const Error& error, const LanguageOffset& offset) {
  return error.textKey().empty() ? error.description() : sentence(error.textKey(), error.textArguments(), offset);
}

}  // namespace korvel::settings
