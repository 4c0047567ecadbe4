#include "base/text_difference.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/text_clusters.h"

namespace korvel {

namespace {

/// Larger parts are not divided into characters.
constexpr std::size_t mostBytes = std::size_t{1} << 21U;

/// Characters of a text: a part of its clusters.
class Characters {
 public:
  explicit Characters(std::string_view text) : text_(text), bounds_(clusterBounds(text)), last_(bounds_.size() - 1) {}

  [[nodiscard]] std::int32_t count() const noexcept { return static_cast<std::int32_t>(last_ - first_); }
  [[nodiscard]] std::string_view operator[](std::int32_t i) const noexcept {
    return text_.substr(begin(i), begin(i + 1) - begin(i));
  }
  /// Where a character begins in the text; for count(), where the last one ends.
  [[nodiscard]] std::size_t begin(std::int32_t i) const noexcept {
    return bounds_[first_ + static_cast<std::size_t>(i)];
  }

  void dropFirst() noexcept { ++first_; }
  void dropLast() noexcept { --last_; }

 private:
  std::string_view text_;
  std::vector<std::uint32_t> bounds_;
  std::size_t first_ = 0;
  std::size_t last_;
};

/// The shortest series of edits from one text to another, as S. Wu, U. Manber, G. Myers and W. Miller have it ("An
/// O(NP) sequence comparison algorithm", 1990): its work is the length of the longer text times the number of
/// characters of the shorter one that are not in the longer.
class ShortestEdits {
 public:
  /// `shorter` has no more characters than `longer`.
  ShortestEdits(const Characters& shorter, const Characters& longer, std::size_t effort)
      : shorter_(shorter), longer_(longer), effort_(effort) {}

  struct Edited {
    std::vector<bool> shorter;
    std::vector<bool> longer;
  };

  /// Which characters are in one text only; false when the effort is exceeded.
  [[nodiscard]] bool find(Edited& edited) {
    const std::int32_t apart = longer_.count() - shorter_.count();
    if (!spend(static_cast<std::size_t>(apart) + 1)) return false;
    for (std::int32_t left = 0;; ++left) {
      // In all: one diagonal before the first, one behind the last, and `left` on both sides.
      makeRoom(left + 1, apart);
      for (std::int32_t k = -left; k < apart; ++k)
        if (!follow(k)) return false;
      for (std::int32_t k = apart + left; k > apart; --k)
        if (!follow(k)) return false;
      if (!follow(apart)) return false;
      if (diagonal(apart).reached == longer_.count()) break;
    }
    collect(diagonal(apart).end, edited);
    return true;
  }

 private:
  /// The end of a run of equal characters, and the run before it.
  struct Run {
    std::int32_t shorter = 0;
    std::int32_t longer = 0;
    std::int32_t before = none;
  };
  /// The places whose difference in the two texts is the same.
  struct Diagonal {
    std::int32_t reached = -1;  ///< characters of the longer text
    std::int32_t end = none;
  };
  static constexpr std::int32_t none = -1;
  static constexpr std::size_t effortOfARun = 8;

  [[nodiscard]] bool spend(std::size_t effort) noexcept {
    if (effort > effort_) return false;
    effort_ -= effort;
    return true;
  }

  Diagonal& diagonal(std::int32_t k) noexcept {
    return k < 0 ? negative_[static_cast<std::size_t>(-k)] : positive_[static_cast<std::size_t>(k)];
  }
  void makeRoom(std::int32_t beyond, std::int32_t apart) {
    negative_.resize(static_cast<std::size_t>(beyond) + 1);
    positive_.resize(static_cast<std::size_t>(apart) + static_cast<std::size_t>(beyond) + 1);
  }

  /// Goes on on this diagonal from its better neighbour. False when the effort is exceeded.
  [[nodiscard]] bool follow(std::int32_t k) {
    const Diagonal added = diagonal(k - 1);
    const Diagonal removed = diagonal(k + 1);
    const bool adds = added.reached + 1 > removed.reached;
    Run run{0, adds ? added.reached + 1 : removed.reached, adds ? added.end : removed.end};
    run.shorter = run.longer - k;
    const std::int32_t from = run.longer;
    while (run.shorter < shorter_.count() && run.longer < longer_.count() &&
           shorter_[run.shorter] == longer_[run.longer]) {
      ++run.shorter;
      ++run.longer;
    }
    if (!spend(effortOfARun + static_cast<std::size_t>(run.longer - from))) return false;
    diagonal(k) = {run.longer, static_cast<std::int32_t>(runs_.size())};
    runs_.push_back(run);
    return true;
  }

  /// Between two runs there is one edit and then equal characters.
  void collect(std::int32_t last, Edited& edited) const {
    edited.shorter.assign(static_cast<std::size_t>(shorter_.count()), false);
    edited.longer.assign(static_cast<std::size_t>(longer_.count()), false);
    for (std::int32_t at = last; at != none;) {
      const Run& run = runs_[static_cast<std::size_t>(at)];
      at = run.before;
      if (at == none) break;  // the first run begins where both texts begin
      const Run& before = runs_[static_cast<std::size_t>(at)];
      if (run.longer - run.shorter > before.longer - before.shorter)
        edited.longer[static_cast<std::size_t>(before.longer)] = true;
      else
        edited.shorter[static_cast<std::size_t>(before.shorter)] = true;
    }
  }

  const Characters& shorter_;
  const Characters& longer_;
  std::size_t effort_;
  std::vector<Diagonal> negative_;
  std::vector<Diagonal> positive_;
  std::vector<Run> runs_;
};

void addRange(std::vector<ByteRange>& ranges, std::size_t begin, std::size_t end) {
  if (begin == end) return;
  if (!ranges.empty() && ranges.back().end == begin)
    ranges.back().end = end;
  else
    ranges.push_back({begin, end});
}

/// The marked characters as ranges of a text that begins `offset` bytes earlier; returns how many they are.
std::size_t addMarked(const Characters& characters, const std::vector<bool>& marked, std::size_t offset,
                      std::vector<ByteRange>& ranges) {
  std::size_t count = 0;
  for (std::int32_t i = 0; i < characters.count(); ++i) {
    if (!marked[static_cast<std::size_t>(i)]) continue;
    ++count;
    addRange(ranges, offset + characters.begin(i), offset + characters.begin(i + 1));
  }
  return count;
}

void addAll(const Characters& characters, std::size_t offset, std::vector<ByteRange>& ranges) {
  addRange(ranges, offset + characters.begin(0), offset + characters.begin(characters.count()));
}

/// Compares the texts behind a common beginning of `offset` bytes.
TextDifference differenceOf(Characters before, Characters after, std::size_t offset, std::size_t effort) {
  while (before.count() > 0 && after.count() > 0 && before[0] == after[0]) {
    before.dropFirst();
    after.dropFirst();
  }
  while (before.count() > 0 && after.count() > 0 && before[before.count() - 1] == after[after.count() - 1]) {
    before.dropLast();
    after.dropLast();
  }
  TextDifference difference;
  const bool grows = before.count() <= after.count();
  ShortestEdits::Edited edited;
  difference.isSmallest = ShortestEdits(grows ? before : after, grows ? after : before, effort).find(edited);
  if (!difference.isSmallest) {
    addAll(before, offset, difference.before);
    addAll(after, offset, difference.after);
    return difference;
  }
  if (!grows) std::swap(edited.shorter, edited.longer);
  difference.charactersBefore = addMarked(before, edited.shorter, offset, difference.before);
  difference.charactersAfter = addMarked(after, edited.longer, offset, difference.after);
  return difference;
}

}  // namespace

TextDifference differenceOf(std::string_view before, std::string_view after, std::size_t effort) {
  if (before == after) return {};
  const auto firstDifference = std::mismatch(before.begin(), before.end(), after.begin(), after.end()).first;
  const std::size_t sameBegin =
      lastCertainBound(before.substr(0, static_cast<std::size_t>(firstDifference - before.begin())));
  before.remove_prefix(sameBegin);
  after.remove_prefix(sameBegin);
  const auto lastDifference = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend()).first;
  const auto sameBytes = static_cast<std::size_t>(lastDifference - before.rbegin());
  const std::string_view sameEnd = before.substr(before.size() - sameBytes);
  const std::size_t sameEndSize = sameEnd.size() - firstCertainBound(sameEnd);
  before.remove_suffix(sameEndSize);
  after.remove_suffix(sameEndSize);
  if (std::max(before.size(), after.size()) > mostBytes) {
    TextDifference difference;
    difference.isSmallest = false;
    addRange(difference.before, sameBegin, sameBegin + before.size());
    addRange(difference.after, sameBegin, sameBegin + after.size());
    return difference;
  }
  return differenceOf(Characters(before), Characters(after), sameBegin, effort);
}

}  // namespace korvel
