#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "control/find_matcher.h"
#include "control/list_area.h"
#include "results/found_cells.h"

class QShortcut;

namespace korvel::control {

/// Finding in one list: searches what its bar asks for in all columns as they are shown, marks the hits, and goes from
/// one to the next in the order of the list.
class ListFinding final : public QObject {
 public:
  /// `area` must outlive it. `filter` is called where only rows with the text are wanted.
  ListFinding(ListArea& area, std::function<void()> filter);

  /// Shows the bar with the keyboard on its text; `text` replaces what is in it.
  void open(const std::optional<QString>& text = {});
  /// The next or previous hit; opens the bar where nothing is searched for yet.
  void step(results::SearchDirection direction);
  void close();

  /// Names in the current language.
  void showTexts();
  [[nodiscard]] ui::FindRequest request() const { return area_.find->request(); }
  [[nodiscard]] const FindMatcher& matcher() const noexcept { return matcher_; }

 private:
  [[nodiscard]] const results::ResultList& list() const { return area_.list.listModel().list(); }
  [[nodiscard]] std::vector<results::ColumnIndex> shownColumns() const;
  /// Searches for what the bar asks for, and goes to the first hit from where the search began.
  void search();
  /// Searches the list again, which has other rows, columns or texts. Returns whether something is searched for.
  bool searchAgain();
  void forget();
  void goTo(std::optional<results::FoundCell> cell);
  /// The hit that the list stands on; nothing once the user has gone elsewhere.
  [[nodiscard]] std::optional<results::FoundCell> currentHit() const;
  void showCount();
  void markHits(bool marked);
  [[nodiscard]] std::vector<ui::TextMark> marksOf(const QModelIndex& index, const QString& shown) const;

  void showBar(bool shown);

  ListArea& area_;
  QShortcut* escape_;  ///< of the list; only while the bar is shown
  std::unique_ptr<results::FoundCells> found_;
  FindMatcher matcher_;
  int beganAt_ = 0;  ///< the row from which typing finds
  /// The record and the column of the current hit.
  struct Hit {
    results::RowId record;
    results::ColumnIndex column;
  };
  std::optional<Hit> hit_;
};

}  // namespace korvel::control
