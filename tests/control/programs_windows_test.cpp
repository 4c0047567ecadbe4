// Help and the text editor on Windows: their arguments, and the messages where they are missing.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "base/error.h"
#include "base/system_errors.h"
#include "control/file_programs_windows.h"
#include "settings/code_page.h"

namespace korvel::control {
namespace {

struct HelpCall {
  HWND owner;
  std::string file;
  UINT command;
  DWORD_PTR data;
};
std::optional<HelpCall> helpCall;

HWND WINAPI htmlHelp(HWND owner, LPCSTR file, UINT command, DWORD_PTR data) {
  helpCall = HelpCall{owner, file, command, data};
  return nullptr;
}

class HtmlHelp : public ::testing::Test {
 protected:
  HtmlHelp() { helpCall.reset(); }
};

TEST_F(HtmlHelp, OpensContentsAndIndexByTheirNumbers) {
  const HWND owner = GetDesktopWindow();
  EXPECT_EQ(openHelpWith(&htmlHelp, owner, "C:\\Program\\Help_Eng.chm", HelpCommand::contents), HelpOutcome::done);
  ASSERT_TRUE(helpCall);
  EXPECT_EQ(helpCall->owner, owner);
  EXPECT_EQ(helpCall->file, "C:\\Program\\Help_Eng.chm");
  EXPECT_EQ(helpCall->command, 1U);
  EXPECT_EQ(helpCall->data, 0U);
  openHelpWith(&htmlHelp, owner, "C:\\Program\\Help_Eng.chm", HelpCommand::index);
  EXPECT_EQ(helpCall->command, 2U);
}

TEST_F(HtmlHelp, OpensATopicInTheBook) {
  EXPECT_EQ(openHelpWith(&htmlHelp, nullptr, "C:/Program/Help_Eng.chm", QStringLiteral("query.html#dates")),
            HelpOutcome::done);
  ASSERT_TRUE(helpCall);
  EXPECT_EQ(helpCall->file, "C:\\Program\\Help_Eng.chm::/query.html#dates");
  EXPECT_EQ(helpCall->command, 0U);
  EXPECT_EQ(openHelpWith(nullptr, nullptr, "C:/Help_Eng.chm", QStringLiteral("query.html")), HelpOutcome::noViewer);
}

TEST_F(HtmlHelp, TakesThePathInTheSystemsCodePageAndWithItsSeparators) {
  openHelpWith(&htmlHelp, nullptr, QStringLiteral("C:/H\u00e4lp.chm"), HelpCommand::contents);
  ASSERT_TRUE(helpCall);
  EXPECT_EQ(helpCall->file, settings::toCodePage("C:\\H\u00e4lp.chm"));
}

TEST_F(HtmlHelp, IsAlsoCalledWithoutAFile) {
  EXPECT_EQ(openHelpWith(&htmlHelp, nullptr, {}, HelpCommand::contents), HelpOutcome::done);
  ASSERT_TRUE(helpCall);
  EXPECT_EQ(helpCall->file, "");
}

TEST_F(HtmlHelp, ThatIsNotThereIsMissedOnlyForAFile) {
  const HtmlHelpFunction absent = htmlHelpOf(L"no-such-help.ocx");
  EXPECT_EQ(absent, nullptr);
  EXPECT_EQ(openHelpWith(absent, nullptr, "C:\\Help.chm", HelpCommand::contents), HelpOutcome::noViewer);
  EXPECT_EQ(openHelpWith(absent, nullptr, {}, HelpCommand::contents), HelpOutcome::done);
  EXPECT_EQ(htmlHelpOf(L"kernel32.dll"), nullptr) << "a library without the function";
}

TEST(Notepad, IsStartedWithThePath) {
  EXPECT_EQ(notepadCommand("C:\\windows\\velview.txt"), "notepad C:\\windows\\velview.txt");
  EXPECT_EQ(notepadCommand("C:/windows/velview.txt"), "notepad C:\\windows\\velview.txt");
  EXPECT_EQ(notepadCommand("C:\\My Windows\\velview.txt"), "notepad \"C:\\My Windows\\velview.txt\"");
}

TEST(Notepad, ThatIsNotThereIsAFileThatIsNotFound) {
  try {
    startWindowsProgram("C:\\no such folder\\notepad.exe", "notepad C:\\a.txt");
    FAIL() << "started";
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), numberOf(FileError::fileNotFound));
  }
}

}  // namespace
}  // namespace korvel::control
