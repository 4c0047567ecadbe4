#include "settings/registry_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/system_errors.h"
#include "settings/registry.h"
#include "settings/string_table.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/temporary_folder.h"

namespace korvel::settings {
namespace {

namespace fs = std::filesystem;

const std::string header =
    "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Molvane\\AuditViewer]\n";

std::string get(const fs::path& file, const std::string& key, const std::string& section = "AuditViewer",
                const std::string& appName = "Molvane") {
  RegistryFile backend(file);
  return Registry(backend).GetSetting(appName, section, key, "default");
}

void save(const fs::path& file, const std::string& key, const std::string& value,
          const std::string& section = "AuditViewer", const std::string& appName = "Molvane") {
  RegistryFile backend(file);
  Registry(backend).SaveSetting(appName, section, key, value);
}

/// Description and system error number of what an operation raises, "(nothing)" where it raises nothing.
std::string raisedBy(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const Error& error) {
    const auto code = static_cast<std::uint32_t>(error.number()) - static_cast<std::uint32_t>(objectErrorBase);
    return error.description() + " " + std::to_string(static_cast<std::int64_t>(code) - 2000);
  }
  return "(nothing)";
}

std::string readingRaises(const fs::path& file) {
  return raisedBy([&] { get(file, "Language"); });
}
std::string writingRaises(const fs::path& file, const std::string& key = "Language") {
  return raisedBy([&] { save(file, key, "10000"); });
}

TEST(RegistryFile, MissingFileSectionOrValueGivesTheDefault) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(get(folder / "a.reg", "Language"), "default");
  EXPECT_EQ(get(folder / "none" / "a.reg", "Language"), "default");
  save(folder / "a.reg", "Language", "0");
  EXPECT_EQ(get(folder / "a.reg", "Language", "Other"), "default");
  EXPECT_EQ(get(folder / "a.reg", "ViewerAppPath"), "default");
}

TEST(RegistryFile, ReadingCreatesNothing) {
  const test::TemporaryFolder folder;
  get(folder / "a.reg", "Language");
  EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(RegistryFile, LanguageNeverWrittenIsZero) {
  const test::TemporaryFolder folder;
  RegistryFile backend(folder / "a.reg");
  EXPECT_EQ(Registry(backend).GetSetting(std::string(applicationName), std::string(viewerSection), "Language", "0"),
            "0");
}

TEST(RegistryFile, ReturnsTheVeryStringWritten) {
  const test::TemporaryFolder folder;
  for (const std::string value : {"0", "10000", "20000", "30000", "40000", "", " ", "ÄÖÜ \"\\\" \n 日本"}) {
    save(folder / "a.reg", "Language", value);
    EXPECT_EQ(get(folder / "a.reg", "Language"), value);
  }
}

TEST(RegistryFile, WritesTheFileWhole) {
  const test::TemporaryFolder folder;
  save(folder / "sub" / "deep" / "a.reg", "Language", "10000");
  EXPECT_EQ(readFile(folder / "sub" / "deep" / "a.reg"), header + "\"Language\"=\"10000\"\n");
  // The settings and their lock; no temporary file is left.
  EXPECT_EQ(std::distance(fs::directory_iterator(folder / "sub" / "deep"), fs::directory_iterator()), 2);
  EXPECT_EQ(fs::status(folder / "sub").permissions(), fs::perms::owner_all);
}

TEST(RegistryFile, AnUnchangedValueIsNotWrittenAnew) {
  const test::TemporaryFolder folder;
  save(folder / "a.reg", "Language", "10000");
  struct stat before {};
  struct stat after {};
  ::stat((folder / "a.reg").c_str(), &before);
  save(folder / "a.reg", "Language", "10000");
  ::stat((folder / "a.reg").c_str(), &after);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST(RegistryFile, TrimmedNamesMeetUntrimmedKeysDoNot) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.reg";
  save(file, "K", "plain", "  AuditViewer ", " Molvane");
  save(file, " K ", "blanks");
  EXPECT_EQ(get(file, "K"), "plain");
  EXPECT_EQ(get(file, " K "), "blanks");
  EXPECT_EQ(get(file, "k", "AUDITVIEWER ", " molvane"), "plain");
  EXPECT_EQ(get(file, "K "), "default");
}

TEST(RegistryFile, DoubledBackslashesAddressTheSameSection) {
  const test::TemporaryFolder folder;
  save(folder / "a.reg", "K", "v", "One\\Two");
  EXPECT_EQ(get(folder / "a.reg", "K", "Two", "Molvane\\\\One\\"), "v");
}

TEST(RegistryFile, NumbersAndBytesAreNoStringsAndSurvive) {
  const test::TemporaryFolder folder;
  const std::string others = "\"N\"=dword:0000002a\n\"B\"=hex:01,02\n\"X\"=hex(2):25,00\n";
  writeFileAtomically(folder / "a.reg", header + others);
  EXPECT_EQ(raisedBy([&] { get(folder / "a.reg", "N"); }), "Registry data not a string 4");
  EXPECT_EQ(raisedBy([&] { get(folder / "a.reg", "B"); }), "Registry data not a string 3");
  EXPECT_EQ(raisedBy([&] { get(folder / "a.reg", "X"); }), "Registry data not a string 2");
  save(folder / "a.reg", "Language", "0");
  EXPECT_EQ(readFile(folder / "a.reg"), header + others + "\"Language\"=\"0\"\n");
}

TEST(RegistryFile, EmptyStringsOfBothSizes) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.reg", header + "\"Zero\"=hex(1):\n\"One\"=\"\"\n");
  EXPECT_EQ(get(folder / "a.reg", "Zero"), "");
  EXPECT_EQ(get(folder / "a.reg", "One"), "");

  RegistryFile backend(folder / "a.reg");
  std::unique_ptr<SettingsKey> key;
  ASSERT_EQ(backend.openForReading("SOFTWARE\\Molvane\\AuditViewer", key), Win32Error::success);
  std::uint32_t type = 0;
  std::uint32_t size = 7;
  EXPECT_EQ(key->querySize("Zero", type, size), Win32Error::success);
  EXPECT_EQ(size, 0U);
  EXPECT_EQ(key->querySize("One", type, size), Win32Error::success);
  EXPECT_EQ(size, 1U);
}

TEST(RegistryFile, AKeyOpenedForReadingIsASnapshotAndTakesNothing) {
  const test::TemporaryFolder folder;
  save(folder / "a.reg", "K", "before");
  RegistryFile backend(folder / "a.reg");
  std::unique_ptr<SettingsKey> key;
  ASSERT_EQ(backend.openForReading("SOFTWARE\\Molvane\\AuditViewer", key), Win32Error::success);
  save(folder / "a.reg", "K", "quite another length");
  std::vector<char> buffer(7);
  EXPECT_EQ(key->queryData("K", buffer), Win32Error::success);
  EXPECT_STREQ(buffer.data(), "before");
  buffer.resize(6);
  EXPECT_EQ(key->queryData("K", buffer), Win32Error::moreData);
  EXPECT_EQ(key->queryData("None", buffer), Win32Error::fileNotFound);
  EXPECT_EQ(key->setString("K", "x"), Win32Error::accessDenied);
}

TEST(RegistryFile, ADamagedFileIsAFailureAndStaysAsItIs) {
  const test::TemporaryFolder folder;
  const std::string damaged[] = {"not a registry", "\n", header + "\"Language\"=\"100", header + "\x80",
                                 std::string(3, '\0')};
  for (const std::string& bytes : damaged) {
    writeFileAtomically(folder / "a.reg", bytes);
    EXPECT_EQ(readingRaises(folder / "a.reg"), "Could not open registry section 1009");
    EXPECT_EQ(writingRaises(folder / "a.reg"), "Could not open/create registry section 1009");
    EXPECT_EQ(readFile(folder / "a.reg"), bytes);
  }
}

TEST(RegistryFile, AFileWithoutAByteIsAnEmptyStore) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "a.reg", "");
  EXPECT_EQ(get(folder / "a.reg", "Language"), "default");
  EXPECT_EQ(readFile(folder / "a.reg"), "") << "reading writes nothing";
  save(folder / "a.reg", "Language", "20000");
  EXPECT_EQ(get(folder / "a.reg", "Language"), "20000");
  EXPECT_TRUE(readFile(folder / "a.reg").starts_with("Windows Registry Editor Version 5.00\n"));
}

TEST(RegistryFile, AFileThatIsNotUnderstoodIsNamedWithWhatToDo) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.reg";
  writeFileAtomically(file, "not a registry");
  const std::pair<std::function<void()>, std::string> operations[] = {
      {[&] { get(file, "Language"); }, "Could not open registry section"},
      {[&] { save(file, "Language", "0"); }, "Could not open/create registry section"}};
  for (const auto& [operation, description] : operations) {
    try {
      operation();
      ADD_FAILURE() << description;
    } catch (const Error& error) {
      EXPECT_EQ(error.description(), description);
      EXPECT_EQ(describe(error, LanguageOffset("0")), description + ". The settings file " + file.string() +
                                                          " cannot be understood. Correct it, or rename it: then a new "
                                                          "one is written");
      for (const char* offset : {"10000", "20000", "30000", "40000"}) {
        const std::string text = describe(error, LanguageOffset(offset));
        EXPECT_TRUE(text.starts_with(description + ". ")) << text;
        EXPECT_NE(text.find(file.string()), std::string::npos) << text;
      }
    }
  }
}

TEST(RegistryFile, OtherFailuresToOpenHaveTheirDescriptionAlone) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "a.reg");
  try {
    get(folder / "a.reg", "Language");
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(describe(error, LanguageOffset("0")), "Could not open registry section");
  }
}

TEST(RegistryFile, AFolderInPlaceOfTheFile) {
  const test::TemporaryFolder folder;
  fs::create_directory(folder / "a.reg");
  EXPECT_EQ(readingRaises(folder / "a.reg"), "Could not open registry section 5");
  EXPECT_EQ(writingRaises(folder / "a.reg"), "Could not open/create registry section 5");
}

TEST(RegistryFile, APathThroughAFile) {
  const test::TemporaryFolder folder;
  writeFileAtomically(folder / "plain", "x");
  EXPECT_EQ(readingRaises(folder / "plain" / "a.reg"), "Could not open registry section 3");
  EXPECT_EQ(writingRaises(folder / "plain" / "a.reg"), "Could not open/create registry section 3");
}

TEST(RegistryFile, LinksInALoop) {
  const test::TemporaryFolder folder;
  fs::create_symlink("b.reg", folder / "a.reg");
  fs::create_symlink("a.reg", folder / "b.reg");
  EXPECT_EQ(readingRaises(folder / "a.reg"), "Could not open registry section 1921");
  EXPECT_EQ(writingRaises(folder / "a.reg"), "Could not open/create registry section 1921");
}

TEST(RegistryFile, APipeIsNotWaitedFor) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(::mkfifo((folder / "a.reg").c_str(), 0600), 0);
  EXPECT_EQ(readingRaises(folder / "a.reg"), "Could not open registry section 1009");
  EXPECT_EQ(writingRaises(folder / "a.reg"), "Could not open/create registry section 1009");
}

TEST(RegistryFile, ALinkThatDanglesIsAMissingFileUntilItIsWritten) {
  const test::TemporaryFolder folder;
  fs::create_symlink("real/b.reg", folder / "a.reg");
  EXPECT_EQ(get(folder / "a.reg", "Language"), "default");
  save(folder / "a.reg", "Language", "10000");
  EXPECT_TRUE(fs::is_symlink(folder / "a.reg"));
  EXPECT_EQ(get(folder / "real" / "b.reg", "Language"), "10000");
  // One lock for all names of the file, beside the file itself.
  EXPECT_TRUE(fs::exists(folder / "real" / "b.reg.lock"));
  EXPECT_FALSE(fs::exists(folder / "a.reg.lock"));
}

TEST(RegistryFile, WithoutRightsNothingIsReadOrWritten) {
  const test::TemporaryFolder folder;
  const test::OrdinaryUser user(folder.path());
  if (!user.succeeded()) GTEST_SKIP() << "the superuser has every right and may not lay it down";
  const fs::path file = folder / "a.reg";
  save(file, "Language", "0");

  fs::permissions(file, fs::perms::owner_read);
  EXPECT_EQ(get(file, "Language"), "0");
  EXPECT_EQ(writingRaises(file), "Could not open/create registry section 5");

  fs::permissions(file, fs::perms::none);
  EXPECT_EQ(readingRaises(file), "Could not open registry section 5");

  fs::permissions(file, fs::perms::owner_all);
  fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(get(file, "Language"), "0");
  EXPECT_EQ(writingRaises(file), "Could not open/create registry section 5");
  EXPECT_EQ(writingRaises(folder / "new" / "a.reg"), "Could not open/create registry section 5");

  fs::permissions(folder.path(), fs::perms::none);
  EXPECT_EQ(readingRaises(file), "Could not open registry section 5");
  fs::permissions(folder.path(), fs::perms::owner_all);
}

TEST(RegistryFile, AFullDiskKeepsTheEarlierSettings) {
  const test::TemporaryFolder folder;
  save(folder / "a.reg", "Language", "0");
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  rlimit small = before;
  small.rlim_cur = 4096;
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &small);
  const std::string raised = raisedBy([&] { save(folder / "a.reg", "Long", std::string(5000, 'x')); });
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(raised, "Could not set key value 223");
  EXPECT_EQ(readFile(folder / "a.reg"), header + "\"Language\"=\"0\"\n");
}

TEST(RegistryFile, NamesAndValuesThatNoFileCanHold) {
  const test::TemporaryFolder folder;
  const fs::path file = folder / "a.reg";
  EXPECT_EQ(raisedBy([&] { save(file, "two\nlines", "v"); }), "Could not set key value 87");
  EXPECT_EQ(raisedBy([&] { save(file, "K\xFF", "v"); }), "Could not set key value 87");
  EXPECT_EQ(raisedBy([&] { save(file, "K", "\xFF"); }), "Could not set key value 1113");
  EXPECT_EQ(raisedBy([&] { save(file, "K", "v", "two\n[lines"); }), "Could not open/create registry section 87");
  EXPECT_EQ(raisedBy([&] { get(file, "K", std::string("a\0b", 3)); }), "Could not open registry section 87");
  EXPECT_EQ(get(file, "two\nlines"), "default");
}

TEST(RegistryFile, WithoutAPathThereAreNoSettings) {
  EXPECT_EQ(get({}, "Language"), "default");
  EXPECT_EQ(writingRaises({}), "Could not open/create registry section 3");
}

TEST(RegistryFile, ARelativePathKeepsItsFolder) {
  const test::TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  RegistryFile backend("a.reg");
  fs::current_path(before);
  Registry(backend).SaveSetting("Molvane", "AuditViewer", "Language", "20000");
  EXPECT_EQ(get(folder / "a.reg", "Language"), "20000");
}

TEST(RegistryFilePath, IsTheNamedFileOrTheUsersOwn) {
  const test::EnvironmentVariable home("HOME", "/home/plant");
  const test::EnvironmentVariable configuration("XDG_CONFIG_HOME", "/etc/plant");
  {
    const test::EnvironmentVariable named("KORVEL_REGISTRY", "/data/other.reg");
    EXPECT_EQ(registryFilePath(), "/data/other.reg");
  }
  const test::EnvironmentVariable none("KORVEL_REGISTRY", "");
  EXPECT_EQ(registryFilePath(), "/etc/plant/korvel/registry.reg");
  const test::EnvironmentVariable relative("XDG_CONFIG_HOME", "relative");
  EXPECT_EQ(registryFilePath(), "/home/plant/.config/korvel/registry.reg");
  const test::EnvironmentVariable unset("XDG_CONFIG_HOME");
  EXPECT_EQ(registryFilePath(), "/home/plant/.config/korvel/registry.reg");
}

TEST(PlatformBackend, KeepsSettingsInTheNamedFile) {
  const test::TemporaryFolder folder;
  const test::EnvironmentVariable named("KORVEL_REGISTRY", (folder / "a.reg").string());
  Registry(*platformBackend()).SaveSetting("Molvane", "AuditViewer", "Language", "40000");
  EXPECT_EQ(get(folder / "a.reg", "Language"), "40000");
}

TEST(SystemErrorNumber, AreThoseThatUsersKnow) {
  EXPECT_EQ(numberOf(win32ErrorFrom(ENOENT)), 2U);
  EXPECT_EQ(numberOf(win32ErrorFrom(ENOTDIR)), 3U) << "a path through a file is no setting that was never written";
  EXPECT_EQ(numberOf(win32ErrorFrom(EACCES)), 5U);
  EXPECT_EQ(numberOf(win32ErrorFrom(EROFS)), 19U);
  EXPECT_EQ(numberOf(win32ErrorFrom(ENOSPC)), 112U);
  EXPECT_EQ(numberOf(win32ErrorFrom(ESTALE)), 1016U);
}

}  // namespace
}  // namespace korvel::settings
