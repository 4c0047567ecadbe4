#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace korvel::test {

/// The unpacked part `name` of a zip archive; throws where it is missing or damaged.
inline std::string partOfZip(std::string_view archive, std::string_view name) {
  const auto number = [archive](std::size_t at, std::size_t bytes) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
      value |= std::size_t{static_cast<unsigned char>(archive.at(at + i))} << (8U * i);
    return value;
  };
  constexpr std::string_view endMark("PK\5\6", 4);
  constexpr std::string_view entryMark("PK\1\2", 4);
  const std::size_t end = archive.rfind(endMark);
  if (end == std::string_view::npos) throw std::runtime_error("no archive");
  for (std::size_t at = number(end + 16, 4); archive.substr(at, 4) == entryMark;) {
    const std::size_t nameBytes = number(at + 28, 2);
    if (archive.substr(at + 46, nameBytes) != name) {
      at += 46 + nameBytes + number(at + 30, 2) + number(at + 32, 2);
      continue;
    }
    const std::size_t packedBytes = number(at + 20, 4);
    std::string text(number(at + 24, 4), '\0');
    const std::size_t local = number(at + 42, 4);
    const std::string_view packed =
        archive.substr(local + 30 + number(local + 26, 2) + number(local + 28, 2), packedBytes);
    if (number(at + 10, 2) == 0) return std::string(packed);
    z_stream stream{};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(text.data());
    stream.avail_out = static_cast<uInt>(text.size());
    const bool whole = ::inflateInit2(&stream, -MAX_WBITS) == Z_OK && ::inflate(&stream, Z_FINISH) == Z_STREAM_END;
    ::inflateEnd(&stream);
    if (!whole || stream.avail_out != 0) throw std::runtime_error("broken: " + std::string(name));
    return text;
  }
  throw std::runtime_error("not in the archive: " + std::string(name));
}

}  // namespace korvel::test
