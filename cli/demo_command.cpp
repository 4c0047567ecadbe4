#include "cli/demo_command.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>
#include <ostream>

#include "base/error.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/messages.h"
#include "cli/platform.h"
#include "db/embedded/embedded_folder.h"
#include "db/open_connection.h"

namespace korvel::cli {

namespace {

std::string footer() {
  return "The data is invented, and the same on every machine for the same rows and seed.\n"
         "\n"
         "Examples:\n"
         "  korvel-audit demo\n"
         "  korvel-audit demo --folder " +
         std::string(exampleFolder) +
         " --rows 1000000\n"
         "  korvel-audit query --server " +
         exampleFolder + "\n";
}

/// Entry numbers sort as numbers up to nine digits; a trail with more rows would show itself out of order.
constexpr std::uint64_t mostRows = 999'999'999;

std::optional<std::uint64_t> rowsNamed(const std::string& text) {
  const auto rows = parseInteger<std::uint64_t>(text);
  return rows && *rows <= mostRows ? rows : std::nullopt;
}

}  // namespace

CLI::App* addDemoCommand(CLI::App& app, DemoOptions& options) {
  CLI::App* demo = app.add_subcommand("demo", "Write Korvel_Audit.db and Korvel_Audit_MU.db with demonstration data");
  demo->add_option("--folder", options.folder,
                   "Folder to write to, made if it is not there\n(default: the folder of the server \"(embedded)\")")
      ->option_text("DIR");
  addReadOption(*demo, {"--rows", "N", "Rows of each database (default: " + std::to_string(demo::defaultRows) + ")"},
                rowsNamed, "no number of rows from 0 to " + std::to_string(mostRows),
                [&options](std::uint64_t rows) { options.rows = rows; });
  addReadOption(*demo, {"--seed", "S", "Another number, other data (default: 1)"}, parseInteger<std::uint64_t>,
                "no whole number from 0 on", [&options](std::uint64_t seed) { options.seed = seed; });
  demo->add_flag("--force", options.force, "Replace databases that are there already");
  demo->footer(footer());
  return demo;
}

int runDemo(const DemoOptions& options, std::ostream& out, std::ostream& err) {
  try {
    const std::filesystem::path folder = options.folder.empty() ? db::embeddedFolder() : pathFromUtf8(options.folder);
    demo::writeDemoDatabases({folder, options.rows, options.seed, options.force});
    std::string names;
    for (const char* name : {"Korvel_Audit.db", "Korvel_Audit_MU.db"})
      names += output::terminalText(utf8FromPath(folder / name)) + '\n';
    return writeText(out, err, names, exitDone);
  } catch (const Error& error) {
    say(err, "error " + std::to_string(error.number()) + ": " + error.description());
  } catch (const std::exception& exception) {
    say(err, exception.what());
  }
  return exitOutput;
}

}  // namespace korvel::cli
