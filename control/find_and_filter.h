#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "control/list_filters.h"
#include "control/list_finding.h"
#include "query/standard_query.h"

class QMenu;

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AnswerStatus;
class AuditQueries;
class CommandPopup;
class MessageBoxes;
class Surface;

/// Finding and filtering in the lists of one control: each list has its own, keys mean the list in front.
class FindAndFilter {
 public:
  /// All must outlive it.
  FindAndFilter(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, AnswerStatus& answers,
                AuditQueries& queries);
  ~FindAndFilter();
  FindAndFilter(const FindAndFilter&) = delete;
  FindAndFilter& operator=(const FindAndFilter&) = delete;

  /// Texts in the current language.
  void showTexts();
  /// Adds what can be done with this cell to the context menu of its list.
  void addEntries(CommandPopup& menu, const ResultListView& list, const QModelIndex& cell);
  /// Filters a list by a group of its rows.
  void keepOnlyGroup(const ResultListView& list, const std::vector<results::ColumnCondition>& group);
  /// Filters a list by a range of a column; without one it is filtered by none.
  void keepOnlyRange(const ResultListView& list, const results::ColumnIndex& column,
                     const std::optional<results::TextRange>& range);
  /// Filters a list by records, one byte each by RowId, under a name of which there is one filter.
  void keepOnlyRecords(const ResultListView& list, const std::string& name, std::vector<std::uint8_t> records);
  void showAllRecords(const ResultListView& list, const std::string& name);
  [[nodiscard]] bool keepsRecords(const ResultListView& list, const std::string& name) const;

 private:
  void connectKeys();
  [[nodiscard]] std::size_t placeOf(const ResultListView& list) const;

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  std::array<std::unique_ptr<ListFinding>, query::listCount> finding_;
  std::array<std::unique_ptr<ListFilters>, query::listCount> filters_;
};

}  // namespace korvel::control
