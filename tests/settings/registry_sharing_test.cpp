// Several processes, and several threads of one, that write settings at the same moment.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <barrier>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/atomic_file.h"
#include "base/error.h"
#include "base/system_errors.h"
#include "settings/registry.h"
#include "settings/registry_document.h"
#include "settings/registry_file.h"
#include "settings/shared_file.h"
#include "tests/support/temporary_folder.h"

namespace korvel::settings {
namespace {

constexpr int writers = 4;
constexpr int values = 15;
/// Longer than all writers together take on the slowest disk.
constexpr std::chrono::minutes longPatience{10};

std::string name(int writer, int value) {
  std::string text = "W";
  text += std::to_string(writer);
  text += " V";
  text += std::to_string(value);
  return text;
}

/// Writes the values of one writer; 0, or 1 after a failure.
int writeAll(const std::filesystem::path& file, int writer) {
  try {
    RegistryFile backend(file, longPatience);
    const Registry registry(backend);
    for (int value = 0; value < values; ++value)
      registry.SaveSetting("Molvane", "AuditViewer", name(writer, value), std::to_string(value));
  } catch (const Error&) {
    return 1;
  }
  return 0;
}

void expectEverything(const std::filesystem::path& file) {
  RegistryFile backend(file);
  const Registry registry(backend);
  for (int writer = 0; writer < writers; ++writer)
    for (int value = 0; value < values; ++value)
      EXPECT_EQ(registry.GetSetting("Molvane", "AuditViewer", name(writer, value), "lost"), std::to_string(value))
          << name(writer, value);
}

TEST(RegistrySharing, ProcessesThatWriteAtOnceLoseNothing) {
  const test::TemporaryFolder folder;
  std::array<int, 2> gate{};
  ASSERT_EQ(::pipe(gate.data()), 0);
  std::vector<pid_t> children;
  for (int writer = 0; writer < writers; ++writer) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      // All writers start when the last write end of the gate is closed.
      ::close(gate[1]);
      char byte = 0;
      const auto atEnd = ::read(gate[0], &byte, 1);
      ::_exit(atEnd == 0 ? writeAll(folder / "a.reg", writer) : 2);
    }
    children.push_back(child);
  }
  ::close(gate[0]);
  ::close(gate[1]);
  // A reader sees a complete file at any time.
  RegistryFile backend(folder / "a.reg");
  for (int reads = 0; reads < 200; ++reads)
    EXPECT_NO_THROW(static_cast<void>(Registry(backend).GetSetting("Molvane", "AuditViewer", name(0, 0), "0")));
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
  }
  expectEverything(folder / "a.reg");
}

TEST(RegistrySharing, ThreadsThatWriteAtOnceLoseNothing) {
  const test::TemporaryFolder folder;
  std::barrier start(writers);
  std::vector<int> failures(writers, -1);
  std::vector<std::thread> threads;
  for (int writer = 0; writer < writers; ++writer)
    threads.emplace_back([&, writer] {
      start.arrive_and_wait();
      failures[static_cast<std::size_t>(writer)] = writeAll(folder / "a.reg", writer);
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(writers, 0));
  expectEverything(folder / "a.reg");
}

/// Description and system error number of what storing a value raises, "(nothing)" where it raises nothing.
std::string savingRaises(SettingsBackend& backend) {
  try {
    Registry(backend).SaveSetting("Molvane", "AuditViewer", "Language", "10000");
  } catch (const Error& error) {
    return error.description() + " " + std::to_string(error.number() - objectErrorBase - 2000);
  }
  return "(nothing)";
}

TEST(RegistrySharing, AHolderThatNeverLetsGoIsNotWaitedForWithoutEnd) {
  const test::TemporaryFolder folder;
  RegistryFile backend(folder / "a.reg", std::chrono::milliseconds{0});
  ASSERT_EQ(savingRaises(backend), "(nothing)");
  const std::string before = readFile(folder / "a.reg");
  {
    SharedFile::Lock holder;
    ASSERT_EQ(holder.take(SharedFile(folder / "a.reg")), Win32Error::success);
    EXPECT_EQ(savingRaises(backend), "Could not open/create registry section 33");
    // Reading needs no lock.
    EXPECT_EQ(Registry(backend).GetSetting("Molvane", "AuditViewer", "Language", "lost"), "10000");
    EXPECT_EQ(readFile(folder / "a.reg"), before);
  }
  EXPECT_EQ(savingRaises(backend), "(nothing)");
}

TEST(RegistrySharing, ASectionOpenedEarlierDoesNotWaitWithoutEndEither) {
  const test::TemporaryFolder folder;
  RegistryFile backend(folder / "a.reg", std::chrono::milliseconds{0});
  std::unique_ptr<SettingsKey> key;
  ASSERT_EQ(backend.createOrOpen("SOFTWARE\\Molvane\\AuditViewer", key), Win32Error::success);
  SharedFile::Lock holder;
  ASSERT_EQ(holder.take(SharedFile(folder / "a.reg")), Win32Error::success);
  EXPECT_EQ(key->setString("Language", "10000"), Win32Error::lockViolation);
}

TEST(RegistrySharing, AnotherProgramsValueSurvivesBetweenOpeningAndSetting) {
  const test::TemporaryFolder folder;
  RegistryFile backend(folder / "a.reg");
  std::unique_ptr<SettingsKey> key;
  ASSERT_EQ(backend.createOrOpen("SOFTWARE\\Molvane\\AuditViewer", key), Win32Error::success);
  RegistryFile other(folder / "a.reg");
  Registry(other).SaveSetting("Molvane", "AuditViewer", "ViewerAppPath", "theirs");
  ASSERT_EQ(key->setString("Language", "ours"), Win32Error::success);
  EXPECT_EQ(Registry(backend).GetSetting("Molvane", "AuditViewer", "ViewerAppPath", "lost"), "theirs");
  EXPECT_EQ(Registry(backend).GetSetting("Molvane", "AuditViewer", "Language", "lost"), "ours");
}

}  // namespace
}  // namespace korvel::settings
