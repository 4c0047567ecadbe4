#include "results/row_groups.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "results/memory_watch.h"
#include "results/shown_column.h"
#include "results/text_ids.h"
#include "results/text_ranks.h"

namespace korvel::results {

namespace {

/// What every record shows for one key, as numbers from 0.
struct KeyIds {
  TextIds texts;
  std::uint32_t nullId = std::numeric_limits<std::uint32_t>::max();  ///< the highest number, where there are nulls
  std::vector<std::uint32_t> ofRecord;
  std::vector<std::uint32_t> ranks;  ///< of the texts, by number

  [[nodiscard]] std::size_t count() const noexcept { return texts.size() + 1; }
  [[nodiscard]] ShownValue valueOf(std::uint32_t id) const {
    return id == nullId ? ShownValue{{}, true} : ShownValue{std::string(texts.textOf(id)), false};
  }
  /// Nulls before texts; texts as sorting orders them, those that differ in case alone by their bytes.
  [[nodiscard]] int compare(std::uint32_t a, std::uint32_t b) const noexcept {
    if (a == b) return 0;
    if (a == nullId || b == nullId) return a == nullId ? -1 : 1;
    if (ranks[a] != ranks[b]) return ranks[a] < ranks[b] ? -1 : 1;
    return texts.textOf(a) < texts.textOf(b) ? -1 : 1;
  }
};

KeyIds idsOf(const ResultList& list, const GroupKey& key) {
  KeyIds ids;
  constexpr std::uint32_t isNullMark = std::numeric_limits<std::uint32_t>::max();
  ids.ofRecord.resize(list.store()->rowCount());
  std::uint32_t* const out = ids.ofRecord.data();
  ShownColumn(list, key.column)
      .forEachRow([&](std::string_view text,
                      bool isNull) { return isNull ? isNullMark : ids.texts.idOf(datePart(text, key.part)); },
                  [out](std::size_t row, std::uint32_t id) { out[row] = id; });
  ids.nullId = static_cast<std::uint32_t>(ids.texts.size());
  std::replace(ids.ofRecord.begin(), ids.ofRecord.end(), isNullMark, ids.nullId);
  std::vector<std::string_view> texts(ids.texts.size());
  for (std::uint32_t id = 0; id < texts.size(); ++id) texts[id] = ids.texts.textOf(id);
  ids.ranks = rankTexts(std::move(texts));
  return ids;
}

/// Numbers the pairs of two keys' numbers that occur, and keeps what each pair is.
class PairIds {
 public:
  PairIds(std::size_t firstCount, std::size_t secondCount) : secondCount_(secondCount) {
    if (firstCount <= mostDirectPairs / secondCount) direct_.resize(firstCount * secondCount, free);
  }
  std::uint32_t idOf(std::uint32_t first, std::uint32_t second) {
    const std::uint64_t pair = std::uint64_t{first} * secondCount_ + second;
    std::uint32_t& id =
        direct_.empty() ? hashed_.try_emplace(pair, free).first->second : direct_[static_cast<std::size_t>(pair)];
    if (id == free) {
      id = static_cast<std::uint32_t>(pairs.size());
      pairs.emplace_back(first, second);
    }
    return id;
  }
  std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;

 private:
  static constexpr std::uint32_t free = std::numeric_limits<std::uint32_t>::max();
  static constexpr std::size_t mostDirectPairs = std::size_t{1} << 20U;

  std::size_t secondCount_;
  std::vector<std::uint32_t> direct_;
  std::unordered_map<std::uint64_t, std::uint32_t> hashed_;
};

}  // namespace

LargestGroups largestGroups(const ResultList& list, std::span<const GroupKey> keys, std::size_t most) {
  if (list.rowCount() == 0 || keys.empty()) return {};
  try {
    std::vector<KeyIds> ids;
    for (const GroupKey& key : keys) ids.push_back(idsOf(list, key));
    // A group's number stands for the numbers of its keys: pair by pair from the first one.
    // By row, because a record may be several rows.
    std::vector<std::uint32_t> groupOf(list.rowCount());
    for (std::size_t row = 0; row < groupOf.size(); ++row) groupOf[row] = ids.front().ofRecord[list.rowId({row}).value];
    std::size_t groups = ids.front().count();
    std::vector<PairIds> pairs;
    for (std::size_t key = 1; key < ids.size(); ++key) {
      PairIds next(groups, ids[key].count());
      for (std::size_t row = 0; row < groupOf.size(); ++row)
        groupOf[row] = next.idOf(groupOf[row], ids[key].ofRecord[list.rowId({row}).value]);
      groups = next.pairs.size();
      pairs.push_back(std::move(next));
    }

    std::vector<std::size_t> counts(groups, 0);
    for (const std::uint32_t group : groupOf) ++counts[group];
    std::vector<std::uint32_t> found;
    for (std::uint32_t group = 0; group < groups; ++group)
      if (counts[group] != 0) found.push_back(group);
    // The numbers of a group's keys stand together, from keyIds[group * ids.size()].
    std::vector<std::uint32_t> keyIds(groups * ids.size());
    for (const std::uint32_t group : found) {
      std::uint32_t left = group;
      for (std::size_t key = ids.size() - 1; key > 0; --key) {
        const auto [before, last] = pairs[key - 1].pairs[left];
        keyIds[group * ids.size() + key] = last;
        left = before;
      }
      keyIds[group * ids.size()] = left;
    }
    const auto isBefore = [&](std::uint32_t a, std::uint32_t b) {
      if (counts[a] != counts[b]) return counts[a] > counts[b];
      for (std::size_t key = 0; key < ids.size(); ++key)
        if (const int order = ids[key].compare(keyIds[a * ids.size() + key], keyIds[b * ids.size() + key]); order != 0)
          return order < 0;
      return false;
    };
    LargestGroups result{.groups = {}, .total = found.size()};
    if (found.size() > most) {
      std::nth_element(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(most), found.end(), isBefore);
      found.resize(most);
    }
    std::sort(found.begin(), found.end(), isBefore);
    result.groups.reserve(found.size());
    for (const std::uint32_t group : found) {
      RowGroup row{{}, counts[group]};
      for (std::size_t key = 0; key < ids.size(); ++key)
        row.values.push_back(ids[key].valueOf(keyIds[group * ids.size() + key]));
      result.groups.push_back(std::move(row));
    }
    return result;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

std::vector<RowGroup> groupRows(const ResultList& list, std::span<const GroupKey> keys) {
  return largestGroups(list, keys, std::numeric_limits<std::size_t>::max()).groups;
}

}  // namespace korvel::results
