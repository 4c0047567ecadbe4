#pragma once

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class AuditQueries;
class MessageBoxes;
class Surface;

/// The side strip: the filter tree, the date range and the captions of both frames; shows and hides it.
class SideTools {
 public:
  /// All must outlive the side tools. `followDateRangeEverywhere` tells every control that the date range may be
  /// another one.
  SideTools(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, const AuditQueries& queries,
            void (*followDateRangeEverywhere)());
  SideTools(const SideTools&) = delete;
  SideTools& operator=(const SideTools&) = delete;

  void ViewTools(bool visable);
  /// ViewSideTools as the elements are placed by it: a value that was read takes effect at the next show only.
  void setApplied(bool viewSideTools) noexcept { applied_ = viewSideTools; }
  [[nodiscard]] bool applied() const noexcept { return applied_; }
  /// Places the control's elements for its present size.
  void arrange();

  /// Captions and tooltips in the current language; a step that fails is skipped.
  void showCaptions();
  /// What assistive technology calls the elements that have a caption of their own or beside them.
  void showAccessibleNames();
  void showDateRange();

  void btSelectALL_Click();
  void btUnselectALL_Click();

 private:
  void btDateRangeFilter_Click();
  void btClearDateRange_Click();

  AuditViewer& viewer_;
  Surface& surface_;
  const AuditQueries& queries_;
  void (*followDateRangeEverywhere_)();
  bool applied_ = true;
};

}  // namespace korvel::control
