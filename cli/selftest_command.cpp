#include "cli/selftest_command.h"

#include <CLI/CLI.hpp>
#include <QtGlobal>
#include <filesystem>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "cli/built_in_trail.h"
#include "cli/common_options.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "cli/platform.h"
#include "db/odbc/driver_versions.h"
#include "evidence/installed_files.h"
#include "query/query_failure.h"
#include "results/row_store.h"

namespace korvel::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* footer =
    "Three things are shown, a row each: the versions of the program and of the libraries that it\n"
    "runs with; each file of the installation, compared with the list of SHA-256 sums that was\n"
    "installed with it (checksums.sha256, in share/korvel-audit-viewer or beside the program); and a\n"
    "query over a trail that is made for it in the folder for temporary files, whose answer has a\n"
    "known digest. No server is asked.\n"
    "\n"
    "The exit status is 0 where each file is as it was installed and the digest is the known one,\n"
    "else 5; also where there is no list: then nothing is known of the files.\n"
    "\n"
    "The list shows that files were not changed since the installation. Who may change the files may\n"
    "change the list: keep a copy of it elsewhere, and name it with --list, where that matters.\n"
    "\n"
    "Examples:\n"
    "  korvel-audit selftest\n"
    "  korvel-audit selftest --format json --output selftest.json\n";

/// The report: a row for each thing that was looked at, and what is wrong in all.
class Report {
 public:
  Report() {
    std::vector<db::Field> fields;
    for (const char* caption : {"Check", "Name", "Result", "Found", "Expected"}) {
      fields.push_back({caption});
      headers_.push_back({caption, results::standardColumnWidth, 0});
    }
    store_->beginResult(fields);
  }

  void version(const std::string& name, const std::string& found) {
    add("version", name, "", found.empty() ? "unknown" : found, "");
  }
  void passed(const std::string& check, const std::string& name, const std::string& found,
              const std::string& expected) {
    add(check, name, "ok", found, expected);
  }
  void failed(const std::string& check, const std::string& name, const std::string& result, const std::string& found,
              const std::string& expected) {
    add(check, name, result, found, expected);
    ++failures_;
  }

  [[nodiscard]] std::size_t failures() const noexcept { return failures_; }
  [[nodiscard]] results::ResultList take() {
    results::ResultList list(results::RowFilling::whole);
    list.setColumns(std::move(headers_));
    list.setRows(store_, std::move(rows_));
    return list;
  }

 private:
  void add(const std::string& check, const std::string& name, const std::string& result, const std::string& found,
           const std::string& expected) {
    const std::vector<db::Cell> cells = {{check}, {name}, {result}, {found}, {expected}};
    rows_.push_back(store_->append(cells));
  }

  std::shared_ptr<results::RowStore> store_ = std::make_shared<results::RowStore>();
  std::vector<results::ColumnHeader> headers_;
  std::vector<results::RowId> rows_;
  std::size_t failures_ = 0;
};

void untilStopped() {
  if (Interruption::requested()) throw Stopped{};
}

void reportFile(Report& report, const evidence::InstalledFile& file) {
  const std::string expected = hexText(file.expected);
  if (file.isUnchanged()) return report.passed("file", file.name, expected, expected);
  if (file.isMissing) return report.failed("file", file.name, "missing", "", expected);
  if (!file.found) return report.failed("file", file.name, "unreadable", file.failure, expected);
  report.failed("file", file.name, "changed", hexText(*file.found), expected);
}

std::string placesText() {
  std::string text;
  for (const fs::path& place : evidence::placesOfLists(programFolder()))
    text.append(text.empty() ? "none in " : " and ").append(utf8FromPath(place));
  return text;
}

/// Gives the number of files.
std::size_t checkFiles(const SelftestOptions& options, Report& report) {
  const std::vector<fs::path> lists = options.list.empty() ? evidence::installedLists(programFolder())
                                                           : std::vector<fs::path>{pathFromUtf8(options.list)};
  if (lists.empty()) report.failed("list", "checksums.sha256", "no list", placesText(), "");
  std::size_t count = 0;
  for (const fs::path& list : lists) {
    const std::string name = utf8FromPath(list);
    try {
      const auto checked = evidence::checkInstalledFiles(list, [](std::uint64_t /*bytes*/) { untilStopped(); });
      report.passed("list", name, std::to_string(checked.size()) + " files", "");
      for (const evidence::InstalledFile& file : checked) reportFile(report, file);
      count += checked.size();
    } catch (const Error& error) {
      report.failed("list", name, "no list", error.description(), "");
    }
  }
  return count;
}

/// Gives the engine that answered.
std::string checkQuery(const query::Connector& connect, Report& report) {
  constexpr const char* name = "all audits of the built-in trail";
  const std::string expected(builtInDigest);
  std::error_code noFolder;
  const fs::path folder = fs::temp_directory_path(noFolder);
  try {
    if (noFolder) throw systemError(systemErrorNumber(noFolder), "there is no folder for temporary files");
    const BuiltInAnswer answer = askBuiltInTrail(folder, connect);
    if (answer.digest == expected)
      report.passed("query", name, answer.digest, expected);
    else
      report.failed("query", name, "another answer", answer.digest, expected);
    return answer.engine;
  } catch (const Error& error) {
    report.failed("query", name, "failed", errorText(error), expected);
    return {};
  }
}

struct Tested {
  Report report;
  std::size_t files = 0;
};

Tested test(const query::Connector& connect, const SelftestOptions& options) {
  Tested tested;
  Report& report = tested.report;
  report.version("korvel-audit", KORVEL_VERSION);
  report.version("Qt", qVersion());
  report.version("ODBC driver manager", db::odbc::driverManagerVersion());
  for (const db::odbc::DriverVersion& driver : db::odbc::driverVersions())
    report.version("ODBC driver " + driver.name,
                   driver.version.empty() ? driver.library : driver.version + " (" + driver.library + ")");
  untilStopped();
  const std::string engine = checkQuery(connect, report);
  report.version("engine of the query", engine);
  untilStopped();
  tested.files = checkFiles(options, report);
  return tested;
}

std::string sentenceOf(const Tested& tested) {
  const std::string files = std::to_string(tested.files) + (tested.files == 1 ? " file" : " files");
  if (tested.report.failures() == 0) return "PASSED: " + files + " and the known query are as they must be";
  const std::size_t failures = tested.report.failures();
  return "FAILED: " + std::to_string(failures) + (failures == 1 ? " check" : " checks") + "; " + files + " compared";
}

int writeReport(const SelftestOptions& options, Tested& tested, std::ostream& out, std::ostream& err) {
  const std::string sentence = sentenceOf(tested);
  if (!options.quiet) say(err, sentence);
  const int status = tested.report.failures() == 0 ? exitDone : exitIncomplete;
  const results::ResultList list = tested.report.take();
  writeTo(options.output, out, [&](const output::ByteSink& sink) {
    options.format->write({list, "Self-test", sentence}, untilInterrupted(sink), err);
  });
  return status;
}

}  // namespace

CLI::App* addSelftestCommand(CLI::App& app, SelftestOptions& options) {
  CLI::App* command = app.add_subcommand("selftest", "Show versions, compare installed files, run a known query");
  command->add_option("--list", options.list, "List of sums to compare with, instead of the installed one")
      ->option_text("FILE");
  addTarget(*command, options.format, options.output);
  command->add_flag("--quiet", options.quiet, "Leave out the sentence on standard error");
  command->footer(footer);
  return command;
}

int runSelftest(const SelftestOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err) {
  if (const auto problem = targetProblem(*options.format, options.output, out)) return refused(err, *problem);
  const Interruption interruption;
  int status = exitDone;
  const auto failure = query::failureOf([&] {
    try {
      Tested tested = test(connect, options);
      status = writeReport(options, tested, out, err);
    } catch (const Stopped&) {
      status = stopped(err);
    }
  });
  return failure ? outputFailed(err, *failure) : status;
}

}  // namespace korvel::cli
