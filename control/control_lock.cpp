#include "control/control_lock.h"

#include "control/commands/command_tables.h"
#include "control/library_state.h"
#include "control/surface.h"

namespace korvel::control {

ControlLock::ControlLock(Surface& surface, CommandItems& menu, CommandItems& toolbar) : menu_(menu), toolbar_(toolbar) {
  const auto always = [] { return true; };
  const auto dateRangeFormExists = [] { return platform().services->hasForm(form_name::dateRange); };
  elements_ = {
      {surface.frameFilter, always},      {surface.btQuery, always},
      {surface.btClear, always},          {surface.StatusBar1->LoadAll, always},
      {surface.btSelectALL, always},      {surface.btUnselectALL, always},
      {surface.btExcel, always},          {surface.btPrint, always},
      {surface.tvTreeView, always},       {surface.btDateRangeFilter, dateRangeFormExists},
      {surface.btClearDateRange, always},
  };
  for (ResultListView* list : surface.lvListView) elements_.push_back({list, always});
}

void ControlLock::setLocked(bool locked) {
  for (const LockedElement& row : elements_) row.element->setEnabled(row.available() && !locked);
  enableToolbarCommands(toolbar_, !locked);
  enableMenuCommands(menu_, !locked);
}

}  // namespace korvel::control
