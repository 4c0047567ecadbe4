#include "host/form_file.h"

#include <gtest/gtest.h>

#include <system_error>

#include "base/atomic_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::host {
namespace {

const ViewerLanguage english;

class FormFileTest : public ::testing::Test {
 protected:
  FormFile form(const char* name = "form.json") { return FormFile(QString::fromStdString((folder / name).string())); }
  void write(const std::string& text) { writeFileAtomically(folder / "form.json", text); }
  std::string text() { return readFile(folder / "form.json"); }

  test::TemporaryFolder folder;
};

TEST_F(FormFileTest, NoFileIsANewForm) {
  FormFile file = form();
  EXPECT_EQ(file.load(english), "");
  EXPECT_TRUE(file.isNew());
}

TEST_F(FormFileTest, WhatIsSavedLoads) {
  const QVariantMap properties{
      {"ViewSideTools", false}, {"DefaultSQLServer", QString::fromUtf8("Prüf\\SQL")}, {"DatabaseType", 1}};
  FormFile written = form("new folder/form.json");
  EXPECT_EQ(written.save(properties), "");
  FormFile read = form("new folder/form.json");
  EXPECT_EQ(read.load(english), "");
  EXPECT_FALSE(read.isNew());
  EXPECT_EQ(read.properties().value("ViewSideTools"), QVariant(false));
  EXPECT_EQ(read.properties().value("DefaultSQLServer").toString(), QString::fromUtf8("Prüf\\SQL"));
  EXPECT_EQ(read.properties().value("DatabaseType").toInt(), 1);
}

TEST_F(FormFileTest, AFileThatIsNoFormIsNeverOverwritten) {
  for (const char* content : {"", "{", "[1]", "not a form", "{\"a\":1} trailing"}) {
    write(content);
    FormFile file = form();
    EXPECT_EQ(file.load(english), "it does not hold a form (a JSON object)") << content;
    EXPECT_TRUE(file.properties().isEmpty()) << content;
    EXPECT_EQ(file.save({{"ViewSideTools", true}}), "") << content;
    EXPECT_EQ(text(), content);
  }
}

TEST_F(FormFileTest, AFolderInItsPlaceIsAReason) {
  std::filesystem::create_directory(folder / "form.json");
  FormFile file = form();
  EXPECT_NE(file.load(english), "");
  EXPECT_EQ(file.save({{"ViewSideTools", true}}), "");
  EXPECT_TRUE(std::filesystem::is_directory(folder / "form.json"));
}

TEST_F(FormFileTest, AnUnchangedFormIsNotWrittenAgain) {
  write("{ \"DatabaseType\" : 1 }");
  FormFile file = form();
  ASSERT_EQ(file.load(english), "");
  EXPECT_EQ(file.save({{"DatabaseType", 1}}), "");
  EXPECT_EQ(text(), "{ \"DatabaseType\" : 1 }");
  EXPECT_EQ(file.save({{"DatabaseType", 0}}), "");
  EXPECT_NE(text(), "{ \"DatabaseType\" : 1 }");
}

TEST_F(FormFileTest, WhereItCannotBeWrittenThereIsAReason) {
  write("a file, not a folder");
  const QString noFolder = QString::fromStdString(std::make_error_code(std::errc::not_a_directory).message());
  for (const char* name : {"form.json/form.json", "form.json/below/a/form.json"}) {
    FormFile file = form(name);
    EXPECT_EQ(file.save({{"DatabaseType", 1}}), noFolder) << name;
  }
}

TEST_F(FormFileTest, WhatTheControlDoesNotKnowStaysInTheFile) {
  write(R"({"DatabaseType": 1, "DefaultSQLServer": "S", "Notes": {"by": ["A", 2.5]}})");
  FormFile file = form();
  ASSERT_EQ(file.load(english), "");
  // A value that equals its default is not saved, and its old entry is removed.
  EXPECT_EQ(file.save({{"ViewSideTools", false}, {"DefaultSQLServer", "T"}}), "");
  FormFile again = form();
  ASSERT_EQ(again.load(english), "");
  EXPECT_EQ(again.properties(), (QVariantMap{{"ViewSideTools", false},
                                             {"DefaultSQLServer", "T"},
                                             {"Notes", QVariantMap{{"by", QVariantList{"A", 2.5}}}}}));
}

}  // namespace
}  // namespace korvel::host
