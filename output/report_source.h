#pragma once

#include <cstddef>
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

/// Lists as they are displayed, without the detour of a file: nothing is lost to a code page. The lists must outlive it
/// and keep their rows.
class ListSource final : public ReportSource {
 public:
  ListSource(std::span<const ReportList> lists, PrintFont font);

  void rewind() override;
  bool nextSection(SectionHead& head) override;
  bool nextRow(std::vector<std::string_view>& cells) override;

 private:
  std::vector<ReportList> lists_;
  PrintFont font_;
  std::size_t nextList_ = 0;
  std::size_t nextRow_ = 0;
};

}  // namespace korvel::output
