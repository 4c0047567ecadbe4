#include "output/workbook.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "base/files.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "output/export_file.h"
#include "output/temporary_file.h"
#include "output/terminal_text.h"
#include "output/workbook_cell.h"

namespace korvel::output {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t mostColumns = 16'384;
constexpr std::size_t keptLosses = 100;
constexpr std::size_t longestSheetName = 31;
constexpr double columnWidth = 16;
constexpr double dateColumnWidth = 23;
constexpr const char* dateFormat = "yyyy-mm-dd hh:mm:ss.000";

[[noreturn]] void fail(int systemErrorNumber) {
  throw asFileError(systemError(systemErrorNumber, "cannot write the workbook"), FileAccess::write);
}

/// For an error of the library: mostly errno has the reason.
[[noreturn]] void failAs(lxw_error error) {
  if (error == LXW_ERROR_MEMORY_MALLOC_FAILED) throw fileError(FileError::outOfMemory);
  fail(systemErrorNumberFromErrno(std::errc::io_error));
}

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

/// A name that sheets may have, at most `length` characters of `text`.
std::string sheetName(const std::string& text, std::size_t number) {
  constexpr std::string_view refused = "[]:*?/\\'";
  const std::string suffix = number == 1 ? "" : " (" + std::to_string(number) + ")";
  std::string name;
  std::size_t units = suffix.size();
  for (std::string_view rest = text; !rest.empty();) {
    const char32_t character = takeCodePoint(rest).value_or(U'\uFFFD');
    const bool isRefused =
        character < U' ' || (character < 0x80 && refused.find(static_cast<char>(character)) != std::string_view::npos);
    units += character > 0xFFFF ? 2U : 1U;
    if (units > longestSheetName) break;
    appendCodePoint(isRefused ? U'_' : character, name);
  }
  return (name.empty() ? "Sheet" : name) + suffix;
}

}  // namespace

struct Workbook::Impl {
  Impl(std::string sheetsName, const fs::path& folder, std::uint32_t rows)
      : name(std::move(sheetsName)), temporaryFolder(cLibraryPath(folder)), scratch(folder), rowsPerSheet(rows) {
    lxw_workbook_options options{};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = temporaryFolder.empty() ? nullptr : temporaryFolder.data();
    options.use_zip64 = LXW_FALSE;
    book = workbook_new_opt(cLibraryPath(scratch.path()).c_str(), &options);
    if (book == nullptr) throw fileError(FileError::outOfMemory);
    headerFormat = workbook_add_format(book);
    format_set_bold(headerFormat);
    dateTimeFormat = workbook_add_format(book);
    format_set_num_format(dateTimeFormat, dateFormat);
  }
  ~Impl() {
    if (book == nullptr) return;
    // The library closes the file of a sheet's rows only when it assembles the book.
    for (lxw_worksheet* const each : sheets)
      if (each->optimize_tmpfile != nullptr) static_cast<void>(std::fclose(each->optimize_tmpfile));
    lxw_workbook_free(book);
  }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void check(lxw_error error) const {
    if (error != LXW_NO_ERROR) failAs(error);
  }

  /// Rows go to a temporary file of the sheet, one behind the other. The library checks none of its writes to it: on a
  /// full disk it would report success for a workbook whose rows are missing. So we check the file, which the library's
  /// public header names; a test fails where a release keeps its rows elsewhere.
  void checkRows() const {
    if (sheet == nullptr || sheet->optimize_tmpfile == nullptr || std::ferror(sheet->optimize_tmpfile) == 0) return;
    const int number = systemErrorNumberFromErrno(std::errc::io_error);
    fail(isDiskFailure(number) ? number : systemErrorNumber(std::errc::io_error));
  }

  void endSheet() {
    if (sheet != nullptr && sheet->optimize_tmpfile != nullptr) {
      errno = 0;
      static_cast<void>(std::fflush(sheet->optimize_tmpfile));
      checkRows();
      largestSheet = std::max(largestSheet, ::ftello(sheet->optimize_tmpfile));
    }
    if (sheet == nullptr || fields.empty()) return;
    check(worksheet_autofilter(sheet, 0, 0, nextRow - 1, static_cast<lxw_col_t>(fields.size() - 1)));
    sheet = nullptr;
  }

  /// A sheet is assembled from its rows in another file, whose writes the library does not check either: so we make
  /// sure of the room before.
  void checkRoom() const {
    constexpr std::uint64_t aroundTheRows = std::uint64_t{1} << 20U;
    scratch.checkRoom(static_cast<std::uint64_t>(largestSheet) + aroundTheRows);
  }

  void beginSheet() {
    endSheet();
    errno = 0;
    sheet = workbook_add_worksheet(book, sheetName(name, ++summary.sheets).c_str());
    if (sheet == nullptr) fail(systemErrorNumberFromErrno(std::errc::not_enough_memory));
    sheets.push_back(sheet);
    worksheet_freeze_panes(sheet, 1, 0);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const auto column = static_cast<lxw_col_t>(i);
      const bool isDate = fields[i].kind == db::ColumnKind::dateTime;
      check(worksheet_set_column(sheet, column, column, isDate ? dateColumnWidth : columnWidth, nullptr));
    }
    nextRow = 0;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      cell.assignText(fields[i].name);
      writeText(i, headerFormat);
    }
    ++nextRow;
  }

  void lost(WorkbookLoss::Kind kind, std::size_t column) {
    if (summary.losses.size() < keptLosses) summary.losses.push_back({kind, result, rowOfResult, column});
    ++summary.lossCount;
  }

  void writeText(std::size_t column, lxw_format* format) {
    if (cell.wasNoText()) lost(WorkbookLoss::Kind::notText, column);
    if (cell.wasCut()) lost(WorkbookLoss::Kind::tooLong, column);
    check(worksheet_write_string(sheet, nextRow, static_cast<lxw_col_t>(column), cell.text().c_str(), format));
  }

  void write(std::size_t column, const db::Cell& value) {
    const auto at = static_cast<lxw_col_t>(column);
    cell.assign(fields[column].kind, value);
    switch (cell.kind()) {
      case WorkbookCell::Kind::empty:
        return;
      case WorkbookCell::Kind::number:
        return check(worksheet_write_number(sheet, nextRow, at, cell.number(), nullptr));
      case WorkbookCell::Kind::date:
        return check(worksheet_write_number(sheet, nextRow, at, cell.number(), dateTimeFormat));
      case WorkbookCell::Kind::boolean:
        return check(worksheet_write_boolean(sheet, nextRow, at, cell.number() != 0 ? 1 : 0, nullptr));
      case WorkbookCell::Kind::text:
        return writeText(column, nullptr);
    }
  }

  std::string name;
  std::string temporaryFolder;
  TemporaryFile scratch;
  std::uint32_t rowsPerSheet;
  lxw_workbook* book = nullptr;
  std::vector<lxw_worksheet*> sheets;
  lxw_worksheet* sheet = nullptr;  ///< that takes rows
  lxw_format* headerFormat = nullptr;
  lxw_format* dateTimeFormat = nullptr;
  std::vector<db::Field> fields;
  lxw_row_t nextRow = 0;
  off_t largestSheet = 0;  ///< bytes of its rows
  std::size_t result = 0;
  std::size_t rowOfResult = 0;
  WorkbookCell cell;  ///< that is written
  WorkbookSummary summary;
};

Workbook::Workbook(std::string name, const fs::path& temporaryFolder, std::uint32_t rowsPerSheet)
    : impl_(std::make_unique<Impl>(std::move(name), temporaryFolder, rowsPerSheet)) {}
Workbook::~Workbook() = default;

void Workbook::beginResult(std::span<const db::Field> fields) {
  Impl& book = *impl_;
  // A record of more columns than a sheet has cannot be shown whole, and half of it is not shown.
  if (fields.size() > mostColumns) throw fileError(FileError::invalidCall);
  book.endSheet();
  book.fields.assign(fields.begin(), fields.end());
  book.rowOfResult = 0;
  book.beginSheet();
}

bool Workbook::row(std::span<const db::Cell> cells) {
  Impl& book = *impl_;
  if (book.nextRow >= book.rowsPerSheet) book.beginSheet();
  const std::size_t width = std::min(cells.size(), book.fields.size());
  errno = 0;
  for (std::size_t i = 0; i < width; ++i) book.write(i, cells[i]);
  book.checkRows();
  ++book.nextRow;
  ++book.rowOfResult;
  ++book.summary.rows;
  return true;
}

void Workbook::endResult() {
  impl_->endSheet();
  ++impl_->result;
}

void Workbook::setRemark(std::string_view remark) {
  if (remark.empty()) return;
  std::string comments = terminalText(remark);
  lxw_doc_properties properties{};
  properties.comments = comments.data();
  impl_->check(workbook_set_properties(impl_->book, &properties));
}

WorkbookSummary Workbook::finish(const ByteSink& sink) {
  Impl& book = *impl_;
  book.endSheet();
  book.checkRoom();
  errno = 0;
  const lxw_error error = workbook_close(std::exchange(book.book, nullptr));
  if (error != LXW_NO_ERROR) failAs(error);
  errno = 0;
  const std::unique_ptr<std::FILE, CloseFile> file(files::open(book.scratch.path(), "rb"));
  if (!file) fail(systemErrorNumberFromErrno(std::errc::io_error));
  std::array<char, std::size_t{1} << 16U> chunk{};
  for (;;) {
    const std::size_t got = std::fread(chunk.data(), 1, chunk.size(), file.get());
    if (got > 0) sink({chunk.data(), got});
    if (got < chunk.size()) break;
  }
  if (std::ferror(file.get()) != 0) fail(systemErrorNumberFromErrno(std::errc::io_error));
  return std::move(book.summary);
}

std::vector<db::Field> workbookFields(const results::ResultList& list) {
  std::vector<db::Field> captions;
  if (list.store() == nullptr || list.rowCount() == 0) {
    for (const results::ColumnHeader& column : list.columns()) captions.push_back({column.caption});
    return captions;
  }
  std::span<const db::Field> fields;
  for (std::size_t row = 0; row < list.rowCount(); ++row)
    if (const auto each = list.store()->fieldsOf(list.rowId({row})); each.size() > fields.size()) fields = each;
  return {fields.begin(), fields.end()};
}

WorkbookSummary writeWorkbook(const results::ResultList& list, std::string name, const ByteSink& sink,
                              const RowProgress& progress, std::string_view remark) {
  Workbook book(std::move(name));
  book.setRemark(remark);
  const results::RowStore* store = list.store();
  const std::vector<db::Field> fields = workbookFields(list);
  book.beginResult(fields);
  std::vector<db::Cell> cells(fields.size());
  for (std::size_t row = 0; row < list.rowCount(); ++row) {
    for (std::size_t column = 0; column < cells.size(); ++column)
      cells[column] = store->cell(list.rowId({row}), {column});
    book.row(cells);
    reportRows(progress, row + 1, list.rowCount());
  }
  book.endResult();
  return book.finish(sink);
}

WorkbookSummary writeWorkbook(const results::ResultList& list, std::string name, const fs::path& file,
                              const RowProgress& progress) {
  ExportFile out(file);
  WorkbookSummary summary = writeWorkbook(
      list, std::move(name), [&out](std::string_view bytes) { out.write(bytes); }, progress);
  out.commit();
  return summary;
}

}  // namespace korvel::output
