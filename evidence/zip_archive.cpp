#include "evidence/zip_archive.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>

#include "base/error.h"

namespace korvel::evidence {

namespace {

constexpr std::string_view endMark("PK\5\6", 4);
constexpr std::string_view directoryMark("PK\1\2", 4);
constexpr std::string_view partMark("PK\3\4", 4);

constexpr std::size_t endBytes = 22;
constexpr std::size_t directoryBytes = 46;
constexpr std::size_t partHeadBytes = 30;
constexpr std::size_t longestComment = 0xFFFF;
constexpr std::size_t pieceBytes = std::size_t{1} << 16U;

constexpr std::uint32_t encryptedFlag = 1;
constexpr std::uint32_t storedMethod = 0;
constexpr std::uint32_t deflatedMethod = 8;
/// Stands for a number in a part of the directory that only large archives have.
constexpr std::uint32_t elsewhere = 0xFFFF'FFFF;

[[noreturn]] void refuse(const std::string& why) {
  throw Error(unspecifiedFailure, why);
}

/// Little-endian number of two or four bytes; the place was checked.
std::uint32_t numberAt(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size; ++i)
    value |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << (8U * static_cast<unsigned>(i));
  return value;
}
std::uint32_t shortAt(std::string_view bytes, std::size_t at) {
  return numberAt(bytes, at, 2);
}
std::uint32_t longAt(std::string_view bytes, std::size_t at) {
  return numberAt(bytes, at, 4);
}

/// The end of the directory: the last mark whose comment reaches to the end of the file.
std::size_t directoryEnd(std::string_view bytes) {
  if (bytes.size() >= endBytes) {
    const std::size_t last = bytes.size() - endBytes;
    const std::size_t first = last - std::min(last, longestComment);
    for (std::size_t at = last + 1; at-- > first;)
      if (bytes.substr(at, endMark.size()) == endMark && at + endBytes + shortAt(bytes, at + 20) == bytes.size())
        return at;
  }
  refuse("it is no workbook, or was cut: it does not end as one");
}

}  // namespace

ZipArchive::ZipArchive(std::string_view bytes, std::uint64_t mostUnpackedBytes)
    : bytes_(bytes), unpackableBytes_(mostUnpackedBytes) {
  const std::size_t end = directoryEnd(bytes);
  const std::uint32_t count = shortAt(bytes, end + 10);
  const std::uint64_t begin = longAt(bytes, end + 16);
  if (begin + longAt(bytes, end + 12) > end) refuse("the directory of its parts does not lie in the file");
  auto at = static_cast<std::size_t>(begin);
  const auto damaged = [] { refuse("the directory of its parts is damaged"); };
  for (std::uint32_t i = 0; i < count; ++i) {
    if (at + directoryBytes > end || bytes.substr(at, directoryMark.size()) != directoryMark) damaged();
    const std::size_t nameBytes = shortAt(bytes, at + 28);
    const std::size_t next = at + directoryBytes + nameBytes + shortAt(bytes, at + 30) + shortAt(bytes, at + 32);
    if (next > end) damaged();
    Part part{std::string(bytes.substr(at + directoryBytes, nameBytes)),
              false,
              longAt(bytes, at + 16),
              longAt(bytes, at + 20),
              longAt(bytes, at + 24),
              longAt(bytes, at + 42)};
    const std::uint32_t method = shortAt(bytes, at + 10);
    part.isDeflated = method == deflatedMethod;
    if ((shortAt(bytes, at + 8) & encryptedFlag) != 0) refuse("its part " + part.name + " is encrypted");
    if (method != storedMethod && method != deflatedMethod)
      refuse("its part " + part.name + " is packed in a way that workbooks are not");
    if (part.bytes == elsewhere || part.packedBytes == elsewhere || part.at == elsewhere)
      refuse("its part " + part.name + " is larger than those of our workbooks");
    parts_.push_back(std::move(part));
    at = next;
  }
}

const ZipArchive::Part* ZipArchive::find(std::string_view name) const noexcept {
  const auto found = std::find_if(parts_.begin(), parts_.end(), [&](const Part& part) { return part.name == name; });
  return found == parts_.end() ? nullptr : &*found;
}

struct ZipPartReader::Inflater {
  Inflater() {
    if (::inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { ::inflateEnd(&stream); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  z_stream stream{};
  bool ended = false;
  std::array<char, pieceBytes> piece{};
};

ZipPartReader::ZipPartReader(ZipArchive& archive, const ZipArchive::Part& part) : archive_(archive), part_(part) {
  const std::string_view bytes = archive.bytes_;
  const std::uint64_t head = part.at;
  if (head + partHeadBytes > bytes.size() || bytes.substr(part.at, partMark.size()) != partMark)
    fail("is not where its directory says");
  const std::uint64_t begin = head + partHeadBytes + shortAt(bytes, part.at + 26) + shortAt(bytes, part.at + 28);
  if (begin + part.packedBytes > bytes.size()) fail("reaches beyond the end of the file");
  packed_ = bytes.substr(static_cast<std::size_t>(begin), part.packedBytes);
  if (part.isDeflated) inflater_ = std::make_unique<Inflater>();
}

ZipPartReader::~ZipPartReader() = default;

void ZipPartReader::fail(std::string_view why) const {
  refuse("its part " + part_.name + " " + std::string(why));
}

std::string_view ZipPartReader::inflated() {
  Inflater& inflater = *inflater_;
  if (inflater.ended) return {};
  z_stream& stream = inflater.stream;
  stream.next_out = reinterpret_cast<Bytef*>(inflater.piece.data());
  stream.avail_out = static_cast<uInt>(inflater.piece.size());
  // The library takes what it only reads as something that it might write.
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed_.data()));  // NOLINT(*-const-cast)
  stream.avail_in = static_cast<uInt>(packed_.size());
  const int result = ::inflate(&stream, Z_NO_FLUSH);
  packed_.remove_prefix(packed_.size() - stream.avail_in);
  inflater.ended = result == Z_STREAM_END;
  const std::size_t got = inflater.piece.size() - stream.avail_out;
  if (result == Z_MEM_ERROR) throw std::bad_alloc();
  if (!inflater.ended && (result != Z_OK || got == 0)) fail("cannot be unpacked: it is damaged or was cut");
  return {inflater.piece.data(), got};
}

void ZipPartReader::checkEnd() const {
  if (unpacked_ != part_.bytes) fail("is shorter than its directory says");
  if (checksum_ != part_.checksum) fail("is damaged: its checksum is another one");
}

std::string_view ZipPartReader::next() {
  std::string_view piece;
  if (inflater_) {
    // The end may come by itself.
    do piece = inflated();
    while (piece.empty() && !inflater_->ended);
  } else {
    piece = packed_.substr(0, pieceBytes);
    packed_.remove_prefix(piece.size());
  }
  if (piece.empty()) {
    checkEnd();
    return piece;
  }
  unpacked_ += piece.size();
  if (unpacked_ > part_.bytes) fail("is longer than its directory says");
  if (piece.size() > archive_.unpackableBytes_) refuse("its parts unpack to more than a workbook is read of");
  archive_.unpackableBytes_ -= piece.size();
  checksum_ = static_cast<std::uint32_t>(
      ::crc32(checksum_, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(piece.size())));
  return piece;
}

}  // namespace korvel::evidence
