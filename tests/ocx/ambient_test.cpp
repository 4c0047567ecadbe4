// What a container says of itself, and when it changes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include <string>

#include "ocx/com_pointer.h"
#include "tests/ocx/loaded_control.h"
#include "tests/ocx/recorded_container.h"
#include "tests/ocx/variants.h"

namespace korvel::ocx {
namespace {

using Container = test::RecordedContainer;
using test::boolean;
using test::ContainerWindow;
using test::LoadedControl;
using test::number;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Ambient : public testing::Test {
 protected:
  Ambient() {
    ::ShowWindow(window_.handle(), SW_SHOWNA);
    (void)LoadedControl::notes();
  }

  [[nodiscard]] HWND ownWindow() const {
    HWND window = nullptr;
    ComPointer<IOleInPlaceObject>::of(control_.get(), IID_IOleInPlaceObject)->GetWindow(&window);
    return window;
  }
  /// The lower right corner of the control's window after it was painted anew.
  [[nodiscard]] COLORREF painted() const {
    ::RedrawWindow(ownWindow(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    RECT all{};
    ::GetClientRect(ownWindow(), &all);
    const HDC context = ::GetDC(ownWindow());
    const COLORREF color = ::GetPixel(context, all.right - 1, all.bottom - 1);
    ::ReleaseDC(ownWindow(), context);
    return color;
  }

  LoadedControl file_{KORVEL_PLAIN_FOLDER};
  ContainerWindow window_;
  ComPointer<IUnknown> control_ = file_.make();
  Container container_{window_.handle(), control_.get()};
};

TEST_F(Ambient, ADeadContainerGivesTheControlNoInput) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  const HWND field = ::GetFocus();
  ASSERT_NE(::IsChild(ownWindow(), field), 0);
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_UIDEAD, boolean(true), DISPID_AMBIENT_UIDEAD), S_OK);
  EXPECT_EQ(::IsWindowEnabled(ownWindow()), 0) << "no clicks";
  EXPECT_EQ(::GetFocus(), window_.handle()) << "no keys";
  MSG key{};
  key.hwnd = field;
  key.message = WM_KEYDOWN;
  key.wParam = VK_RETURN;
  EXPECT_FALSE(container_.translate(key));
  (void)LoadedControl::notes();
  ::SendMessageW(ownWindow(), WM_SETFOCUS, 0, 0);
  EXPECT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"") << "the focus does not go in";
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_UIDEAD, boolean(false), DISPID_UNKNOWN), S_OK);
  EXPECT_NE(::IsWindowEnabled(ownWindow()), 0);
  EXPECT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"takeFocus first\n");
  EXPECT_EQ(::GetFocus(), field);
}

TEST_F(Ambient, AControlThatIsPlacedInADeadContainerTakesNoInput) {
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_UIDEAD, boolean(true), DISPID_UNKNOWN), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  EXPECT_EQ(::IsWindowEnabled(ownWindow()), 0);
  EXPECT_THAT(container_.told(), Not(Contains(L"OnUIActivate")));
}

TEST_F(Ambient, TheContainersColourIsAroundTheViewer) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  EXPECT_EQ(painted(), ::GetSysColor(COLOR_BTNFACE));
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_BACKCOLOR, number(0x00336699), DISPID_AMBIENT_BACKCOLOR), S_OK);
  EXPECT_EQ(painted(), COLORREF{0x00336699});
  // One of the system's colours, by its number.
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_BACKCOLOR, number(static_cast<LONG>(0x80000000U | COLOR_HIGHLIGHT)),
                                  DISPID_UNKNOWN),
            S_OK);
  EXPECT_EQ(painted(), ::GetSysColor(COLOR_HIGHLIGHT));
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_BACKCOLOR, VARIANT{}, DISPID_AMBIENT_BACKCOLOR), S_OK);
  EXPECT_EQ(painted(), ::GetSysColor(COLOR_BTNFACE)) << "no longer given";
}

TEST_F(Ambient, OnlyWhatIsAnnouncedIsReadAgain) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_BACKCOLOR, number(0x00336699), DISPID_AMBIENT_UIDEAD), S_OK);
  EXPECT_EQ(painted(), ::GetSysColor(COLOR_BTNFACE));
  EXPECT_NE(::IsWindowEnabled(ownWindow()), 0);
}

TEST_F(Ambient, AFontReachesTheViewer) {
  FONTDESC description{};
  description.cbSizeofstruct = sizeof(description);
  std::wstring family(L"Tahoma");
  description.lpstrName = family.data();
  description.cySize.int64 = 120000;
  description.sWeight = FW_NORMAL;
  ComPointer<IDispatch> font;
  ASSERT_EQ(::OleCreateFontIndirect(&description, IID_IDispatch, reinterpret_cast<void**>(font.receive())), S_OK);
  VARIANT value{};
  value.vt = VT_DISPATCH;
  value.pdispVal = font.handOver();
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_FONT, value, DISPID_AMBIENT_FONT), S_OK);
  // The system may name another family in its place.
  EXPECT_THAT(LoadedControl::notes(), StartsWith(L"setFont "));
  ASSERT_EQ(container_.setAmbient(DISPID_AMBIENT_UIDEAD, boolean(false), DISPID_AMBIENT_UIDEAD), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"") << "the font is the same";
}

// The language is the one that the viewer's settings name, and text has the viewer's colours.
TEST_F(Ambient, LanguageAndTextAreNotTheContainers) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  (void)LoadedControl::notes();
  container_.forget();
  for (const DISPID property : {DISPID_AMBIENT_LOCALEID, DISPID_AMBIENT_FORECOLOR, DISPID_AMBIENT_DISPLAYASDEFAULT})
    ASSERT_EQ(container_.setAmbient(property, number(1031), property), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"");
  EXPECT_THAT(container_.told(), IsEmpty());
}

}  // namespace
}  // namespace korvel::ocx
