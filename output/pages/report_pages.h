#pragma once

#include <QPageRanges>
#include <QString>
#include <functional>

#include "output/page_head.h"
#include "output/report_source.h"

class QPagedPaintDevice;

namespace korvel::output::pages {

/// The texts around the tables.
struct PageTexts {
  PageHead head;
  QString pageOf = QStringLiteral("Page %1 of %2");  ///< right below
  /// After the caption of a sheet with some of the columns only.
  QString columnsOf = QStringLiteral("columns %1 to %2 of %3");
};

/// Which pages of a report are wanted, and how often.
struct PageSelection {
  QPageRanges ranges;    ///< none: all of them
  int copies = 1;        ///< that the device does not make by itself
  bool collated = true;  ///< copies of the whole, not of one page after the other
};

enum class Orientation {
  asFits,  ///< landscape where a section does not fit in portrait without breaking lines
  asGiven  ///< as the device has it
};

/// Called for every page that is drawn, copies included, and repeatedly while pages are counted (page 0 of 0). False
/// cancels.
using PageProgress = std::function<bool(int page, int pages)>;

/// How it ended.
struct PaintedPages {
  int pages = 0;  ///< that were drawn, copies counted
  bool cancelled = false;
  int ofPages = 0;  ///< that the report has; 0 where it was cancelled before that was known
};

/// Lays the report out on the pages of `device`, which must not be painted on yet: every section on pages of its own,
/// its column headers in the section's font on each of them. Nothing is cut: lines are wrapped, rows that are higher
/// than a page continue on the next, columns for which there is no room are on further sheets. A selection without a
/// page of the report leaves the device unused. Takes the memory of one page and one row. Passes on what the source
/// throws; throws Error with FileError::deviceUnavailable where the device cannot be painted on. Needs a
/// QGuiApplication.
PaintedPages paintReport(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                         Orientation orientation = Orientation::asFits, const PageProgress& progress = {},
                         const PageSelection& selection = {});

}  // namespace korvel::output::pages
