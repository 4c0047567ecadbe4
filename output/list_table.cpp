#include "output/list_table.h"

#include <algorithm>
#include <vector>

#include "output/terminal_text.h"

namespace korvel::output {

namespace {

constexpr std::size_t widestAlignedColumn = 60;
constexpr std::string_view gap = "  ";

/// Puts cells side by side; blanks are written only in front of something, so that no line ends in them.
class TableLine {
 public:
  TableLine(const std::vector<std::size_t>& widths, std::string& out) : widths_(widths), out_(out) {}

  void cell(std::string_view shown) {
    if (!shown.empty()) {
      out_.append(pending_, ' ');
      pending_ = 0;
      out_ += shown;
    }
    const std::size_t width = terminalWidth(shown);
    const std::size_t wanted = widths_[column_++];
    pending_ += (width < wanted ? wanted - width : 0) + gap.size();
  }
  void end() { out_ += '\n'; }

 private:
  const std::vector<std::size_t>& widths_;
  std::string& out_;
  std::size_t column_ = 0;
  std::size_t pending_ = 0;
};

void widen(std::size_t& width, std::string_view shown) {
  width = std::max(width, std::min(terminalWidth(shown), widestAlignedColumn));
}

}  // namespace

void writeTable(const results::ResultList& list, const ByteSink& sink) {
  const auto& columns = list.columns();
  std::vector<std::size_t> widths(columns.size(), 0);
  std::string shown;
  const auto show = [&shown](std::string_view text) -> const std::string& {
    shown.clear();
    appendTerminalText(text, shown);
    return shown;
  };
  for (std::size_t column = 0; column < columns.size(); ++column) {
    widen(widths[column], show(columns[column].caption));
    for (std::size_t row = 0; row < list.rowCount(); ++row) widen(widths[column], show(list.text({row}, {column})));
  }

  ChunkedText chunks(sink);
  std::string& out = chunks.text();
  TableLine captions(widths, out);
  for (const results::ColumnHeader& column : columns) captions.cell(show(column.caption));
  captions.end();
  TableLine rule(widths, out);
  for (const std::size_t width : widths) rule.cell(std::string(width, '-'));
  rule.end();
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    TableLine line(widths, out);
    for (std::size_t column = 0; column < columns.size(); ++column) line.cell(show(list.text({row}, {column})));
    line.end();
    chunks.endLine();
  }
  chunks.flush();
}

}  // namespace korvel::output
