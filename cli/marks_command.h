#pragma once

#include <iosfwd>
#include <string>

#include "cli/output_formats.h"
#include "cli/standard_question.h"

namespace CLI {  // NOLINT(readability-identifier-naming): the parser names it so
class App;
}

namespace korvel::cli {

struct MarksOptions : StandardQuestion {
  std::string file;
  bool withTrail = false;  ///< the trail is asked what changed, and what is not reviewed
  const OutputFormat* format = &outputFormats().front();
  std::string output = "-";
};

/// Adds `marks` to the command line; parsing fills `options`, which must outlive it.
CLI::App* addMarksCommand(CLI::App& app, MarksOptions& options);
/// Writes the report on a review file; gives the exit status.
int runMarks(const MarksOptions& options, const query::Connector& connect, std::ostream& out, std::ostream& err);

}  // namespace korvel::cli
