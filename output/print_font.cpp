#include "output/print_font.h"

#include <array>
#include <charconv>

namespace korvel::output {

std::string fontSizeText(double points) {
  constexpr int fractionalDigits = 4;
  std::array<char, 400> digits{};
  const auto result =
      std::to_chars(digits.data(), digits.data() + digits.size(), points, std::chars_format::fixed, fractionalDigits);
  std::string text(digits.data(), result.ptr);
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}

}  // namespace korvel::output
