#include "cli/verify_command.h"

#include <CLI/CLI.hpp>
#include <ostream>

#include "base/error.h"
#include "base/paths.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "evidence/verification.h"

namespace korvel::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* footer =
    "FILE is an output that was written with --manifest, its manifest, or a folder: all outputs in\n"
    "it that have a manifest. Nothing is changed, and no server is asked.\n"
    "\n"
    "A line a file goes to standard output: \"unchanged\", or what differs, a line each. Of csv,\n"
    "json and xlsx the rows that were changed, inserted, moved or removed are named, counted from 1 without\n"
    "the line of names. The exit status is 0 where all are unchanged, else 5.\n"
    "\n"
    "Manifests and sums show that a file is as it was written. They do not show who wrote it: who\n"
    "may replace all three files can replace them by others that match. Keep the sums elsewhere\n"
    "where that matters. \"sha256sum -c NAME.sha256\" checks the same without this program.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit query --format csv --output batch.csv --manifest\n"
    "  korvel-audit verify batch.csv\n"
    "  korvel-audit verify /srv/reviews\n";

/// The outputs that all names mean.
std::vector<fs::path> namedOutputs(const std::vector<std::string>& files, std::ostream& err, int& status) {
  std::vector<fs::path> outputs;
  for (const std::string& file : files) {
    const std::vector<fs::path> named = evidence::outputsOf(pathFromUtf8(file));
    if (named.empty()) {
      say(err, "there is no manifest in " + file);
      status = exitIncomplete;
    }
    outputs.insert(outputs.end(), named.begin(), named.end());
  }
  return outputs;
}

}  // namespace

CLI::App* addVerifyCommand(CLI::App& app, VerifyOptions& options) {
  CLI::App* command = app.add_subcommand("verify", "Compare outputs with the manifests written beside them");
  command->add_option("file", options.files, "Output, manifest or folder; may be repeated")
      ->option_text("FILE")
      ->required();
  command->footer(footer);
  return command;
}

int runVerify(const VerifyOptions& options, std::ostream& out, std::ostream& err) {
  const Interruption interruption;
  const auto untilStopped = [](std::uint64_t /*bytes*/) {
    if (Interruption::requested()) throw Stopped{};
  };
  int status = exitDone;
  try {
    for (const fs::path& output : namedOutputs(options.files, err, status)) {
      const evidence::Verification verified = evidence::verifyOutput(output, untilStopped);
      std::string text;
      const std::string name = output::terminalText(utf8FromPath(output));
      if (verified.isUnchanged()) text += name + ": unchanged\n";
      for (const std::string& finding : verified.findings) text += name + ": " + output::terminalText(finding) + '\n';
      if (!verified.isUnchanged()) status = exitIncomplete;
      if (const int written = writeText(out, err, text, exitDone); written != exitDone) return written;
    }
    return status;
  } catch (const Stopped&) {
    return stopped(err);
  } catch (const Error& error) {
    return outputFailed(err, error);
  }
}

}  // namespace korvel::cli
