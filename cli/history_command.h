#pragma once

#include <iosfwd>
#include <string>

#include "cli/output_formats.h"
#include "cli/row_choice.h"
#include "cli/standard_question.h"

namespace korvel::cli {

struct HistoryOptions : StandardQuestion {
  RowChoice choice;  ///< its conditions alone
  std::string item;
  std::string area;
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
};

/// Adds `history` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addHistoryCommand(CLI::App& app, HistoryOptions& options);
int runHistory(const HistoryOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
