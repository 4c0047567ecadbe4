#include "base/paths.h"

#include <gtest/gtest.h>

#include <string>

namespace korvel {
namespace {

namespace fs = std::filesystem;

TEST(PathsOnWindows, ThatAreWholeStayAsTheyAre) {
  for (const wchar_t* whole : {LR"(\\server\share\x)", L"//server/share/x", LR"(\/server\share\x)", LR"(\\?\C:\x)",
                               LR"(\\?\UNC\server\share\x)", LR"(C:\x)", L"c:/x"}) {
    std::error_code failure;
    EXPECT_TRUE(isAbsolute(whole)) << fs::path(whole);
    EXPECT_EQ(absolutePath(whole, failure).native(), whole);
    EXPECT_FALSE(failure);
  }
}

TEST(PathsOnWindows, ThatAreRelativeLeadFromTheCurrentFolder) {
  std::error_code failure;
  const std::wstring here = fs::current_path().native();
  EXPECT_EQ(absolutePath(L"a/b.db", failure).native(), here + (here.ends_with(L'\\') ? L"" : L"\\") + L"a\\b.db");
  EXPECT_EQ(absolutePath(L"\\a", failure).native(), here.substr(0, 2) + L"\\a") << "of the current disk";
  EXPECT_FALSE(failure);
}

TEST(PathsOnWindows, HaveExtensionsInCapitalsOrNot) {
  for (const wchar_t* file : {L"C:\\a.db", L"A.DB", L"a.b.Db"}) EXPECT_TRUE(hasExtension(file, ".db")) << file;
  for (const wchar_t* file : {L"a.dbx", L"db", L".db", L"a.db\\b"}) EXPECT_FALSE(hasExtension(file, ".db")) << file;
}

}  // namespace
}  // namespace korvel
