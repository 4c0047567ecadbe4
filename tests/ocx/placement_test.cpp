// The control in a window of a container: activation, size, keys, dialogs, design, pictures, and its end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "ocx/hosted_viewer.h"
#include "tests/ocx/holdings.h"
#include "tests/ocx/loaded_control.h"
#include "tests/ocx/recorded_container.h"

namespace korvel::ocx {
namespace {

using Container = test::RecordedContainer;
using test::ContainerWindow;
using test::LoadedControl;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class Placed : public testing::Test {
 protected:
  Placed() : control_(file_.make()), container_(window_.handle(), control_.get()) {
    // Visible, so that the focus can be given.
    ::ShowWindow(window_.handle(), SW_SHOWNA);
    (void)LoadedControl::notes();
  }

  [[nodiscard]] RECT inside() const {
    RECT place{};
    ::GetClientRect(window_.handle(), &place);
    return place;
  }
  [[nodiscard]] std::wstring insideText() const {
    return std::to_wstring(inside().right) + L'x' + std::to_wstring(inside().bottom);
  }
  [[nodiscard]] HWND ownWindow() const {
    HWND window = nullptr;
    ComPointer<IOleInPlaceObject>::of(control_.get(), IID_IOleInPlaceObject)->GetWindow(&window);
    return window;
  }
  /// The container's loop gets a key that is pressed in the window with the focus.
  bool press(WPARAM key) {
    MSG message{};
    message.hwnd = ::GetFocus();
    message.message = WM_KEYDOWN;
    message.wParam = key;
    message.lParam = 1;
    return container_.translate(message);
  }

  LoadedControl file_{KORVEL_PLAIN_FOLDER};
  ContainerWindow window_;
  ComPointer<IUnknown> control_;
  Container container_;
};

TEST_F(Placed, FillsItsPlaceWhenItIsActivated) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_INPLACEACTIVATE), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"place " + insideText() + L'\n');
  EXPECT_THAT(container_.told(), ElementsAre(L"OnInPlaceActivate", L"ShowObject"));
  EXPECT_EQ(::GetParent(ownWindow()), window_.handle());
  EXPECT_NE(::IsWindowVisible(ownWindow()), 0);
  EXPECT_EQ(container_.doVerb(OLEIVERB_INPLACEACTIVATE), S_OK) << "again";
  EXPECT_EQ(LoadedControl::notes(), L"");
}

TEST_F(Placed, FollowsTheSizeOfItsPlace) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  (void)LoadedControl::notes();
  ASSERT_EQ(container_.move({10, 20, 210, 120}), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"resize 200x100\n");
  RECT own{};
  ::GetWindowRect(ownWindow(), &own);
  ::MapWindowPoints(nullptr, window_.handle(), reinterpret_cast<POINT*>(&own), 2);
  EXPECT_EQ(own.left, 10);
  EXPECT_EQ(own.top, 20);
  EXPECT_EQ(own.right, 210);
  EXPECT_EQ(own.bottom, 120);
}

TEST_F(Placed, TakesTheUserInterfaceAndGivesItBack) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  EXPECT_THAT(container_.told(), ElementsAre(L"OnInPlaceActivate", L"ShowObject", L"OnUIActivate"));
  EXPECT_EQ(LoadedControl::notes(), L"place " + insideText() + L"\ntakeFocus first\n");
  container_.forget();
  const auto object = ComPointer<IOleInPlaceObject>::of(control_.get(), IID_IOleInPlaceObject);
  EXPECT_EQ(object->UIDeactivate(), S_OK);
  EXPECT_THAT(container_.told(), ElementsAre(L"OnUIDeactivate"));
  EXPECT_EQ(object->InPlaceDeactivate(), S_OK);
  EXPECT_THAT(container_.told(), ElementsAre(L"OnUIDeactivate", L"OnInPlaceDeactivate"));
  EXPECT_EQ(ownWindow(), nullptr);
  EXPECT_EQ(LoadedControl::notes(), L"remove\n");
}

TEST_F(Placed, TabLeavesItAtItsEnds) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  container_.forget();
  EXPECT_TRUE(press(VK_TAB)) << "from the first field to the last, which is the viewer's matter";
  EXPECT_THAT(container_.told(), Not(Contains(L"TranslateAccelerator 9 0")));
  const HWND first = ::GetFocus();
  ::SetFocus(::GetWindow(first, GW_HWNDNEXT));
  ASSERT_NE(::GetFocus(), first);
  EXPECT_TRUE(press(VK_TAB));
  EXPECT_THAT(container_.told(), ElementsAre(L"TranslateAccelerator 9 0")) << "from the last one to the container";
}

TEST_F(Placed, KeysOfDialogsAreItsOwnAndOthersTheContainers) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_UIACTIVATE), S_OK);
  container_.forget();
  for (const int key : {VK_RETURN, VK_ESCAPE, VK_UP, VK_DOWN, VK_LEFT, VK_RIGHT})
    EXPECT_TRUE(press(static_cast<WPARAM>(key)));
  EXPECT_THAT(container_.told(), ElementsAre());
  press(VK_F5);
  EXPECT_THAT(container_.told(), ElementsAre(L"TranslateAccelerator 116 0"));
}

TEST_F(Placed, ADialogDisablesTheContainer) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  (void)LoadedControl::notes();
  container_.forget();
  const auto members = ComPointer<IDispatch>::of(control_.get(), IID_IDispatch);
  DISPPARAMS none{};
  // ChangeFont
  ASSERT_EQ(members->Invoke(7, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"disabled\nenabled\n");
  EXPECT_THAT(container_.told(), ElementsAre(L"EnableModeless FALSE", L"EnableModeless TRUE"));
}

TEST_F(Placed, ADesignedFormHasAPictureOnly) {
  ASSERT_EQ(container_.setRunning(false), S_OK);
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"");
  ASSERT_NE(ownWindow(), nullptr);
  EXPECT_EQ(::GetWindow(ownWindow(), GW_CHILD), nullptr);
  ASSERT_EQ(container_.setRunning(true), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"remove\nplace " + insideText() + L'\n');
}

TEST_F(Placed, AWindowThatIsDestroyedAroundItIsLeft) {
  const HWND frame = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 300, 200, window_.handle(),
                                       nullptr, nullptr, nullptr);
  const ComPointer<IUnknown> other = file_.make();
  Container inner(frame, other.get());
  ASSERT_EQ(inner.doVerb(OLEIVERB_SHOW), S_OK);
  (void)LoadedControl::notes();
  ::DestroyWindow(frame);
  EXPECT_EQ(LoadedControl::notes(), L"remove\n");
  EXPECT_THAT(inner.told(), Contains(L"OnInPlaceDeactivate"));
}

TEST_F(Placed, TwoControlsDoNotDisturbEachOther) {
  const ContainerWindow otherWindow;
  ::ShowWindow(otherWindow.handle(), SW_SHOWNA);
  const ComPointer<IUnknown> other = file_.make();
  Container otherContainer(otherWindow.handle(), other.get());
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  ASSERT_EQ(otherContainer.doVerb(OLEIVERB_SHOW), S_OK);
  container_.close();
  EXPECT_EQ(ownWindow(), nullptr);
  HWND otherOwn = nullptr;
  EXPECT_EQ(ComPointer<IOleInPlaceObject>::of(other.get(), IID_IOleInPlaceObject)->GetWindow(&otherOwn), S_OK);
  EXPECT_NE(::IsWindowVisible(otherOwn), 0);
}

/// Closes the container from within the loop of a query that waits.
Container* closedInQuery = nullptr;
void CALLBACK closeContainer(HWND window, UINT, UINT_PTR timer, DWORD) {
  ::KillTimer(window, timer);
  closedInQuery->close();
}

TEST_F(Placed, CanBeClosedWhileAQueryRuns) {
  ASSERT_EQ(container_.doVerb(OLEIVERB_SHOW), S_OK);
  (void)LoadedControl::notes();
  const auto members = ComPointer<IDispatch>::of(control_.get(), IID_IDispatch);
  // Only the call itself holds the control when it is closed.
  control_ = {};
  IDispatch* const lent = members.get();
  closedInQuery = &container_;
  ::SetTimer(nullptr, 0, 0, &closeContainer);
  DISPPARAMS none{};
  // TriggerQuery
  EXPECT_EQ(lent->Invoke(9, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"stopWaiting\nremove\nTriggerQuery\n");
}

/// A picture of the control's 20 by 10 pixels in the middle of a white one.
class Canvas {
 public:
  Canvas() : context_(::CreateCompatibleDC(nullptr)) {
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof(description.bmiHeader);
    description.bmiHeader.biWidth = 40;
    description.bmiHeader.biHeight = -30;
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    bitmap_ = ::CreateDIBSection(context_, &description, DIB_RGB_COLORS, &pixels_, nullptr, 0);
    ::SelectObject(context_, bitmap_);
    ::PatBlt(context_, 0, 0, 40, 30, WHITENESS);
  }
  ~Canvas() {
    ::DeleteDC(context_);
    ::DeleteObject(bitmap_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  [[nodiscard]] HDC context() const { return context_; }
  [[nodiscard]] std::uint32_t at(int x, int y) const {
    return static_cast<const std::uint32_t*>(pixels_)[y * 40 + x] & 0x00FFFFFFU;
  }
  /// All pixels but the upper left one have the control's colour, and all around them are white.
  void expectControl() const {
    for (int y = 0; y < 30; ++y)
      for (int x = 0; x < 40; ++x) {
        const bool inside = x >= 10 && x < 30 && y >= 5 && y < 15;
        const std::uint32_t colour = x == 10 && y == 5 ? 0x00FF0000U : inside ? 0x00336699U : 0x00FFFFFFU;
        ASSERT_EQ(at(x, y), colour) << x << ',' << y;
      }
  }

 private:
  HDC context_;
  HBITMAP bitmap_ = nullptr;
  void* pixels_ = nullptr;
};

constexpr RECTL middle{10, 5, 30, 15};

TEST_F(Placed, IsDrawnWhileItIsInactive) {
  const Canvas canvas;
  const auto view = ComPointer<IViewObject2>::of(control_.get(), IID_IViewObject2);
  ASSERT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, canvas.context(), &middle, nullptr, nullptr, 0),
            S_OK);
  canvas.expectControl();
  EXPECT_EQ(view->Draw(DVASPECT_ICON, -1, nullptr, nullptr, nullptr, canvas.context(), &middle, nullptr, nullptr, 0),
            DV_E_DVASPECT);
}

TEST_F(Placed, IsDrawnIntoAMetafile) {
  const HDC file = ::CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
  const auto view = ComPointer<IViewObject2>::of(control_.get(), IID_IViewObject2);
  ASSERT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, file, &middle, nullptr, nullptr, 0), S_OK);
  const HENHMETAFILE drawn = ::CloseEnhMetaFile(file);
  ENHMETAHEADER head{};
  ::GetEnhMetaFileHeader(drawn, sizeof(head), &head);
  EXPECT_GT(head.nRecords, 2U);
  EXPECT_EQ(head.rclBounds.left, 10);
  EXPECT_EQ(head.rclBounds.top, 5);
  ::DeleteEnhMetaFile(drawn);
}

TEST_F(Placed, TheViewsSinkIsKept) {
  const auto view = ComPointer<IViewObject2>::of(control_.get(), IID_IViewObject2);
  ASSERT_EQ(view->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST, &container_), S_OK);
  EXPECT_THAT(container_.told(), ElementsAre(L"OnViewChange"));
  IAdviseSink* sink = nullptr;
  DWORD flags = 0;
  ASSERT_EQ(view->GetAdvise(nullptr, &flags, &sink), S_OK);
  EXPECT_EQ(sink, static_cast<IAdviseSink*>(&container_));
  EXPECT_EQ(flags, DWORD{ADVF_PRIMEFIRST});
  sink->Release();
  ASSERT_EQ(view->SetAdvise(0, 0, nullptr), S_OK);
}

TEST_F(Placed, KeepsTheSizeThatItIsGiven) {
  const auto object = ComPointer<IOleObject>::of(control_.get(), IID_IOleObject);
  SIZEL size{12345, 6789};
  ASSERT_EQ(object->SetExtent(DVASPECT_CONTENT, &size), S_OK);
  SIZEL read{};
  ASSERT_EQ(object->GetExtent(DVASPECT_CONTENT, &read), S_OK);
  EXPECT_EQ(read.cx, 12345);
  EXPECT_EQ(read.cy, 6789);
  size.cx = -1;
  EXPECT_EQ(object->SetExtent(DVASPECT_CONTENT, &size), E_INVALIDARG);
}

TEST(Rounds, AHundredControlsLeaveNothingBehind) {
  const LoadedControl file(KORVEL_PLAIN_FOLDER);
  const auto round = [&] {
    {
      const ContainerWindow window;
      Container container(window.handle(), file.make().get());
      ASSERT_EQ(container.connect(), S_OK);
      ASSERT_EQ(container.doVerb(OLEIVERB_UIACTIVATE), S_OK);
      EXPECT_EQ(file.canUnload(), S_FALSE);
    }
    // What the viewers noted is theirs.
    (void)LoadedControl::notes();
  };
  for (int warm = 0; warm < 5; ++warm) round();
  const test::Holdings before = test::holdings();
  for (int count = 0; count < 100; ++count) round();
  const test::Holdings after = test::holdings();
  EXPECT_EQ(file.canUnload(), S_OK);
  test::expectNothingMore(before, after);
  RecordProperty("handle", std::to_string(before.nextHandle) + " -> " + std::to_string(after.nextHandle));
  RecordProperty("threads", std::to_string(before.threads) + " -> " + std::to_string(after.threads));
  RecordProperty("windows", std::to_string(before.windows) + " -> " + std::to_string(after.windows));
  RecordProperty("bytes", std::to_string(before.bytes) + " -> " + std::to_string(after.bytes));
}

TEST(Rounds, BothFilesAreUnloadedEachTimeAndLeaveNothingBehind) {
  const auto round = [] {
    {
      const LoadedControl file(KORVEL_PLAIN_FOLDER);
      const ContainerWindow window;
      Container container(window.handle(), file.make().get());
      ASSERT_EQ(container.doVerb(OLEIVERB_SHOW), S_OK);
    }
    ASSERT_EQ(::GetModuleHandleW(hostingLibraryName), nullptr);
    ASSERT_EQ(::GetModuleHandleW(L"KorvelAuditViewerOCX.ocx"), nullptr);
  };
  for (int warm = 0; warm < 5; ++warm) round();
  const test::Holdings before = test::holdings();
  for (int count = 0; count < 100; ++count) round();
  test::expectNothingMore(before, test::holdings());
}

}  // namespace
}  // namespace korvel::ocx
