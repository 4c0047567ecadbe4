#include "cli/manifest_option.h"

#include <CLI/CLI.hpp>
#include <array>

#include "base/files.h"
#include "base/paths.h"
#include "evidence/answer_record.h"
#include "evidence/origin.h"

namespace korvel::cli {

void addManifest(CLI::App& command, bool& wanted) {
  command.add_flag("--manifest", wanted,
                   "Write NAME.manifest.json and NAME.sha256 beside the\noutput: where it comes from, and sums of it");
}

std::optional<std::string> manifestProblem(const std::string& output) {
  if (output == "-") return "--manifest stands beside a file: name one with --output";
  std::error_code ignored;
  const auto status = files::status(pathFromUtf8(output), ignored);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    return "--manifest stands beside a file, and " + output + " is none";
  return std::nullopt;
}

evidence::Manifest begunManifest(const std::string& server, const std::string& database) {
  evidence::Manifest manifest = evidence::begunRecord(server, database);
  manifest.program = "korvel-audit";
  manifest.programVersion = KORVEL_VERSION;
  manifest.user = evidence::systemUser();
  manifest.computer = evidence::computerName();
  return manifest;
}

RepeatedNotes::~RepeatedNotes() {
  constexpr std::array<std::string_view, 2> beginnings = {"korvel-audit: ", "note: "};
  err_ << notes_.str();
  std::istringstream lines(notes_.str());
  for (std::string line; std::getline(lines, line);) {
    for (const std::string_view beginning : beginnings)
      if (line.starts_with(beginning)) line.erase(0, beginning.size());
    manifest_.notes.push_back(line);
  }
}

}  // namespace korvel::cli
