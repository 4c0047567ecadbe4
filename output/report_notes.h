#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace korvel::output {

/// What the writer of a report passes to its reader beside the file. Values are not escaped in the file, so a value may
/// hold the bytes that end a value; from the file alone the end of such a value is unknown, and an audited text could
/// print rows that were never audited. The notes hold the lengths of such values, and detect a changed file.
struct ReportNotes {
  struct Section {
    std::size_t columns = 0;
    std::size_t rows = 0;
  };
  /// A value that holds its own end mark. Captions, font names, column headers and cells count as values, from 0 in
  /// the order of the file.
  struct MarkedValue {
    std::uint64_t value = 0;
    std::size_t bytes = 0;
  };

  bool hasProject = false;  ///< the two lines of the report of all lists
  std::vector<Section> sections;
  std::vector<MarkedValue> marked;
  std::uint64_t bytes = 0;             ///< of the whole file
  std::uint64_t checksum = 0;          ///< ReportChecksum of the whole file
  std::size_t replacedCharacters = 0;  ///< that the code page does not hold: each stands as "?"
};

/// A checksum (FNV-1a, 64 bits) against accidental changes and other programs. It need not resist attacks: a process
/// that can write the file can also write this process's memory.
class ReportChecksum {
 public:
  void add(std::string_view bytes) noexcept {
    constexpr std::uint64_t prime = 0x100000001B3U;
    for (const char c : bytes) sum_ = (sum_ ^ static_cast<unsigned char>(c)) * prime;
  }
  [[nodiscard]] std::uint64_t sum() const noexcept { return sum_; }

 private:
  std::uint64_t sum_ = 0xCBF29CE484222325U;
};

}  // namespace korvel::output
