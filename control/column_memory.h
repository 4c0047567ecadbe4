#pragma once

#include <QString>

namespace korvel::control {

class ResultListView;
class Surface;

// The columns of the lists as a person arranged them, see Remembered; each list by the name of its element. Sizing all
// columns to their contents is no such arrangement: it fits the records of one answer. The key column of the standard
// lists has one switch and fixed widths instead, so only its place is remembered.

/// Notes widths and orders that are changed by mouse from now on. `surface` must outlive its lists' headers.
void followColumns(const Surface& surface);
/// Gives a list what is remembered of it, over the arrangement that it has.
void restoreColumns(ResultListView& list);
/// Gives a list the widths that are remembered: a list whose columns are another query's each time shows all of them.
void restoreColumnWidths(ResultListView& list);
/// Notes the present width of a column, or whether it is shown.
void keepColumnWidth(const ResultListView& list, int column);
void keepColumnShown(const ResultListView& list, int column);
/// Whether anything is remembered of the list.
[[nodiscard]] bool hasRememberedColumns(const ResultListView& list);
/// Forgets it, and gives the list its own arrangement.
void resetColumns(ResultListView& list);

}  // namespace korvel::control
