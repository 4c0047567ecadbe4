#pragma once

#include <array>
#include <memory>

#include "query/standard_query.h"

namespace korvel {
class AuditViewer;
}

namespace korvel::control {

class CommandPopup;
class FindAndFilter;
class ListActivity;
class MessageBoxes;
class Surface;

/// Shows and hides the strips of activity over the lists of one control, by Ctrl+Shift+A and from the context menu.
class ActivityCommands {
 public:
  /// All must outlive the commands.
  ActivityCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface, FindAndFilter& findAndFilter);
  ~ActivityCommands();
  ActivityCommands(const ActivityCommands&) = delete;
  ActivityCommands& operator=(const ActivityCommands&) = delete;

  /// Adds the switch to the context menu of a list.
  void addEntry(CommandPopup& menu);
  /// Texts in the current language.
  void showTexts();

 private:
  void toggle();
  void setShown(bool shown);

  AuditViewer& viewer_;
  const MessageBoxes& messages_;
  Surface& surface_;
  bool isShown_ = false;
  std::array<std::unique_ptr<ListActivity>, query::listCount> activities_;
};

}  // namespace korvel::control
