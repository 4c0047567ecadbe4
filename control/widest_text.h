#pragma once

#include <QFontMetricsF>
#include <QHash>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::control {

/// Finds the width of the widest of many texts as list cells show them. Shaping a text takes a microsecond, too long
/// for millions: widths are estimated from those of letters and pairs of letters, measured once, and only the
/// candidates with the largest estimates are shaped.
class WidestText {
 public:
  explicit WidestText(const QFont& font);

  void offer(std::string_view text);
  /// In pixels; 0 where no text was offered.
  [[nodiscard]] qreal width() const;

 private:
  struct Candidate {
    float estimate;
    std::string text;
  };
  static constexpr std::size_t candidateCount = 24;
  static constexpr std::size_t asciiCount = 96;  ///< from the blank on
  static constexpr std::size_t textStart = asciiCount;

  [[nodiscard]] float estimate(std::string_view text);
  /// The width that an ASCII character adds after another one, or at the start of a text.
  [[nodiscard]] float asciiAdvance(std::size_t before, std::size_t at);
  [[nodiscard]] float otherAdvance(char32_t before, char32_t at);
  void keep(float width, std::string_view text);

  QFontMetricsF metrics_;
  std::array<float, (asciiCount + 1) * asciiCount> ascii_{};
  QHash<quint64, float> others_;
  std::vector<Candidate> candidates_;  ///< a heap, the narrowest in front
};

}  // namespace korvel::control
