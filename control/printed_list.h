#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "evidence/manifest_head.h"
#include "output/pages/report_pages.h"
#include "output/report_source.h"

namespace korvel::control {

class ResultListView;

/// A list on its way to paper. Its rows stay as they are, whatever the list on the screen shows meanwhile.
struct PrintedList {
  std::string caption{};
  std::shared_ptr<const results::ResultList> list{};
  output::PrintFont font{};
  output::ColumnArrangement arrangement{};
  evidence::Manifest manifest{};       ///< as far as it is known before a file is written
  std::vector<std::string> filters{};  ///< in the language of the pages
  std::string sortedBy{};              ///< likewise
  bool isProven = false;               ///< a file that it is printed into gets the manifest
  evidence::PrintedPart part{};
};

/// The columns that a list shows, in their order on the screen; their widths as soon as one of them is not as wide as
/// it was at first.
[[nodiscard]] output::ColumnArrangement arrangementOf(const ResultListView& list);
/// The captions of the columns that it hides; none where it hides all, because then all are printed.
[[nodiscard]] std::vector<std::string> columnsLeftOut(const ResultListView& list);

/// The rows on paper.
[[nodiscard]] std::unique_ptr<output::ReportSource> sourceOf(const PrintedList& printed);
/// What stands around them, in the language of the moment; `printed` is now.
[[nodiscard]] output::pages::PageTexts pageTextsOf(const PrintedList& printed);

}  // namespace korvel::control
