// Any values of an audit trail are read back from a report as they were written; markup in a value never counts as the
// report's own. Any other content of the file is refused, without reading beyond it.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "output/report.h"
#include "output/report_reader.h"
#include "results/row_store.h"
#include "settings/code_page.h"

namespace {

using namespace korvel;

class TextBytes : public output::ReportBytes {
 public:
  explicit TextBytes(std::string text) : text_(std::move(text)) {}
  void rewind() override { at_ = 0; }
  std::size_t read(std::span<char> to) override {
    const std::size_t size = std::min(to.size(), text_.size() - at_);
    std::copy_n(text_.data() + at_, size, to.data());
    at_ += size;
    return size;
  }

 private:
  std::string text_;
  std::size_t at_ = 0;
};

/// Texts of the input, separated by zero bytes; the first byte is the number of columns.
struct Input {
  std::size_t columns = 1;
  std::vector<std::string> texts;

  Input(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    if (!rest.empty()) {
      columns = 1 + static_cast<unsigned char>(rest.front()) % 4;
      rest.remove_prefix(1);
    }
    for (;;) {
      const std::size_t end = rest.find('\0');
      texts.emplace_back(rest.substr(0, end));
      if (end == std::string_view::npos) break;
      rest.remove_prefix(end + 1);
    }
    texts.resize((texts.size() + columns - 1) / columns * columns);
  }
};

results::ResultList listOf(const Input& input) {
  auto store = std::make_shared<results::RowStore>();
  std::vector<db::Field> fields(input.columns);
  std::vector<results::ColumnHeader> headers;
  for (std::size_t i = 0; i < input.columns; ++i) headers.push_back({input.texts.at(i), results::standardColumnWidth});
  store->beginResult(fields);
  std::vector<results::RowId> ids;
  for (std::size_t at = 0; at < input.texts.size(); at += input.columns) {
    std::vector<db::Cell> cells;
    for (std::size_t i = 0; i < input.columns; ++i) cells.push_back({input.texts[at + i]});
    ids.push_back(store->append(cells));
  }
  results::ResultList list(results::RowFilling::whole);
  list.setColumns(headers);
  list.setRows(store, ids);
  return list;
}

std::string throughCodePage(std::string_view text) {
  return settings::fromCodePage(settings::toCodePage(text));
}

void checkGivenBack(const results::ResultList& list, const std::string& bytes, const output::ReportNotes& notes) {
  output::ReportReader reader(std::make_unique<TextBytes>(bytes), notes);
  output::SectionHead head;
  std::vector<std::string_view> cells;
  if (!reader.nextSection(head)) std::abort();
  std::size_t row = 0;
  for (; reader.nextRow(cells); ++row)
    for (std::size_t i = 0; i < cells.size(); ++i)
      if (cells[i] != throughCodePage(list.text({row}, {i}))) std::abort();
  if (row != list.rowCount() || reader.nextSection(head)) std::abort();
}

void checkRefused(const std::string& bytes, const output::ReportNotes& notes) {
  try {
    output::ReportReader reader(std::make_unique<TextBytes>(bytes), notes);
    output::SectionHead head;
    while (reader.nextSection(head)) {
    }
  } catch (const Error&) {
    return;
  }
  std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Input input(data, size);
  const results::ResultList list = listOf(input);
  std::string bytes;
  const output::ReportList reported{input.texts.front(), &list};
  output::ReportNotes notes =
      output::writeReport(output::ReportTemplate::singleList, {&reported, 1}, {input.texts.back(), 9.75},
                          [&](std::string_view chunk) { bytes += chunk; });
  checkGivenBack(list, bytes, notes);
  std::string changed = bytes;
  changed.at(size % changed.size()) = static_cast<char>(changed.at(size % changed.size()) ^ 0x20);
  checkRefused(changed, notes);
  checkRefused(std::string(reinterpret_cast<const char*>(data), size), notes);
  // Notes without a writer.
  notes.marked.push_back({size, bytes.size() * 2});
  if (!notes.sections.empty()) ++notes.sections.front().columns;
  checkRefused(bytes, notes);
  return 0;
}
