#include "control/forms/record_text.h"

#include <gtest/gtest.h>

namespace korvel::test {
namespace {

using control::RecordText;

std::string textOf(const QString& caption, const QString& value, bool isNull = false) {
  RecordText record;
  record.addField(caption, value, isNull);
  return record.text().toStdString();
}

TEST(RecordText, HasALineForEachField) {
  RecordText record;
  record.addField("Entry ID", " 007 ", false);
  record.addField("Area", "a: b\t<c>", false);
  EXPECT_EQ(record.text().toStdString(), "Entry ID:  007 \nArea: a: b\t<c>\n");
}

TEST(RecordText, TellsAMissingValueFromAnEmptyOneAndFromWords) {
  EXPECT_EQ(textOf("Old Value", "", true), "Old Value (NULL)\n");
  EXPECT_EQ(textOf("Old Value", ""), "Old Value:\n");
  EXPECT_EQ(textOf("Old Value", "(NULL)"), "Old Value: (NULL)\n");
}

TEST(RecordText, NoLineOfAValueLooksLikeAnotherField) {
  EXPECT_EQ(textOf("Old Value", "1\nNew Value: 2\r\nUser Name: x\ry\n"),
            "Old Value: 1\n  New Value: 2\r\n  User Name: x\r  y\n  \n");
  for (const char16_t separator : {u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'})
    EXPECT_EQ(textOf("A", QStringLiteral("1") + QChar(separator) + QStringLiteral("B: 2")),
              (QStringLiteral("A: 1") + QChar(separator) + QStringLiteral("  B: 2\n")).toStdString());
  EXPECT_EQ(textOf("A\nB: 1", "2"), "A\n  B: 1: 2\n");
}

}  // namespace
}  // namespace korvel::test
