#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "query/filter_tree.h"

namespace korvel::query {

/// The node with this key, which there must be.
inline NodeIndex nodeOf(std::string_view key) {
  const auto& nodes = filterNodes();
  const auto* const found =
      std::find_if(nodes.begin(), nodes.end(), [key](const FilterNode& node) { return node.key == key; });
  EXPECT_NE(found, nodes.end()) << key;
  return {static_cast<std::size_t>(found - nodes.begin()) + 1};
}

}  // namespace korvel::query
