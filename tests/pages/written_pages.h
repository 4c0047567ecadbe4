#pragma once

#include <gtest/gtest.h>

#include <QRectF>
#include <QSizeF>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "base/atomic_file.h"
#include "output/pages/pdf.h"
#include "output/report_source.h"
#include "tests/support/filled_list.h"
#include "tests/support/program_output.h"
#include "tests/support/temporary_folder.h"

namespace korvel::output::pages {

/// A word on a page, and its position in points.
struct Word {
  QRectF box;
  std::string text;
};
struct WrittenPage {
  QSizeF size;
  std::vector<Word> words;

  /// The first such word; an empty one where there is none.
  [[nodiscard]] Word word(const std::string& text) const {
    for (const Word& each : words)
      if (each.text == text) return each;
    ADD_FAILURE() << "no word " << text;
    return {};
  }
};

/// The pages of a document.
inline std::vector<WrittenPage> pagesOf(const std::filesystem::path& file) {
  const std::string xml = test::outputOf("pdftotext -bbox '" + file.string() + "' -");
  static const std::regex tag(
      "<page width=\"([0-9.]+)\" height=\"([0-9.]+)\"|<word xMin=\"([0-9.-]+)\" yMin=\"([0-9.-]+)\" "
      "xMax=\"([0-9.-]+)\" yMax=\"([0-9.-]+)\">([^<]*)</word>");
  std::vector<WrittenPage> pages;
  for (std::sregex_iterator found(xml.begin(), xml.end(), tag), end; found != end; ++found) {
    const std::smatch& match = *found;
    if (match[1].length() > 0)
      pages.push_back({QSizeF(std::stod(match[1]), std::stod(match[2])), {}});
    else
      pages.back().words.push_back(
          {{QPointF(std::stod(match[3]), std::stod(match[4])), QPointF(std::stod(match[5]), std::stod(match[6]))},
           match[7]});
  }
  return pages;
}

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
  WrittenPages() { texts.head.origin = "Printed 2004-03-07"; }

  PaintedPages write(ReportSource& source, const PageProgress& progress = {}, const PageSelection& selection = {}) {
    std::string bytes;
    const PaintedPages painted = writePdf(
        source, texts, [&](std::string_view chunk) { bytes += chunk; }, progress, QPageSize(paper), selection);
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
  QPageSize::PageSizeId paper = QPageSize::A4;
  PageTexts texts;
};

}  // namespace korvel::output::pages
