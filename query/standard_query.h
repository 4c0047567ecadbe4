#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "base/error.h"
#include "db/connection.h"
#include "query/audit_record.h"
#include "query/date_range.h"
#include "query/filter_tree.h"
#include "query/paced_look.h"

namespace korvel::query {

/// The command text of the standard query: QueryAudits and its thirteen quoted values.
[[nodiscard]] std::string queryAuditsText(const CategoryFlags& flags, const DateRange& range);

/// Opens a connection for a connection string, which ends what is under way when it is asked to stop;
/// db::openConnection outside tests. Called on a thread of the query's own, which may be left behind: what it refers to
/// outlives that.
using Connector =
    std::function<std::unique_ptr<db::Connection>(std::string_view connectionString, const std::stop_token& stop)>;

enum class QueryOutcome {
  noCriteria,  ///< no root ticked; lists 0..4 cleared, nothing sent
  failed,      ///< connection or execution failed, at whatever point of the answer; lists stay empty
  noRecords,   ///< the first result set was empty; later ones are not looked at
  stopped,     ///< the attendance asked for its end; lists stay empty
  filled
};

struct QueryReport {
  QueryOutcome outcome = QueryOutcome::failed;
  /// Why it failed, for callers that may say so (the control itself stays silent).
  std::optional<Error> failure;
  /// How many result sets came with as many rows as the procedure returns at most (db::rowLimitPerResult): the server
  /// may hold more rows of those categories.
  std::size_t fullResults = 0;
};

/// Lists 0..5 of one control.
using ResultLists = std::array<results::ResultList, listCount>;
/// Six lists, the first five with the audit columns.
[[nodiscard]] ResultLists makeResultLists();

/// A question of the standard query: what is ticked, over which days, and where.
struct StandardQuestion {
  const FilterTree& tree;
  const DateRange& range;
  const std::string& connectionString;
};

/// The whole answer to a question, or why there is none; in no list yet.
class StandardAnswer {
 public:
  StandardAnswer();
  StandardAnswer(StandardAnswer&&) noexcept;
  StandardAnswer& operator=(StandardAnswer&&) noexcept;
  ~StandardAnswer();

  /// What stands for an answer that nobody wants any more.
  [[nodiscard]] static StandardAnswer stopped();

  /// Spreads the rows by audit type into lists 0..4, which are empty, and sorts list `currentList` with its key and
  /// order. Called once. Nothing that is thrown below leaves it.
  QueryReport fill(ResultLists& lists, std::size_t currentList);

 private:
  friend StandardAnswer askStandardQuestion(const StandardQuestion&, const Connector&, const db::Attendance&,
                                            const QuerySurroundings&);
  class Sink;
  explicit StandardAnswer(QueryReport report);

  QueryReport report_;
  std::unique_ptr<Sink> sink_;
};

/// The first step of the standard query: removes the rows of lists 0..4. List 5 keeps its rows.
void clearStandardLists(ResultLists& lists) noexcept;
/// Runs the call over a connection of its own, on a thread of its own; `attendance` is called meanwhile. Where nothing
/// is ticked nobody is asked. Nothing that is thrown below leaves it.
[[nodiscard]] StandardAnswer askStandardQuestion(const StandardQuestion& question, const Connector& connect,
                                                 const db::Attendance& attendance = {},
                                                 const QuerySurroundings& surroundings = {});

/// The standard query for callers to whom nobody looks meanwhile: clears, asks, fills. Lists are filled only when the
/// whole answer has arrived and the connection is closed.
QueryReport runStandardQuery(const StandardQuestion& question, const Connector& connect, ResultLists& lists,
                             std::size_t currentList, const db::Attendance& attendance = {},
                             const QuerySurroundings& surroundings = {});

}  // namespace korvel::query
