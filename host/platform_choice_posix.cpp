#include "host/platform_choice.h"

#include <QtGlobal>

#include "host/options.h"

namespace korvel::host {

#ifdef Q_OS_UNIX
namespace {

/// Whether the toolkit is told where the window goes. Its own options have one dash or two, their values stand apart.
bool asksForAPlatform(const QStringList& arguments) {
  for (const char* option : {"-platform", "--platform", "-display", "--display"})
    if (arguments.contains(QLatin1String(option))) return true;
  return false;
}

}  // namespace
#endif

PlatformChoice choosePlatform(const QStringList& arguments) {
#ifdef Q_OS_UNIX
  const auto isSet = [](const char* name) { return !qEnvironmentVariableIsEmpty(name); };
  if (isSet("QT_QPA_PLATFORM") || asksForAPlatform(arguments)) return PlatformChoice::usual;
  // Also where there is a display: a picture does not need one that may turn out not to answer.
  if (mentions(arguments, QStringLiteral("--shot"))) return PlatformChoice::offscreen;
  return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") ? PlatformChoice::usual : PlatformChoice::none;
#else
  Q_UNUSED(arguments)
  return PlatformChoice::usual;
#endif
}

}  // namespace korvel::host
