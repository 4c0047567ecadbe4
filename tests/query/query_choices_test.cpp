#include "query/query_choices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace korvel::query {
namespace {

TEST(PickedQuery, OffersTheColumnsOfTheTrailInTableOrder) {
  EXPECT_THAT(pickableFields(),
              testing::ElementsAre("Nr", "DateTime", "ProjectGUID", "DatabaseName", "ApplicationName", "TableName",
                                   "FieldName", "EventType", "EventItem", "OldValue", "NewValue", "PCName", "OSUser",
                                   "AppUser", "UserName", "AuditType", "Comments", "T1"));
}

TEST(PickedQuery, ListsTheSelectedFieldsInTheirOrder) {
  std::array<bool, auditColumnCount> selected{};
  selected[14] = selected[1] = true;
  EXPECT_EQ(pickedQuery(selected), "Select DateTime,UserName from Korvel_Audit_Trails");
  selected.fill(false);
  selected[17] = true;
  EXPECT_EQ(pickedQuery(selected), "Select T1 from Korvel_Audit_Trails");
  selected.fill(true);
  EXPECT_EQ(pickedQuery(selected),
            "Select Nr,DateTime,ProjectGUID,DatabaseName,ApplicationName,TableName,FieldName,EventType,EventItem,"
            "OldValue,NewValue,PCName,OSUser,AppUser,UserName,AuditType,Comments,T1 from Korvel_Audit_Trails");
}

TEST(PickedQuery, ThereIsNoneForAnEmptySelection) {
  EXPECT_EQ(pickedQuery(std::array<bool, auditColumnCount>{}), std::nullopt);
  EXPECT_EQ(pickedQuery({}), std::nullopt);
}

TEST(PickedQuery, SelectionsOfAnyLengthAreTaken) {
  EXPECT_EQ(pickedQuery(std::array{true}), "Select Nr from Korvel_Audit_Trails");
  std::array<bool, auditColumnCount + 3> longer{};
  longer.back() = true;
  EXPECT_EQ(pickedQuery(longer), std::nullopt);
}

}  // namespace
}  // namespace korvel::query
