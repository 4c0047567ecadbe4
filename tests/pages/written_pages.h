#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"
#include "tests/support/filled_list.h"
#include "tests/support/program_output.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output::pages {

inline std::size_t count(const std::string& text, const std::string& part) {
  std::size_t found = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++found;
  return found;
}

/// Rows whose first cells are N0E, N1E and so on.
inline std::vector<test::ScriptedRow> numberedRows(int rows, std::size_t columns) {
  std::vector<test::ScriptedRow> made;
  for (int i = 0; i < rows; ++i) {
    test::ScriptedRow row{"N" + std::to_string(i) + "E"};
    while (row.size() < columns) row.emplace_back("value " + std::to_string(i));
    made.push_back(std::move(row));
  }
  return made;
}

/// Reports as PDF documents, read back by another program.
struct WrittenPages : testing::Test {
  PaintedPages write(ReportSource& source, const PageProgress& progress = {}, const PageSelection& selection = {}) {
    std::string bytes;
    const PaintedPages painted = writePdf(
        source, texts, [&](std::string_view chunk) { bytes += chunk; }, progress, QPageSize(QPageSize::A4), selection);
    writeFileAtomically(folder / "pages.pdf", bytes);
    return painted;
  }
  PaintedPages write(const results::ResultList& list, const PageProgress& progress = {},
                     const PageSelection& selection = {}) {
    const ReportList reported{"ALL Audits", &list};
    ListSource source({&reported, 1}, {"Courier", 9});
    return write(source, progress, selection);
  }
  /// The text of one page or of all, as a reader extracts it.
  std::string text(int page = 0) {
    const std::string number = std::to_string(page);
    return test::outputOf("pdftotext -raw " + (page == 0 ? "" : "-f " + number + " -l " + number) + " '" +
                          (folder / "pages.pdf").string() + "' -");
  }

  test::TemporaryFolder folder;
  PageTexts texts{QStringLiteral("Printed 2004-03-07"), QStringLiteral("Page %1 of %2"), QStringLiteral("the note")};
};

}  // namespace korvel::output::pages
