#include "cli/platform_help.h"

namespace korvel::cli {

const char* const environmentHelp =
    "  KORVEL_AUDIT_DATA   folder of the embedded databases (otherwise korvel/audit in the\n"
    "                      user's data folder, ~/.local/share)\n"
    "  KORVEL_REGISTRY     settings file (otherwise korvel/registry.reg in the user's\n"
    "                      configuration folder, ~/.config)\n"
    "  KORVEL_ODBC_DRIVER  ODBC driver for servers (otherwise the best one installed)\n";

const char* const exampleFolder = "/tmp/audit";

}  // namespace korvel::cli
