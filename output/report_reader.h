#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "output/report_bytes.h"
#include "output/report_notes.h"
#include "output/report_source.h"

namespace korvel::output {

/// Reads a report file of our own back, value by value, as the writer's notes lead it: markup in a value is the value's
/// text and nothing else. Takes the memory of one row. A file that is not the one that the notes are about is
/// FileError::invalidFileFormat, at the latest behind its last section: whoever shows a report goes through all of it
/// first.
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
