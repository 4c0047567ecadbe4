#include "results/find_prefix.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "base/numbers.h"
#include "base/text.h"
#include "results/text_ranks.h"

namespace korvel::results {

namespace {

constexpr ColumnIndex entryNumberColumn{0};
/// Rows of one range that are looked at for a match; all match, but where numbers and other texts are mixed.
constexpr std::size_t longestLook = 1000;

/// As many bytes of `text` as decide whether its folded form begins with `size` bytes: no character has more than four
/// bytes, and none folds to nothing.
std::string foldedHead(std::string_view text, std::size_t size) {
  return caseFolded(text.substr(0, 4 * size + 4));
}

bool beginsWith(std::string_view text, const std::string& folded) {
  return foldedHead(text, folded.size()).starts_with(folded);
}

/// Rows [begin, end).
struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Looks up rows of a list in its sort column.
class SortedColumn {
 public:
  explicit SortedColumn(const ResultList& list) : list_(list), column_(list.sortKey()) {}

  /// The rows whose key begins with the folded text `head`: they stand together.
  [[nodiscard]] Range rangeOf(const std::string& head) const {
    const auto comparedTo = [&](std::size_t place) { return headOfKey(place, head.size()).compare(head); };
    const std::size_t begin = firstPlace([&](std::size_t place) { return comparedTo(place) >= 0; });
    const std::size_t end = firstPlace([&](std::size_t place) { return comparedTo(place) > 0; });
    if (list_.sortOrder() == SortOrder::ascending) return {begin, end};
    return {list_.rowCount() - end, list_.rowCount() - begin};
  }

 private:
  /// The row at a place of the ascending order.
  [[nodiscard]] RowPosition rowAt(std::size_t place) const {
    return {list_.sortOrder() == SortOrder::ascending ? place : list_.rowCount() - 1 - place};
  }
  [[nodiscard]] std::string headOfKey(std::size_t place, std::size_t size) const {
    const std::string_view text = list_.text(rowAt(place), column_);
    std::string head = column_ == entryNumberColumn ? foldedHead(paddedNumber(text), size) : foldedHead(text, size);
    if (head.size() > size) head.resize(size);
    return head;
  }
  /// The first place where `reached` holds, which then holds at all places behind it.
  template <typename Predicate>
  [[nodiscard]] std::size_t firstPlace(Predicate reached) const {
    std::size_t begin = 0;
    std::size_t end = list_.rowCount();
    while (begin < end) {
      const std::size_t middle = begin + (end - begin) / 2;
      if (reached(middle))
        end = middle;
      else
        begin = middle + 1;
    }
    return begin;
  }

  const ResultList& list_;
  ColumnIndex column_;
};

/// With which texts the keys of rows begin that show `folded` at their beginning. Entry numbers are ordered with zeros
/// before them, as many as nine digits leave room for.
std::vector<std::string> keyHeads(ColumnIndex column, const std::string& folded) {
  std::vector<std::string> heads{folded};
  const std::string_view sign = folded.starts_with('-') ? "-" : "";
  const std::string_view digits = withoutLeadingZeros(std::string_view(folded).substr(sign.size()));
  if (column != entryNumberColumn || (!digits.empty() && !isAllDigits(digits))) return heads;
  if (digits == "0") heads.emplace_back(sign);  // "0012345678901" is ordered as "12345678901"
  if (!sign.empty() && (digits.empty() || digits == "0")) heads.emplace_back(entryNumberDigits, '0');  // "-0" is zero
  for (std::size_t zeros = 0; zeros + digits.size() <= entryNumberDigits; ++zeros)
    heads.push_back(std::string(sign).append(zeros, '0').append(digits));
  return heads;
}

std::optional<RowPosition> findSorted(const ResultList& list, const std::string& folded, std::size_t from) {
  const SortedColumn sorted(list);
  const std::size_t rows = list.rowCount();
  std::optional<RowPosition> found;
  const auto distance = [&](std::size_t row) { return row >= from ? row - from : row + rows - from; };
  for (const std::string& head : keyHeads(list.sortKey(), folded)) {
    const Range range = sorted.rangeOf(head);
    for (const std::size_t first : {std::max(range.begin, from), range.begin}) {
      for (std::size_t row = first; row < std::min(range.end, first + longestLook); ++row) {
        if (!beginsWith(list.text({row}, list.sortKey()), folded)) continue;
        if (!found || distance(row) < distance(found->value)) found = RowPosition{row};
        break;
      }
    }
  }
  return found;
}

}  // namespace

std::optional<RowPosition> findPrefix(const ResultList& list, ColumnIndex column, std::string_view beginning,
                                      RowPosition from) {
  const std::string folded = caseFolded(beginning);
  const std::size_t rows = list.rowCount();
  if (folded.empty() || rows == 0) return std::nullopt;
  const std::size_t start = from.value < rows ? from.value : 0;
  if (list.isSorted() && column == list.sortKey()) return findSorted(list, folded, start);
  for (std::size_t step = 0; step < rows; ++step) {
    const std::size_t row = start + step < rows ? start + step : start + step - rows;
    if (beginsWith(list.text({row}, column), folded)) return RowPosition{row};
  }
  return std::nullopt;
}

}  // namespace korvel::results
