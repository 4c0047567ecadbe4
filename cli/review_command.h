#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "cli/output_formats.h"
#include "cli/standard_question.h"
#include "evidence/exceptions.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct ReviewOptions : StandardQuestion {
  std::vector<evidence::ExceptionRule> rules;  ///< empty: all
  evidence::WorkingHours hours;
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
};

/// Adds `review` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addReviewCommand(CLI::App& app, ReviewOptions& options);
/// Writes the records that a reviewer should look at; gives the exit status.
int runReview(const ReviewOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
