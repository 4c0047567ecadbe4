#pragma once

#include "cli/output_formats.h"

namespace korvel::cli {

/// The list as pages, values as they are stored in Unicode. Starts Qt only now, without a display.
void writePdf(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err);

}  // namespace korvel::cli
