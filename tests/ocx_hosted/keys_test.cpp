// The keyboard between a container's form and the real viewer in it.
#include <gmock/gmock.h>

#include <array>
#include <set>
#include <string>

#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr wchar_t afterLastElement[] = L"TranslateAccelerator 9 0";
constexpr wchar_t beforeFirstElement[] = L"TranslateAccelerator 9 1";

/// Keys that are held down while a test presses others.
class HeldKey {
 public:
  explicit HeldKey(int key) : key_(key) { set(0x80); }
  ~HeldKey() { set(0); }
  HeldKey(const HeldKey&) = delete;
  HeldKey& operator=(const HeldKey&) = delete;

 private:
  void set(BYTE state) const {
    std::array<BYTE, 256> keys{};
    ::GetKeyboardState(keys.data());
    keys.at(static_cast<std::size_t>(key_)) = state;
    // The toolkit looks for the left or the right one.
    if (key_ == VK_SHIFT) keys.at(VK_LSHIFT) = state;
    if (key_ == VK_CONTROL) keys.at(VK_LCONTROL) = state;
    ::SetKeyboardState(keys.data());
  }

  int key_;
};

/// A form with a field and a button before the viewer.
class HostedKeys : public HostedControl {
 protected:
  HostedKeys() {
    constexpr DWORD style = WS_CHILD | WS_VISIBLE | WS_TABSTOP;
    field_ = ::CreateWindowExW(0, L"EDIT", L"", style, 0, 0, 100, 20, window_.handle(), nullptr, nullptr, nullptr);
    // Its mnemonic is a letter that is typed into the viewer.
    ::CreateWindowExW(0, L"BUTTON", L"&Open", style, 100, 0, 100, 20, window_.handle(), nullptr, nullptr, nullptr);
  }

  /// What a program's loop does with a message.
  void deliver(MSG& message) {
    if (container_.translate(message) || ::IsDialogMessageW(window_.handle(), &message) != 0) return;
    ::TranslateMessage(&message);
    ::DispatchMessageW(&message);
  }
  /// A key is pressed in the window with the focus, and all that follows from it is delivered.
  void press(WPARAM key) {
    const HeldKey down(static_cast<int>(key));
    const auto code = static_cast<LPARAM>(::MapVirtualKeyW(static_cast<UINT>(key), MAPVK_VK_TO_VSC) << 16U | 1U);
    ::PostMessageW(::GetFocus(), WM_KEYDOWN, key, code);
    ::PostMessageW(::GetFocus(), WM_KEYUP, key, code | static_cast<LPARAM>(0xC0000000));
    deliverAll();
  }
  void deliverAll() {
    MSG message{};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) deliver(message);
  }
  void pressWith(int held, WPARAM key) {
    const HeldKey down(held);
    press(key);
  }

  /// The toolkit hears of a new focus on the program's loop.
  [[nodiscard]] bool viewerHasFocus() {
    return deliverMessages([this] { return !focus().empty(); });
  }

  HWND field_;
};

TEST_F(HostedKeys, AreNotTakenFromTheFormByTheViewerThatIsShown) {
  ::SetFocus(field_);
  ASSERT_EQ(::GetFocus(), field_);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  const auto sizeOf = look<SizeOf>("sizeOf");
  ASSERT_TRUE(deliverMessages([&] { return sizeOf(viewerWindow()).cx > 0; }));
  EXPECT_EQ(::GetFocus(), field_);
  EXPECT_THAT(container_.told(), Not(Contains(L"OnUIActivate")));
}

TEST_F(HostedKeys, TabGoesThroughTheViewerAndLeavesItAtItsEnds) {
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  ASSERT_TRUE(viewerHasFocus());
  const std::wstring first = focus();
  std::set<std::wstring> reached{first};
  for (int pressed = 0; pressed < 100 && !testing::Value(container_.told(), Contains(afterLastElement)); ++pressed) {
    press(VK_TAB);
    reached.insert(focus());
  }
  EXPECT_THAT(container_.told(), Contains(afterLastElement));
  // The form has not taken the focus away: it is at the viewer's last element.
  const std::wstring last = focus();
  EXPECT_NE(last, first);
  EXPECT_THAT(reached, testing::IsSupersetOf({L"lvListView0", L"tvTreeView", L"btQuery"}));
  container_.forget();
  for (int pressed = 0; pressed < 100 && !testing::Value(container_.told(), Contains(beforeFirstElement)); ++pressed)
    pressWith(VK_SHIFT, VK_TAB);
  EXPECT_THAT(container_.told(), Contains(beforeFirstElement));
  EXPECT_EQ(focus(), first);
}

TEST_F(HostedKeys, TabOfTheFormEntersTheViewerAtBothEnds) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  ::SetFocus(field_);
  press(VK_TAB);
  press(VK_TAB);
  ASSERT_TRUE(viewerHasFocus());
  const std::wstring first = focus();
  EXPECT_THAT(container_.told(), Contains(L"OnUIActivate"));
  ::SetFocus(field_);
  ASSERT_TRUE(deliverMessages([this] { return focus().empty(); }));
  pressWith(VK_SHIFT, VK_TAB);
  ASSERT_TRUE(viewerHasFocus());
  EXPECT_NE(focus(), first);
}

TEST_F(HostedKeys, ShortcutsOfTheViewerWorkUnlessTheContainerTakesThem) {
  ASSERT_EQ(container_.put(L"DefaultSQLServer", trail()), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  // The container takes all keys that it is offered.
  press(VK_F5);
  EXPECT_THAT(container_.told(), Contains(L"TranslateAccelerator 116 0"));
  ASSERT_EQ(container_.invoke(L"DisplayNoOfRecords"), S_OK);
  EXPECT_EQ(textOf(L"Records"), L"0 Records on current tab");
  container_.takeKeys({});
  press(VK_F5);
  ASSERT_EQ(container_.invoke(L"DisplayNoOfRecords"), S_OK);
  EXPECT_EQ(textOf(L"Records"), std::to_wstring(records) + L" Records on current tab");
}

TEST_F(HostedKeys, LettersForTheViewerAreNoMnemonicsOfTheForm) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  ASSERT_TRUE(viewerHasFocus());
  const HWND before = ::GetFocus();
  // As a keyboard on the screen types: without a key.
  ::PostMessageW(before, WM_CHAR, L'o', 1);
  deliverAll();
  EXPECT_EQ(::GetFocus(), before);
  EXPECT_NE(focus(), L"");
}

}  // namespace
}  // namespace korvel::test
