#include "evidence/verification.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string_view>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "base/text.h"
#include "evidence/manifest.h"
#include "evidence/proven_file.h"
#include "evidence/recorded_rows.h"
#include "evidence/row_changes.h"
#include "evidence/row_readers.h"
#include "evidence/snapshot_reader.h"
#include "evidence/workbook_rows.h"

namespace korvel::evidence {

namespace fs = std::filesystem;

namespace {

/// How many changed rows are named one by one.
constexpr std::size_t mostNamedChanges = 20;

/// A manifest has 75 bytes a row.
constexpr std::uintmax_t mostManifestBytes = std::uintmax_t{1} << 32U;
constexpr std::uintmax_t mostSumsBytes = std::uintmax_t{1} << 16U;

std::string nameOf(const fs::path& file) {
  return utf8FromPath(file.filename());
}

/// A pipe would be waited for, a device may have no end.
bool isRegularFile(const fs::path& file) {
  std::error_code ignored;
  return fs::is_regular_file(files::status(file, ignored));
}

/// The whole text of a manifest or of sums, which are small beside what memory holds.
std::string textOf(const fs::path& file, std::uintmax_t mostBytes) {
  if (!isRegularFile(file)) throw Error(unspecifiedFailure, nameOf(file) + " is no file");
  std::error_code failure;
  if (files::size(file, failure) > mostBytes)
    throw Error(unspecifiedFailure, nameOf(file) + " is too large for what it should be");
  return readFile(file);
}

bool isMissing(const fs::path& file) {
  std::error_code ignored;
  return files::symlinkStatus(file, ignored).type() == fs::file_type::not_found;
}

struct FileState {
  std::uintmax_t size = 0;
  fs::file_time_type written;
  friend bool operator==(const FileState&, const FileState&) = default;
};

std::optional<FileState> stateOf(const fs::path& file) {
  std::error_code failure;
  FileState state{files::size(file, failure), {}};
  if (!failure) state.written = files::lastWriteTime(file, failure);
  if (failure) return std::nullopt;
  return state;
}

/// One output, and what is found of it.
class Checked {
 public:
  Checked(const fs::path& output, const ReadProgress& progress)
      : output_(output), progress_(progress), found_{nameOf(output), {}} {}

  Verification verify() {
    const fs::path manifest = manifestOf(output_);
    if (isMissing(manifest) && isMissing(output_)) {
      found("there is no such file, and no manifest of it");
      return found_;
    }
    if (isMissing(manifest)) {
      found(nameOf(manifest) + " is missing: there is nothing to compare the file with");
      return found_;
    }
    try {
      const std::string text = textOf(manifest, mostManifestBytes);
      checkSums(text);
      recorded_ = readManifest(text);
      if (!recorded_.rows.inOutput && digestOfRows(recorded_.rows.each) != recorded_.rows.digest)
        found("the manifest's digest of all rows is not that of its rows");
      checkOutput();
    } catch (const Error& error) {
      found(error.description());
    } catch (const std::bad_alloc&) {
      found("there is not enough memory to compare the file with its manifest");
    }
    return found_;
  }

 private:
  void found(std::string text) { found_.findings.push_back(std::move(text)); }

  void checkSums(std::string_view manifest) {
    const fs::path file = sumsOf(output_);
    const std::string name = nameOf(file);
    if (isMissing(file)) return found(name + " is missing: whether the manifest was changed cannot be told");
    const std::string text = textOf(file, mostSumsBytes);
    const auto sums = readSums(text);
    // Also what sha256sum would overlook, the case of a digit for one.
    if (!sums || sumsText(*sums) != text || sums->size() != 2 || sums->at(0).name != found_.name ||
        sums->at(1).name != nameOf(manifestOf(output_)))
      return found(name + " was cut or changed: it does not hold the two lines that were written");
    if (sums->at(1).sha256 != Sha256::of(manifest))
      found("the manifest was changed, or writing the files was interrupted: its SHA-256 is not the one in " + name);
    sumOfOutput_ = sums->at(0).sha256;
  }

  void checkOutput() {
    if (recorded_.output.name != found_.name)
      return found("the manifest is that of another file, " + recorded_.output.name);
    if (isMissing(output_)) return found("the file is missing");
    if (!isRegularFile(output_)) return found("it is no file");
    const auto before = stateOf(output_);
    const FileSum summed = sumOfFile(output_, progress_);
    if (stateOf(output_) != before)
      return found("the file was replaced or written to while it was read; verify it again");
    const bool same = summed.sha256 == recorded_.output.sha256 && summed.bytes == recorded_.output.bytes;
    if (same && sumOfOutput_ && *sumOfOutput_ != summed.sha256)
      found(nameOf(sumsOf(output_)) + " was changed: its SHA-256 of the file is not that of the manifest");
    if (same) return;
    found(summed.bytes == recorded_.output.bytes
              ? std::string("the file was changed: its SHA-256 is another one, of as many bytes")
              : "the file was changed: it has " + std::to_string(summed.bytes) + " bytes instead of " +
                    std::to_string(recorded_.output.bytes));
    try {
      compareRows(before);
    } catch (const std::bad_alloc&) {
      found("its rows are more than can be compared in the memory that is free");
    }
  }

  void compareRows(const std::optional<FileState>& summed) {
    if (recorded_.rows.inOutput) return compareSnapshot();
    const std::string& format = recorded_.output.format;
    if (format == "csv") return compareRows(summed, recorded_.rows.each, readCsvRows);
    if (format == "json") return compareRows(summed, recorded_.rows.each, readJsonRows);
    if (format != "xlsx") return;
    // A number, a date or an empty cell is not in each case the text that is stored: its rows have digests of their
    // own.
    if (recorded_.rows.cells.size() != recorded_.rows.each.size())
      return found(
          "its rows cannot be named: the manifest has no SHA-256 values of rows as a workbook's cells hold them");
    constexpr std::size_t rowsTooMany = 1'000'000;
    WorkbookLimits limits;
    limits.rows = recorded_.rows.cells.size() + rowsTooMany;
    compareRows(summed, recorded_.rows.cells,
                [&](std::string_view bytes, const RowTaker& take) { readWorkbookRows(bytes, take, limits); });
  }

  /// The names under which rows of the output are digested.
  std::vector<std::string> recordedNames() const {
    if (recorded_.output.format != "xlsx") return recorded_.rows.columns;
    std::vector<db::Field> fields;
    for (const std::string& column : recorded_.rows.columns) fields.push_back({column});
    return digestedNames(CellDigester::readBackFields(fields));
  }

  template <typename Read>
  void compareRows(const std::optional<FileState>& summed, const std::vector<Digest>& written, const Read& read) {
    RowRecorder recorder;
    std::vector<std::string> begun;
    bool hasBegun = false;
    std::optional<std::string> unreadable;
    const std::string bytes = readFile(output_);
    if (stateOf(output_) != summed) return found("the file was written to meanwhile; verify it again");
    try {
      read(bytes, [&](std::span<const db::Field> fields, std::span<const db::Cell> cells) {
        std::vector<std::string> names = digestedNames(fields);
        if (!hasBegun || names != begun) {
          recorder.begin(fields);
          begun = std::move(names);
          hasBegun = true;
        }
        recorder.row(cells);
      });
    } catch (const Error& error) {
      unreadable = error.description();
    }
    const Manifest::Rows rows = recorder.take();
    if (hasBegun && rows.columns != recordedNames()) found("the names of its columns were changed");
    if (unreadable) {
      // Of a packed file that cannot be read at all, to name each row as missing would say nothing.
      if (!hasBegun && recorded_.output.format == "xlsx") return found(*unreadable + "; its rows cannot be read");
      found(*unreadable + "; rows are compared as far as they can be read");
    }
    tell(rowChanges(written, rows.each));
  }

  void compareSnapshot() {
    const SnapshotRows rows = rowsOfSnapshot(output_);
    if (digestOfRows(rows.recorded) != recorded_.rows.digest)
      found("the digests of the rows in it were changed, too: they are not those of the manifest");
    tell(rowChanges(rows.recorded, rows.found));
  }

  void tell(const std::vector<RowChange>& changes) {
    if (changes.empty()) return found("its rows are the same; what surrounds them was changed");
    for (std::size_t i = 0; i < std::min(changes.size(), mostNamedChanges); ++i) found(textOf(changes[i]));
    if (changes.size() > mostNamedChanges)
      found("and " + std::to_string(changes.size() - mostNamedChanges) + " more rows differ");
  }

  const fs::path& output_;
  const ReadProgress& progress_;
  Verification found_;
  RecordedOutput recorded_;
  std::optional<Digest> sumOfOutput_;
};

/// Whether sums are those of an output and of this manifest, which may be gone; others in the folder are not ours.
bool sumsName(const fs::path& file, const fs::path& manifest) {
  try {
    const auto sums = readSums(textOf(file, mostSumsBytes));
    return sums &&
           std::any_of(sums->begin(), sums->end(), [&](const NamedSum& sum) { return sum.name == nameOf(manifest); });
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

std::vector<fs::path> outputsOf(const fs::path& named) {
  const auto without = [](const fs::path& path, std::string_view ending) -> std::optional<fs::path> {
    const std::string text = utf8FromPath(path);
    if (!text.ends_with(ending) || nameOf(path).size() == ending.size()) return std::nullopt;
    return pathFromUtf8(text.substr(0, text.size() - ending.size()));
  };
  std::error_code failure;
  if (!fs::is_directory(files::status(named, failure))) {
    for (const std::string_view ending : {manifestEnding, sumsEnding})
      if (const auto output = without(named, ending)) return {*output};
    return {named};
  }
  std::vector<fs::path> outputs;
  for (const fs::path& entry : files::listFolder(named, failure))
    for (const std::string_view ending : {manifestEnding, sumsEnding})
      if (const auto output = without(entry, ending);
          output && (ending == manifestEnding || sumsName(entry, manifestOf(*output))))
        outputs.push_back(*output);
  if (failure) throw systemError(systemErrorNumber(failure), "cannot read " + utf8FromPath(named));
  std::sort(outputs.begin(), outputs.end());
  outputs.erase(std::unique(outputs.begin(), outputs.end()), outputs.end());
  return outputs;
}

Verification verifyOutput(const fs::path& output, const ReadProgress& progress) {
  return Checked(output, progress).verify();
}

}  // namespace korvel::evidence
