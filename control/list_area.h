#pragma once

#include <QObject>
#include <QRect>
#include <string>
#include <vector>

#include "control/result_list_view.h"
#include "ui/chip_bar.h"
#include "ui/find_bar.h"

namespace korvel::control {

class ActivityStrip;

/// A list with what may stand over and under it: the strip of activity, the line of active filters and the bar for
/// finding. They take their room from the list while they are shown, so that no row is hidden under them.
class ListArea final : public QObject {
 public:
  /// `history` must outlive the area.
  ListArea(ResultListView& list, ui::FindHistory& history);

  /// The room of the list while nothing else is shown.
  void setGeometry(const QRect& place);
  /// Everything that takes the keyboard, in the order in which Tab goes through it.
  [[nodiscard]] std::vector<QWidget*> focusOrder() const;

  ResultListView& list;
  ui::ChipBar* chips;
  ui::FindBar* find;
  ActivityStrip* activity = nullptr;  ///< from the first time that it is asked for
  /// What reports and outputs must know of the filters.
  struct FilterState {
    bool isEvaluating = false;  ///< the list shows no rows yet
    bool isUndecided = false;   ///< values were too much for a regular expression, and count as not matching
    std::vector<std::string> conditions{};  ///< see filterText()
  } filterState;

  /// The strip of activity, hidden where it is new.
  ActivityStrip& activityStrip();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void arrange();

  QRect place_;
};

}  // namespace korvel::control
