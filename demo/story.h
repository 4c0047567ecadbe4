#pragma once

#include <span>

#include "demo/audit_row.h"
#include "demo/plant_clock.h"

namespace korvel::demo {

/// A row that is written by hand rather than generated; its number, time text and summer flag follow from the moment.
struct StoryRow {
  Moment moment;
  AuditRow row;
};

/// Two things worth finding in the dairy's trail, in order of time: readings entered on the night on which the clocks
/// went back, when an hour showed twice; and an alarm limit that was raised at three in the morning of 7 March 2004.
[[nodiscard]] std::span<const StoryRow> dairyStory();

}  // namespace korvel::demo
