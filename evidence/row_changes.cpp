#include "evidence/row_changes.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace korvel::evidence {

namespace {

using Rows = std::span<const Digest>;

/// A row of `before` or `after` that has no partner at its place, counted from 0.
struct Edit {
  bool isRemoval = false;
  std::size_t before = 0;  ///< rows of `before` that precede it
  std::size_t after = 0;   ///< rows of `after` that precede it
};

/// The shortest list of removals and insertions that turns `before` into `after`, after Myers (1986); nothing where it
/// is longer than `most`.
std::optional<std::vector<Edit>> shortestEdits(Rows before, Rows after, std::size_t most) {
  const auto n = static_cast<std::ptrdiff_t>(before.size());
  const auto m = static_cast<std::ptrdiff_t>(after.size());
  const auto limit = static_cast<std::ptrdiff_t>(std::min(most, before.size() + after.size()));
  // furthest[k] is how far into `before` one comes on diagonal k with the edits so far; offset by `limit` + 1.
  std::vector<std::ptrdiff_t> furthest(static_cast<std::size_t>(2 * limit + 3), 0);
  const auto at = [&](std::vector<std::ptrdiff_t>& line, std::ptrdiff_t k) -> std::ptrdiff_t& {
    return line[static_cast<std::size_t>(k + limit + 1)];
  };
  const auto goesDown = [&](std::vector<std::ptrdiff_t>& line, std::ptrdiff_t k, std::ptrdiff_t d) {
    return k == -d || (k != d && at(line, k - 1) < at(line, k + 1));
  };
  std::vector<std::vector<std::ptrdiff_t>> history;
  std::ptrdiff_t edits = -1;
  for (std::ptrdiff_t d = 0; d <= limit && edits < 0; ++d) {
    history.push_back(furthest);
    for (std::ptrdiff_t k = -d; k <= d; k += 2) {
      std::ptrdiff_t x = goesDown(furthest, k, d) ? at(furthest, k + 1) : at(furthest, k - 1) + 1;
      while (x < n && x - k < m && x - k >= 0 &&
             before[static_cast<std::size_t>(x)] == after[static_cast<std::size_t>(x - k)])
        ++x;
      at(furthest, k) = x;
      if (x >= n && x - k >= m) edits = d;
    }
  }
  if (edits < 0) return std::nullopt;
  std::vector<Edit> path;
  std::ptrdiff_t k = n - m;
  for (std::ptrdiff_t d = edits; d > 0; --d) {
    std::vector<std::ptrdiff_t>& line = history[static_cast<std::size_t>(d)];
    const bool down = goesDown(line, k, d);
    k += down ? 1 : -1;
    const std::ptrdiff_t x = at(line, k);
    path.push_back({!down, static_cast<std::size_t>(x), static_cast<std::size_t>(x - k)});
  }
  std::reverse(path.begin(), path.end());
  return path;
}

/// Where a row was removed and one inserted at the same place, it was changed.
std::vector<RowChange> changesOf(std::span<const Edit> edits) {
  std::vector<RowChange> changes;
  for (std::size_t begin = 0; begin < edits.size();) {
    // The edits of one place: removals and insertions in any order, with no equal row between them.
    std::size_t removed = 0;
    std::size_t inserted = 0;
    std::size_t end = begin;
    const Edit& first = edits[begin];
    while (end < edits.size() && edits[end].before == first.before + removed &&
           edits[end].after == first.after + inserted)
      ++(edits[end++].isRemoval ? removed : inserted);
    for (std::size_t i = 0; i < std::max(removed, inserted); ++i) {
      const std::size_t before = i < removed ? first.before + i + 1 : 0;
      const std::size_t after = i < inserted ? first.after + i + 1 : 0;
      const auto kind = before == 0  ? RowChange::Kind::inserted
                        : after == 0 ? RowChange::Kind::removed
                                     : RowChange::Kind::changed;
      changes.push_back({kind, before, after});
    }
    begin = end;
  }
  return changes;
}

/// Recognizes rows that are still there at another place.
class Moves {
 public:
  Moves(Rows before, Rows after) : before_(before), after_(after) {}

  std::vector<RowChange> recognize(const std::vector<RowChange>& changes) {
    for (const RowChange& change : changes) {
      if (change.before > 0) left_[before_[change.before - 1]].push_back(change.before);
      if (change.after > 0) arrived_[after_[change.after - 1]].push_back(change.after);
    }
    for (auto& [row, places] : left_) {
      const auto found = arrived_.find(row);
      if (found == arrived_.end()) continue;
      for (std::size_t i = 0; i < std::min(places.size(), found->second.size()); ++i) {
        movedTo_[places[i]] = found->second[i];
        movedFrom_[found->second[i]] = places[i];
      }
    }
    std::vector<RowChange> recognized;
    for (const RowChange& change : changes) add(change, recognized);
    return recognized;
  }

 private:
  void add(const RowChange& change, std::vector<RowChange>& recognized) const {
    using Kind = RowChange::Kind;
    const auto to = change.before > 0 ? movedTo_.find(change.before) : movedTo_.end();
    const bool arrivedHere = change.after > 0 && movedFrom_.contains(change.after);
    if (to == movedTo_.end() && !arrivedHere) return recognized.push_back(change);
    if (to != movedTo_.end()) {
      const auto back = movedTo_.find(to->second);
      const bool swapped = to->second != change.before && back != movedTo_.end() && back->second == change.before;
      if (!swapped)
        recognized.push_back({Kind::moved, change.before, to->second});
      else if (change.before < to->second)
        recognized.push_back({Kind::swapped, change.before, to->second});
    } else if (change.before > 0) {
      recognized.push_back({Kind::removed, change.before, 0});
    }
    // What came here from another place is told there.
    if (!arrivedHere && change.after > 0) recognized.push_back({Kind::inserted, 0, change.after});
  }

  Rows before_;
  Rows after_;
  std::map<Digest, std::vector<std::size_t>> left_;
  std::map<Digest, std::vector<std::size_t>> arrived_;
  std::map<std::size_t, std::size_t> movedTo_;
  std::map<std::size_t, std::size_t> movedFrom_;
};

/// The changes of rows that differ from the row of the same number, where that takes no more changes than `most`.
std::optional<std::vector<RowChange>> changesInPlace(Rows before, Rows after, std::size_t most) {
  if (before.size() != after.size()) return std::nullopt;
  std::vector<RowChange> changes;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (before[i] == after[i]) continue;
    if (changes.size() == most) return std::nullopt;
    changes.push_back({RowChange::Kind::changed, i + 1, i + 1});
  }
  return changes;
}

}  // namespace

std::vector<RowChange> rowChanges(Rows before, Rows after, std::size_t mostChanges) {
  std::size_t same = 0;
  while (same < before.size() && same < after.size() && before[same] == after[same]) ++same;
  std::size_t end = 0;
  while (end < before.size() - same && end < after.size() - same &&
         before[before.size() - 1 - end] == after[after.size() - 1 - end])
    ++end;
  const Rows left = before.subspan(same, before.size() - same - end);
  const Rows right = after.subspan(same, after.size() - same - end);
  std::vector<RowChange> changes;
  if (const auto edits = shortestEdits(left, right, 2 * mostChanges)) {
    changes = changesOf(*edits);
    // Where rows changed places, those that differ in place are fewer.
    if (auto inPlace = changesInPlace(left, right, changes.size())) changes = std::move(*inPlace);
  } else {
    const std::size_t both = std::min(left.size(), right.size());
    changes = changesInPlace(left.first(both), right.first(both), both).value();
    for (std::size_t row = both + 1; row <= left.size(); ++row) changes.push_back({RowChange::Kind::removed, row, 0});
    for (std::size_t row = both + 1; row <= right.size(); ++row) changes.push_back({RowChange::Kind::inserted, 0, row});
  }
  for (RowChange& change : changes) {
    if (change.before > 0) change.before += same;
    if (change.after > 0) change.after += same;
  }
  return Moves(before, after).recognize(changes);
}

std::string textOf(const RowChange& change) {
  const std::string before = std::to_string(change.before);
  const std::string after = std::to_string(change.after);
  switch (change.kind) {
    case RowChange::Kind::removed:
      return "row " + before + " is missing";
    case RowChange::Kind::inserted:
      return "row " + after + " was inserted";
    case RowChange::Kind::moved:
      if (change.before == change.after) return "row " + before + " was moved among its neighbours";
      return "row " + before + " was moved, and is row " + after + " now";
    case RowChange::Kind::swapped:
      return "rows " + before + " and " + after + " were swapped";
    case RowChange::Kind::changed:
      break;
  }
  return change.before == change.after ? "row " + before + " was changed"
                                       : "row " + before + " was changed, and is row " + after + " now";
}

}  // namespace korvel::evidence
