// Where a display is a matter of the environment.
#include <QtGlobal>

#include "host/options.h"
#include "host/platform_choice.h"

namespace korvel::host {
namespace {

/// Whether the toolkit is told where the window goes. Its own options have one dash or two, their values stand apart.
bool asksForAPlatform(const QStringList& arguments) {
  for (const char* option : {"-platform", "--platform", "-display", "--display"})
    if (arguments.contains(QLatin1String(option))) return true;
  return false;
}

}  // namespace

PlatformChoice choosePlatform(const QStringList& arguments) {
  const auto isSet = [](const char* name) { return !qEnvironmentVariableIsEmpty(name); };
  if (isSet("QT_QPA_PLATFORM") || asksForAPlatform(arguments)) return PlatformChoice::usual;
  // Also where there is a display: a picture does not need one that may turn out not to answer.
  if (mentions(arguments, QStringLiteral("--shot"))) return PlatformChoice::offscreen;
  return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") ? PlatformChoice::usual : PlatformChoice::none;
}

}  // namespace korvel::host
