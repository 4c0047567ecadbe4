#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "output/report.h"
#include "output/report_source.h"

namespace korvel::output {

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
