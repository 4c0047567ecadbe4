#pragma once

#include <string_view>
#include <vector>

#include "output/report_source.h"

namespace korvel::test {

/// A report without records.
class NoSections final : public output::ReportSource {
 public:
  void rewind() override {}
  bool nextSection(output::SectionHead& /*head*/) override { return false; }
  bool nextRow(std::vector<std::string_view>& /*cells*/) override { return false; }
};

}  // namespace korvel::test
