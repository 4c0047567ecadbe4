#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "db/connection.h"
#include "query/audit_record.h"
#include "query/date_range.h"
#include "query/filter_tree.h"
#include "query/query_environment.h"

namespace korvel::query {

/// The command text of the standard query: QueryAudits and its thirteen quoted values.
[[nodiscard]] std::string queryAuditsText(const CategoryFlags& flags, const DateRange& range);
/// The same with dates of any moment.
[[nodiscard]] std::string queryAuditsText(const CategoryFlags& flags, const DateTexts& dates);

/// Whether the standard query for these categories and this range answers with alarm rows of all dates: the alarm
/// category's rows of the tables vel_Alg are deliberately not limited by the range. With all ten categories ticked the
/// procedure limits the whole trail, alarm rows included.
[[nodiscard]] bool alarmsComeFromAllDates(const CategoryFlags& flags, const DateRange& range) noexcept;

/// The key of the note about that, which is shown wherever the rows are.
inline constexpr std::string_view alarmsOfAllDatesText = "query.alarmsOfAllDates";
/// Key of the remark on an answer that came with as many rows as the procedure returns at most.
inline constexpr std::string_view rowLimitText = "query.rowLimit";

/// Opens a connection for a connection string, which ends what is under way when it is asked to stop;
/// db::openConnection outside tests. Called on a thread of the query's own, which may be left behind: what it refers to
/// outlives that.
using Connector =
    std::function<std::unique_ptr<db::Connection>(std::string_view connectionString, const std::stop_token& stop)>;

enum class QueryOutcome {
  noCriteria,  ///< no root ticked; lists 0..4 cleared, nothing sent
  failed,      ///< connection or execution failed, at whatever point of the answer; lists stay empty
  noRecords,   ///< the first result set was empty; later ones are not looked at
  stopped,     ///< the onWait asked for its end; lists stay empty
  filled
};

struct QueryReport {
  QueryOutcome outcome = QueryOutcome::failed;
  /// Why it failed, for callers that may say so (the control itself stays silent).
  std::optional<Error> failure;
  /// The result sets, counted from 0, that came with as many rows as the procedure returns at most
  /// (db::rowLimitPerResult): the server may hold more rows of those categories. limitReached() names them.
  std::vector<std::size_t> fullResults = {};
  /// How many result sets came.
  std::size_t resultCount = 0;
};

/// Lists 0..5 of one control.
using ResultLists = std::array<results::ResultList, listCount>;
/// Six lists, the first five with the audit columns.
[[nodiscard]] ResultLists makeResultLists();

/// A question of the standard query: what is ticked, over which days, and where.
struct StandardQueryRequest {
  const FilterTree& tree;
  const DateRange& range;
  const std::string& connectionString;
};

/// The whole answer to a question, or why there is none; in no list yet.
class StandardQueryResult {
 public:
  StandardQueryResult();
  StandardQueryResult(StandardQueryResult&&) noexcept;
  StandardQueryResult& operator=(StandardQueryResult&&) noexcept;
  ~StandardQueryResult();

  /// The result of a query that was stopped.
  [[nodiscard]] static StandardQueryResult stopped();

  /// Spreads the rows by audit type into lists 0..4, which are empty, and sorts list `currentList` with its key and
  /// order. Called once. Nothing that is thrown below leaves it.
  QueryReport fill(ResultLists& lists, std::size_t currentList);

 private:
  friend StandardQueryResult executeStandardQuery(const StandardQueryRequest&, const Connector&,
                                                  const db::WaitCallback&, const QueryEnvironment&);
  class Sink;
  explicit StandardQueryResult(QueryReport report);

  QueryReport report_;
  std::unique_ptr<Sink> sink_;
};

/// The first step of the standard query: removes the rows of lists 0..4. List 5 keeps its rows.
void clearStandardLists(ResultLists& lists) noexcept;
/// Runs the call over a connection of its own, on a thread of its own; `onWait` is called meanwhile. Where nothing is
/// ticked no connection is opened. Nothing that is thrown below leaves it.
[[nodiscard]] StandardQueryResult executeStandardQuery(const StandardQueryRequest& question, const Connector& connect,
                                                       const db::WaitCallback& onWait = {},
                                                       const QueryEnvironment& environment = {});

/// The standard query for callers without a window: clears, executes, fills. Lists are filled only when the whole
/// answer has arrived and the connection is closed.
QueryReport runStandardQuery(const StandardQueryRequest& question, const Connector& connect, ResultLists& lists,
                             std::size_t currentList, const db::WaitCallback& onWait = {},
                             const QueryEnvironment& environment = {});

}  // namespace korvel::query
