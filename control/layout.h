#pragma once

#include <array>

#include "base/twips.h"

namespace korvel::control {

/// The elements that the resize routine reads or places. Lists and query frame lie in SSTab1, the text box and the four
/// buttons in the query frame.
struct SurfaceBoxes {
  Box SSTab1;
  Box frameTools;  ///< read only: its width is the side strip's
  std::array<Box, 6> lvListView;
  Box frameAdvQry;
  Box txtAdvancedQuery;
  Box btOpen;
  Box btSave;
  Box btClearAdvQuery;
  Box btEmunFields;

  friend bool operator==(const SurfaceBoxes&, const SurfaceBoxes&) = default;
};

/// Input of the resize routine.
struct LayoutInput {
  Twips innerWidth;
  Twips innerHeight;
  bool viewSideTools = true;
  Twips statusBarHeight;
  Twips toolbarHeight;
  Twips menuHeight;
};

/// The elements before the first resize: everything that the routine does not change has its final value here.
[[nodiscard]] SurfaceBoxes designTimeBoxes() noexcept;

/// The resize routine: the elements after a resize, given what they were before. An element refuses a negative width or
/// height and keeps the one it had; all other steps still run, and read back what the refusing element has.
[[nodiscard]] SurfaceBoxes layoutControl(const LayoutInput& input, SurfaceBoxes boxes) noexcept;

/// The side strip's frames, in the control. Not part of the resize routine.
struct StripBoxes {
  Box frameFilter;
  Box frameTools;

  friend bool operator==(const StripBoxes&, const StripBoxes&) = default;
};

/// Arranges the side strip between `top` and `bottom`: the tools frame at the foot, the filter frame in what is left.
/// Where that is less than `filterMinimum` the tools frame moves down out of sight rather than over the filter frame.
[[nodiscard]] StripBoxes layoutStrip(Twips top, Twips bottom, Twips toolsHeight, Twips filterMinimum) noexcept;

inline constexpr Twips stripWidth{3720};
/// Between the bars and the elements below and above them.
inline constexpr Twips barGap{75};
/// Height of the strip of page tabs.
inline constexpr Twips tabStripHeight{420};

}  // namespace korvel::control
