#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <string>
#include <string_view>

#include "db/procedure/audit_conditions.h"

namespace korvel::query {

/// A node's place in the tree's node collection, counted from 1.
struct NodeIndex {
  std::size_t value = 0;
  friend constexpr auto operator<=>(NodeIndex, NodeIndex) = default;
};

struct FilterNode {
  std::string_view key;
  std::string_view caption;
  std::size_t parent;    ///< index of the root, 0 for a root
  std::size_t argument;  ///< procedure parameter 1..10, 0 for a root
};

inline constexpr std::size_t filterNodeCount = 13;
/// The nodes in insertion order; entry i is the node of index i + 1.
[[nodiscard]] const std::array<FilterNode, filterNodeCount>& filterNodes() noexcept;

/// Which of the ten categories are ticked, in parameter order.
using CategoryFlags = std::bitset<db::categoryCount>;
/// The alarms' place among them, counted from 0.
inline constexpr std::size_t alarmsCategory = 1;

/// The caption of a category, counted from 0, with that of its group, because some captions are those of two:
/// "Configuration / Alarms".
[[nodiscard]] std::string categoryCaption(std::size_t category);

/// The check state of the filter tree, free of any widget.
class FilterTree {
 public:
  [[nodiscard]] bool isChecked(NodeIndex node) const { return checked_.at(node.value - 1); }

  void selectAll() noexcept { checked_.fill(true); }
  void unselectAll() noexcept { checked_.fill(false); }
  /// A box was ticked or cleared: a root passes its state to its children; a child makes all three roots say whether
  /// any of their children is ticked.
  void setChecked(NodeIndex node, bool checked);

  /// Whether any of the three roots is ticked.
  [[nodiscard]] bool anyRootChecked() const noexcept;
  [[nodiscard]] CategoryFlags flags() const noexcept;

 private:
  std::array<bool, filterNodeCount> checked_{};
};

}  // namespace korvel::query
