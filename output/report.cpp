#include "output/report.h"

#include <array>
#include <charconv>

#include "output/export_file.h"
#include "output/report_layout.h"
#include "settings/code_page.h"

namespace korvel::output {

namespace {

constexpr std::size_t firstReportedList = 1;
constexpr std::size_t lastReportedList = 4;

class ReportWriter {
 public:
  ReportWriter(const ByteSink& sink, const RowProgress& progress, std::size_t rows)
      : sink_(sink), progress_(progress), rows_(rows) {
    text_.reserve(2 * chunkBytes);
  }

  std::size_t write(ReportTemplate form, std::span<const ReportList> lists, const PrintFont& font) {
    text_ += layout::start;
    if (form == ReportTemplate::allLists) text_ += layout::project;
    for (const ReportList& list : lists) section(list, font);
    text_ += layout::end;
    flush();
    return replaced_;
  }

 private:
  void section(const ReportList& reported, const PrintFont& font) {
    const results::ResultList& list = *reported.list;
    value(layout::captionStart, reported.caption, layout::captionEnd);
    text_ += layout::tableStart;
    text_ += layout::fontStart;
    text_ += fontSizeText(font.size);
    value(layout::fontSizeEnd, font.name, layout::fontEnd);
    text_ += layout::rowStart;
    for (const results::ColumnHeader& column : list.columns())
      value(layout::headerStart, column.caption, layout::headerEnd);
    text_ += layout::headerRowEnd;
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
      text_ += layout::rowStart;
      for (std::size_t column = 0; column < list.columns().size(); ++column)
        value(layout::cellStart, list.text({row}, {column}), layout::cellEnd);
      text_ += layout::rowEnd;
      if (text_.size() >= chunkBytes) flush();
      reportRows(progress_, ++done_, rows_);
    }
    text_ += layout::tableEnd;
  }

  void value(std::string_view before, std::string_view utf8, std::string_view endMark) {
    text_ += before;
    replaced_ += settings::appendInCodePage(utf8, text_);
    text_ += endMark;
  }

  void flush() {
    sink_(text_);
    text_.clear();
  }

  static constexpr std::size_t chunkBytes = std::size_t{1} << 17U;
  const ByteSink& sink_;
  const RowProgress& progress_;
  std::size_t rows_;
  std::size_t done_ = 0;
  std::size_t replaced_ = 0;
  std::string text_;
};

std::size_t writeToFile(ReportTemplate form, std::span<const ReportList> lists, const PrintFont& font,
                        const std::filesystem::path& path, const RowProgress& progress) {
  ExportFile file(path);
  const std::size_t replaced = writeReport(
      form, lists, font, [&file](std::string_view bytes) { file.write(bytes); }, progress);
  file.commit();
  return replaced;
}

}  // namespace

std::size_t writeReport(ReportTemplate form, std::span<const ReportList> lists, const PrintFont& font,
                        const ByteSink& sink, const RowProgress& progress) {
  std::size_t rows = 0;
  for (const ReportList& list : lists) rows += list.list->rowCount();
  return ReportWriter(sink, progress, rows).write(form, lists, font);
}

std::size_t writeListReport(const ReportList& list, const PrintFont& font, const std::filesystem::path& file,
                            const RowProgress& progress) {
  return writeToFile(ReportTemplate::singleList, {&list, 1}, font, file, progress);
}

std::size_t writeAllListsReport(std::span<const results::ResultList> lists, std::span<const std::string_view> captions,
                                const PrintFont& font, const std::filesystem::path& file, const RowProgress& progress) {
  return writeToFile(ReportTemplate::allLists, listsWithRows(lists, captions), font, file, progress);
}

std::vector<ReportList> listsWithRows(std::span<const results::ResultList> lists,
                                      std::span<const std::string_view> captions) {
  std::vector<ReportList> found;
  for (std::size_t i = firstReportedList; i <= lastReportedList && i < lists.size(); ++i)
    if (lists[i].rowCount() > 0) found.push_back({captions[i], &lists[i]});
  return found;
}

}  // namespace korvel::output
