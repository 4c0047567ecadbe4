#include "cli/server_path.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "tests/support/temporary_folder.h"

namespace korvel::cli {
namespace {

/// Files and folders as users name them.
struct ServerPath : testing::Test {
  ServerPath() {
    std::filesystem::create_directory(folder / "data");
    writeFileAtomically(folder / "data" / "Plant.db", "");
    writeFileAtomically(folder / "data" / "notes.txt", "");
  }

  std::string path(const char* name) const { return utf8FromPath(folder / "data" / name); }
  /// Server and database, or why there are none.
  static std::string resolved(std::string server, std::string database = "Korvel_Audit", bool databaseNamed = false) {
    const auto problem = resolveServerPath(server, &database, databaseNamed);
    return problem ? "problem: " + *problem : server + " | " + database;
  }

  test::TemporaryFolder folder;
};

TEST_F(ServerPath, NamesOfServersStayAsTheyAre) {
  for (const char* name :
       {"AUDITSRV", "AUDITSRV\\PLANT", "10.0.0.1,1444", "audit.example.org", "(embedded)", "(EMBEDDED)"})
    EXPECT_EQ(resolved(name), std::string(name) + " | Korvel_Audit");
}

TEST_F(ServerPath, RelativePathsCountFromTheWorkingFolder) {
  const std::string here = utf8FromPath(std::filesystem::current_path());
  EXPECT_EQ(resolved("."), here + " | Korvel_Audit");
  EXPECT_EQ(resolved("./nowhere/../"), here + " | Korvel_Audit");
  EXPECT_EQ(resolved("./nowhere"), utf8FromPath(std::filesystem::current_path() / "nowhere") + " | Korvel_Audit");
  std::string server = "./nowhere";
  EXPECT_EQ(resolveServerPath(server, nullptr, false), std::nullopt);
  EXPECT_EQ(server, utf8FromPath(std::filesystem::current_path() / "nowhere"));
}

TEST_F(ServerPath, ADatabaseFileIsItsFolderAndItsName) {
  const std::string data = utf8FromPath(folder / "data");
  EXPECT_EQ(resolved(path("Plant.db")), data + " | Plant");
  EXPECT_EQ(resolved(path("Plant.db"), "Plant", true), data + " | Plant");
  EXPECT_EQ(resolved(path("Plant.db"), "Korvel_Audit_MU", true),
            "problem: " + path("Plant.db") + " is the database Plant; leave out --database, or name the folder");
  EXPECT_EQ(resolved(data), data + " | Korvel_Audit");
  EXPECT_EQ(resolved(path("Absent.db")), path("Absent.db") + " | Korvel_Audit") << "the engine says what is missing";
}

TEST_F(ServerPath, AFileOfAnotherKindIsExplained) {
  EXPECT_EQ(resolved(path("notes.txt")), "problem: " + path("notes.txt") +
                                             " is a file; name its folder with --server, and NAME.db in it with "
                                             "--database NAME");
}

TEST_F(ServerPath, APathThatAConnectionCannotNameIsRefused) {
  EXPECT_EQ(resolved("./a;b").find("problem: "), 0U) << resolved("./a;b");
}

TEST_F(ServerPath, AFolderWithAServersNameIsPointedOut) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  EXPECT_EQ(folderNote("data"), "there is a folder of that name: --server ./data");
  EXPECT_EQ(folderNote("AUDITSRV"), std::nullopt);
  EXPECT_EQ(folderNote("(embedded)"), std::nullopt);
  EXPECT_EQ(folderNote(""), std::nullopt);
  EXPECT_EQ(folderNote(utf8FromPath(folder / "data")), std::nullopt) << "that is how it is named";
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace korvel::cli
