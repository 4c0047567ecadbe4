#pragma once

#include <QFont>

#include "output/print_font.h"

namespace korvel::output::pages {

/// The font of rows and of what stands around the tables, so many points high.
[[nodiscard]] QFont bodyFont(qreal size);
/// The print font, as the column headers have it.
[[nodiscard]] QFont headerFont(const PrintFont& font, qreal scale);

}  // namespace korvel::output::pages
