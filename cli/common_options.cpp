#include "cli/common_options.h"

#include <CLI/CLI.hpp>
#include <optional>

#include "base/text.h"
#include "cli/exit_status.h"
#include "cli/messages.h"
#include "cli/names.h"
#include "cli/read_option.h"
#include "db/connection_state.h"
#include "db/open_connection.h"

namespace korvel::cli {

namespace {

std::optional<output::ListFormat> formatNamed(const std::string& text) {
  for (const auto& [name, format] : output::listFormatNames)
    if (equalsIgnoringAsciiCase(text, name)) return format;
  return std::nullopt;
}

}  // namespace

void addConnection(CLI::App& command, std::string& server, std::string& database) {
  server = db::embeddedServerName;
  database = db::databaseName(static_cast<int>(db::DatabaseTypeEnum::Korvel_Audit));
  const std::string complaint = "no name: it is empty or holds a semicolon";
  addReadOption(command,
                {"--server", "NAME",
                 "Server; the absolute path of a folder means the\ndatabases in it (default: " + server + ")"},
                connectionName, complaint, [&server](const std::string& name) { server = name; });
  addReadOption(command, {"--database", "NAME", "Database (default: " + database + ")"}, connectionName, complaint,
                [&database](const std::string& name) { database = name; });
}

void addTarget(CLI::App& command, output::ListFormat& format, std::string& output) {
  addReadOption(command, {"--format", "FORMAT", "table, text, exchange, csv or json (default: table)"}, formatNamed,
                "no format", [&format](output::ListFormat chosen) { format = chosen; });
  addOutputFile(command, output);
}

void addOutputFile(CLI::App& command, std::string& output) {
  command.add_option("--output", output, "File to write, whole or not at all (default: -,\nstandard output)")
      ->option_text("FILE");
}

int refused(std::ostream& err, std::string_view why) {
  say(err, why);
  err << "Run with --help for more information.\n";
  return exitWrongUsage;
}

}  // namespace korvel::cli
