#include "control/property_bag.h"

#include <gtest/gtest.h>

#include "base/error.h"

namespace korvel::control {
namespace {

QVariantMap written(const StoredProperties& properties) {
  PropertyBag bag;
  writeProperties(properties, bag);
  return bag.values();
}

StoredProperties read(const QVariantMap& values) {
  StoredProperties properties{false, false, "untouched", 99};
  readProperties(PropertyBag(values), properties);
  return properties;
}

TEST(PropertyBag, ANewInstanceStoresItsTwoBooleansAndNothingElse) {
  EXPECT_EQ(written({}), (QVariantMap{{"ViewSideTools", true}, {"ViewToolBar", true}}));
}

TEST(PropertyBag, BooleansAreWrittenWhateverTheyAre) {
  EXPECT_EQ(written({false, false, "(None)", 0}), (QVariantMap{{"ViewSideTools", false}, {"ViewToolBar", false}}));
}

TEST(PropertyBag, ServerAndTypeAreWrittenWhenTheyDifferFromTheirDefaults) {
  const QVariantMap values = written({true, false, "AUDITSRV", 1});
  EXPECT_EQ(values.value("DefaultSQLServer"), QVariant("AUDITSRV"));
  EXPECT_EQ(values.value("DatabaseType"), QVariant(1));
  EXPECT_TRUE(written({true, true, "", 0}).contains("DefaultSQLServer"));
  EXPECT_TRUE(written({true, true, "(none)", 0}).contains("DefaultSQLServer"));
}

TEST(PropertyBag, AnEmptyBagReadsAsTheDefaults) {
  const StoredProperties properties = read({});
  EXPECT_TRUE(properties.ViewSideTools);
  EXPECT_TRUE(properties.ViewToolBar);
  EXPECT_EQ(properties.DefaultSQLServer, "(None)");
  EXPECT_EQ(properties.DatabaseType, 0);
}

TEST(PropertyBag, WhatWasWrittenReadsBack) {
  const StoredProperties properties{false, true, QString::fromUtf8("Prüf\\SQL"), -7};
  const StoredProperties back = read(written(properties));
  EXPECT_EQ(back.ViewSideTools, properties.ViewSideTools);
  EXPECT_EQ(back.ViewToolBar, properties.ViewToolBar);
  EXPECT_EQ(back.DefaultSQLServer, properties.DefaultSQLServer);
  EXPECT_EQ(back.DatabaseType, properties.DatabaseType);
}

TEST(PropertyBag, EqualToTheDefaultMeansBitForBit) {
  PropertyBag bag;
  bag.WriteProperty("TrueAgainstOne", true, 1);
  bag.WriteProperty("TrueAgainstMinusOne", true, -1);
  bag.WriteProperty("FalseAgainstZero", false, 0);
  bag.WriteProperty("SameText", "a", "a");
  bag.WriteProperty("TextAgainstNumber", "1", 1);
  EXPECT_EQ(bag.values().keys(), (QStringList{"TextAgainstNumber", "TrueAgainstOne"}));
}

TEST(PropertyBag, BooleansReadFromNumbersAndWords) {
  for (const QVariant& value :
       {QVariant(true), QVariant(1), QVariant(-1), QVariant(2.5), QVariant("true"), QVariant("-1")})
    EXPECT_TRUE(toBoolean(value)) << value.toString().toStdString();
  for (const QVariant& value : {QVariant(false), QVariant(0), QVariant(0.0), QVariant("FALSE"), QVariant("0")})
    EXPECT_FALSE(toBoolean(value)) << value.toString().toStdString();
}

TEST(PropertyBag, ValuesOfTheWrongTypeAreRefused) {
  for (const QVariant& value : {QVariant("perhaps"), QVariant(""), QVariant(), QVariant(QVariantList{1})})
    EXPECT_THROW((void)toBoolean(value), Error);
  for (const QVariant& value : {QVariant("x"), QVariant(1e10), QVariant(-1e10), QVariant(), QVariant(QVariantMap())})
    EXPECT_THROW((void)toLong(value), Error);
  EXPECT_THROW((void)toText(QVariant(QVariantMap())), Error);
  EXPECT_EQ(toLong(2147483647.0), 2147483647);
  EXPECT_EQ(toLong("-5"), -5);
}

TEST(PropertyBag, AReadStopsAtTheFirstBadValueAndKeepsItsPredecessors) {
  StoredProperties properties{true, true, "before", 5};
  const PropertyBag bag({{"ViewSideTools", false}, {"ViewToolBar", "perhaps"}, {"DefaultSQLServer", "after"}});
  EXPECT_THROW(readProperties(bag, properties), Error);
  EXPECT_FALSE(properties.ViewSideTools);
  EXPECT_EQ(properties.DefaultSQLServer, "before");
  EXPECT_EQ(properties.DatabaseType, 5);
}

}  // namespace
}  // namespace korvel::control
