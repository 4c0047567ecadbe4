#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace korvel::results {

/// Bytes [begin, end) of a text.
struct TextSpan {
  std::size_t begin = 0;
  std::size_t end = 0;
  friend constexpr bool operator==(TextSpan, TextSpan) = default;
};

/// Decides whether a shown text contains what a reader looks for, and where. A copy is cheap and decides alike.
class TextMatcher {
 public:
  struct Options {
    bool exactCase = false;   ///< else case is folded as everywhere in lists
    bool wholeValue = false;  ///< the whole text must match, not a part of it
  };
  /// Finds the matches in a text, in order and without overlaps, or only the first one.
  using Finder = std::function<std::vector<TextSpan>(std::string_view text, bool firstOnly)>;

  /// Looks for `text`; nothing matches an empty one.
  TextMatcher(std::string_view text, Options options);
  /// Looks for what `finder` finds, such as a regular expression. It may be called from any thread.
  explicit TextMatcher(Finder finder);

  /// The same, but a finder is not asked any more once a stop is requested: then nothing matches.
  [[nodiscard]] TextMatcher until(const std::stop_token& stop) const;

  [[nodiscard]] bool matches(std::string_view shown) const;
  /// Where `shown` matches, in order and without overlaps. A match of a part of a letter (the "s" of "ß") is the whole
  /// letter.
  [[nodiscard]] std::vector<TextSpan> spansIn(std::string_view shown) const;

  /// What texts of ASCII letters alone must contain to match, in small letters unless case counts: for finding it in
  /// many texts at once. Null where matching is not so simple.
  [[nodiscard]] const std::string* needle() const noexcept;
  [[nodiscard]] Options options() const noexcept { return options_; }

 private:
  [[nodiscard]] std::vector<TextSpan> foldedSpansIn(std::string_view shown) const;

  Options options_;
  std::string needle_;
  std::shared_ptr<const Finder> finder_;
};

/// Finds the places of `needle`, which must be in small letters and not empty, in ASCII `text` whatever its case. Both
/// must outlive it.
class FoldedSearch {
 public:
  FoldedSearch(std::string_view text, std::string_view needle) noexcept;
  /// The first place at or behind `from`, which never lies before the one of an earlier call; std::string_view::npos
  /// where there is none.
  [[nodiscard]] std::size_t next(std::size_t from) noexcept;

 private:
  /// Where one byte occurs next.
  struct Byte {
    char value = 0;
    std::size_t place = 0;
    bool isSearched = false;
  };
  [[nodiscard]] std::size_t nextCandidate(std::size_t from) noexcept;

  std::string_view text_;
  std::string_view needle_;
  std::size_t rare_;             ///< the place in the needle of the byte that is looked for first
  std::array<Byte, 2> letters_;  ///< that byte and its capital
};

}  // namespace korvel::results
