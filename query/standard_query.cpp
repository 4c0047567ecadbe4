#include "query/standard_query.h"

#include <utility>
#include <vector>

#include "base/text.h"
#include "query/query_failure.h"
#include "results/store_filler.h"

namespace korvel::query {

namespace {

constexpr std::string_view routingColumn = "AuditType";

constexpr std::string_view truthText(bool value) noexcept {
  return value ? "True" : "False";
}

/// A fixed-width column pads its codes with trailing blanks, and the server's comparisons do not see them; everything
/// else about a code counts, its case too.
constexpr std::string_view withoutPadding(std::string_view code) noexcept {
  return code.substr(0, code.find_last_not_of(' ') + 1);
}

/// Stores each row once and notes, while the row passes by, which of the lists 0..4 it goes to.
class SpreadingSink final : public db::ResultSink {
 public:
  explicit SpreadingSink(const results::MemoryGauge& memory) : filler_(memory) {}

  void beginResult(std::span<const db::Field> fields) override {
    noteEmptyFirst();
    if (firstResultEmpty_) return;
    ++resultCount_;
    rowsOfResult_ = 0;
    auditType_.reset();
    for (std::size_t i = 0; i < fields.size() && !auditType_; ++i)
      if (equalsIgnoringAsciiCase(fields[i].name, routingColumn)) auditType_ = i;
    filler_.beginResult(fields);
  }

  bool row(std::span<const db::Cell> cells) override {
    if (firstResultEmpty_) return false;
    const results::RowId id = filler_.append(cells);
    rows_[0].push_back(id);
    if (auditType_ && *auditType_ < cells.size())
      if (const auto list = listOfAuditType(withoutPadding(cells[*auditType_].text))) rows_[*list].push_back(id);
    if (++rowsOfResult_ == db::rowLimitPerResult) ++fullResults_;
    return true;
  }

  void endResult() override { noteEmptyFirst(); }

  /// The answer is decided: whatever follows is not looked at.
  [[nodiscard]] bool firstResultEmpty() const noexcept { return firstResultEmpty_; }
  [[nodiscard]] bool hasRows() const noexcept { return !rows_[0].empty(); }
  [[nodiscard]] std::size_t fullResults() const noexcept { return fullResults_; }

  /// Nothing more comes: waits until every row is stored. Throws Error where one could not be.
  void finish() { filler_.finish(); }

  void fill(ResultLists& lists) {
    const std::shared_ptr<const results::RowStore> store = filler_.takeStore();
    for (std::size_t i = 0; i < rows_.size(); ++i) lists[i].setRows(store, std::move(rows_[i]));
  }

 private:
  void noteEmptyFirst() noexcept {
    if (resultCount_ == 1 && rowsOfResult_ == 0) firstResultEmpty_ = true;
  }

  results::StoreFiller filler_;
  std::array<std::vector<results::RowId>, standardListCount> rows_;
  std::optional<std::size_t> auditType_;
  std::size_t resultCount_ = 0;
  std::size_t rowsOfResult_ = 0;
  std::size_t fullResults_ = 0;
  bool firstResultEmpty_ = false;
};

void clearStandardLists(ResultLists& lists) noexcept {
  for (std::size_t i = 0; i < standardListCount; ++i) lists[i].clear();
}

}  // namespace

std::string queryAuditsText(const CategoryFlags& flags, const DateRange& range) {
  std::string text = "QueryAudits '";
  for (std::size_t i = 0; i < flags.size(); ++i) {
    text += truthText(flags[i]);
    text += "','";
  }
  text += truthText(range.DateRangeActive);
  text += "','";
  text += fromDateText(range);
  text += "','";
  text += toDateText(range);
  text += '\'';
  return text;
}

ResultLists makeResultLists() {
  using results::ResultList;
  using results::RowFilling;
  ResultLists lists{ResultList(RowFilling::standard), ResultList(RowFilling::standard),
                    ResultList(RowFilling::standard), ResultList(RowFilling::standard),
                    ResultList(RowFilling::standard), ResultList(RowFilling::whole)};
  for (std::size_t i = 0; i < standardListCount; ++i) setUpAuditColumns(lists[i]);
  return lists;
}

QueryReport runStandardQuery(const FilterTree& tree, const DateRange& range, const std::string& connectionString,
                             const Connector& connect, ResultLists& lists, std::size_t currentList,
                             const results::MemoryGauge& memory) {
  clearStandardLists(lists);
  if (!tree.anyRootChecked()) return {QueryOutcome::noCriteria, std::nullopt, 0};

  std::optional<SpreadingSink> sink;
  // The connection lives inside this step: it is closed before a list is filled, also when the answer breaks off.
  const auto broken = failureOf([&] {
    sink.emplace(memory);
    const std::string call = queryAuditsText(tree.flags(), range);
    const auto connection = connect(connectionString);
    if (!connection) throw internalFailure();
    connection->execute(call, *sink);
    sink->finish();
  });
  if (sink && sink->firstResultEmpty()) return {QueryOutcome::noRecords, std::nullopt, 0};
  if (broken) return {QueryOutcome::failed, broken, 0};
  if (!sink->hasRows()) return {QueryOutcome::noRecords, std::nullopt, 0};

  const std::size_t fullResults = sink->fullResults();
  const auto unfilled = failureOf([&] {
    sink->fill(lists);
    // A list whose sorting is on has sorted its new rows already.
    if (currentList < lists.size() && !lists[currentList].isSorted()) lists[currentList].sort();
  });
  if (unfilled) {
    clearStandardLists(lists);
    return {QueryOutcome::failed, unfilled, 0};
  }
  return {QueryOutcome::filled, std::nullopt, fullResults};
}

}  // namespace korvel::query
