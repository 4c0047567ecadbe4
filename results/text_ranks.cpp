#include "results/text_ranks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "results/text_arena.h"
#include "results/text_bytes.h"

namespace korvel::results {

namespace {

/// An index with the number by which it is to be ordered.
struct WordItem {
  std::uint64_t word = 0;
  std::uint32_t index = 0;
};

constexpr std::size_t fewItems = 256;  // below, counting 256 possible bytes costs more than comparing
constexpr unsigned wordBits = 64;
constexpr unsigned digitBits = 8;

bool less(const WordItem& a, const WordItem& b) noexcept {
  return a.word < b.word;
}

/// Sorts `items` by their words, equal ones staying in order. `spare` has at least as many items; what it holds is
/// lost.
void sortByWord(std::span<WordItem> items, std::span<WordItem> spare) {
  // Running numbers and time stamps mostly arrive in their order.
  if (std::is_sorted(items.begin(), items.end(), less)) return;
  if (items.size() < fewItems) {
    std::sort(items.begin(), items.end(), [](const WordItem& a, const WordItem& b) {
      return a.word != b.word ? a.word < b.word : a.index < b.index;
    });
    return;
  }
  std::uint64_t varying = 0;
  for (const WordItem& item : items) varying |= item.word ^ items.front().word;

  std::span<WordItem> from = items;
  std::span<WordItem> to = spare.first(items.size());
  for (unsigned shift = 0; shift < wordBits; shift += digitBits) {
    if ((varying >> shift & 0xFFU) == 0) continue;
    std::array<std::size_t, 256> next{};
    for (const WordItem& item : from) ++next[item.word >> shift & 0xFFU];
    std::size_t begin = 0;
    for (std::size_t& place : next) {
      const std::size_t count = place;
      place = begin;
      begin += count;
    }
    for (const WordItem& item : from) to[next[item.word >> shift & 0xFFU]++] = item;
    std::swap(from, to);
  }
  if (from.data() != items.data()) std::copy(from.begin(), from.end(), items.begin());
}

constexpr std::size_t wordBytes = 8;

/// The case-folded form of `text`. ASCII letters may stay as they are: ordering words have no capitals.
void foldBeyondAscii(std::string_view text, std::string& folded) {
  const auto isAsciiAt = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0x80U) == 0; };
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = begin;
    while (end < text.size() && isAsciiAt(end) == isAsciiAt(begin)) ++end;
    const std::string_view run = text.substr(begin, end - begin);
    if (isAsciiAt(begin))
      folded.append(run);
    else
      appendCaseFolded(run, folded);
    begin = end;
  }
}

/// Orders texts word by word: a range that agrees up to some offset is sorted by its next eight bytes, and every group
/// that agrees in these as well is a range of its own. Only texts that are alike are ever read beyond their beginning.
class TextRanking {
 public:
  explicit TextRanking(std::span<const std::string_view> texts) : texts_(texts) {}

  std::vector<std::uint32_t> run() {
    std::vector<std::uint32_t> ranks(texts_.size(), 0);
    items_.reserve(texts_.size());
    for (std::size_t i = 0; i < texts_.size(); ++i)
      if (!texts_[i].empty()) items_.push_back({0, static_cast<std::uint32_t>(i)});
    spare_.resize(items_.size());
    startsGroup_.assign(items_.size(), 0);
    if (!items_.empty()) ranges_.push_back({0, items_.size(), 0});
    while (!ranges_.empty()) {
      const Range range = ranges_.back();
      ranges_.pop_back();
      sortRange(range);
    }
    std::uint32_t rank = 0;
    for (std::size_t i = 0; i < items_.size(); ++i) {
      rank += startsGroup_[i];
      ranks[items_[i].index] = rank;
    }
    return ranks;
  }

 private:
  struct Range {
    std::size_t begin;
    std::size_t end;
    std::size_t offset;  ///< up to which its texts agree
  };

  [[nodiscard]] std::string_view textOf(std::size_t item) const { return texts_[items_[item].index]; }
  /// Bytes of the text that a word from `offset` holds, or more than that many when the text goes on.
  [[nodiscard]] std::size_t heldBytes(std::size_t item, std::size_t offset) const {
    return std::min(textOf(item).size() - offset, wordBytes + 1);
  }

  void sortRange(Range range) {
    const std::size_t size = range.end - range.begin;
    if (size == 1) {
      startsGroup_[range.begin] = 1;
      return;
    }
    const std::span<WordItem> items{items_.data() + range.begin, size};
    for (WordItem& item : items) item.word = orderingWord(texts_[item.index], range.offset);
    sortByWord(items, spare_);
    for (std::size_t begin = range.begin; begin < range.end;) {
      std::size_t end = begin + 1;
      while (end < range.end && items_[end].word == items_[begin].word) ++end;
      splitByLength({begin, end, range.offset}, end - begin == size);
      begin = end;
    }
  }

  /// The words of the range are equal. Texts that end in this word differ only by the NUL bytes they may end with, the
  /// shorter being the smaller; all others go on and are larger.
  void splitByLength(Range range, bool isWhole) {
    if (range.end - range.begin == 1) {
      startsGroup_[range.begin] = 1;
      return;
    }
    std::array<std::size_t, wordBytes + 2> counts{};
    for (std::size_t i = range.begin; i < range.end; ++i) ++counts[heldBytes(i, range.offset)];
    if (counts[heldBytes(range.begin, range.offset)] != range.end - range.begin) {
      for (std::size_t i = range.begin; i < range.end; ++i) items_[i].word = heldBytes(i, range.offset);
      sortByWord({items_.data() + range.begin, range.end - range.begin}, spare_);
    }
    std::size_t begin = range.begin;
    for (std::size_t held = 0; held <= wordBytes; ++held) {
      if (counts[held] != 0) startsGroup_[begin] = 1;
      begin += counts[held];
    }
    if (begin == range.end) return;
    std::size_t offset = range.offset + wordBytes;
    if (isWhole) offset = commonOffset({begin, range.end, offset});
    ranges_.push_back({begin, range.end, offset});
  }

  /// A range that eight bytes did not split at all may agree for long (paths, documents): where it stops to do so, less
  /// than a word before the first difference or end.
  [[nodiscard]] std::size_t commonOffset(Range range) const {
    const std::string_view first = textOf(range.begin);
    std::size_t common = first.size();
    for (std::size_t i = range.begin + 1; i < range.end; ++i) {
      const std::string_view other = textOf(i);
      common = std::min(common, other.size());
      std::size_t at = range.offset;
      while (at + wordBytes <= common && orderingWord(first, at) == orderingWord(other, at)) at += wordBytes;
      common = std::min(common, at + wordBytes - 1);
    }
    return range.offset + (common - range.offset) / wordBytes * wordBytes;
  }

  std::span<const std::string_view> texts_;
  std::vector<WordItem> items_;
  std::vector<WordItem> spare_;
  std::vector<std::uint8_t> startsGroup_;  ///< 1 where a text differs from the one before it
  std::vector<Range> ranges_;
};

/// The value of a whole number of at most nine digits, leading zeros aside.
bool readEntryNumber(std::string_view text, std::uint64_t& value) {
  if (!isAllDigits(text)) return false;
  text = withoutLeadingZeros(text);
  if (text.size() > entryNumberDigits) return false;
  value = 0;
  for (const char c : text) value = value * 10 + static_cast<std::uint64_t>(c - '0');
  return true;
}

/// Ranks texts that are all empty or entry numbers by value; nothing when one of them is neither.
std::vector<std::uint32_t> rankValues(std::span<const std::string_view> texts) {
  std::vector<WordItem> items;
  items.reserve(texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::uint64_t value = 0;
    if (texts[i].empty()) continue;
    if (!readEntryNumber(texts[i], value)) return {};
    items.push_back({value, static_cast<std::uint32_t>(i)});
  }
  std::vector<WordItem> spare(items.size());
  sortByWord(items, spare);
  std::vector<std::uint32_t> ranks(texts.size(), 0);
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i == 0 || items[i].word != items[i - 1].word) ++rank;
    ranks[items[i].index] = rank;
  }
  return ranks;
}

}  // namespace

std::string paddedNumber(std::string_view text) {
  const auto number = wholeNumber(text);
  if (!number) return std::string{text};
  std::string padded;
  if (number->negative) padded = "-";
  if (number->digits.size() < entryNumberDigits) padded.append(entryNumberDigits - number->digits.size(), '0');
  return padded.append(number->digits);
}

std::vector<std::uint32_t> rankTexts(std::vector<std::string_view> texts) {
  TextArena foldedTexts;
  std::string folded;
  for (std::string_view& text : texts) {
    if (isAscii(text)) continue;
    folded.clear();
    foldBeyondAscii(text, folded);
    text = textAt(foldedTexts.add(folded));
  }
  return TextRanking{texts}.run();
}

std::vector<std::uint32_t> rankNumberTexts(std::vector<std::string_view> texts) {
  std::vector<std::uint32_t> ranks = rankValues(texts);
  if (!ranks.empty() || texts.empty()) return ranks;
  TextArena paddedTexts;
  for (std::string_view& text : texts) text = textAt(paddedTexts.add(paddedNumber(text)));
  return rankTexts(std::move(texts));
}

}  // namespace korvel::results
