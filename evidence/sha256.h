#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace korvel::evidence {

/// A SHA-256 value.
struct Digest {
  std::array<std::uint8_t, 32> bytes{};
  friend constexpr auto operator<=>(const Digest&, const Digest&) = default;
};

/// 64 lower-case hexadecimal digits.
[[nodiscard]] std::string hexText(const Digest& digest);
/// The digest that 64 hexadecimal digits name, in either case; nothing for another text.
[[nodiscard]] std::optional<Digest> digestFromHex(std::string_view text) noexcept;

/// Computes SHA-256 with the system's own library. Not for several threads at once.
class Sha256 {
 public:
  /// Throws Error where the system's library refuses.
  Sha256();
  ~Sha256();
  Sha256(const Sha256&) = delete;
  Sha256& operator=(const Sha256&) = delete;

  void update(std::string_view bytes);
  /// The value of all bytes since the beginning or the last finish(); begins anew.
  [[nodiscard]] Digest finish();

  [[nodiscard]] static Digest of(std::string_view bytes);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace korvel::evidence
