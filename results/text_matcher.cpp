#include "results/text_matcher.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace korvel::results {

namespace {

constexpr std::size_t npos = std::string_view::npos;

constexpr bool isSmallLetter(char c) noexcept {
  return c >= 'a' && c <= 'z';
}
constexpr char capitalOf(char c) noexcept {
  return isSmallLetter(c) ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char smallOf(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The byte of a needle to look for first: one that is rare in audit trails and, better still, has no capital.
std::size_t rarestByte(std::string_view needle) noexcept {
  constexpr std::string_view frequent = " 0123456789aeinorst-.:";
  const auto cost = [&](char c) { return (isSmallLetter(c) ? 1 : 0) + (frequent.find(c) == npos ? 0 : 2); };
  std::size_t best = 0;
  for (std::size_t i = 1; i < needle.size(); ++i)
    if (cost(needle[i]) < cost(needle[best])) best = i;
  return best;
}

bool equalsFolded(const char* text, std::string_view needle) noexcept {
  return std::equal(needle.begin(), needle.end(), text, [](char a, char b) { return a == smallOf(b); });
}

/// A text with its case folded, and which bytes of the text each folded byte stands for.
struct FoldedText {
  std::string folded;
  std::vector<TextSpan> origins;
};

FoldedText foldWithOrigins(std::string_view text) {
  FoldedText result;
  std::size_t begin = 0;
  while (begin < text.size()) {
    std::string_view rest = text.substr(begin);
    const std::size_t before = rest.size();
    static_cast<void>(takeCodePoint(rest));
    const std::size_t size = before - rest.size();
    appendCaseFolded(text.substr(begin, size), result.folded);
    result.origins.resize(result.folded.size(), {begin, begin + size});
    begin += size;
  }
  return result;
}

}  // namespace

FoldedSearch::FoldedSearch(std::string_view text, std::string_view needle) noexcept
    : text_(text), needle_(needle), rare_(rarestByte(needle)) {
  letters_[0].value = needle[rare_];
  letters_[1].value = capitalOf(needle[rare_]);
}

std::size_t FoldedSearch::nextCandidate(std::size_t from) noexcept {
  const bool hasCapital = letters_[0].value != letters_[1].value;
  std::size_t nearest = npos;
  for (Byte& letter : letters_) {
    if (&letter != letters_.data() && !hasCapital) break;
    if (!letter.isSearched || (letter.place != npos && letter.place < from)) {
      letter.place = from < text_.size() ? text_.find(letter.value, from) : npos;
      letter.isSearched = true;
    }
    nearest = std::min(nearest, letter.place);
  }
  return nearest;
}

std::size_t FoldedSearch::next(std::size_t from) noexcept {
  for (std::size_t at = nextCandidate(from + rare_); at != npos; at = nextCandidate(at + 1)) {
    const std::size_t begin = at - rare_;
    if (text_.size() - begin < needle_.size()) return npos;
    if (equalsFolded(text_.data() + begin, needle_)) return begin;
  }
  return npos;
}

TextMatcher::TextMatcher(std::string_view text, Options options)
    : options_(options), needle_(options.exactCase ? std::string(text) : caseFolded(text)) {}

TextMatcher::TextMatcher(Finder finder) : finder_(std::make_shared<const Finder>(std::move(finder))) {}

TextMatcher TextMatcher::until(const std::stop_token& stop) const {
  TextMatcher copy = *this;
  if (finder_ != nullptr && stop.stop_possible())
    copy.finder_ = std::make_shared<const Finder>([finder = finder_, stop](std::string_view text, bool firstOnly) {
      return stop.stop_requested() ? std::vector<TextSpan>() : (*finder)(text, firstOnly);
    });
  return copy;
}

const std::string* TextMatcher::needle() const noexcept {
  return finder_ == nullptr && !options_.wholeValue ? &needle_ : nullptr;
}

bool TextMatcher::matches(std::string_view shown) const {
  if (finder_ != nullptr) return !(*finder_)(shown, true).empty();
  if (needle_.empty()) return false;
  if (options_.exactCase) return options_.wholeValue ? shown == needle_ : shown.find(needle_) != npos;
  if (isAscii(shown)) {
    if (!options_.wholeValue) return FoldedSearch(shown, needle_).next(0) != npos;
    return shown.size() == needle_.size() && equalsFolded(shown.data(), needle_);
  }
  // No character has more than four bytes, and none folds to nothing.
  if (options_.wholeValue && shown.size() > 4 * needle_.size()) return false;
  const std::string folded = caseFolded(shown);
  return options_.wholeValue ? folded == needle_ : folded.find(needle_) != npos;
}

std::vector<TextSpan> TextMatcher::spansIn(std::string_view shown) const {
  if (finder_ != nullptr) return (*finder_)(shown, false);
  if (needle_.empty()) return {};
  if (options_.wholeValue) return matches(shown) ? std::vector<TextSpan>{{0, shown.size()}} : std::vector<TextSpan>{};
  if (!options_.exactCase) return foldedSpansIn(shown);
  std::vector<TextSpan> spans;
  for (std::size_t at = shown.find(needle_); at != npos; at = shown.find(needle_, at + needle_.size()))
    spans.push_back({at, at + needle_.size()});
  return spans;
}

std::vector<TextSpan> TextMatcher::foldedSpansIn(std::string_view shown) const {
  std::vector<TextSpan> spans;
  const FoldedText text = foldWithOrigins(shown);
  for (std::size_t at = text.folded.find(needle_); at != npos; at = text.folded.find(needle_, at + needle_.size())) {
    const TextSpan span{text.origins[at].begin, text.origins[at + needle_.size() - 1].end};
    // Two matches in one letter ("ß" for "s") are one.
    if (!spans.empty() && span.begin < spans.back().end)
      spans.back().end = std::max(spans.back().end, span.end);
    else
      spans.push_back(span);
  }
  return spans;
}

}  // namespace korvel::results
