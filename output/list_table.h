#pragma once

#include "output/byte_sink.h"
#include "results/result_list.h"

namespace korvel::output {

/// The list as a table for a terminal: a line of captions, a rule, the rows as they are displayed, columns aligned by
/// the width that their characters take there, lines ended by LF. Nothing is cut: a value wider than 60 cells pushes
/// the rest of its own line to the right. No value can drive the terminal (terminalText).
void writeTable(const results::ResultList& list, const ByteSink& sink);

}  // namespace korvel::output
