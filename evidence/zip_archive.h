#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::evidence {

/// A zip archive in memory, as workbooks are; nothing in it is trusted. What cannot be read throws Error with a
/// sentence. Parts are stored or deflated; archives of more than one file or of more than 4 GB, and parts that are
/// encrypted, are refused.
class ZipArchive {
 public:
  struct Part {
    std::string name;
    bool isDeflated = false;
    std::uint32_t checksum = 0;
    std::uint32_t packedBytes = 0;
    std::uint32_t bytes = 0;
    std::uint32_t at = 0;  ///< of its own head
  };

  /// `bytes` outlives the archive. `mostUnpackedBytes`: how much is unpacked of all parts together, so that a small
  /// file cannot keep us busy for ever.
  ZipArchive(std::string_view bytes, std::uint64_t mostUnpackedBytes);

  /// The part of this name; null where there is none.
  [[nodiscard]] const Part* find(std::string_view name) const noexcept;

 private:
  friend class ZipPartReader;

  std::string_view bytes_;
  std::vector<Part> parts_;
  std::uint64_t unpackableBytes_;
};

/// Unpacks a part, a piece at a time.
class ZipPartReader {
 public:
  /// The archive and its part outlive the reader.
  ZipPartReader(ZipArchive& archive, const ZipArchive::Part& part);
  ~ZipPartReader();
  ZipPartReader(const ZipPartReader&) = delete;
  ZipPartReader& operator=(const ZipPartReader&) = delete;

  /// The next bytes, valid until the next call; empty at the end, where size and checksum were those of the directory.
  [[nodiscard]] std::string_view next();

 private:
  [[noreturn]] void fail(std::string_view why) const;
  [[nodiscard]] std::string_view inflated();
  void checkEnd() const;

  struct Inflater;

  ZipArchive& archive_;
  const ZipArchive::Part& part_;
  std::string_view packed_;
  std::unique_ptr<Inflater> inflater_;
  std::uint64_t unpacked_ = 0;
  std::uint32_t checksum_ = 0;
};

}  // namespace korvel::evidence
