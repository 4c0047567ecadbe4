#include "output/report_reader.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>

#include "base/files.h"
#include "base/system_errors.h"
#include "output/report_layout.h"
#include "settings/code_page.h"

namespace korvel::output {

namespace {

constexpr std::size_t readBytes = std::size_t{1} << 17U;

[[noreturn]] void refuse() {
  throw fileError(FileError::invalidFileFormat);
}

/// The size that the writer wrote: digits, and a point between them.
double sizeFrom(std::string_view text) {
  double size = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), size, std::chars_format::fixed);
  if (result.ec != std::errc{} || result.ptr != text.data() + text.size()) refuse();
  return size;
}

[[noreturn]] void failToRead() {
  throw asFileError(systemError(systemErrorNumberFromErrno(std::errc::io_error), "cannot read the report"),
                    FileAccess::read);
}

struct CloseFile {
  void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

class FileBytes : public ReportBytes {
 public:
  explicit FileBytes(const std::filesystem::path& file) : file_(files::open(file, "rb")) {
    if (!file_) failToRead();
  }
  void rewind() override {
    if (std::fseek(file_.get(), 0, SEEK_SET) != 0) failToRead();
  }
  std::size_t read(std::span<char> to) override {
    const std::size_t got = std::fread(to.data(), 1, to.size(), file_.get());
    if (got < to.size() && std::ferror(file_.get()) != 0) failToRead();
    return got;
  }

 private:
  std::unique_ptr<std::FILE, CloseFile> file_;
};

}  // namespace

std::unique_ptr<ReportBytes> reportFile(const std::filesystem::path& file) {
  return std::make_unique<FileBytes>(file);
}

ReportReader::ReportReader(std::unique_ptr<ReportBytes> bytes, ReportNotes notes)
    : source_(std::move(bytes)), notes_(std::move(notes)) {
  rewind();
}

void ReportReader::rewind() {
  source_->rewind();
  window_.clear();
  position_ = 0;
  bytesRead_ = 0;
  checksum_ = {};
  nextValue_ = 0;
  nextMarked_ = 0;
  nextSection_ = 0;
  rowsLeft_ = 0;
  expect(layout::start);
  if (notes_.hasProject) expect(layout::project);
}

bool ReportReader::readMore() {
  const std::size_t before = window_.size();
  window_.resize(before + readBytes);
  const std::size_t got = source_->read({window_.data() + before, readBytes});
  window_.resize(before + got);
  bytesRead_ += got;
  // A file that grew is refused before it is read into memory.
  if (bytesRead_ > notes_.bytes) refuse();
  checksum_.add(std::string_view(window_).substr(before));
  return got > 0;
}

/// Forgets what has been read. Pieces are void from here on.
void ReportReader::dropBefore() {
  if (position_ < readBytes) return;
  window_.erase(0, position_);
  position_ = 0;
}

bool ReportReader::follows(std::string_view literal) {
  while (window_.size() - position_ < literal.size())
    if (!readMore()) return false;
  return std::string_view(window_).substr(position_, literal.size()) == literal;
}

void ReportReader::expect(std::string_view literal) {
  if (!follows(literal)) refuse();
  position_ += literal.size();
}

ReportReader::Piece ReportReader::takeUntil(std::string_view endMark) {
  std::size_t from = position_;
  for (;;) {
    const std::size_t found = window_.find(endMark, from);
    if (found != std::string::npos) {
      const Piece piece{position_, found - position_};
      position_ = found + endMark.size();
      return piece;
    }
    // The mark may be cut by the window's end.
    if (window_.size() >= endMark.size()) from = std::max(from, window_.size() - endMark.size() + 1);
    if (!readMore()) refuse();
  }
}

/// The writer has noted every value that holds its own end mark; any other ends at the first one.
ReportReader::Piece ReportReader::takeValue(std::string_view endMark) {
  const std::uint64_t value = nextValue_++;
  if (nextMarked_ >= notes_.marked.size() || notes_.marked[nextMarked_].value != value) return takeUntil(endMark);
  const std::size_t size = notes_.marked[nextMarked_++].bytes;
  if (size > notes_.bytes) refuse();
  while (window_.size() - position_ < size)
    if (!readMore()) refuse();
  const Piece piece{position_, size};
  position_ += size;
  expect(endMark);
  return piece;
}

bool ReportReader::nextSection(SectionHead& head) {
  std::vector<std::string_view> passed;
  while (rowsLeft_ > 0) static_cast<void>(nextRow(passed));
  if (nextSection_ > 0 && nextSection_ <= notes_.sections.size()) expect(layout::tableEnd);
  if (nextSection_ >= notes_.sections.size()) {
    if (nextSection_ == notes_.sections.size()) expectEnd();
    nextSection_ = notes_.sections.size() + 1;
    return false;
  }
  const ReportNotes::Section& section = notes_.sections[nextSection_++];
  dropBefore();
  head = {};
  expect(layout::captionStart);
  head.caption = settings::fromCodePage(bytesOf(takeValue(layout::captionEnd)));
  expect(layout::tableStart);
  expect(layout::fontStart);
  head.font.size = sizeFrom(bytesOf(takeUntil(layout::fontSizeEnd)));
  head.font.name = settings::fromCodePage(bytesOf(takeValue(layout::fontEnd)));
  expect(layout::rowStart);
  for (std::size_t column = 0; column < section.columns; ++column) {
    expect(layout::headerStart);
    head.headers.push_back(settings::fromCodePage(bytesOf(takeValue(layout::headerEnd))));
  }
  expect(layout::headerRowEnd);
  rowsLeft_ = section.rows;
  return true;
}

bool ReportReader::nextRow(std::vector<std::string_view>& cells) {
  if (rowsLeft_ == 0) return false;
  dropBefore();
  const std::size_t columns = notes_.sections[nextSection_ - 1].columns;
  pieces_.clear();
  expect(layout::rowStart);
  for (std::size_t column = 0; column < columns; ++column) {
    expect(layout::cellStart);
    pieces_.push_back(takeValue(layout::cellEnd));
  }
  expect(layout::rowEnd);
  --rowsLeft_;

  utf8_.clear();
  ends_.clear();
  for (const Piece piece : pieces_) {
    utf8_ += settings::fromCodePage(bytesOf(piece));
    ends_.push_back(utf8_.size());
  }
  cells.clear();
  std::size_t at = 0;
  for (const std::size_t end : ends_) {
    cells.push_back(std::string_view(utf8_).substr(at, end - at));
    at = end;
  }
  return true;
}

void ReportReader::expectEnd() {
  expect(layout::end);
  const bool atEnd = position_ == window_.size() && !readMore();
  if (!atEnd || bytesRead_ != notes_.bytes || checksum_.sum() != notes_.checksum) refuse();
}

}  // namespace korvel::output
