#include "control/commands/command_item.h"

#include <utility>

#include "base/error.h"
#include "base/text.h"

namespace korvel::control {

namespace {

/// The number of "object not set", which a look-up without a result reports.
constexpr std::int32_t objectNotSet = 91;

using Items = std::vector<std::unique_ptr<CommandItem>>;

CommandItem& addTo(Items& items, ItemKind kind, std::string key, std::string caption) {
  auto item = std::make_unique<CommandItem>();
  item->kind = kind;
  item->key = std::move(key);
  item->caption = std::move(caption);
  items.push_back(std::move(item));
  return *items.back();
}

/// Depth first in the order of adding: an item before the items inside it and before those added after it.
CommandItem* findIn(const Items& items, std::string_view key) noexcept {
  for (const auto& item : items) {
    if (!item->key.empty() && equalsIgnoringAsciiCase(item->key, key)) return item.get();
    if (CommandItem* inside = findIn(item->children, key)) return inside;
  }
  return nullptr;
}

}  // namespace

CommandItem& CommandItem::add(ItemKind itemKind, std::string itemKey, std::string itemCaption) {
  return addTo(children, itemKind, std::move(itemKey), std::move(itemCaption));
}

CommandItem& CommandItems::add(ItemKind kind, std::string key, std::string caption) {
  return addTo(items_, kind, std::move(key), std::move(caption));
}

CommandItem* CommandItems::find(std::string_view key) const noexcept {
  return findIn(items_, key);
}

CommandItem& CommandItems::item(std::string_view key) const {
  if (CommandItem* found = find(key)) return *found;
  throw Error(objectNotSet, "no command has the key " + std::string(key));
}

}  // namespace korvel::control
