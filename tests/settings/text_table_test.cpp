#include "settings/text_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/whole_file.h"

namespace korvel::settings {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string header = "key\ten\tde\tfr\tes\tit\n";

std::vector<std::string> problemsOf(const std::string& bytes) {
  return parseTextTable(bytes, "key").problems;
}

TEST(TextTable, ReadsRowsInTheirOrder) {
  const TextTable table = parseTextTable(header + "b\t1\t2\t3\t4\t5\na\tone\\ntwo\tx\\ty\tC:\\\\new\té\t€\n", "key");
  EXPECT_THAT(table.problems, IsEmpty());
  ASSERT_EQ(table.rows.size(), 2U);
  EXPECT_EQ(table.rows[0].key, "b");
  EXPECT_THAT(table.rows[0].texts, ElementsAre("1", "2", "3", "4", "5"));
  EXPECT_THAT(table.rows[1].texts, ElementsAre("one\ntwo", "x\ty", "C:\\new", "é", "€"));
}

TEST(TextTable, FindsEverySlip) {
  EXPECT_THAT(problemsOf(""), ElementsAre("line 1 has no header"));
  EXPECT_THAT(problemsOf("k\ten\tde\tfr\tes\tit\n"), ElementsAre("line 1 is not the expected header"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5"), ElementsAre("line 1 does not end with a line break"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\n"),
              ElementsAre("line 2 has 5 columns", "line 2 has no text in column it"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5\t6\n"), ElementsAre("line 2 has 7 columns"));
  EXPECT_THAT(problemsOf(header + "a\t1\t\t3\t4\t5\n"), ElementsAre("line 2 has no text in column de"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3 \t 4\t5\n"),
              ElementsAre("line 2 has a blank at an end in column fr", "line 2 has a blank at an end in column es"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5\na\t1\t2\t3\t4\t5\n"), ElementsAre("line 3 repeats key a"));
  EXPECT_THAT(problemsOf(header + "\t1\t2\t3\t4\t5\n"), ElementsAre("line 2 has no key"));
  EXPECT_THAT(problemsOf(header + "a\t%1 %2\t%2 %1\t%1\t%1 %2\t%1 %2 %2\n"),
              ElementsAre("line 2 has other places than English in column fr",
                          "line 2 has other places than English in column it"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\\x\t3\\\t4\t5\n"),
              ElementsAre("line 2 has an unknown escape in column de", "line 2 has an unknown escape in column fr"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t5\r\n"), ElementsAre("line 1 holds carriage returns"));
  EXPECT_THAT(problemsOf(header + "a\t1\t2\t3\t4\t\xFC\n"), ElementsAre("line 1 is not UTF-8"));
}

TEST(TextTable, ADamagedRowFallsBackToEnglish) {
  const TextTable table = parseTextTable(header + "a\tOnly English\n", "key");
  ASSERT_EQ(table.rows.size(), 1U);
  EXPECT_EQ(table.rows[0].texts[3], "Only English");
}

TEST(TextTable, OurTablesAreSound) {
  const std::string folder = std::string(KORVEL_SOURCE_DIR) + "/settings/texts/";
  const TextTable fixed = parseTextTable(readWholeFile(folder + "fixed_texts.tsv"), "k");
  EXPECT_THAT(fixed.problems, IsEmpty());
  ASSERT_EQ(fixed.rows.size(), static_cast<std::size_t>(fixedTextCount));
  for (std::size_t k = 0; k < fixed.rows.size(); ++k) EXPECT_EQ(fixed.rows[k].key, std::to_string(k + 1));

  const TextTable own = parseTextTable(readWholeFile(folder + "own_texts.tsv"), "key");
  EXPECT_THAT(own.problems, IsEmpty());
  EXPECT_FALSE(own.rows.empty());
  for (const TextRow& row : own.rows)
    EXPECT_THAT(row.key, testing::MatchesRegex("[a-z][A-Za-z0-9]*(\\.[A-Za-z0-9]+)+"));
}

}  // namespace
}  // namespace korvel::settings
