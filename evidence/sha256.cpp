#include "evidence/sha256.h"

#include "base/numbers.h"

namespace korvel::evidence {

std::string hexText(const Digest& digest) {
  std::string text;
  text.reserve(2 * digest.bytes.size());
  for (const std::uint8_t byte : digest.bytes) appendHex(byte, text);
  return text;
}

std::optional<Digest> digestFromHex(std::string_view text) noexcept {
  Digest digest;
  if (text.size() != 2 * digest.bytes.size()) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::optional<unsigned> value = hexDigitValue(text[i]);
    if (!value) return std::nullopt;
    std::uint8_t& byte = digest.bytes.at(i / 2);
    byte = static_cast<std::uint8_t>(static_cast<unsigned>(byte) << 4U | *value);
  }
  return digest;
}

Digest Sha256::of(std::string_view bytes) {
  Sha256 sum;
  sum.update(bytes);
  return sum.finish();
}

}  // namespace korvel::evidence
