#include "cli/first_steps.h"

#include <algorithm>
#include <array>

#include "base/error.h"
#include "base/paths.h"
#include "db/connection_state.h"
#include "db/discovery/configured_servers.h"
#include "db/discovery/network_directory.h"
#include "db/embedded/embedded_folder.h"
#include "output/terminal_text.h"

namespace korvel::cli {

namespace {

struct Step {
  std::string command;
  std::string purpose;
};

constexpr std::size_t stepCount = 5;
using Steps = std::array<Step, stepCount>;

Steps stepsWithoutATrail() {
  return {{{"demo", "write two databases to try things with"},
           {"query --server FOLDER", "show the trail in a folder with database files"},
           {"servers --all", "find servers"},
           {"check --server S", "why a server cannot be reached, and what to do"},
           {"query --server S --database D", "show the trail that a server holds"}}};
}

Steps stepsWith(const std::string& from) {
  return {{{"query" + from, "show all audits"},
           {"query" + from + " --complete --format pdf --output trail.pdf --manifest",
            "all of it on paper, with what proves it"},
           {"review" + from, "what a reviewer should look at"},
           {"history" + from + " --item NAME", "what happened to one item"},
           {"snapshot" + from + " --output FOLDER", "copy it, to see later what was changed"}}};
}

std::string quoted(const std::string& name) {
  const std::string shown = output::terminalText(name);
  return shown.find_first_of(" \\$'()&;") == std::string::npos ? shown : '"' + shown + '"';
}

std::string joined(const std::vector<std::string>& names) {
  constexpr std::size_t mostNamed = 5;
  std::string text;
  for (std::size_t i = 0; i < names.size() && i < mostNamed; ++i)
    text.append(i == 0 ? "" : ", ").append(output::terminalText(names[i]));
  if (names.size() > mostNamed) text.append(" and ").append(std::to_string(names.size() - mostNamed)).append(" more");
  return text;
}

std::string linesOf(const Steps& steps) {
  std::size_t widest = 0;
  constexpr std::size_t mostBeside = 34;
  for (const Step& step : steps)
    if (step.command.size() <= mostBeside) widest = std::max(widest, step.command.size());
  std::string text;
  for (const Step& step : steps) {
    text.append("  korvel-audit ").append(step.command);
    if (step.command.size() > widest)
      text.append("\n").append(widest + sizeof "  korvel-audit " - 1, ' ');
    else
      text.append(widest - step.command.size(), ' ');
    text.append("  ").append(step.purpose).append("\n");
  }
  return text;
}

}  // namespace

ReadableHere readableHere() {
  ReadableHere here;
  // What cannot be read is not there.
  skipFailing([&] {
    const auto folder = db::embeddedFolder();
    here.folder = utf8FromPath(folder);
    for (const db::DatabaseInfo& database : db::embeddedDatabases(folder)) here.databases.push_back(database.name);
  });
  skipFailing([&] { here.servers = db::configuredServers(); });
  return here;
}

std::string firstSteps(const ReadableHere& here) {
  if (!here.databases.empty()) {
    const std::string_view usual = db::databaseName(static_cast<int>(db::DatabaseTypeEnum::Korvel_Audit));
    const bool hasUsual = std::find(here.databases.begin(), here.databases.end(), usual) != here.databases.end();
    return "Databases in " + output::terminalText(here.folder) + ": " + joined(here.databases) + ". To begin with:\n" +
           linesOf(stepsWith(hasUsual ? "" : " --database " + quoted(here.databases.front())));
  }
  if (!here.servers.empty())
    return "Configured servers: " + joined(here.servers) + ". To begin with:\n" +
           linesOf(stepsWith(" --server " + quoted(here.servers.front())));
  return "There is no audit trail on this computer yet. To begin with:\n" + linesOf(stepsWithoutATrail());
}

}  // namespace korvel::cli
