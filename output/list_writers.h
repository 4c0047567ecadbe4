#pragma once

#include <array>
#include <string_view>

#include "output/byte_sink.h"
#include "results/result_list.h"

namespace korvel::output {

/// The forms in which a list leaves the system as bytes, all in UTF-8.
enum class ListFormat {
  table,     ///< as displayed, aligned for a terminal
  text,      ///< as displayed, the layout of the text export
  exchange,  ///< as displayed, the layout of the spreadsheet's exchange file
  csv,       ///< every column of the records, values as stored
  json       ///< every column of the records, values as stored
};

struct ListFormatName {
  std::string_view name;
  ListFormat format;
};
inline constexpr std::array<ListFormatName, 5> listFormatNames{{{"table", ListFormat::table},
                                                                {"text", ListFormat::text},
                                                                {"exchange", ListFormat::exchange},
                                                                {"csv", ListFormat::csv},
                                                                {"json", ListFormat::json}}};

/// Writes the list's rows in their order, chunk by chunk. What the sink throws comes through; the output is then
/// incomplete.
void writeList(ListFormat format, const results::ResultList& list, const ByteSink& sink);

}  // namespace korvel::output
