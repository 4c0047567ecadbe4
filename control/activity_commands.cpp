#include "control/activity_commands.h"

#include <QShortcut>

#include "control/activity_strip.h"
#include "control/command_menus.h"
#include "control/find_and_filter.h"
#include "control/list_activity.h"
#include "control/message_boxes.h"
#include "control/surface.h"
#include "control/texts.h"
#include "korvel/AuditViewer.h"

namespace korvel::control {
namespace {

const QKeySequence activityKey(Qt::CTRL | Qt::SHIFT | Qt::Key_A);

}  // namespace

ActivityCommands::ActivityCommands(AuditViewer& viewer, const MessageBoxes& messages, Surface& surface,
                                   FindAndFilter& findAndFilter)
    : viewer_(viewer), messages_(messages), surface_(surface) {
  for (std::size_t i = 0; i < activities_.size(); ++i) {
    ListArea& area = *surface_.areas.at(i);
    activities_.at(i) = std::make_unique<ListActivity>(
        area, [this, &area, &findAndFilter](const results::ColumnIndex& column,
                                            const std::optional<results::TextRange>& range) {
          messages_.trapped("FilterByTime", [&] { findAndFilter.keepOnlyRange(area.list, column, range); });
        });
  }
  auto* key = new QShortcut(activityKey, &viewer_);
  key->setContext(Qt::WidgetWithChildrenShortcut);
  key->setAutoRepeat(false);
  QObject::connect(key, &QShortcut::activated, &viewer_, [this] { toggle(); });
}

ActivityCommands::~ActivityCommands() = default;

void ActivityCommands::addEntry(CommandPopup& menu) {
  QAction* const entry = menu.addOwnEntry(ownText("activity.title"), activityKey);
  entry->setCheckable(true);
  entry->setChecked(isShown_);
  QObject::connect(entry, &QAction::triggered, &viewer_, [this] { toggle(); });
}

void ActivityCommands::toggle() {
  messages_.trapped("ShowActivity", [this] { setShown(!isShown_); });
}

void ActivityCommands::setShown(bool shown) {
  const bool isNew = surface_.areas.front()->activity == nullptr;
  isShown_ = shown;
  for (std::size_t i = 0; i < activities_.size(); ++i) {
    activities_.at(i)->setShown(shown);
    if (isNew && shown)
      QObject::connect(surface_.areas.at(i)->activity, &ActivityStrip::closeRequested, &viewer_, [this] { toggle(); });
  }
  if (isNew && shown) surface_.orderFocus();
}

void ActivityCommands::showTexts() {
  for (const auto& activity : activities_) activity->showTexts();
}

}  // namespace korvel::control
