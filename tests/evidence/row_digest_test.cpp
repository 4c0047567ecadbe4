#include "evidence/row_digest.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "evidence/recorded_rows.h"

namespace korvel::evidence {
namespace {

using db::Cell;
using db::Field;

const std::vector<Field> fields{{"EntryID"}, {"Area"}, {"OldValue"}, {"Comments"}};
const std::vector<Cell> cells{{"4711"}, {"Małgorzata"}, {""}, {{}, true}};

/// The example of docs/formats.md.
TEST(RowDigest, IsOfTheCanonicalForm) {
  RowDigester digester(fields);
  const std::string form = "4:Area=11:Małgorzata\n8:Comments~\n7:EntryID=4:4711\n8:OldValue=0:\n";
  EXPECT_EQ(digester.canonicalForm(cells), form);
  EXPECT_EQ(digester.digestOf(cells), Sha256::of(form));
  EXPECT_EQ(hexText(digester.digestOf(cells)), "1d091b089d1dbb59b0db72382ef8d5e2518f6bf94287f06813418db07631ea03");
}

TEST(RowDigest, DoesNotDependOnTheOrderOfTheColumns) {
  const std::vector<Field> turned{fields[3], fields[0], fields[2], fields[1]};
  const std::vector<Cell> values{cells[3], cells[0], cells[2], cells[1]};
  EXPECT_EQ(RowDigester(turned).digestOf(values), RowDigester(fields).digestOf(cells));
}

/// Every change of a row gives another canonical form: nothing can be moved between cells, rows and names.
TEST(RowDigest, DiffersWhereARowDiffers) {
  const std::vector<std::pair<std::vector<Field>, std::vector<Cell>>> rows = {
      {{{"A"}, {"B"}}, {{"x"}, {"y"}}},       {{{"A"}, {"B"}}, {{"y"}, {"x"}}},
      {{{"A"}, {"B"}}, {{"xy"}, {""}}},       {{{"A"}, {"B"}}, {{""}, {"xy"}}},
      {{{"A"}, {"B"}}, {{""}, {{}, true}}},   {{{"A"}, {"B"}}, {{{}, true}, {""}}},
      {{{"A"}, {"B"}}, {{"~\n1:B=1:y"}, {}}}, {{{"A"}, {"B"}}, {{"x\n1:B=1:y"}, {"y"}}},
      {{{"A"}, {"BC"}}, {{"x"}, {"y"}}},      {{{"A"}}, {{"x"}}},
      {{{"A"}, {"A"}}, {{"x"}, {"y"}}},       {{{"A"}, {"A"}}, {{"y"}, {"x"}}},
      {{{"A"}, {"B"}}, {{"X"}, {"y"}}},       {{{"A"}, {"B"}}, {{"x "}, {"y"}}}};
  std::vector<Digest> digests;
  for (const auto& [names, values] : rows) digests.push_back(RowDigester(names).digestOf(values));
  std::sort(digests.begin(), digests.end());
  EXPECT_EQ(std::adjacent_find(digests.begin(), digests.end()), digests.end());
}

TEST(RowDigest, TakesLongValuesAndMissingCells) {
  const std::string longest(3'000'000, 'x');
  const std::vector<Field> names{{"A"}, {"B"}};
  RowDigester digester(names);
  EXPECT_EQ(digester.canonicalForm(std::vector<Cell>{{"short"}}), "1:A=5:short\n1:B~\n");
  EXPECT_EQ(digester.digestOf(std::vector<Cell>{{longest}, {"y"}}),
            Sha256::of("1:A=3000000:" + longest + "\n1:B=1:y\n"));
}

TEST(RowDigest, OfManyRowsDoesNotDependOnTheirOrder) {
  std::vector<Digest> rows{Sha256::of("c"), Sha256::of("a"), Sha256::of("b"), Sha256::of("a")};
  std::vector<std::string> lines;
  for (const Digest& row : rows) lines.push_back(hexText(row) + "\n");
  std::sort(lines.begin(), lines.end());
  std::string sorted;
  for (const std::string& line : lines) sorted += line;
  EXPECT_EQ(digestOfRows(rows), Sha256::of(sorted));
  std::reverse(rows.begin(), rows.end());
  EXPECT_EQ(digestOfRows(rows), Sha256::of(sorted));
  rows.pop_back();
  EXPECT_NE(digestOfRows(rows), Sha256::of(sorted));
}

/// Long lists are digested by several threads, and their digests are sorted in another way.
TEST(RowDigest, OfALongListIsThatOfItsRecords) {
  const auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<results::RowId> rows;
  std::vector<Digest> expected;
  std::vector<std::string> lines;
  RowDigester digester(fields);
  for (int i = 0; i < 50'000; ++i) {
    const std::string number = std::to_string(i);
    const std::vector<Cell> row{{number}, {std::string_view(number).substr(0, 1)}, {{}, i % 7 == 0}, {"same"}};
    rows.push_back(store->append(row));
    expected.push_back(digester.digestOf(row));
    lines.push_back(hexText(expected.back()) + "\n");
  }
  results::ResultList list(results::RowFilling::whole);
  list.setColumns({{"EntryID", {}}, {"Area", {}}, {"OldValue", {}}, {"Comments", {}}});
  list.setRows(store, rows);
  const Manifest::Rows recorded = recordedRows(list);
  EXPECT_EQ(recorded.each, expected);
  std::sort(lines.begin(), lines.end());
  Sha256 sum;
  for (const std::string& line : lines) sum.update(line);
  EXPECT_EQ(recorded.digest, sum.finish());
}

TEST(RowDigest, OfAListIsThatOfItsRecords) {
  const auto store = std::make_shared<results::RowStore>();
  store->beginResult(fields);
  std::vector<results::RowId> rows{store->append(cells),
                                   store->append(std::vector<Cell>{{"2"}, {" b "}, {"c"}, {"d"}})};
  std::reverse(rows.begin(), rows.end());
  results::ResultList list(results::RowFilling::standard);
  list.setColumns({{"Entry ID", {}}, {"Area", {}}, {"Old", {}}, {"Comments", {}}});
  list.setRows(store, rows);
  const Manifest::Rows recorded = recordedRows(list);
  RowDigester digester(fields);
  EXPECT_EQ(recorded.columns, (std::vector<std::string>{"EntryID", "Area", "OldValue", "Comments"}));
  EXPECT_EQ(recorded.each, (std::vector{digester.digestOf(std::vector<Cell>{{"2"}, {" b "}, {"c"}, {"d"}}),
                                        digester.digestOf(cells)}));
  EXPECT_EQ(recorded.digest, digestOfRows(recorded.each));
}

}  // namespace
}  // namespace korvel::evidence
