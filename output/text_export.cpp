#include "output/text_export.h"

#include <string>

#include "output/export_file.h"
#include "output/separated_lines.h"
#include "settings/code_page.h"

namespace korvel::output {

namespace {

constexpr std::size_t chunkBytes = std::size_t{1} << 18U;

std::size_t writeLines(const results::ResultList& list, char separator, const std::filesystem::path& path,
                       const RowProgress& progress) {
  ExportFile file(path);
  std::size_t replaced = 0;
  std::string lines;
  std::string bytes;
  const auto flush = [&] {
    bytes.clear();
    replaced += settings::appendInCodePage(lines, bytes);
    file.write(bytes);
    lines.clear();
  };
  lines.reserve(2 * chunkBytes);
  appendHeaderLine(list, separator, lines);
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    appendRowLine(list, {row}, separator, lines);
    if (lines.size() >= chunkBytes) flush();
    reportRows(progress, row + 1, list.rowCount());
  }
  flush();
  file.commit();
  return replaced;
}

}  // namespace

std::size_t writeTextExport(const results::ResultList& list, const std::filesystem::path& file,
                            const RowProgress& progress) {
  return writeLines(list, textExportSeparator, file, progress);
}

std::size_t writeExchangeFile(const results::ResultList& list, const std::filesystem::path& file,
                              const RowProgress& progress) {
  return writeLines(list, exchangeSeparator, file, progress);
}

}  // namespace korvel::output
