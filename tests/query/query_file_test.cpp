#include "query/query_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "base/system_errors.h"
#include "settings/string_table.h"
#include "tests/query/query_file_fixture.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {
namespace {

TEST_F(QueryFile, HoldsTheTextInTheCodePageAndALineEnd) {
  EXPECT_EQ(queryFileBytes("Select 'Größe €'\r\n from x"),
            "Select 'Gr\xF6\xDF"
            "e \x80'\r\n from x\r\n");
  EXPECT_EQ(queryFileBytes(""), "\r\n");
  EXPECT_EQ(queryFileBytes("a\r\n"), "a\r\n\r\n");
  EXPECT_EQ(queryFileBytes("日"), "?\r\n");
  EXPECT_TRUE(fitsQueryFile("Größe €"));
  EXPECT_FALSE(fitsQueryFile("日"));
}

TEST_F(QueryFile, GainsOneLineEndEachRoundTrip) {
  saveQueryFile(file, "select 1");
  EXPECT_EQ(loadQueryFile(file), "select 1\r\n");
  saveQueryFile(file, loadQueryFile(file));
  EXPECT_EQ(loadQueryFile(file), "select 1\r\n\r\n");
  saveQueryFile(file, loadQueryFile(file));
  EXPECT_EQ(loadQueryFile(file), "select 1\r\n\r\n\r\n");
}

TEST_F(QueryFile, IsReadLineByLine) {
  EXPECT_EQ(textOfQueryFile(""), "");
  EXPECT_EQ(textOfQueryFile("\r\n"), "\r\n");
  EXPECT_EQ(textOfQueryFile("a\r\nb\r\n"), "a\r\nb\r\n");
  EXPECT_EQ(textOfQueryFile("a\r\nb"), "a\r\nb\r\n");  // the last line's end may be missing
  EXPECT_EQ(textOfQueryFile("a\rb\r"), "a\r\nb\r\n");
  EXPECT_EQ(textOfQueryFile("a\r\r\nb"), "a\r\n\r\nb\r\n");
  EXPECT_EQ(textOfQueryFile("a\nb\r\n"), "a\nb\r\n");  // LF alone ends no line
  EXPECT_EQ(textOfQueryFile("\n"), "\n\r\n");
  EXPECT_EQ(textOfQueryFile("a\n\rb"), "a\n\r\nb\r\n");
}

TEST_F(QueryFile, LosesNoByte) {
  using namespace std::string_literals;
  EXPECT_EQ(textOfQueryFile("a\0b\x1A"
                            "c\r\n"s),
            "a\0b\x1A"
            "c\r\n"s);
  EXPECT_EQ(textOfQueryFile("\x1A"), "\x1A\r\n");
  std::string every;
  for (int byte = 0; byte < 256; ++byte)
    if (byte != '\r') every.push_back(static_cast<char>(byte));
  EXPECT_EQ(queryFileBytes(textOfQueryFile(every)), every + "\r\n\r\n");
}

TEST_F(QueryFile, MayBeLarge) {
  std::string text;
  for (int i = 0; text.size() < std::size_t{5} << 20U; ++i) text += "-- Zeile " + std::to_string(i) + " für ä\r\n";
  saveQueryFile(file, text);
  EXPECT_EQ(loadQueryFile(file), text + "\r\n");
  std::filesystem::resize_file(file, (std::uintmax_t{64} << 20U) + 1);
  EXPECT_EQ(errorOf([&] { (void)loadQueryFile(file); }).number(), systemErrorNumber(std::errc::file_too_large));
}

TEST_F(QueryFile, ReplacesAnEarlierOneWhole) {
  writeFileAtomically(file, "a much longer text than the one that comes now");
  saveQueryFile(file, "x");
  EXPECT_EQ(readFile(file), "x\r\n");
  saveQueryFile(folder / pathFromUtf8("Grüße v1.2 alt.vqf"), "y");
  EXPECT_EQ(loadQueryFile(folder / pathFromUtf8("Grüße v1.2 alt.vqf")), "y\r\n");
}

TEST_F(QueryFile, ThatCannotBeWrittenIsReported) {
  std::filesystem::create_directory(file);
  for (const auto& target : {file, folder / "absent/x.vqf"}) {
    const Error error = errorOf([&] { saveQueryFile(target, "x"); });
    EXPECT_EQ(error.textKey(), "queryFile.unwritable");
    EXPECT_EQ(error.textArguments().at(0), utf8FromPath(target));
    EXPECT_NE(error.number(), 0);
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST_F(QueryFile, ThatIsNoFileIsReported) {
  const auto reading = [&] { return errorOf([&] { (void)loadQueryFile(file); }); };
  EXPECT_TRUE(isSystemError(reading().number(), std::errc::no_such_file_or_directory));
  EXPECT_EQ(reading().textKey(), "queryFile.unreadable");
  std::filesystem::create_directory(file);
  EXPECT_EQ(reading().number(), systemErrorNumber(std::errc::is_a_directory));
}

TEST_F(QueryFile, NeverReplacesADatabaseOfItsName) {
  const std::string bytes("SQLite format 3\0and pages", 25);
  writeFileAtomically(file, bytes);
  EXPECT_EQ(errorOf([&] { saveQueryFile(file, "x"); }).textKey(), "queryFile.isDatabase");
  EXPECT_EQ(readFile(file), bytes);
}

}  // namespace
}  // namespace korvel::query
