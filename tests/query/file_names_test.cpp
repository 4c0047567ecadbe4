#include "query/file_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "query/query_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

std::string problemOf(std::string_view name) {
  const auto problem = fileNameProblem(name);
  return problem ? problem->textKey() : "";
}

TEST(FileNames, UsualNamesHaveNoProblem) {
  for (const char* name : {"", "a", "Alarms of 2004", "v1.2", "Größe", "日本", " leading", ".hidden", "CONSOLE",
                           "COM10", "a,b;c=d+e[f]", "100%", "it's", "con-1"})
    EXPECT_EQ(problemOf(name), "") << name;
}

TEST(FileNames, NamesThatNoFileCanHave) {
  for (const char* name : {"a/b", "a\\b", "../x", "a<b", "a>b", "a:b", "C:x", "a\"b", "a|b", "a?", "*", "a\nb", "a\tb",
                           "a\x7f", "\xFF", "a\xC3"})
    EXPECT_EQ(problemOf(name), "queryFile.nameCharacter") << name;
  EXPECT_EQ(problemOf(std::string_view("a\0b", 3)), "queryFile.nameCharacter");
  for (const char* name : {".", "..", "a.", "a ", " ", "CON "}) EXPECT_EQ(problemOf(name), "queryFile.nameEnd") << name;
  for (const char* name : {"CON", "nul", "Prn", "AUX.old", "com1", "LPT9.v2", "CONIN$", "com¹", "nul .x"})
    EXPECT_EQ(problemOf(name), "queryFile.nameDevice") << name;
}

TEST(FileNames, TheLongestNameCanBeWritten) {
  const test::TemporaryFolder folder;
  std::string name(244, 'x');
  EXPECT_EQ(problemOf(name), "");
  saveQueryFile(folder / (name + ".vqf"), "x");
  EXPECT_EQ(problemOf(name + "x"), "queryFile.nameTooLong");
  name.resize(242);
  EXPECT_EQ(problemOf(name + "€"), "queryFile.nameTooLong");  // bytes count
}

TEST(FileNames, AProblemNamesTheNameInASentenceThatCanBeShown) {
  EXPECT_EQ(fileNameProblem("a:b")->description(),
            "\"a:b\" cannot be the name of a query: it holds a control character or one of / \\ < > : \" | ? *");
  EXPECT_EQ(fileNameProblem("a\n\xFF")->textArguments().at(0), "a \uFFFD");
}

TEST(FileNames, FoldersEndInOneSeparator) {
  const std::string separator(1, folderSeparator);
  EXPECT_EQ(withSeparator("/a"), "/a" + separator);
  EXPECT_EQ(withSeparator("/a" + separator), "/a" + separator);
  EXPECT_EQ(withSeparator(""), separator);
}

TEST(FileNames, PatternsAreMadeOfExtensions) {
  EXPECT_EQ(filePattern("vqf"), "*.vqf");
  EXPECT_EQ(filePattern("*.vqf"), "*.vqf");
  EXPECT_EQ(filePattern(".vqf"), "*..vqf");
  EXPECT_EQ(filePattern(""), "*.*");
  EXPECT_EQ(filePattern("   "), "*.*");
  EXPECT_EQ(filePattern(" vqf"), "*. vqf");
  EXPECT_EQ(filePattern("*"), "*.*");
}

TEST(FileNames, MatchPatterns) {
  for (const char* name : {"a.vqf", "A.VQF", "a.b.vqf", ".vqf", "a b.Vqf", "Größe.vqf"})
    EXPECT_TRUE(matchesFilePattern(name, "*.vqf")) << name;
  for (const char* name : {"a.vqfx", "avqf", "vqf", "a.vqf.txt", "a.vq", ""})
    EXPECT_FALSE(matchesFilePattern(name, "*.vqf")) << name;
  EXPECT_TRUE(matchesFilePattern("no point", "*.*"));
  EXPECT_TRUE(matchesFilePattern("ÄB.vqf", "ä?.*f"));
  EXPECT_TRUE(matchesFilePattern("€.x", "?.x"));
  EXPECT_TRUE(matchesFilePattern("\xFF.x", "?.x"));
  EXPECT_FALSE(matchesFilePattern("ab.x", "?.x"));
  EXPECT_TRUE(matchesFilePattern("aXbXc", "a*x*c"));
  EXPECT_TRUE(matchesFilePattern("abab", "*ab"));
  EXPECT_FALSE(matchesFilePattern("abab", "*ba"));
  // Would take years with backtracking for every "*".
  EXPECT_FALSE(matchesFilePattern(std::string(200, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

struct ListedFiles : testing::Test {
  void file(const std::string& name) const { writeFileAtomically(folder / name, "x"); }

  test::TemporaryFolder folder;
};

TEST_F(ListedFiles, ComeInTheOrderOfTheFolder) {
  for (int i = 0; i < 50; ++i) file(std::to_string(i * 7919 % 50) + ".vqf");
  std::vector<std::string> order;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
    order.push_back(entry.path().filename().string());
  EXPECT_EQ(listedFiles(folder.path().string(), "vqf"), order);
}

TEST_F(ListedFiles, MatchTheExtensionAndAreFiles) {
  for (const char* name : {"b.vqf", "A.VQF", "Größe v1.2 alt.vqf", "a.txt", "vqf", "a.vqfx"})
    writeFileAtomically(folder / pathFromUtf8(name), "x");
  std::filesystem::create_directory(folder / "folder.vqf");
  const std::string place = utf8FromPath(folder.path());
  const auto expected = UnorderedElementsAre("b.vqf", "A.VQF", "Größe v1.2 alt.vqf");
  EXPECT_THAT(listedFiles(place, "vqf"), expected);
  EXPECT_THAT(listedFiles(withSeparator(place), "*.vqf"), expected);
  EXPECT_EQ(listedFiles(place, " ").size(), 6U);
}

TEST_F(ListedFiles, OfAnEmptyFolderAreNone) {
  EXPECT_THAT(listedFiles(folder.path().string(), "vqf"), IsEmpty());
}

}  // namespace
}  // namespace korvel::query
