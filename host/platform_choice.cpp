#include "host/platform_choice.h"

#include <QtGlobal>

#include "host/options.h"

namespace korvel::host {

PlatformChoice choosePlatform(const QStringList& arguments) {
#ifdef Q_OS_UNIX
  const auto isSet = [](const char* name) { return !qEnvironmentVariableIsEmpty(name); };
  if (isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM")) return PlatformChoice::usual;
  if (mentions(arguments, QStringLiteral("-platform"))) return PlatformChoice::usual;
  return mentions(arguments, QStringLiteral("--shot")) ? PlatformChoice::offscreen : PlatformChoice::none;
#else
  Q_UNUSED(arguments)
  return PlatformChoice::usual;
#endif
}

}  // namespace korvel::host
