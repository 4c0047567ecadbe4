#pragma once

#include <QPageSize>

#include "output/byte_sink.h"
#include "output/pages/report_pages.h"

namespace korvel::output::pages {

/// What PDF documents are laid out for.
inline constexpr int pdfDotsPerInch = 1200;

/// Writes the report as a PDF document on pages of the size of `paper`. Passes on what the sink or the source throws;
/// the output is then incomplete, as it is where `progress` cancels or the selection contains no page of the report.
/// Needs a QGuiApplication.
PaintedPages writePdf(ReportSource& report, const PageTexts& texts, const ByteSink& sink,
                      const PageProgress& progress = {}, const QPageSize& paper = QPageSize(QPageSize::A4),
                      const PageSelection& selection = {});

}  // namespace korvel::output::pages
