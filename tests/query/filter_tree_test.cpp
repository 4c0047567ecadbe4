#include "query/filter_tree.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/query/filter_nodes.h"

namespace korvel::query {
namespace {

/// The keys of the checked nodes, in index order.
std::string checked(const FilterTree& tree) {
  std::string keys;
  for (std::size_t i = 1; i <= filterNodeCount; ++i) {
    if (!tree.isChecked({i})) continue;
    if (!keys.empty()) keys += ' ';
    keys += filterNodes()[i - 1].key;
  }
  return keys;
}

FilterTree treeWith(std::initializer_list<std::string_view> clicked) {
  FilterTree tree;
  for (const std::string_view key : clicked) tree.setChecked(nodeOf(key), true);
  return tree;
}

constexpr const char* everything = "A C1 C2 C3 C4 B R1 R2 C D1 D2 D3 D4";

TEST(FilterTree, HasItsNodesInInsertionOrder) {
  std::string text;
  for (const FilterNode& node : filterNodes())
    text += std::string(node.key) + ' ' + std::string(node.caption) + " <" + std::to_string(node.parent) + "> " +
            std::to_string(node.argument) + '\n';
  EXPECT_EQ(text,
            "A Configuration <0> 0\nC1 Korvel Explorer <1> 1\nC2 Alarms <1> 2\nC3 Tag Logging <1> 3\n"
            "C4 User Archives <1> 4\nB Runtime <0> 0\nR1 Custom Operator Actions <6> 5\nR2 User Archives <6> 6\n"
            "C Document Control <0> 0\nD1 Check IN <9> 7\nD2 Check OUT <9> 8\nD3 Rollback <9> 9\nD4 Restore <9> 10\n");
}

TEST(FilterTree, SelectsAndUnselectsAll) {
  FilterTree tree;
  EXPECT_EQ(checked(tree), "");
  tree.selectAll();
  EXPECT_EQ(checked(tree), everything);
  EXPECT_TRUE(tree.flags().all());
  tree.unselectAll();
  EXPECT_EQ(checked(tree), "");
  EXPECT_FALSE(tree.anyRootChecked());
}

TEST(FilterTree, RootPassesItsStateToItsChildrenOnly) {
  EXPECT_EQ(checked(treeWith({"A"})), "A C1 C2 C3 C4");
  EXPECT_EQ(checked(treeWith({"B"})), "B R1 R2");
  EXPECT_EQ(checked(treeWith({"C"})), "C D1 D2 D3 D4");

  FilterTree tree;
  tree.selectAll();
  tree.setChecked(NodeIndex{6}, false);
  EXPECT_EQ(checked(tree), "A C1 C2 C3 C4 C D1 D2 D3 D4");
}

TEST(FilterTree, RootIsCheckedAsSoonAsOneChildIs) {
  EXPECT_EQ(checked(treeWith({"C3"})), "A C3");
  EXPECT_EQ(checked(treeWith({"R2"})), "B R2");
  EXPECT_EQ(checked(treeWith({"D4", "C1"})), "A C1 C D4");
}

TEST(FilterTree, RootIsClearedWithItsLastChild) {
  FilterTree tree = treeWith({"D1", "D3"});
  tree.setChecked(nodeOf("D1"), false);
  EXPECT_EQ(checked(tree), "C D3");
  tree.setChecked(nodeOf("D3"), false);
  EXPECT_EQ(checked(tree), "");
}

// No order of clicks on boxes checks a root without a child.
TEST(FilterTree, NoOrderOfClicksChecksARootAlone) {
  FilterTree tree;
  unsigned random = 1;
  for (int click = 0; click < 5000; ++click) {
    random = random * 1103515245U + 12345U;
    tree.setChecked(NodeIndex{(random >> 16U) % filterNodeCount + 1}, ((random >> 24U) & 1U) != 0);
    for (std::size_t root = 1; root <= filterNodeCount; ++root) {
      if (filterNodes()[root - 1].parent != 0) continue;
      bool anyChild = false;
      for (std::size_t child = 1; child <= filterNodeCount; ++child)
        anyChild = anyChild || (filterNodes()[child - 1].parent == root && tree.isChecked({child}));
      ASSERT_EQ(tree.isChecked({root}), anyChild) << "click " << click << ", root " << root;
    }
    ASSERT_EQ(tree.anyRootChecked(), tree.flags().any());
  }
}

TEST(FilterTree, FlagsStandInParameterOrder) {
  EXPECT_EQ(treeWith({"C1"}).flags().to_ulong(), 1U << 0U);
  EXPECT_EQ(treeWith({"R1"}).flags().to_ulong(), 1U << 4U);
  EXPECT_EQ(treeWith({"D4"}).flags().to_ulong(), 1U << 9U);
  EXPECT_EQ(treeWith({"B", "C4"}).flags().to_ulong(), (1U << 3U) | (1U << 4U) | (1U << 5U));
}

}  // namespace
}  // namespace korvel::query
