// The dialogs for fonts and folders of Windows: the arguments of their calls, and the use of their results.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "control/folder_browser_windows.h"
#include "control/font_chooser_windows.h"
#include "settings/code_page.h"

namespace korvel::control {
namespace {

/// The shell, simulated by the functions below.
struct Shell {
  std::string title;
  UINT flags = 0;
  bool owned = true;
  bool rooted = true;
  std::string displayName;
  std::string path;  ///< what the item is called; empty for one without a path
  std::string beginning;
  bool cancelled = false;
  int released = 0;
};
Shell* shell = nullptr;
ITEMIDLIST item{};

LPITEMIDLIST WINAPI browse(LPBROWSEINFOA request) {
  shell->title = request->lpszTitle;
  shell->flags = request->ulFlags;
  shell->owned = request->hwndOwner != nullptr;
  shell->rooted = request->pidlRoot != nullptr;
  shell->beginning = request->lpfn == nullptr ? "" : reinterpret_cast<const char*>(request->lParam);
  // The longest path of the shell, including its terminator.
  shell->displayName.assign(request->pszDisplayName, MAX_PATH);
  std::fill_n(request->pszDisplayName, MAX_PATH, 'x');
  return shell->cancelled ? nullptr : &item;
}

BOOL WINAPI pathOf(LPCITEMIDLIST asked, LPSTR path) {
  EXPECT_EQ(asked, &item);
  EXPECT_EQ(std::string(path, MAX_PATH), std::string(MAX_PATH, '\0'));
  std::copy(shell->path.begin(), shell->path.end(), path);
  return shell->path.empty() ? FALSE : TRUE;
}

void WINAPI release(LPVOID released) {
  EXPECT_EQ(released, &item);
  ++shell->released;
}

class FolderBrowser : public ::testing::Test {
 protected:
  FolderBrowser() { shell = &played; }
  ~FolderBrowser() override { shell = nullptr; }
  std::optional<QString> answerFor(const QString& title, bool showFiles, const QString& beginning = {}) {
    return browseForFolder({&browse, &pathOf, &release}, title, showFiles, beginning);
  }

  Shell played;
};

TEST_F(FolderBrowser, IsCalledWithItsNumbersAndWithoutOwnerOrRoot) {
  played.path = "C:\\Exports";
  EXPECT_EQ(answerFor("Browse for Export Path", false), "C:\\Exports");
  EXPECT_EQ(played.title, "Browse for Export Path");
  EXPECT_EQ(played.flags, 1U);
  EXPECT_FALSE(played.owned);
  EXPECT_FALSE(played.rooted);
  EXPECT_EQ(played.displayName, std::string(MAX_PATH, '\0'));
  answerFor("Browse", true);
  EXPECT_EQ(played.flags, 8193U);
}

TEST_F(FolderBrowser, BeginsInTheGivenFolder) {
  answerFor("t", false, "D:\\Exports");
  EXPECT_EQ(played.beginning, "D:\\Exports");
  answerFor("t", false);
  EXPECT_EQ(played.beginning, "");
}

TEST_F(FolderBrowser, GivesTheItemBackWhateverBecameOfIt) {
  played.path = "C:\\Exports";
  answerFor("t", false);
  EXPECT_EQ(played.released, 1);
  played.path.clear();
  EXPECT_EQ(answerFor("t", false), std::nullopt);
  EXPECT_EQ(played.released, 2);
  played.cancelled = true;
  EXPECT_EQ(answerFor("t", false), std::nullopt);
  EXPECT_EQ(played.released, 2);
}

TEST_F(FolderBrowser, TakesAPathToItsEnd) {
  played.path = "D:\\";
  EXPECT_EQ(answerFor("t", false), "D:\\") << "that of a drive ends in a separator already";
  played.path = "C:\\" + std::string(MAX_PATH - 3, 'a');
  EXPECT_EQ(answerFor("t", false), QString::fromStdString(played.path)) << "a buffer without a terminator";
}

TEST_F(FolderBrowser, SpeaksTheSystemsCodePage) {
  const std::string umlaut = settings::toCodePage("\u00dc");
  played.path = "C:\\" + umlaut;
  EXPECT_EQ(answerFor(QStringLiteral("\u00dc?"), false), QStringLiteral("C:\\\u00dc"));
  EXPECT_EQ(played.title, umlaut + "?");
}

struct Fonts {
  HWND owner = nullptr;
  DWORD flags = 0;
  LOGFONTW offered{};
  bool cancelled = false;
  INT answeredSize = 98;
};
Fonts* fonts = nullptr;

BOOL WINAPI chooseFont(LPCHOOSEFONTW request) {
  EXPECT_EQ(request->lStructSize, sizeof(CHOOSEFONTW));
  fonts->owner = request->hwndOwner;
  fonts->flags = request->Flags;
  fonts->offered = *request->lpLogFont;
  if (fonts->cancelled) return FALSE;
  std::wcscpy(request->lpLogFont->lfFaceName, L"Courier New");
  request->lpLogFont->lfWeight = FW_BOLD;
  request->lpLogFont->lfItalic = TRUE;
  request->iPointSize = fonts->answeredSize;
  return TRUE;
}

class FontChooser : public ::testing::Test {
 protected:
  FontChooser() { fonts = &played; }
  ~FontChooser() override { fonts = nullptr; }

  Fonts played;
};

TEST_F(FontChooser, OffersScreenAndPrinterFontsWithTheCurrentOneChosen) {
  QFont current("Tahoma");
  current.setPointSizeF(9);
  current.setItalic(true);
  const HWND owner = GetDesktopWindow();
  EXPECT_TRUE(chooseFontWith(&chooseFont, owner, current));
  EXPECT_EQ(played.owner, owner);
  EXPECT_EQ(played.flags & 3U, 3U);
  EXPECT_NE(played.flags & CF_INITTOLOGFONTSTRUCT, 0U);
  EXPECT_EQ(QString::fromWCharArray(played.offered.lfFaceName), "Tahoma");
  EXPECT_LT(played.offered.lfHeight, 0);
  EXPECT_EQ(played.offered.lfWeight, FW_NORMAL);
  EXPECT_NE(played.offered.lfItalic, 0);
}

TEST_F(FontChooser, TakesNameSizeBoldAndItalic) {
  const auto chosen = chooseFontWith(&chooseFont, nullptr, QFont("Tahoma", 9));
  ASSERT_TRUE(chosen);
  EXPECT_EQ(chosen->family(), "Courier New");
  EXPECT_DOUBLE_EQ(chosen->pointSizeF(), 9.8);
  EXPECT_TRUE(chosen->bold());
  EXPECT_TRUE(chosen->italic());
}

TEST_F(FontChooser, ASizeThatIsLeftAsItIsOfferedStays) {
  QFont current("Tahoma");
  for (const double size : {9.75, 10.3, 11.25}) {
    current.setPointSizeF(size);
    // The dialog returns the size in whole pixels.
    const HDC screen = GetDC(nullptr);
    const int resolution = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    const double pixels = std::round(size * resolution / 72);
    played.answeredSize = static_cast<INT>(std::lround(pixels * 720 / resolution));
    const auto chosen = chooseFontWith(&chooseFont, nullptr, current);
    ASSERT_TRUE(chosen);
    EXPECT_EQ(chosen->pointSizeF(), size);
  }
}

TEST_F(FontChooser, ACancelIsNoFontAndALongNameFits) {
  played.cancelled = true;
  EXPECT_EQ(chooseFontWith(&chooseFont, nullptr, QFont(QString(100, QLatin1Char('f')), 9)), std::nullopt);
  EXPECT_EQ(QString::fromWCharArray(played.offered.lfFaceName), QString(31, QLatin1Char('f')));
}

}  // namespace
}  // namespace korvel::control
