#include "cli/platform_help.h"

namespace korvel::cli {

const char* const environmentHelp =
    "  KORVEL_AUDIT_DATA   folder of the embedded databases (otherwise korvel\\audit in the\n"
    "                      user's local application data, %LOCALAPPDATA%)\n"
    "  KORVEL_ODBC_DRIVER  ODBC driver for servers (otherwise the best one installed)\n";

const char* const exampleFolder = "C:\\audit";

}  // namespace korvel::cli
