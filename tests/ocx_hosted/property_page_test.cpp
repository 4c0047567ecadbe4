// The property page with the real viewer's texts, in every language.
#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

#include "base/wide_text_windows.h"
#include "ocx/property_page.h"
#include "ocx/property_page_elements.h"
#include "settings/string_table.h"
#include "tests/ocx/variants.h"
#include "tests/ocx_hosted/hosted_control.h"

namespace korvel::test {
namespace {

using testing::StartsWith;

class HostedPage : public HostedControl, public testing::WithParamInterface<const char*> {
 protected:
  HostedPage() {
    HKEY settings = nullptr;
    ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Molvane\\AuditViewer", 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                      &settings, nullptr);
    const std::string offset = GetParam();
    ::RegSetValueExA(settings, "Language", 0, REG_SZ, reinterpret_cast<const BYTE*>(offset.c_str()),
                     static_cast<DWORD>(offset.size() + 1));
    ::RegCloseKey(settings);
    ocx::ComPointer<IClassFactory> maker;
    EXPECT_EQ(file_.factory(ocx::propertyPageId, maker), S_OK);
    EXPECT_EQ(maker->CreateInstance(nullptr, IID_IPropertyPage, reinterpret_cast<void**>(page_.receive())), S_OK);
  }

  [[nodiscard]] static std::wstring expected(const char* key) {
    return lossyWideFromUtf8(std::string(settings::ownText(key, settings::LanguageOffset(GetParam()))));
  }
  [[nodiscard]] HWND element(int number) const { return ::GetDlgItem(::GetWindow(window_.handle(), GW_CHILD), number); }

  ocx::ComPointer<IPropertyPage> page_;
};

/// A caption's element and its text.
struct Caption {
  int element;
  const char* key;
  /// What stands before the text, in units of the dialog.
  int before;
};
constexpr std::array<Caption, 4> captions{{{KORVEL_PAGE_SIDE_TOOLS, "propertyPage.sideTools", 12},
                                           {KORVEL_PAGE_TOOL_BAR, "propertyPage.toolBar", 12},
                                           {KORVEL_PAGE_SERVER_LABEL, "propertyPage.server", 0},
                                           {KORVEL_PAGE_TYPE_LABEL, "propertyPage.databaseType", 0}}};

TEST_P(HostedPage, SpeaksTheViewersLanguageAndHasPlaceForIt) {
  PROPPAGEINFO information{};
  information.cb = sizeof(information);
  ASSERT_EQ(page_->GetPageInfo(&information), S_OK);
  EXPECT_EQ(information.pszTitle, expected("propertyPage.title"));
  ::CoTaskMemFree(information.pszTitle);
  // Two that differ in everything have the longest captions.
  const ocx::ComPointer<IUnknown> other = file_.make();
  ocx::ComPointer<IPersistStreamInit>::of(other.get(), IID_IPersistStreamInit)->InitNew();
  for (const wchar_t* name : {L"ViewSideTools", L"ViewToolBar", L"DatabaseType"})
    ASSERT_EQ(container_.invoke(name, DISPATCH_PROPERTYPUT, {number(name == std::wstring(L"DatabaseType") ? 1 : 0)}),
              S_OK);
  ASSERT_EQ(container_.put(L"DefaultSQLServer", L"PLANT1"), S_OK);
  std::array<IUnknown*, 2> controls{control_.get(), other.get()};
  ASSERT_EQ(page_->SetObjects(2, controls.data()), S_OK);
  const RECT place{0, 0, information.size.cx, information.size.cy};
  ASSERT_EQ(page_->Activate(window_.handle(), &place, FALSE), S_OK);
  for (const Caption& caption : captions) {
    const HWND window = element(caption.element);
    std::array<wchar_t, 200> text{};
    const int length = ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    EXPECT_THAT(std::wstring(text.data()), StartsWith(expected(caption.key)));
    const HDC context = ::GetDC(window);
    const HGDIOBJ former = ::SelectObject(context, reinterpret_cast<HGDIOBJ>(::SendMessageW(window, WM_GETFONT, 0, 0)));
    SIZE needed{};
    ::GetTextExtentPoint32W(context, text.data(), length, &needed);
    ::SelectObject(context, former);
    ::ReleaseDC(window, context);
    RECT before{0, 0, caption.before, 0};
    ::MapDialogRect(::GetParent(window), &before);
    RECT given{};
    ::GetClientRect(window, &given);
    ASSERT_GT(needed.cx, 0);
    EXPECT_LE(needed.cx + before.right, given.right) << GetParam() << ' ' << caption.key;
    EXPECT_LE(needed.cy, given.bottom) << GetParam() << ' ' << caption.key;
  }
  page_->SetObjects(0, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Languages, HostedPage, testing::Values("0", "10000", "20000", "30000", "40000"));

}  // namespace
}  // namespace korvel::test
