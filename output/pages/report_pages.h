#pragma once

#include <QString>
#include <functional>

#include "output/report_source.h"

class QPagedPaintDevice;

namespace korvel::output::pages {

/// What stands around the tables.
struct PageTexts {
  QString printedAt;                                 ///< right above: when it is printed
  QString pageOf = QStringLiteral("Page %1 of %2");  ///< right below
  QString note;                                      ///< left below
  QString remark = {};                               ///< under the caption: what a reader of the rows must know
};

enum class Orientation {
  asFits,  ///< landscape where a section does not stand in portrait with every line whole
  asGiven  ///< as the device has it
};

/// Hears of every page that is drawn, and now and then while pages are still counted (page 0 of 0). False cancels.
using PageProgress = std::function<bool(int page, int pages)>;

/// How it ended.
struct PaintedPages {
  int pages = 0;  ///< that were drawn
  bool cancelled = false;
};

/// Lays the report out on the pages of `device`, which must not be painted on yet: every section on pages of its own,
/// its column headers in the section's font on each of them. Nothing is cut: lines are wrapped, rows that are higher
/// than a page go on on the next. Takes the memory of one page and one row. What the source throws comes through.
/// Needs a QGuiApplication. A device that cannot be painted on is Error with errorDeviceUnavailable.
PaintedPages paintReport(ReportSource& report, QPagedPaintDevice& device, const PageTexts& texts,
                         Orientation orientation = Orientation::asFits, const PageProgress& progress = {});

}  // namespace korvel::output::pages
