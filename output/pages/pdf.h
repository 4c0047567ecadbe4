#pragma once

#include "output/byte_sink.h"
#include "output/pages/report_pages.h"

namespace korvel::output::pages {

/// What PDF documents are laid out for.
inline constexpr int pdfDotsPerInch = 1200;

/// Writes the report as a PDF document on A4 pages, byte by byte as they come. What the sink or the source throws comes
/// through; the output is then incomplete, as it is where `progress` cancels. Needs a QGuiApplication.
PaintedPages writePdf(ReportSource& report, const PageTexts& texts, const ByteSink& sink,
                      const PageProgress& progress = {});

}  // namespace korvel::output::pages
