#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "output/print_font.h"
#include "output/report.h"

namespace korvel::output {

/// What stands above the rows of a report's section.
struct SectionHead {
  std::string caption;
  PrintFont font;  ///< of the column headers
  std::vector<std::string> headers;
  /// How wide the columns are compared with each other, one each; empty where that follows from what is in them.
  std::vector<double> widths = {};
};

/// A report to be laid out: sections one after the other, each with its rows. It can be gone through as often as is
/// needed. All texts are UTF-8. Throws Error where it cannot be read.
class ReportSource {
 public:
  virtual ~ReportSource() = default;
  /// Back to before the first section.
  virtual void rewind() = 0;
  /// Goes to the next section, whose rows follow; remaining rows of the one before are skipped. False after the last
  /// one.
  virtual bool nextSection(SectionHead& head) = 0;
  /// The next row of the section, as many cells as it has headers, valid until the next call. False after the last one.
  virtual bool nextRow(std::vector<std::string_view>& cells) = 0;
};

/// Columns of a list as somebody arranged them.
struct ColumnArrangement {
  std::vector<results::ColumnIndex> columns;  ///< that are shown, in their order; empty: all
  std::vector<double> widths;                 ///< of these columns; empty where nobody chose them
};

/// Lists as they are displayed, without the detour of a file: nothing is lost to a code page.
class ListSource final : public ReportSource {
 public:
  /// The lists must outlive it and keep their rows.
  ListSource(std::span<const ReportList> lists, PrintFont font);
  /// One list, which the source keeps.
  ListSource(std::string caption, std::shared_ptr<const results::ResultList> list, PrintFont font,
             ColumnArrangement arrangement = {});

  void rewind() override;
  bool nextSection(SectionHead& head) override;
  bool nextRow(std::vector<std::string_view>& cells) override;

 private:
  struct Section {
    std::string caption;
    std::shared_ptr<const results::ResultList> list;
    ColumnArrangement arrangement;  ///< with all columns where none were chosen
  };
  void add(std::string caption, std::shared_ptr<const results::ResultList> list, ColumnArrangement arrangement);

  std::vector<Section> sections_;
  PrintFont font_;
  std::size_t nextSection_ = 0;
  std::size_t nextRow_ = 0;
};

}  // namespace korvel::output
