#pragma once

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QStringList>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "control/result_list_model.h"
#include "control/result_list_view.h"

namespace korvel::test {

using control::ResultListModel;
using control::ResultListView;
using results::ColumnHeader;
using results::ResultList;
using results::RowFilling;
using results::RowId;

/// Two columns, "Entry ID" and "Area", and one row a pair of texts.
class ListModel : public ::testing::Test {
 protected:
  using Rows = std::vector<std::pair<std::string, std::string>>;

  ListModel() { list.setColumns({ColumnHeader{"Entry ID", {1440}}, ColumnHeader{"Area", {1440}}}); }

  void fill(const Rows& rows) {
    const ResultListModel::RowsChange change(model);
    auto store = std::make_shared<results::RowStore>();
    const std::vector<db::Field> fields{{"Nr"}, {"TableName"}};
    store->beginResult(fields);
    std::vector<RowId> ids;
    for (const auto& row : rows) ids.push_back(store->append(std::vector<db::Cell>{{row.first}, {row.second}}));
    list.setRows(store, ids);
  }

  QString shown(int column = 0) const {
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row) texts.append(model.index(row, column).data().toString());
    return texts.join(' ');
  }

  ResultList list{RowFilling::whole};
  ResultListModel model{list};
};

class ListView : public ListModel {
 protected:
  ListView() {
    view.resize(500, 200);
    view.applyColumnWidths();
    view.show();
  }
  void fillMany(int count) {
    Rows rows;
    for (int i = 0; i < count; ++i) rows.emplace_back(std::to_string(i + 1), std::to_string(900000 - i));
    fill(rows);
  }
  ResultListView view{model};
};

}  // namespace korvel::test
