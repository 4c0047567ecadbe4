#pragma once

#include <windows.h>

#include <commdlg.h>

#include <QFont>
#include <optional>

namespace korvel::control {

/// The system's dialog for fonts; replaced by tests.
using FontDialog = BOOL(WINAPI*)(LPCHOOSEFONTW);

/// Shows the dialog with `current` chosen, over `owner`. The font that was chosen, with its size in points and whether
/// it is bold and italic; nothing for a cancelled dialog.
[[nodiscard]] std::optional<QFont> chooseFontWith(FontDialog dialog, HWND owner, const QFont& current);

}  // namespace korvel::control
