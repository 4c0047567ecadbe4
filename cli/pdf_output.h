#pragma once

#include "cli/output_formats.h"

class QDateTime;
class QString;

namespace korvel::cli {

/// What pages say of the time of their printing.
[[nodiscard]] QString printedAt(const QDateTime& time);

/// The list as pages, values as they are stored in Unicode. Starts what draws text only now, without a display.
void writePdf(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err);

}  // namespace korvel::cli
