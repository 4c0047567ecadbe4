#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "output/byte_sink.h"
#include "output/page_head.h"
#include "output/row_writer.h"
#include "results/result_list.h"

namespace korvel::cli {

/// A list to be written, and the caption of its page.
struct CaptionedList {
  const results::ResultList& list;
  std::string_view caption;
  std::string remark;  ///< what a reader of pages or of a workbook would not expect; empty where there is nothing
  /// What stands above and below the rows on pages; asked only for a format that has pages. Without it the remark.
  std::function<output::PageHead()> head{};
};

/// A format in which a list is written.
struct OutputFormat {
  std::string_view name;
  bool isBinary;  ///< not written to a terminal
  /// Writes the list; notes to `err` what the format cannot carry.
  void (*write)(const CaptionedList& list, const output::ByteSink& sink, std::ostream& err);
  /// Writes records one by one, in the memory of a few; null for a form that has to know all of them first. Caption,
  /// sink and `err` outlive what it gives.
  std::unique_ptr<output::RowWriter> (*stream)(std::string_view caption, const output::ByteSink& sink,
                                               std::ostream& err);
};

/// All of them, the default one first.
[[nodiscard]] std::span<const OutputFormat> outputFormats() noexcept;
/// The one of this name, in any case of letters; null where there is none.
[[nodiscard]] const OutputFormat* outputFormatNamed(std::string_view name) noexcept;

}  // namespace korvel::cli
