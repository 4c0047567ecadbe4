#include "control/widest_text.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "control/texts.h"
#include "ui/result_table.h"

namespace korvel::control {
namespace {

using ui::RowDelegate;

constexpr char32_t noCharacter = 0;
constexpr char32_t replacement = 0xFFFD;

/// Whether the letter is measured in pairs with its neighbours: Latin, Greek and Cyrillic. All others are measured
/// alone: there are tens of thousands of ideographs, whose widths do not depend on their neighbours.
bool pairs(char32_t character) {
  return character < 0x530;
}

/// Takes the first character off `text`. Invalid bytes read as U+FFFD, one each.
char32_t takeCharacter(std::string_view& text) {
  const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  const unsigned first = byteAt(0);
  const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  char32_t character = length == 1 ? first : first & (0x7FU >> length);
  bool whole = (first < 0x80 || first >= 0xC2) && first < 0xF5 && length <= text.size();
  for (std::size_t at = 1; whole && at < length; ++at) {
    whole = (byteAt(at) & 0xC0U) == 0x80U;
    character = character << 6U | (byteAt(at) & 0x3FU);
  }
  text.remove_prefix(whole ? length : 1);
  return whole ? character : replacement;
}

/// Bytes of a text that hold all the characters which a cell shows.
constexpr std::size_t shownBytes = 4 * static_cast<std::size_t>(RowDelegate::shownCharacters) + 4;

}  // namespace

WidestText::WidestText(const QFont& font) : metrics_(font) {
  ascii_.fill(std::numeric_limits<float>::quiet_NaN());
  candidates_.reserve(candidateCount);
}

float WidestText::asciiAdvance(std::size_t before, std::size_t at) {
  float& advance = ascii_.at(before * asciiCount + at);
  if (std::isnan(advance)) {
    const auto letter = [](std::size_t index) { return QChar(static_cast<char16_t>(index + ' ')); };
    if (before == textStart)
      advance = static_cast<float>(metrics_.horizontalAdvance(letter(at)));
    else
      advance = static_cast<float>(metrics_.horizontalAdvance(QString(letter(before)) + letter(at)) -
                                   metrics_.horizontalAdvance(letter(before)));
  }
  return advance;
}

float WidestText::otherAdvance(char32_t before, char32_t at) {
  if (!pairs(before) || !pairs(at)) before = noCharacter;
  const quint64 key = quint64{before} << 32U | at;
  const auto known = others_.constFind(key);
  if (known != others_.constEnd()) return *known;
  // As a cell shows it: some characters are written out.
  const QString alone = RowDelegate::shownText(QString::fromUcs4(&at, 1));
  qreal advance = metrics_.horizontalAdvance(alone);
  if (before != noCharacter) {
    const QString first = QString::fromUcs4(&before, 1);
    advance = metrics_.horizontalAdvance(first + alone) - metrics_.horizontalAdvance(first);
  }
  return *others_.insert(key, static_cast<float>(advance));
}

float WidestText::estimate(std::string_view text) {
  float width = 0;
  char32_t before = noCharacter;
  for (qsizetype count = 0; !text.empty() && count < RowDelegate::shownCharacters; ++count) {
    const auto byte = static_cast<unsigned char>(text.front());
    if (byte < 0x80 && before < 0x80) {
      // What breaks lines is shown as a blank.
      const char32_t at = std::max<char32_t>(byte, ' ');
      width += asciiAdvance(before == noCharacter ? textStart : before - ' ', at - ' ');
      before = at;
      text.remove_prefix(1);
    } else {
      const char32_t at = std::max<char32_t>(takeCharacter(text), ' ');
      width += otherAdvance(before, at);
      before = at;
    }
  }
  return width;
}

void WidestText::offer(std::string_view text) {
  if (text.empty()) return;
  text = text.substr(0, shownBytes + 1);
  const float width = estimate(text);
  if (candidates_.size() < candidateCount || width > candidates_.front().estimate) keep(width, text);
}

void WidestText::keep(float width, std::string_view text) {
  const auto wider = [](const Candidate& one, const Candidate& other) { return one.estimate > other.estimate; };
  for (const Candidate& each : candidates_)
    if (each.estimate == width && each.text == text) return;
  if (candidates_.size() == candidateCount) {
    std::pop_heap(candidates_.begin(), candidates_.end(), wider);
    candidates_.pop_back();
  }
  candidates_.push_back({width, std::string(text)});
  std::push_heap(candidates_.begin(), candidates_.end(), wider);
}

qreal WidestText::width() const {
  qreal widest = 0;
  for (const Candidate& each : candidates_)
    widest = std::max(widest, metrics_.horizontalAdvance(RowDelegate::shownText(fromUtf8(each.text))));
  return widest;
}

}  // namespace korvel::control
