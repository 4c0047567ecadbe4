#include "cli/common_options.h"

#include <CLI/CLI.hpp>
#include <optional>

#include "base/paths.h"
#include "base/system_errors.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/server_path.h"
#include "db/connection_state.h"
#include "db/embedded/embedded_folder.h"
#include "db/open_connection.h"
#include "query/query_failure.h"

namespace korvel::cli {

namespace {

std::optional<const OutputFormat*> formatNamed(const std::string& text) {
  const OutputFormat* format = outputFormatNamed(text);
  return format == nullptr ? std::nullopt : std::optional(format);
}

std::string noFormatText() {
  std::string text = "no format; there are";
  for (const OutputFormat& format : outputFormats()) text.append(" ").append(format.name);
  return text;
}

}  // namespace

void addConnection(CLI::App& command, std::string& server, std::string& database) {
  server = db::embeddedServerName;
  database = db::databaseName(static_cast<int>(db::DatabaseTypeEnum::Korvel_Audit));
  const std::string complaint = "no name: it is empty or holds a semicolon";
  addReadOption(command,
                {"--server", "NAME",
                 "Server; the path of a folder means its databases,\nthat of a database file this one (default:\n" +
                     server + ")"},
                connectionName, complaint, [&server](const std::string& name) { server = name; });
  addReadOption(command, {"--database", "NAME", "Database (default: " + database + ")"}, connectionName, complaint,
                [&database](const std::string& name) { database = name; });
}

void addTarget(CLI::App& command, const OutputFormat*& format, std::string& output) {
  addReadOption(command,
                {"--format", "FORMAT", "table, text, exchange, csv, json, html, pdf or\nxlsx (default: table)"},
                formatNamed, noFormatText(), [&format](const OutputFormat* chosen) { format = chosen; });
  command.add_option("--output", output, "File to write, whole or not at all (default: -,\nstandard output)")
      ->option_text("FILE");
}

std::optional<std::string> targetProblem(const OutputFormat& format, const std::string& output,
                                         const std::ostream& out) {
  if (output != "-" && isDatabaseFile(pathFromUtf8(output)))
    return output + " is a database; the tool does not replace it";
  if (format.isBinary && isTerminal(output, out))
    return std::string(format.name) + " is nothing for a terminal; name a file with --output";
  return std::nullopt;
}

int outputFailed(std::ostream& err, const Error& error) {
  if (isSystemError(error.number(), std::errc::broken_pipe)) return exitDone;
  say(err, "error " + errorText(error));
  return exitOutput;
}

int writeText(std::ostream& out, std::ostream& err, std::string_view text, int status) {
  const auto failure =
      query::failureOf([&] { writeTo("-", out, [text](const output::ByteSink& sink) { sink(text); }); });
  return failure ? outputFailed(err, *failure) : status;
}

int refused(std::ostream& err, std::string_view why) {
  say(err, why);
  err << "Run with --help for more information.\n";
  return exitWrongUsage;
}

}  // namespace korvel::cli
