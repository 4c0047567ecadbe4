#pragma once

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/byte_sink.h"
#include "output/print_font.h"
#include "results/result_list.h"

namespace korvel::output {

inline constexpr std::string_view reportName = "report.htm";

/// A list and the caption of its page.
struct ReportList {
  std::string_view caption;
  const results::ResultList* list = nullptr;
};

enum class ReportTemplate {
  singleList,  ///< what is printed
  allLists     ///< with two lines for the project above; the second template, which no command uses
};

/// Writes a report: HTML in the system's code page, no value escaped, deliberately. Lists without rows are written too.
/// What the sink throws comes through. `progress` counts the rows of all lists together. Returns how many characters
/// the code page does not hold: each stands as "?".
std::size_t writeReport(ReportTemplate form, std::span<const ReportList> lists, const PrintFont& font,
                        const ByteSink& sink, const RowProgress& progress = {});

/// The report of one list into an atomic file, over an earlier one. Throws Error with a FileError.
std::size_t writeListReport(const ReportList& list, const PrintFont& font, const std::filesystem::path& file,
                            const RowProgress& progress = {});
/// The same for those lists 1 to 4 that have rows; `lists` and `captions` are those of all pages.
std::size_t writeAllListsReport(std::span<const results::ResultList> lists, std::span<const std::string_view> captions,
                                const PrintFont& font, const std::filesystem::path& file,
                                const RowProgress& progress = {});

/// The lists of the second template: 1 to 4, as far as they have rows.
[[nodiscard]] std::vector<ReportList> listsWithRows(std::span<const results::ResultList> lists,
                                                    std::span<const std::string_view> captions);

}  // namespace korvel::output
