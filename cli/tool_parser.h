#pragma once

#include <CLI/CLI.hpp>
#include <utility>
#include <vector>

#include "cli/chart_command.h"
#include "cli/compare_command.h"
#include "cli/demo_command.h"
#include "cli/history_command.h"
#include "cli/marks_command.h"
#include "cli/query_command.h"
#include "cli/review_command.h"
#include "cli/selftest_command.h"
#include "cli/server_commands.h"
#include "cli/snapshot_command.h"
#include "cli/sql_command.h"
#include "cli/verify_command.h"

namespace korvel::cli {

/// The tool without its commands, which take over how it shows its help.
struct ToolApp : CLI::App {
  ToolApp();
};

/// The tool's command line: all commands with their options, and what parsing found. The tool runs by it, and manual
/// page and completion are made of it.
struct ToolParser {
  ToolParser();
  ToolParser(const ToolParser&) = delete;
  ToolParser& operator=(const ToolParser&) = delete;

  ToolApp app;

  DemoOptions demoOptions;
  QueryOptions queryOptions;
  HistoryOptions historyOptions;
  ReviewOptions reviewOptions;
  MarksOptions marksOptions;
  ChartOptions chartOptions;
  SqlOptions sqlOptions;
  VerifyOptions verifyOptions;
  SnapshotOptions snapshotOptions;
  CompareOptions compareOptions;
  SelftestOptions selftestOptions;
  ServerOptions serverOptions;

  // The commands, which belong to the parser.
  const CLI::App* demo;
  const CLI::App* query;
  const CLI::App* history;
  const CLI::App* review;
  const CLI::App* marks;
  const CLI::App* chart;
  const CLI::App* sql;
  const CLI::App* verify;
  const CLI::App* snapshot;
  const CLI::App* compare;
  const CLI::App* selftest;
  std::vector<std::pair<const ServerCommand*, const CLI::App*>> serverCommands;
};

}  // namespace korvel::cli
