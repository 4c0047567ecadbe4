#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

#include "output/byte_sink.h"
#include "results/result_list.h"

namespace korvel::output {

inline constexpr std::string_view textExportName = "velview.txt";
inline constexpr std::string_view exchangeFileName = "velviewex.log";

/// All write the list as it is displayed (SeparatedTextWriter) in the system's code page, those to a path
/// atomically, over an earlier file. They return how many characters the code page does not hold; each stands as "?" in
/// the file. Throw Error with a FileError.

/// The text export: commas.
std::size_t writeTextExport(const results::ResultList& list, const std::filesystem::path& file,
                            const RowProgress& progress = {});
std::size_t writeTextExport(const results::ResultList& list, const ByteSink& file, const RowProgress& progress = {});
/// The exchange file of the spreadsheet export: vertical bars.
std::size_t writeExchangeFile(const results::ResultList& list, const std::filesystem::path& file,
                              const RowProgress& progress = {});
std::size_t writeExchangeFile(const results::ResultList& list, const ByteSink& file, const RowProgress& progress = {});

}  // namespace korvel::output
