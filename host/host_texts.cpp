#include "host/host_texts.h"

#include "base/error.h"
#include "settings/registry.h"

namespace korvel::host {

settings::LanguageOffset currentLanguage() {
  try {
    const auto backend = settings::platformBackend();
    return settings::LanguageOffset(settings::Registry(*backend).GetSetting(
        std::string(settings::applicationName), std::string(settings::viewerSection), "Language", "0"));
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
