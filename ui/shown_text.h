#pragma once

#include <QString>

namespace korvel::ui {

/// `text` with invisible format characters, such as those that change the direction of writing, written as \u202E: an
/// audited value must not look like another one. Joiners and soft hyphens stay: they shape words. Returns the text
/// itself, without a copy, in the usual case that there are none.
[[nodiscard]] QString visibleFormats(const QString& text);

/// A tooltip that shows this text literally. The toolkit would interpret what looks like markup, and load the files
/// that it names. Very long texts are cut.
[[nodiscard]] QString plainToolTip(const QString& text);

}  // namespace korvel::ui
