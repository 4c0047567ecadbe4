#include "output/text_export.h"

#include <string>

#include "output/export_file.h"
#include "output/list_writers.h"
#include "output/separated_text.h"
#include "settings/code_page.h"

namespace korvel::output {

namespace {

std::size_t writeLines(const results::ResultList& list, char separator, const ByteSink& file,
                       const RowProgress& progress) {
  std::size_t replaced = 0;
  std::string bytes;
  const ByteSink inCodePage = [&](std::string_view lines) {
    bytes.clear();
    replaced += settings::appendInCodePage(lines, bytes);
    file(bytes);
  };
  SeparatedTextWriter writer(inCodePage, separator);
  writeDisplayedRows(list, writer, progress);
  return replaced;
}

std::size_t writeLines(const results::ResultList& list, char separator, const std::filesystem::path& path,
                       const RowProgress& progress) {
  ExportFile file(path);
  const std::size_t replaced = writeLines(
      list, separator, [&file](std::string_view bytes) { file.write(bytes); }, progress);
  file.commit();
  return replaced;
}

}  // namespace

std::size_t writeTextExport(const results::ResultList& list, const std::filesystem::path& file,
                            const RowProgress& progress) {
  return writeLines(list, textExportSeparator, file, progress);
}

std::size_t writeTextExport(const results::ResultList& list, const ByteSink& file, const RowProgress& progress) {
  return writeLines(list, textExportSeparator, file, progress);
}

std::size_t writeExchangeFile(const results::ResultList& list, const std::filesystem::path& file,
                              const RowProgress& progress) {
  return writeLines(list, exchangeSeparator, file, progress);
}

std::size_t writeExchangeFile(const results::ResultList& list, const ByteSink& file, const RowProgress& progress) {
  return writeLines(list, exchangeSeparator, file, progress);
}

}  // namespace korvel::output
