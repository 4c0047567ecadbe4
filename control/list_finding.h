#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/error.h"
#include "control/find_matcher.h"
#include "control/latest_work.h"
#include "control/list_area.h"
#include "results/found_cells.h"

class QShortcut;

namespace korvel::control {

/// Finding in one list: searches what its bar asks for in all columns as they are shown, marks the hits, and goes from
/// one to the next in the order of the list. Regular expressions may take long and are searched on another thread; the
/// next key, other rows and closing the bar stop that.
class ListFinding final : public QObject {
 public:
  /// What the list's filters have to do with it.
  struct Hooks {
    /// Only rows with the text are wanted; these are the cells that match the request.
    std::function<void(const ui::FindRequest& request, const results::MatchingCells& cells)> filter;
    /// The bar was closed.
    std::function<void()> closed;
  };
  /// `area` must outlive it.
  ListFinding(ListArea& area, Hooks hooks);

  /// Shows the bar with the keyboard on its text.
  void open();
  /// Shows the bar with a request that is a filter of the list, to change it. It may have hits in hidden rows alone.
  void change(const ui::FindRequest& request);
  /// The next or previous hit; opens the bar where nothing is searched for yet.
  void step(results::SearchDirection direction);
  void close();

  /// Names in the current language.
  void showTexts();
  [[nodiscard]] bool isSearching() const noexcept { return work_.isRunning(); }

 private:
  struct Search;

  [[nodiscard]] ui::FindRequest request() const { return area_.find->request(); }
  [[nodiscard]] const results::ResultList& list() const { return area_.list.listModel().list(); }
  [[nodiscard]] std::vector<results::ColumnIndex> shownColumns() const;
  /// Searches for what the bar asks for, and goes to the first hit from where the search began.
  void search();
  /// Searches for what the bar asks for; `then` is called when hits are known, which may be later.
  void find(std::function<void()> then);
  void finish(const Search& search);
  /// Counts the hits in the rows that the list shows. Returns whether there was memory for it.
  bool count(const std::shared_ptr<const results::MatchingCells>& cells);
  /// The list shows other rows, or the same in another order.
  void followRows();
  /// Whether the hits are those of the columns that are shown: they may have been moved, shown or hidden since.
  [[nodiscard]] bool isUpToDate() const;
  void filter();
  [[nodiscard]] bool canFilter() const;
  void fail(const Error& failure);
  void forget();
  void goOn(results::SearchDirection direction);
  void goTo(std::optional<results::FoundCell> cell);
  /// The hit that the list stands on; nothing once the user has gone elsewhere.
  [[nodiscard]] std::optional<results::FoundCell> currentHit() const;
  void showCount();
  void markHits(bool marked);
  [[nodiscard]] std::vector<ui::TextMark> marksOf(const QModelIndex& index, const QString& shown) const;

  void showBar(bool shown);

  ListArea& area_;
  Hooks hooks_;
  QShortcut* escape_;  ///< of the list; only while the bar is shown
  LatestWork work_;
  std::function<void()> then_;  ///< when the hits are known
  std::shared_ptr<const results::MatchingCells> cells_;
  std::unique_ptr<results::FoundCells> found_;  ///< of `cells_`; empty while the list changes
  FindMatcher matcher_;
  FindMatcher marks_;  ///< for the places within a cell; gives up sooner, because cells are painted again and again
  bool changesFilter_ = false;
  int beganAt_ = 0;  ///< the row from which typing finds
  /// The record and the column of the current hit.
  struct Hit {
    results::RowId record;
    results::ColumnIndex column;
  };
  std::optional<Hit> hit_;
};

}  // namespace korvel::control
