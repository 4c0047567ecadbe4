// Modal dialogs of the real viewer in another program's window.
#include <gmock/gmock.h>

#include <functional>

#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using testing::ElementsAre;

using HostedDialogs = HostedControl;

/// Runs from within the dialog's own loop, again and again until it returns true.
std::function<bool()>& duringDialog() {
  static std::function<bool()> step;
  return step;
}
void CALLBACK runStep(HWND window, UINT, UINT_PTR timer, DWORD) {
  if (duringDialog()()) ::KillTimer(window, timer);
}

struct OwnedWindow {
  HWND owner;
  HWND found;
};
BOOL CALLBACK noteOwned(HWND window, LPARAM place) {
  auto& wanted = *reinterpret_cast<OwnedWindow*>(place);
  if (::IsWindowVisible(window) != 0 && ::GetWindow(window, GW_OWNER) == wanted.owner) wanted.found = window;
  return TRUE;
}

HWND dialogOf(HWND owner) {
  OwnedWindow search{owner, nullptr};
  ::EnumThreadWindows(::GetCurrentThreadId(), noteOwned, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

TEST_F(HostedDialogs, BelongToTheContainersWindowWhichIsDisabled) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  container_.forget();
  bool enabled = true;
  duringDialog() = [&] {
    const HWND dialog = dialogOf(window_.handle());
    if (dialog == nullptr) return false;
    enabled = ::IsWindowEnabled(window_.handle()) != 0;
    EXPECT_THAT(container_.told(), ElementsAre(L"EnableModeless FALSE"));
    ::PostMessageW(dialog, WM_CLOSE, 0, 0);
    return true;
  };
  ::SetTimer(nullptr, 0, 10, &runStep);
  ASSERT_TRUE(look<Trigger>("trigger")(viewerWindow(), L"ABOUT"));
  EXPECT_FALSE(enabled);
  EXPECT_NE(::IsWindowEnabled(window_.handle()), 0);
  EXPECT_THAT(container_.told(), ElementsAre(L"EnableModeless FALSE", L"EnableModeless TRUE"));
}

}  // namespace
}  // namespace korvel::test
