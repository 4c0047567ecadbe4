#include "query/filter_tree.h"

namespace korvel::query {

namespace {

constexpr std::array<FilterNode, filterNodeCount> nodes{{
    {"A", "Configuration", 0, 0},
    {"C1", "Korvel Explorer", 1, 1},
    {"C2", "Alarms", 1, 2},
    {"C3", "Tag Logging", 1, 3},
    {"C4", "User Archives", 1, 4},
    {"B", "Runtime", 0, 0},
    {"R1", "Custom Operator Actions", 6, 5},
    {"R2", "User Archives", 6, 6},
    {"C", "Document Control", 0, 0},
    {"D1", "Check IN", 9, 7},
    {"D2", "Check OUT", 9, 8},
    {"D3", "Rollback", 9, 9},
    {"D4", "Restore", 9, 10},
}};

}  // namespace

const std::array<FilterNode, filterNodeCount>& filterNodes() noexcept {
  return nodes;
}

std::string categoryCaption(std::size_t category) {
  for (const FilterNode& node : nodes)
    if (node.argument == category + 1)
      return std::string(nodes.at(node.parent - 1).caption) + " / " + std::string(node.caption);
  return {};
}

void FilterTree::setChecked(NodeIndex node, bool checked) {
  checked_.at(node.value - 1) = checked;
  const bool isRoot = nodes[node.value - 1].parent == 0;
  if (isRoot) {
    for (std::size_t i = 0; i < nodes.size(); ++i)
      if (nodes[i].parent == node.value) checked_[i] = checked;
    return;
  }
  // A root says "some of this group"; all three are recomputed, whichever child was clicked.
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i].parent == 0) checked_[i] = false;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i].parent != 0 && checked_[i]) checked_[nodes[i].parent - 1] = true;
}

bool FilterTree::anyRootChecked() const noexcept {
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i].parent == 0 && checked_[i]) return true;
  return false;
}

CategoryFlags FilterTree::flags() const noexcept {
  CategoryFlags flags;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i].argument != 0) flags[nodes[i].argument - 1] = checked_[i];
  return flags;
}

}  // namespace korvel::query
