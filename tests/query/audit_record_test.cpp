#include "query/audit_record.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "query/standard_query.h"
#include "results/row_store.h"

namespace korvel::query {
namespace {

TEST(AuditColumns, StandInTableOrderWithTheirCaptions) {
  std::string text;
  for (const AuditColumn& column : auditColumns()) {
    text += column.name;
    text += '=';
    text += column.caption;
    text += '\n';
  }
  EXPECT_EQ(text,
            "Nr=Entry ID\nDateTime=Date Time\nProjectGUID=Project GUID\nDatabaseName=Database Name\n"
            "ApplicationName=Application Name\nTableName=Area\nFieldName=Item\nEventType=Event\nEventItem=Item ID\n"
            "OldValue=Old Value\nNewValue=New Value\nPCName=PC Name\nOSUser=OS User\nAppUser=Application User\n"
            "UserName=User Name\nAuditType=Audit Type\nComments=Comments\nT1=Summer Time\n");
}

TEST(AuditType, ChoosesTheListBesidesListZero) {
  EXPECT_EQ(listOfAuditType("CS"), 1U);
  EXPECT_EQ(listOfAuditType("RT"), 2U);
  EXPECT_EQ(listOfAuditType("OA"), 2U);
  EXPECT_EQ(listOfAuditType("DC"), 3U);
  EXPECT_EQ(listOfAuditType("AU"), 4U);
}

TEST(AuditType, OtherCodesChooseNoList) {
  for (const char* code : {"", "XX", "cs", "Cs", "CSS", "C", " CS", "RTOA"})
    EXPECT_EQ(listOfAuditType(code), std::nullopt) << '"' << code << '"';
}

TEST(ListViewColSetup, GivesEveryStandardListEighteenColumnsOfOneInch) {
  const ResultLists lists = makeResultLists();
  for (std::size_t i = 0; i < standardListCount; ++i) {
    ASSERT_EQ(lists[i].columns().size(), 18U) << "list " << i;
    for (std::size_t column = 0; column < auditColumnCount; ++column) {
      EXPECT_EQ(lists[i].columns()[column].caption, auditColumns()[column].caption);
      EXPECT_EQ(lists[i].columns()[column].width, Twips{1440});
      EXPECT_EQ(lists[i].columns()[column].tag, 0);
    }
  }
  EXPECT_TRUE(lists[customList].columns().empty());
}

TEST(ListViewColSetup, ReplacesTheHeadersAndTouchesNoRows) {
  auto store = std::make_shared<results::RowStore>();
  const std::vector<db::Field> fields{{"Nr", db::ColumnKind::number}, {"A"}, {"B"}, {"C"}};
  store->beginResult(fields);
  const std::vector<db::Cell> cells{{"7"}, {"x"}, {"y"}, {"z"}};
  const results::RowId row = store->append(cells);

  results::ResultList list(results::RowFilling::standard);
  list.setColumns({{"hidden key", Twips{0}, -1}, {"other", Twips{99}, 0}});
  list.setRows(store, {row});
  setUpAuditColumns(list);

  ASSERT_EQ(list.columns().size(), 18U);
  EXPECT_EQ(list.columns()[0].width, Twips{1440});
  ASSERT_EQ(list.rowCount(), 1U);
  EXPECT_EQ(list.text({0}, {0}), "7");
  EXPECT_EQ(list.text({0}, {1}), "x");
}

TEST(PageCaptions, AreTheFixedEnglishOnes) {
  EXPECT_EQ(pageCaptions, (std::array<std::string_view, 6>{"ALL Audits", "Configuration", "Runtime", "Document Control",
                                                           "KorvelAudit", "Custom"}));
}

}  // namespace
}  // namespace korvel::query
