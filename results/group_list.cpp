#include "results/group_list.h"

#include <memory>
#include <new>
#include <utility>

#include "db/connection.h"
#include "results/memory_watch.h"

namespace korvel::results {

namespace {

/// The columns of a list, for its headers and for its store.
struct TableColumns {
  std::vector<ColumnHeader> headers;
  std::vector<db::Field> fields;

  void add(const std::string& caption, db::ColumnKind kind) {
    headers.push_back({caption, standardColumnWidth, 0});
    fields.push_back({caption, kind});
  }
};

}  // namespace

GroupList groupListOf(const ResultList& rows, GroupQuestion question, std::size_t most) {
  try {
    LargestGroups largest = largestGroups(rows, question.keys, most);
    TableColumns table;
    table.add(question.countCaption, db::ColumnKind::number);
    for (const std::string& caption : question.captions) table.add(caption, db::ColumnKind::text);
    const auto store = std::make_shared<RowStore>();
    store->beginResult(table.fields);
    std::vector<RowId> ids;
    ids.reserve(largest.groups.size());
    for (const RowGroup& group : largest.groups) {
      const std::string number = std::to_string(group.count);
      std::vector<db::Cell> cells{{number, false}};
      for (const ShownValue& value : group.values) cells.push_back({value.text, value.isNull});
      ids.push_back(store->append(cells));
    }
    GroupList made{.question = std::move(question), .groups = std::move(largest.groups), .total = largest.total};
    made.list.setColumns(std::move(table.headers));
    made.list.setRows(store, std::move(ids));
    made.list.sortBy({0}, SortOrder::descending);
    return made;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

ResultList withCountLast(const GroupList& groups) {
  try {
    TableColumns table;
    for (const std::string& caption : groups.question.captions) table.add(caption, db::ColumnKind::text);
    table.add(groups.question.countCaption, db::ColumnKind::number);
    const auto store = std::make_shared<RowStore>();
    store->beginResult(table.fields);
    std::vector<RowId> ids;
    ids.reserve(groups.list.rowCount());
    for (std::size_t row = 0; row < groups.list.rowCount(); ++row) {
      const RowGroup& group = groups.groups[groups.list.rowId({row}).value];
      std::vector<db::Cell> cells;
      for (const ShownValue& value : group.values) cells.push_back({value.text, value.isNull});
      const std::string number = std::to_string(group.count);
      cells.push_back({number, false});
      ids.push_back(store->append(cells));
    }
    ResultList list(RowFilling::whole);
    list.setColumns(std::move(table.headers));
    list.setRows(store, std::move(ids));
    return list;
  } catch (const std::bad_alloc&) {
    throw outOfMemory();
  }
}

}  // namespace korvel::results
