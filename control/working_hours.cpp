#include "control/working_hours.h"

#include <string>

#include "control/library_state.h"
#include "evidence/working_hours.h"
#include "settings/registry.h"

namespace korvel::control {

namespace {

constexpr const char* hoursKey = "WorkingHours";
constexpr const char* daysKey = "WorkingDays";
constexpr const char* noDays = "none";

std::string application() {
  return std::string(settings::applicationName);
}
std::string section() {
  return std::string(settings::viewerSection);
}

}  // namespace

evidence::WorkingHours storedWorkingHours(settings::SettingsBackend& backend) {
  const settings::Registry registry(backend);
  evidence::WorkingHours hours;
  if (const auto span = evidence::hoursOf(registry.GetSetting(application(), section(), hoursKey, {}))) {
    hours.from = span->first;
    hours.to = span->second;
  }
  const std::string days = registry.GetSetting(application(), section(), daysKey, {});
  if (const auto known = evidence::daysOf(days))
    hours.days = *known;
  else if (days == noDays)
    hours.days.reset();
  return hours;
}

void chooseWorkingHours(const evidence::WorkingHours& hours) {
  libraryState().workingHours = hours;
  const auto backend = platform().openSettings();
  const settings::Registry registry(*backend);
  registry.SaveSetting(application(), section(), hoursKey, evidence::hoursText(hours));
  registry.SaveSetting(application(), section(), daysKey, hours.days.any() ? evidence::daysText(hours.days) : noDays);
}

}  // namespace korvel::control
