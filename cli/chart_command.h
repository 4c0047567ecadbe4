#pragma once

#include <iosfwd>
#include <string>

#include "cli/row_choice.h"
#include "cli/standard_question.h"
#include "query/activity.h"

namespace korvel::cli {

enum class ChartLook { light, dark, black };

struct ChartOptions : StandardQuestion {
  RowChoice choice;  ///< its conditions alone
  query::ActivityStep step = query::ActivityStep::day;
  results::ColumnIndex stack;
  ChartLook look = ChartLook::light;
  std::string output;
};

/// Adds `chart` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addChartCommand(CLI::App& app, ChartOptions& options);
int runChart(const ChartOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
