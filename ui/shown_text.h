#pragma once

#include <QString>

namespace korvel::ui {

/// `text` with the invisible characters that turn the direction of writing, or format otherwise, made visible as
/// \u202E: what was audited must not look like something else. Joiners and soft hyphens stay: they shape words. Returns
/// the text itself, unshared, in the usual case that there is nothing to show.
[[nodiscard]] QString visibleFormats(const QString& text);

/// What a tooltip shows as this text, to the letter. Tooltips take whatever looks like markup for markup, and fetch
/// what it names. Of an enormous text the beginning is shown.
[[nodiscard]] QString plainToolTip(const QString& text);

}  // namespace korvel::ui
