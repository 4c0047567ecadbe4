#include "query/file_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/atomic_file.h"
#include "query/query_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::query {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct ListedFilesOfPosix : testing::Test {
  void file(const std::string& name) const { writeFileAtomically(folder / name, "x"); }

  test::TemporaryFolder folder;
};

TEST_F(ListedFilesOfPosix, AreTheFilesOfTheExtension) {
  for (const char* name : {"b.vqf", "A.VQF", "Größe v1.2 alt.vqf", "a.txt", "vqf", "a.vqfx"}) file(name);
  std::filesystem::create_directory(folder / "folder.vqf");
  ASSERT_EQ(::mkfifo((folder / "pipe.vqf").c_str(), 0600), 0);
  std::filesystem::create_symlink(folder / "b.vqf", folder / "link.vqf");
  std::filesystem::create_symlink(folder / "nothing", folder / "broken.vqf");
  const auto expected = UnorderedElementsAre("b.vqf", "A.VQF", "Größe v1.2 alt.vqf", "link.vqf");
  EXPECT_THAT(listedFiles(folder.path().string(), "vqf"), expected);
  EXPECT_THAT(listedFiles(folder.path().string() + "/", "*.vqf"), expected);
  EXPECT_EQ(listedFiles(folder.path().string(), " ").size(), 7U);
}

TEST_F(ListedFilesOfPosix, MayHaveNamesThatAreNoUtf8) {
  file("\xFC.vqf");
  const auto names = listedFiles(folder.path().string(), "vqf");
  EXPECT_THAT(names, ElementsAre("\xFC.vqf"));
  EXPECT_EQ(loadQueryFile(folder / names.at(0)), "x\r\n");
}

TEST_F(ListedFilesOfPosix, OfAFolderThatCannotBeReadAreAnError) {
  const auto numberFor = [](const std::string& path) {
    try {
      (void)listedFiles(path, "vqf");
    } catch (const Error& error) {
      EXPECT_EQ(error.textKey(), "queryFile.folderUnreadable");
      return error.number();
    }
    return 0;
  };
  EXPECT_EQ(numberFor((folder / "absent").string()), ENOENT);
  file("a.vqf");
  EXPECT_EQ(numberFor((folder / "a.vqf").string()), ENOTDIR);
  if (::geteuid() == 0) return;  // who may read everything
  std::filesystem::permissions(folder.path(), std::filesystem::perms::none);
  EXPECT_EQ(numberFor(folder.path().string()), EACCES);
  std::filesystem::permissions(folder.path(), std::filesystem::perms::owner_all);
}

}  // namespace
}  // namespace korvel::query
