#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "db/connection.h"
#include "output/byte_sink.h"
#include "results/result_list.h"

namespace korvel::output {

/// A value that a workbook cannot hold as it is.
struct WorkbookLoss {
  enum class Kind {
    tooLong,  ///< over 32,767 UTF-16 units: cut
    notText   ///< bytes that are not UTF-8, zero characters, U+FFFE and U+FFFF: each became U+FFFD
  };
  Kind kind = Kind::tooLong;
  std::size_t result = 0;  ///< result set, row and column, each counted from 0
  std::size_t row = 0;
  std::size_t column = 0;
};

struct WorkbookSummary {
  std::size_t rows = 0;
  std::size_t sheets = 0;
  std::size_t lossCount = 0;
  std::vector<WorkbookLoss> losses;  ///< the first hundred
};

/// A spreadsheet workbook (xlsx) that is written while rows arrive, in the memory of one row: a sheet for every result
/// set, and another each time a sheet is full. The header row is frozen and filters. Values keep their types where
/// nothing is lost by it: numbers of up to 15 digits, dates and times to the millisecond, booleans; all else is text,
/// also what begins with "=". Null and the empty text are both an empty cell. Throws Error with a FileError.
class Workbook final : public db::ResultSink {
 public:
  /// The most rows that a sheet holds, its header counted.
  static constexpr std::uint32_t maxRowsPerSheet = 1'048'576;

  /// `name` is that of the sheets, with a number where there are several. Rows are kept in unnamed files of
  /// `temporaryFolder`. `rowsPerSheet` counts the header.
  explicit Workbook(std::string name,
                    const std::filesystem::path& temporaryFolder = std::filesystem::temp_directory_path(),
                    std::uint32_t rowsPerSheet = maxRowsPerSheet);
  ~Workbook() override;
  Workbook(const Workbook&) = delete;
  Workbook& operator=(const Workbook&) = delete;

  void beginResult(std::span<const db::Field> fields) override;
  bool row(std::span<const db::Cell> cells) override;
  void endResult() override;

  /// What a reader has to know of the rows, that some are missing for one: the comments in the workbook's properties.
  void setRemark(std::string_view remark);
  /// Completes the workbook and hands over its bytes; nothing may follow.
  WorkbookSummary finish(const ByteSink& sink);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// The columns of a list's workbook: those of its widest records, or the captions of a list without rows.
[[nodiscard]] std::vector<db::Field> workbookFields(const results::ResultList& list);
/// Every column of the records behind a list's rows, values as stored, in the list's order; with a remark where there
/// is one.
WorkbookSummary writeWorkbook(const results::ResultList& list, std::string name, const ByteSink& sink,
                              const RowProgress& progress = {}, std::string_view remark = {});
/// The same into an atomic file; a link in its place is replaced.
WorkbookSummary writeWorkbook(const results::ResultList& list, std::string name, const std::filesystem::path& file,
                              const RowProgress& progress = {});

}  // namespace korvel::output
