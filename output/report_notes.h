#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace korvel::output {

/// What the writer of a report tells its reader beside the file. Values stand in the file as they are, so a value may
/// hold the very bytes that end one; from the file alone nobody could tell where such a value ends, and an audited text
/// could print rows that were never audited. The notes say it, and tell a file that was changed since.
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

/// A sum over bytes that any change is all but certain to change (FNV-1a, 64 bits). Against accidents and other
/// programs, not against a cryptographer: whoever may write to the file may as well write to this process.
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
