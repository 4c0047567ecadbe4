// The page of the control's properties: what it shows, what it writes, keys, refusals, and its end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include <array>
#include <map>
#include <string>
#include <vector>

#include "ocx/property_page.h"
#include "ocx/property_page_elements.h"
#include "tests/ocx/holdings.h"
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
using test::text;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// The window in which a page is shown.
class Frame final : public IPropertyPageSite {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD status) override {
    statuses.push_back(status);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetLocaleID(LCID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG* message) override {
    keys.push_back(message->wParam);
    return takesKeys ? S_OK : S_FALSE;
  }

  std::vector<DWORD> statuses;
  std::vector<WPARAM> keys;
  bool takesKeys = true;
  ULONG references = 0;
};

/// An object with the properties of the control, which are texts, that refuses one of them.
class Refusing final : public IDispatch {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID identifier, void** object) override {
    *object = IsEqualIID(identifier, IID_IDispatch) ? this : nullptr;
    return *object != nullptr ? S_OK : E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* numbers) override {
    if (*names == lacking) return DISP_E_UNKNOWNNAME;
    names_.push_back(*names);
    *numbers = static_cast<DISPID>(names_.size() - 1);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                   EXCEPINFO* failure, UINT*) override {
    const std::wstring& name = names_.at(static_cast<std::size_t>(member));
    if ((flags & DISPATCH_PROPERTYGET) != 0) {
      result->vt = VT_BSTR;
      result->bstrVal = ::SysAllocString(L"1");
      return S_OK;
    }
    if (name == refused) {
      failure->bstrDescription = ::SysAllocString(L"There is no such server.");
      failure->scode = E_INVALIDARG;
      return DISP_E_EXCEPTION;
    }
    written[name] = arguments->rgvarg[0].vt;
    return S_OK;
  }

  std::wstring lacking;
  std::wstring refused;
  std::map<std::wstring, VARTYPE> written;

 private:
  std::vector<std::wstring> names_;
};

ComPointer<IPropertyPage2> pageOf(const LoadedControl& file) {
  ComPointer<IClassFactory> maker;
  ComPointer<IPropertyPage2> made;
  EXPECT_EQ(file.factory(propertyPageId, maker), S_OK);
  EXPECT_EQ(maker->CreateInstance(nullptr, IID_IPropertyPage2, reinterpret_cast<void**>(made.receive())), S_OK);
  return made;
}

class Page : public testing::Test {
 protected:
  Page() {
    ::ShowWindow(window_.handle(), SW_SHOWNA);
    for (const ComPointer<IUnknown>& each : {first_, second_})
      ComPointer<IPersistStreamInit>::of(each.get(), IID_IPersistStreamInit)->InitNew();
    EXPECT_EQ(page_->SetPageSite(&frame_), S_OK);
  }
  ~Page() override {
    page_->SetObjects(0, nullptr);
    page_->SetPageSite(nullptr);
  }

  void open(std::vector<IUnknown*> objects) {
    ASSERT_EQ(page_->SetObjects(static_cast<ULONG>(objects.size()), objects.data()), S_OK);
    const RECT place{0, 0, 400, 300};
    ASSERT_EQ(page_->Activate(window_.handle(), &place, FALSE), S_OK);
    ASSERT_EQ(page_->Show(SW_SHOW), S_OK);
    frame_.statuses.clear();
  }
  [[nodiscard]] HWND dialog() const { return ::GetWindow(window_.handle(), GW_CHILD); }
  [[nodiscard]] HWND element(int number) const { return ::GetDlgItem(dialog(), number); }
  [[nodiscard]] std::wstring textOf(int number) const {
    std::array<wchar_t, 256> text{};
    ::GetDlgItemTextW(dialog(), number, text.data(), static_cast<int>(text.size()));
    return text.data();
  }
  [[nodiscard]] LRESULT tick(int number) const { return ::SendMessageW(element(number), BM_GETCHECK, 0, 0); }
  void click(int number) const { ::SendMessageW(element(number), BM_CLICK, 0, 0); }
  /// The name that the list shows; nothing where none is selected.
  [[nodiscard]] std::wstring type() const {
    const LRESULT place = ::SendMessageW(element(KORVEL_PAGE_TYPE), CB_GETCURSEL, 0, 0);
    if (place == CB_ERR) return {};
    std::array<wchar_t, 256> text{};
    ::SendMessageW(element(KORVEL_PAGE_TYPE), CB_GETLBTEXT, static_cast<WPARAM>(place),
                   reinterpret_cast<LPARAM>(text.data()));
    return text.data();
  }
  /// The frame's loop gets a message for the element with the focus.
  HRESULT key(WPARAM code, UINT message = WM_KEYDOWN) {
    MSG pressed{};
    pressed.hwnd = ::GetFocus();
    pressed.message = message;
    pressed.wParam = code;
    pressed.lParam = 1;
    return page_->TranslateAccelerator(&pressed);
  }
  static void put(const ComPointer<IUnknown>& control, DISPID property, VARIANT value) {
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS arguments{&value, &named, 1, 1};
    EXPECT_EQ(ComPointer<IDispatch>::of(control.get(), IID_IDispatch)
                  ->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &arguments, nullptr, nullptr,
                           nullptr),
              S_OK);
    ::VariantClear(&value);
  }
  /// All four properties of a control, in the order of the page.
  static std::wstring valuesOf(const ComPointer<IUnknown>& control) {
    std::wstring all;
    for (const DISPID property : {sideTools, toolBar, server, databaseType}) {
      DISPPARAMS none{};
      OwnVariant value;
      EXPECT_EQ(ComPointer<IDispatch>::of(control.get(), IID_IDispatch)
                    ->Invoke(property, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, &value.get(),
                             nullptr, nullptr),
                S_OK);
      ::VariantChangeType(&value.get(), &value.get(), VARIANT_ALPHABOOL, VT_BSTR);
      all += std::wstring(all.empty() ? L"" : L" ") + value.get().bstrVal;
    }
    return all;
  }

  static constexpr DISPID databaseType = 1;
  static constexpr DISPID sideTools = 15;
  static constexpr DISPID toolBar = 16;
  static constexpr DISPID server = 17;

  LoadedControl file_{KORVEL_PLAIN_FOLDER};
  ContainerWindow window_;
  ComPointer<IUnknown> first_ = file_.make();
  ComPointer<IUnknown> second_ = file_.make();
  Frame frame_;
  ComPointer<IPropertyPage2> page_ = pageOf(file_);
};

TEST_F(Page, IsNamedByTheControlForAllThatItStores) {
  CAUUID pages{};
  ASSERT_EQ(ComPointer<ISpecifyPropertyPages>::of(first_.get(), IID_ISpecifyPropertyPages)->GetPages(&pages), S_OK);
  ASSERT_EQ(pages.cElems, 1U);
  EXPECT_TRUE(IsEqualGUID(pages.pElems[0], propertyPageId));
  ::CoTaskMemFree(pages.pElems);
  const auto browsing = ComPointer<IPerPropertyBrowsing>::of(first_.get(), IID_IPerPropertyBrowsing);
  for (const DISPID property : {sideTools, toolBar, server, databaseType}) {
    CLSID page{};
    EXPECT_EQ(browsing->MapPropertyToPage(property, &page), S_OK);
    EXPECT_TRUE(IsEqualGUID(page, propertyPageId));
  }
  CLSID page = propertyPageId;
  // TriggerQuery
  EXPECT_EQ(browsing->MapPropertyToPage(9, &page), PERPROP_E_NOPAGEAVAILABLE);
  EXPECT_TRUE(IsEqualGUID(page, CLSID_NULL));
}

TEST_F(Page, CannotBePartOfAnotherObject) {
  ComPointer<IClassFactory> maker;
  ASSERT_EQ(file_.factory(propertyPageId, maker), S_OK);
  ComPointer<IUnknown> made;
  EXPECT_EQ(maker->CreateInstance(first_.get(), IID_IUnknown, reinterpret_cast<void**>(made.receive())),
            CLASS_E_NOAGGREGATION);
}

TEST_F(Page, SaysItsTitleAndTheSizeInWhichAllHasPlace) {
  PROPPAGEINFO information{};
  information.cb = sizeof(information);
  ASSERT_EQ(page_->GetPageInfo(&information), S_OK);
  EXPECT_STREQ(information.pszTitle, L"propertyPage.title");
  ::CoTaskMemFree(information.pszTitle);
  open({first_.get()});
  for (HWND each = ::GetWindow(dialog(), GW_CHILD); each != nullptr; each = ::GetWindow(each, GW_HWNDNEXT)) {
    RECT place{};
    ::GetWindowRect(each, &place);
    ::MapWindowPoints(nullptr, dialog(), reinterpret_cast<POINT*>(&place), 2);
    EXPECT_GE(place.left, 0) << ::GetDlgCtrlID(each);
    EXPECT_GE(place.top, 0) << ::GetDlgCtrlID(each);
    EXPECT_LE(place.right, information.size.cx) << ::GetDlgCtrlID(each);
    EXPECT_LE(place.bottom, information.size.cy) << ::GetDlgCtrlID(each);
  }
}

TEST_F(Page, ShowsTheValuesOfAControl) {
  put(first_, toolBar, boolean(false));
  put(first_, server, text(L"PLANT1"));
  put(first_, databaseType, number(1));
  open({first_.get()});
  EXPECT_EQ(textOf(KORVEL_PAGE_SIDE_TOOLS), L"propertyPage.sideTools");
  EXPECT_EQ(tick(KORVEL_PAGE_SIDE_TOOLS), BST_CHECKED);
  EXPECT_EQ(textOf(KORVEL_PAGE_TOOL_BAR), L"propertyPage.toolBar");
  EXPECT_EQ(tick(KORVEL_PAGE_TOOL_BAR), BST_UNCHECKED);
  EXPECT_EQ(textOf(KORVEL_PAGE_SERVER_LABEL), L"propertyPage.server");
  EXPECT_EQ(textOf(KORVEL_PAGE_SERVER), L"PLANT1");
  EXPECT_EQ(textOf(KORVEL_PAGE_TYPE_LABEL), L"propertyPage.databaseType");
  EXPECT_EQ(type(), L"Korvel_AuditMU");
  EXPECT_EQ(textOf(KORVEL_PAGE_FAILURE), L"");
  EXPECT_EQ(page_->IsPageDirty(), S_FALSE);
  EXPECT_THAT(frame_.statuses, IsEmpty());
}

TEST_F(Page, AValueWithoutANameIsANumber) {
  put(first_, databaseType, number(7));
  open({first_.get()});
  EXPECT_EQ(type(), L"7");
}

TEST_F(Page, WritesWhatWasChangedAndNothingElse) {
  Container container(window_.handle(), first_.get());
  ASSERT_EQ(container.connect(), S_OK);
  open({first_.get()});
  click(KORVEL_PAGE_SIDE_TOOLS);
  EXPECT_THAT(frame_.statuses, ElementsAre(DWORD{PROPPAGESTATUS_DIRTY}));
  EXPECT_EQ(page_->IsPageDirty(), S_OK);
  EXPECT_EQ(valuesOf(first_), L"True True (None) 0") << "before it is applied";
  ASSERT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(valuesOf(first_), L"False True (None) 0");
  EXPECT_THAT(container.told(), ElementsAre(L"OnChanged 15"));
  EXPECT_EQ(page_->IsPageDirty(), S_FALSE);
  container.forget();
  ASSERT_EQ(page_->Apply(), S_OK);
  EXPECT_THAT(container.told(), IsEmpty()) << "nothing had changed";
  ::SetWindowTextW(element(KORVEL_PAGE_SERVER), L"PLANT2\\AUDIT");
  ::SetFocus(element(KORVEL_PAGE_TYPE));
  ::SendMessageW(element(KORVEL_PAGE_TYPE), WM_KEYDOWN, VK_DOWN, 1);
  ASSERT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(valuesOf(first_), L"False True PLANT2\\AUDIT 1");
  EXPECT_THAT(container.told(), ElementsAre(L"OnChanged 17", L"OnChanged 1"));
}

TEST_F(Page, WhereControlsDifferAFieldIsUndetermined) {
  put(first_, sideTools, boolean(false));
  put(first_, server, text(L"PLANT1"));
  put(first_, databaseType, number(1));
  open({first_.get(), second_.get()});
  EXPECT_EQ(tick(KORVEL_PAGE_SIDE_TOOLS), BST_INDETERMINATE);
  EXPECT_EQ(textOf(KORVEL_PAGE_SIDE_TOOLS), L"propertyPage.sideTools propertyPage.severalValues");
  EXPECT_EQ(tick(KORVEL_PAGE_TOOL_BAR), BST_CHECKED);
  EXPECT_EQ(textOf(KORVEL_PAGE_TOOL_BAR), L"propertyPage.toolBar");
  EXPECT_EQ(textOf(KORVEL_PAGE_SERVER), L"");
  EXPECT_EQ(textOf(KORVEL_PAGE_SERVER_LABEL), L"propertyPage.server propertyPage.severalValues");
  EXPECT_EQ(type(), L"");
  EXPECT_EQ(page_->IsPageDirty(), S_FALSE);
  click(KORVEL_PAGE_TOOL_BAR);
  ASSERT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(valuesOf(first_), L"False False PLANT1 1");
  EXPECT_EQ(valuesOf(second_), L"True False (None) 0");
}

TEST_F(Page, AnUndeterminedFieldThatIsSetIsWrittenToAll) {
  put(first_, sideTools, boolean(false));
  put(first_, server, text(L"PLANT1"));
  open({first_.get(), second_.get()});
  click(KORVEL_PAGE_SIDE_TOOLS);
  EXPECT_NE(tick(KORVEL_PAGE_SIDE_TOOLS), BST_INDETERMINATE);
  EXPECT_EQ(textOf(KORVEL_PAGE_SIDE_TOOLS), L"propertyPage.sideTools");
  ::SetWindowTextW(element(KORVEL_PAGE_SERVER), L"x");
  // To none at all, which is not the same as leaving them different.
  ::SetWindowTextW(element(KORVEL_PAGE_SERVER), L"");
  ASSERT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(valuesOf(first_), valuesOf(second_));
  EXPECT_EQ(valuesOf(first_), L"False True  0");
}

TEST_F(Page, ATickCanBeLeftUndeterminedAgain) {
  put(first_, sideTools, boolean(false));
  open({first_.get(), second_.get()});
  for (int times = 0; times < 3; ++times) click(KORVEL_PAGE_SIDE_TOOLS);
  EXPECT_EQ(tick(KORVEL_PAGE_SIDE_TOOLS), BST_INDETERMINATE);
  EXPECT_EQ(page_->IsPageDirty(), S_FALSE);
  EXPECT_EQ(frame_.statuses.back(), DWORD{PROPPAGESTATUS_CLEAN});
}

TEST_F(Page, ARefusedValueIsSaidInTheWordsOfTheControl) {
  Refusing refusing;
  refusing.refused = L"DefaultSQLServer";
  open({&refusing});
  ::SetWindowTextW(element(KORVEL_PAGE_SERVER), L"NOWHERE");
  click(KORVEL_PAGE_TOOL_BAR);
  EXPECT_EQ(page_->Apply(), E_INVALIDARG);
  EXPECT_EQ(textOf(KORVEL_PAGE_FAILURE), L"There is no such server.");
  EXPECT_EQ(test::lastFailure(), L"KorvelAuditViewerOCX: There is no such server.");
  EXPECT_EQ(::GetFocus(), element(KORVEL_PAGE_SERVER));
  EXPECT_EQ(textOf(KORVEL_PAGE_SERVER), L"NOWHERE") << "to be corrected";
  EXPECT_EQ(page_->IsPageDirty(), S_OK);
  EXPECT_THAT(refusing.written, ElementsAre(std::pair(std::wstring(L"ViewToolBar"), VARTYPE{VT_BOOL})));
  refusing.refused.clear();
  EXPECT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(textOf(KORVEL_PAGE_FAILURE), L"");
  EXPECT_EQ(refusing.written.at(L"DefaultSQLServer"), VT_BSTR);
  page_->SetObjects(0, nullptr);
}

TEST_F(Page, AnObjectWithoutThePropertiesIsRefused) {
  Refusing other;
  other.lacking = L"ViewToolBar";
  open({first_.get()});
  click(KORVEL_PAGE_SIDE_TOOLS);
  std::array<IUnknown*, 2> objects{first_.get(), &other};
  EXPECT_EQ(page_->SetObjects(2, objects.data()), DISP_E_UNKNOWNNAME);
  std::array<IUnknown*, 1> noDispatch{&frame_};
  EXPECT_EQ(page_->SetObjects(1, noDispatch.data()), E_NOINTERFACE);
  EXPECT_EQ(page_->IsPageDirty(), S_OK) << "all is as before";
  ASSERT_EQ(page_->Apply(), S_OK);
  EXPECT_EQ(valuesOf(first_), L"False True (None) 0");
}

TEST_F(Page, CallsInTheWrongOrderAreRefused) {
  const RECT place{0, 0, 400, 300};
  EXPECT_EQ(page_->Activate(window_.handle(), &place, FALSE), E_UNEXPECTED) << "no objects";
  EXPECT_EQ(page_->Apply(), E_UNEXPECTED);
  EXPECT_EQ(page_->Show(SW_SHOW), E_UNEXPECTED);
  EXPECT_EQ(page_->Move(&place), E_UNEXPECTED);
  EXPECT_EQ(page_->Deactivate(), E_UNEXPECTED);
  EXPECT_EQ(page_->SetPageSite(&frame_), E_UNEXPECTED) << "it has a site";
  open({first_.get()});
  EXPECT_EQ(page_->Activate(window_.handle(), &place, FALSE), E_UNEXPECTED) << "twice";
  EXPECT_EQ(page_->Show(SW_MINIMIZE), E_INVALIDARG);
}

TEST_F(Page, WhatWasChangedOutlivesItsWindow) {
  open({first_.get()});
  click(KORVEL_PAGE_SIDE_TOOLS);
  ASSERT_EQ(page_->Deactivate(), S_OK);
  EXPECT_EQ(dialog(), nullptr);
  EXPECT_EQ(page_->IsPageDirty(), S_OK);
  const RECT place{10, 20, 410, 320};
  ASSERT_EQ(page_->Activate(window_.handle(), &place, FALSE), S_OK);
  EXPECT_EQ(tick(KORVEL_PAGE_SIDE_TOOLS), BST_UNCHECKED);
  RECT own{};
  ::GetWindowRect(dialog(), &own);
  ::MapWindowPoints(nullptr, window_.handle(), reinterpret_cast<POINT*>(&own), 2);
  EXPECT_NE(::EqualRect(&own, &place), 0);
  EXPECT_EQ(::IsWindowVisible(dialog()), 0) << "not shown yet";
}

TEST_F(Page, TabMovesInsideAndLeavesAtTheEnds) {
  open({first_.get()});
  ::SetFocus(element(KORVEL_PAGE_SIDE_TOOLS));
  for (const int next : {KORVEL_PAGE_TOOL_BAR, KORVEL_PAGE_SERVER, KORVEL_PAGE_TYPE}) {
    EXPECT_EQ(key(VK_TAB), S_OK);
    EXPECT_EQ(::GetFocus(), element(next));
  }
  EXPECT_THAT(frame_.keys, IsEmpty());
  EXPECT_EQ(key(VK_TAB), S_OK);
  EXPECT_THAT(frame_.keys, ElementsAre(WPARAM{VK_TAB}));
  EXPECT_EQ(::GetFocus(), element(KORVEL_PAGE_TYPE));
}

TEST_F(Page, ReturnAndEscAreTheFrames) {
  open({first_.get()});
  ::SetFocus(element(KORVEL_PAGE_SERVER));
  EXPECT_EQ(key(VK_RETURN), S_OK);
  EXPECT_EQ(key(VK_ESCAPE), S_OK);
  EXPECT_THAT(frame_.keys, ElementsAre(WPARAM{VK_RETURN}, WPARAM{VK_ESCAPE}));
  frame_.takesKeys = false;
  EXPECT_EQ(key(VK_RETURN), S_FALSE) << "for the frame's loop";
}

TEST_F(Page, KeysThatLeadToOtherPagesAreTheFrames) {
  open({first_.get()});
  ::SetFocus(element(KORVEL_PAGE_SERVER));
  EXPECT_EQ(key(VK_F1), S_OK);
  std::array<BYTE, 256> keys{};
  keys.at(VK_CONTROL) = 0x80;
  ::SetKeyboardState(keys.data());
  EXPECT_EQ(key(VK_TAB), S_OK);
  EXPECT_EQ(key(VK_NEXT), S_OK);
  keys.at(VK_CONTROL) = 0;
  ::SetKeyboardState(keys.data());
  EXPECT_THAT(frame_.keys, ElementsAre(WPARAM{VK_F1}, WPARAM{VK_TAB}, WPARAM{VK_NEXT}));
  EXPECT_EQ(::GetFocus(), element(KORVEL_PAGE_SERVER));
}

TEST_F(Page, LettersLeadToTheirFieldsAndOthersAreTheFrames) {
  open({first_.get()});
  ::SetWindowTextW(element(KORVEL_PAGE_SERVER_LABEL), L"&Server");
  ::SetFocus(element(KORVEL_PAGE_SIDE_TOOLS));
  EXPECT_EQ(key(L's', WM_SYSCHAR), S_OK);
  EXPECT_EQ(::GetFocus(), element(KORVEL_PAGE_SERVER));
  EXPECT_THAT(frame_.keys, IsEmpty());
  EXPECT_EQ(key(L'q', WM_SYSCHAR), S_OK);
  EXPECT_THAT(frame_.keys, ElementsAre(WPARAM{L'q'}));
}

TEST_F(Page, APropertyGetsTheFocus) {
  open({first_.get()});
  EXPECT_EQ(page_->EditProperty(databaseType), S_OK);
  EXPECT_EQ(::GetFocus(), element(KORVEL_PAGE_TYPE));
  // TriggerQuery
  EXPECT_EQ(page_->EditProperty(9), DISP_E_MEMBERNOTFOUND);
}

TEST_F(Page, TakesItsWindowAlongWhenItIsReleased) {
  open({first_.get()});
  ASSERT_NE(dialog(), nullptr);
  page_ = {};
  EXPECT_EQ(dialog(), nullptr);
  EXPECT_EQ(frame_.references, 0U);
  page_ = pageOf(file_);
}

TEST_F(Page, OutlivesAWindowThatIsDestroyedAroundIt) {
  const HWND around = ::CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, 300, 200, window_.handle(),
                                        nullptr, nullptr, nullptr);
  std::array<IUnknown*, 1> objects{first_.get()};
  ASSERT_EQ(page_->SetObjects(1, objects.data()), S_OK);
  const RECT place{0, 0, 300, 200};
  ASSERT_EQ(page_->Activate(around, &place, FALSE), S_OK);
  ::DestroyWindow(around);
  EXPECT_EQ(page_->Show(SW_SHOW), E_UNEXPECTED);
  EXPECT_EQ(page_->Apply(), S_OK);
}

TEST_F(Page, KeepsTheFileLoaded) {
  first_ = {};
  second_ = {};
  EXPECT_EQ(file_.canUnload(), S_FALSE);
  page_->SetPageSite(nullptr);
  page_ = {};
  EXPECT_EQ(file_.canUnload(), S_OK);
  page_ = pageOf(file_);
}

TEST_F(Page, TheVerbAsksTheContainersOwnWindowFirst) {
  Container container(window_.handle(), first_.get());
  container.setHasPropertyWindow(true);
  EXPECT_EQ(container.doVerb(OLEIVERB_PROPERTIES), S_OK);
  EXPECT_THAT(container.told(), ElementsAre(L"ShowPropertyFrame"));
  container.forget();
  // The number that the registry names.
  EXPECT_EQ(container.doVerb(1), S_OK);
  EXPECT_THAT(container.told(), ElementsAre(L"ShowPropertyFrame"));
}

/// What was seen of the system's window of properties, which is closed then. Wine gives it no owner.
struct SeenWindow {
  std::wstring title;
  bool hasPage = false;
};
SeenWindow seen;

BOOL CALLBACK findSideTools(HWND window, LPARAM found) {
  if (::GetDlgCtrlID(window) != KORVEL_PAGE_SIDE_TOOLS) return TRUE;
  *reinterpret_cast<bool*>(found) = true;
  return FALSE;
}
BOOL CALLBACK lookAt(HWND window, LPARAM) {
  std::array<wchar_t, 20> kind{};
  ::GetClassNameW(window, kind.data(), static_cast<int>(kind.size()));
  if (std::wstring(kind.data()) != L"#32770" || ::IsWindowVisible(window) == 0) return TRUE;
  std::array<wchar_t, 100> title{};
  ::GetWindowTextW(window, title.data(), static_cast<int>(title.size()));
  seen.title = title.data();
  ::EnumChildWindows(window, &findSideTools, reinterpret_cast<LPARAM>(&seen.hasPage));
  ::PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
  return FALSE;
}
void CALLBACK lookAtWindows(HWND, UINT, UINT_PTR, DWORD) {
  ::EnumThreadWindows(::GetCurrentThreadId(), &lookAt, 0);
}

TEST_F(Page, TheVerbOpensTheSystemsWindowOtherwise) {
  // As the registry would lead to the file.
  ComPointer<IClassFactory> maker;
  ASSERT_EQ(file_.factory(propertyPageId, maker), S_OK);
  ASSERT_EQ(::CoInitialize(nullptr), S_OK);
  DWORD registered = 0;
  ASSERT_EQ(::CoRegisterClassObject(propertyPageId, maker.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registered),
            S_OK);
  Container container(window_.handle(), first_.get());
  ASSERT_EQ(container.doVerb(OLEIVERB_SHOW), S_OK);
  container.forget();
  seen = {};
  const UINT_PTR timer = ::SetTimer(nullptr, 0, 10, &lookAtWindows);
  EXPECT_EQ(container.doVerb(OLEIVERB_PROPERTIES), S_OK);
  ::KillTimer(nullptr, timer);
  EXPECT_TRUE(seen.hasPage);
  EXPECT_THAT(seen.title, HasSubstr(L"Korvel Audit Viewer"));
  EXPECT_THAT(container.told(), ElementsAre(L"ShowPropertyFrame", L"EnableModeless FALSE", L"EnableModeless TRUE"));
  ::CoRevokeClassObject(registered);
  maker = {};
  container.close();
  ::CoUninitialize();
}

TEST(Rounds, AHundredPagesLeaveNothingBehind) {
  const LoadedControl file(KORVEL_PLAIN_FOLDER);
  const auto round = [&](bool inOrder) {
    const ContainerWindow window;
    const ComPointer<IUnknown> control = file.make();
    const ComPointer<IPropertyPage2> page = pageOf(file);
    Frame frame;
    ASSERT_EQ(page->SetPageSite(&frame), S_OK);
    std::array<IUnknown*, 1> objects{control.get()};
    ASSERT_EQ(page->SetObjects(1, objects.data()), S_OK);
    const RECT place{0, 0, 400, 300};
    ASSERT_EQ(page->Activate(window.handle(), &place, FALSE), S_OK);
    ::SetDlgItemTextW(::GetWindow(window.handle(), GW_CHILD), KORVEL_PAGE_SERVER, L"PLANT1");
    ASSERT_EQ(page->Apply(), S_OK);
    if (inOrder) {
      ASSERT_EQ(page->Deactivate(), S_OK);
    }
    page->SetPageSite(nullptr);
    (void)LoadedControl::notes();
  };
  for (int warm = 0; warm < 5; ++warm) round(true);
  const test::Holdings before = test::holdings();
  for (int count = 0; count < 100; ++count) round(count % 2 == 0);
  test::expectNothingMore(before, test::holdings());
  EXPECT_EQ(file.canUnload(), S_OK);
}

}  // namespace
}  // namespace korvel::ocx
