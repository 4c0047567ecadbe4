#include "host/host_texts.h"

#include "base/error.h"
#include "settings/registry.h"
#include "settings/stored_language.h"

namespace korvel::host {

settings::LanguageOffset currentLanguage() {
  try {
    const auto backend = settings::platformBackend();
    return settings::storedLanguage(*backend);
  } catch (const Error&) {
    // The control says what is wrong with the settings; messages of the host are in English then.
    return settings::LanguageOffset();
  }
}

QString hostText(std::string_view key, const settings::LanguageOffset& language, const QString& first,
                 const QString& second) {
  return QString::fromStdString(
      settings::filled(settings::ownText(key, language), first.toStdString(), second.toStdString()));
}

}  // namespace korvel::host
