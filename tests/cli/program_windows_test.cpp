#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <csignal>
#include <future>
#include <optional>
#include <string>
#include <utility>

#include "base/atomic_file.h"
#include "base/paths.h"
#include "base/wide_text_windows.h"
#include "cli/console_buffer_windows.h"
#include "cli/interruption.h"
#include "cli/interruption_windows.h"
#include "cli/messages.h"
#include "cli/output_target.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/tool_run.h"

namespace korvel::cli {
namespace {

/// The program itself; its exit status.
DWORD runProgram(const std::string& arguments) {
  std::wstring line = lossyWideFromUtf8("\"" KORVEL_AUDIT_PROGRAM "\" " + arguments);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process) == 0)
    return GetLastError() + 1000;
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process.hProcess, &status);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return status;
}

TEST(ProgramOnWindows, TakesArgumentsOfAllLanguagesAndWritesBytesAsTheyAre) {
  const test::TemporaryFolder folder;
  const std::string data = utf8FromPath(folder / pathFromUtf8("Prüfpfade ポ"));
  const std::string output = utf8FromPath(folder / pathFromUtf8("Größe €.csv"));
  ASSERT_EQ(runProgram("demo --rows 20 --folder \"" + data + "\""), DWORD{exitDone});
  ASSERT_EQ(runProgram("sql --server \"" + data + "\" --format csv --output \"" + output + "\" \"select 'ä€😀' as a\""),
            DWORD{exitDone});
  EXPECT_EQ(readFile(pathFromUtf8(output)), "a\r\nä€😀\r\n");
}

TEST(ProgramOnWindows, WritesThroughADevice) {
  const test::TemporaryFolder folder;
  ASSERT_EQ(test::runTool({"demo", "--rows", "20", "--folder", utf8FromPath(folder.path())}).status, exitDone);
  EXPECT_EQ(test::runTool({"sql", "--server", utf8FromPath(folder.path()), "--output", "NUL", "select 1 as a"}).status,
            exitDone);
  EXPECT_FALSE(isTerminal("NUL", std::cout));
}

TEST(InterruptionOnWindows, HoldsTheEndOfTheWindowUntilTheWorkHasEnded) {
  std::atomic<bool> workHasEnded{false};
  std::optional<Interruption> interruption(std::in_place);
  // As the system does it, on a separate thread.
  auto handler = std::async(std::launch::async, [&] {
    const BOOL isHandled = noteConsoleEvent(CTRL_CLOSE_EVENT);
    return isHandled != 0 && workHasEnded;
  });
  while (!Interruption::requested()) SwitchToThread();
  workHasEnded = true;
  interruption.reset();
  EXPECT_TRUE(handler.get());
}

TEST(ConsoleBuffer, NeverWritesHalfACharacter) {
  EXPECT_EQ(lengthInWholeCharacters(""), 0U);
  EXPECT_EQ(lengthInWholeCharacters("abc"), 3U);
  EXPECT_EQ(lengthInWholeCharacters("aä"), 3U);
  EXPECT_EQ(lengthInWholeCharacters("a\xC3"), 1U);
  EXPECT_EQ(lengthInWholeCharacters("a\xE2\x82"), 1U);
  EXPECT_EQ(lengthInWholeCharacters("a\xF0\x9F\x98"), 1U);
  EXPECT_EQ(lengthInWholeCharacters("a😀"), 5U);
  EXPECT_EQ(lengthInWholeCharacters("\x80\x80\x80\x80\x80"), 5U) << "bytes that belong to no character";
}

}  // namespace
}  // namespace korvel::cli
