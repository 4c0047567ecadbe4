#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::test {

/// A part of a zip archive, and what a test may say wrongly of it.
struct ZipPart {
  std::string name;
  std::string text;
  bool deflated = true;
  std::uint32_t method = 8;  ///< that is said; of a part that is not deflated 0
  std::uint32_t flags = 0;
  std::int64_t moreBytes = 0;  ///< than there are, in the directory
  std::int64_t morePackedBytes = 0;
  std::int64_t moreOffset = 0;
  std::uint32_t checksumBits = 0;  ///< that are turned over
};

inline std::string deflated(std::string_view text) {
  std::string packed(::compressBound(static_cast<uLong>(text.size())) + 64, '\0');
  z_stream stream{};
  constexpr int memoryLevel = 8;
  if (::deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, memoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("deflate");
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));  // NOLINT(*-const-cast)
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  const bool whole = ::deflate(&stream, Z_FINISH) == Z_STREAM_END;
  packed.resize(packed.size() - stream.avail_out);
  ::deflateEnd(&stream);
  if (!whole) throw std::runtime_error("deflate");
  return packed;
}

/// A zip archive of these parts.
inline std::string zipOf(const std::vector<ZipPart>& parts) {
  const auto put = [](std::string& to, std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) to += static_cast<char>(value >> (8 * i) & 0xFFU);
  };
  std::string archive;
  std::string directory;
  for (const ZipPart& part : parts) {
    const std::string packed = part.deflated ? deflated(part.text) : part.text;
    const std::uint64_t at = archive.size();
    const auto sum = static_cast<std::uint32_t>(
        ::crc32(0, reinterpret_cast<const Bytef*>(part.text.data()), static_cast<uInt>(part.text.size())));
    const auto head = [&](std::string& to) {
      put(to, 20, 2);
      put(to, part.flags, 2);
      put(to, part.deflated ? part.method : 0, 2);
      put(to, 0, 4);
      put(to, sum ^ part.checksumBits, 4);
      put(to, packed.size() + static_cast<std::uint64_t>(part.morePackedBytes), 4);
      put(to, part.text.size() + static_cast<std::uint64_t>(part.moreBytes), 4);
      put(to, part.name.size(), 2);
      put(to, 0, 2);
    };
    archive += std::string_view("PK\3\4", 4);
    head(archive);
    archive += part.name + packed;
    directory += std::string_view("PK\1\2", 4);
    put(directory, 20, 2);
    head(directory);
    directory.append(10, '\0');  // comment, disk, attributes
    put(directory, at + static_cast<std::uint64_t>(part.moreOffset), 4);
    directory += part.name;
  }
  const std::uint64_t begin = archive.size();
  archive += directory;
  archive += std::string_view("PK\5\6", 4);
  put(archive, 0, 4);
  put(archive, parts.size(), 2);
  put(archive, parts.size(), 2);
  put(archive, directory.size(), 4);
  put(archive, begin, 4);
  put(archive, 0, 2);
  return archive;
}

}  // namespace korvel::test
