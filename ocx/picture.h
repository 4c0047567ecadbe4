#pragma once

#include <windows.h>

#include "ocx/hosted_viewer.h"

namespace korvel::ocx {

/// Paints a still picture of the viewer, `pixels` large, over `bounds`, in the units of `context`, which may be a
/// metafile.
HRESULT paintPicture(HostedViewer& viewer, HDC context, const RECT& bounds, SIZE pixels);

/// Pixels of the screen and the units in which containers measure, hundredths of a millimetre.
[[nodiscard]] SIZE pixelsOf(SIZE hundredths) noexcept;
[[nodiscard]] SIZE hundredthsOf(SIZE pixels) noexcept;

}  // namespace korvel::ocx
