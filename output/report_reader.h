#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "output/report_notes.h"
#include "output/report_source.h"

namespace korvel::output {

/// The bytes of a report, from the beginning as often as is needed. Throws Error.
class ReportBytes {
 public:
  virtual ~ReportBytes() = default;
  virtual void rewind() = 0;
  /// Fills `to` as far as there are bytes; returns how many, 0 at the end.
  virtual std::size_t read(std::span<char> to) = 0;
};

/// The bytes of a file. The same file is read each time, whatever takes its name meanwhile. Throws Error with a
/// FileError.
[[nodiscard]] std::unique_ptr<ReportBytes> reportFile(const std::filesystem::path& file);

/// Reads a report file back, value by value, with the writer's notes: markup in a value is part of its text. Takes the
/// memory of one row. A file that is not the one that the notes are about is FileError::invalidFileFormat, at the
/// latest behind its last section: whoever shows a report goes through all of it first.
class ReportReader final : public ReportSource {
 public:
  ReportReader(std::unique_ptr<ReportBytes> bytes, ReportNotes notes);

  void rewind() override;
  bool nextSection(SectionHead& head) override;
  bool nextRow(std::vector<std::string_view>& cells) override;

 private:
  /// Bytes of the window, by their place in it.
  struct Piece {
    std::size_t at;
    std::size_t size;
  };

  bool readMore();
  void dropBefore();
  void expect(std::string_view literal);
  [[nodiscard]] bool follows(std::string_view literal);
  [[nodiscard]] Piece takeUntil(std::string_view endMark);
  [[nodiscard]] Piece takeValue(std::string_view endMark);
  [[nodiscard]] std::string_view bytesOf(Piece piece) const noexcept {
    return std::string_view(window_).substr(piece.at, piece.size);
  }
  void expectEnd();

  std::unique_ptr<ReportBytes> source_;
  ReportNotes notes_;
  std::string window_;
  std::size_t position_ = 0;  ///< in the window
  std::uint64_t bytesRead_ = 0;
  ReportChecksum checksum_;
  std::uint64_t nextValue_ = 0;
  std::size_t nextMarked_ = 0;
  std::size_t nextSection_ = 0;
  std::size_t rowsLeft_ = 0;
  std::vector<Piece> pieces_;
  std::string utf8_;  ///< of one row
  std::vector<std::size_t> ends_;
};

}  // namespace korvel::output
