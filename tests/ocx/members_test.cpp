// The control as those see it who call by name or number: members, events, changes, failures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>
#include <olectl.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "base/wide_text_windows.h"
#include "tests/ocx/loaded_control.h"
#include "tests/ocx/recorded_container.h"
#include "tests/ocx/variants.h"

namespace korvel::embedded {
extern const std::string_view typeLibraryTable;
}  // namespace korvel::embedded

namespace korvel::ocx {
namespace {

using Container = test::RecordedContainer;
using test::ContainerWindow;
using test::LoadedControl;
using test::number;
using test::text;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Members : public testing::Test {
 protected:
  Members() : control_(file_.make()), dispatch_(ComPointer<IDispatch>::of(control_.get(), IID_IDispatch)) {
    (void)LoadedControl::notes();
  }
  ~Members() override { ::VariantClear(&result_); }

  DISPID numberOf(const std::wstring& name) {
    std::wstring wanted(name);
    LPOLESTR pointer = wanted.data();
    DISPID found = DISPID_UNKNOWN;
    found_ = dispatch_->GetIDsOfNames(IID_NULL, &pointer, 1, LOCALE_USER_DEFAULT, &found);
    return found;
  }
  /// `arguments` are in reverse order, and cleared.
  HRESULT call(const std::wstring& name, std::vector<VARIANT> arguments = {}, WORD flags = DISPATCH_METHOD,
               std::vector<DISPID> named = {}) {
    ::VariantClear(&result_);
    failure_ = {};
    DISPPARAMS parameters{arguments.data(), named.data(), static_cast<UINT>(arguments.size()),
                          static_cast<UINT>(named.size())};
    const HRESULT called = dispatch_->Invoke(numberOf(name), IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                             &result_, &failure_, nullptr);
    for (VARIANT& each : arguments) ::VariantClear(&each);
    return called;
  }
  HRESULT put(const std::wstring& name, VARIANT value) {
    return call(name, {value}, DISPATCH_PROPERTYPUT, {DISPID_PROPERTYPUT});
  }

  LoadedControl file_{KORVEL_PLAIN_FOLDER};
  ComPointer<IUnknown> control_;
  ComPointer<IDispatch> dispatch_;
  VARIANT result_{};
  EXCEPINFO failure_{};
  HRESULT found_ = S_OK;
};

TEST_F(Members, AllOfTheTableAreThereByNameAndNumber) {
  std::istringstream lines{std::string(embedded::typeLibraryTable)};
  int members = 0;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string kind;
    std::string name;
    DISPID expected = 0;
    fields >> kind >> name;
    if (kind != "property" && kind != "method") continue;
    fields >> expected;
    EXPECT_EQ(numberOf(lossyWideFromUtf8(name)), expected) << name;
    ++members;
  }
  EXPECT_EQ(members, 26);
}

TEST_F(Members, MethodsWithoutArgumentsReachTheViewer) {
  for (const wchar_t* name : {L"SelectALL", L"UnselectALL", L"ExportNotepad", L"ExportExcel", L"DisplayNoOfRecords",
                              L"ExpandAll", L"UnlockControls", L"BuildMenu", L"BuildToolbar", L"ListViewColSetup",
                              L"SwitchLanguage", L"BuildMisc", L"OpenDefaultSQLServer"}) {
    EXPECT_EQ(call(name), S_OK);
    EXPECT_EQ(LoadedControl::notes(), std::wstring(name) + L'\n');
  }
}

TEST_F(Members, ArgumentsArriveWithTheirTypes) {
  VARIANT yes;
  yes.vt = VT_BOOL;
  yes.boolVal = VARIANT_TRUE;
  EXPECT_EQ(call(L"ViewTools", {yes}), S_OK);
  EXPECT_EQ(call(L"ShowKeyField", {number(0)}), S_OK) << "converted";
  EXPECT_EQ(call(L"BuildPopup", {text(L"Column")}), S_OK);
  EXPECT_EQ(LoadedControl::notes(), L"ViewTools True\nShowKeyField False\nBuildPopup Column\n");
  EXPECT_EQ(call(L"GetExportPath", {number(1), text(L"Folder")}), S_OK);
  ASSERT_EQ(result_.vt, VT_BSTR);
  EXPECT_STREQ(result_.bstrVal, L"Folder|1");
}

TEST_F(Members, ArgumentsCanBeNamed) {
  // dialogtext is 0, files is 1.
  EXPECT_EQ(call(L"GetExportPath", {text(L"Named"), number(2)}, DISPATCH_METHOD, {0, 1}), S_OK);
  ASSERT_EQ(result_.vt, VT_BSTR);
  EXPECT_STREQ(result_.bstrVal, L"Named|2");
}

TEST_F(Members, WrongCallsAreRefused) {
  EXPECT_EQ(call(L"ViewTools"), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(call(L"SelectALL", {number(1)}), DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(put(L"DatabaseType", text(L"no number")), DISP_E_TYPEMISMATCH);
  EXPECT_NE(call(L"NoSuchMember"), S_OK);
  EXPECT_EQ(found_, DISP_E_UNKNOWNNAME);
  EXPECT_EQ(LoadedControl::notes(), L"");
}

TEST_F(Members, PropertiesAreReadAndWritten) {
  EXPECT_EQ(put(L"DatabaseType", number(1)), S_OK);
  EXPECT_EQ(call(L"DatabaseType", {}, DISPATCH_PROPERTYGET), S_OK);
  EXPECT_EQ(result_.lVal, 1);
  EXPECT_EQ(put(L"DefaultSQLServer", text(L"PLANT1")), S_OK);
  EXPECT_EQ(call(L"defaultsqlserver", {}, DISPATCH_PROPERTYGET), S_OK);
  ASSERT_EQ(result_.vt, VT_BSTR);
  EXPECT_STREQ(result_.bstrVal, L"PLANT1");
}

TEST_F(Members, AFailureHasNumberSourceAndText) {
  EXPECT_EQ(call(L"TriggerAdvancedQuery", {text(L"SELECT 1")}), DISP_E_EXCEPTION);
  EXPECT_EQ(failure_.scode, E_OUTOFMEMORY);
  ASSERT_NE(failure_.bstrSource, nullptr);
  EXPECT_STREQ(failure_.bstrSource, L"KorvelAuditViewerOCX");
  ASSERT_NE(failure_.bstrDescription, nullptr);
  EXPECT_GT(::SysStringLen(failure_.bstrDescription), 0U);
  for (BSTR each : {failure_.bstrSource, failure_.bstrDescription, failure_.bstrHelpFile}) ::SysFreeString(each);
}

TEST_F(Members, EventsAndChangesReachTheContainer) {
  const ContainerWindow window;
  Container container(window.handle(), control_.get());
  ASSERT_EQ(container.connect(), S_OK);
  call(L"SelectDatabase");
  call(L"LockControls");
  put(L"DatabaseType", number(1));
  put(L"ViewSideTools", number(0));
  put(L"ViewToolBar", number(0));
  put(L"DefaultSQLServer", text(L"PLANT1"));
  EXPECT_THAT(container.told(), ElementsAre(L"event 1 PLANT1 - [Korvel_Audit]", L"event 2", L"OnChanged 1",
                                            L"OnChanged 15", L"OnChanged 16", L"OnChanged 17"));
  container.close();
  EXPECT_EQ(container.references(), 0U);
  container.forget();
  EXPECT_EQ(call(L"SelectDatabase"), S_OK) << "after it was closed";
  EXPECT_THAT(container.told(), ElementsAre());
  EXPECT_EQ(call(L"DefaultSQLServer", {}, DISPATCH_PROPERTYGET), S_OK);
  ASSERT_EQ(result_.vt, VT_BSTR);
  EXPECT_STREQ(result_.bstrVal, L"PLANT1");
}

TEST_F(Members, FrozenEventsAreNotRaised) {
  const ContainerWindow window;
  Container container(window.handle(), control_.get());
  ASSERT_EQ(container.connect(), S_OK);
  const auto control = ComPointer<IOleControl>::of(control_.get(), IID_IOleControl);
  control->FreezeEvents(TRUE);
  call(L"SelectDatabase");
  control->FreezeEvents(FALSE);
  call(L"LockControls");
  EXPECT_THAT(container.told(), ElementsAre(L"event 2"));
}

TEST_F(Members, SinksAreEnumerated) {
  const ContainerWindow window;
  Container container(window.handle(), control_.get());
  ASSERT_EQ(container.connect(), S_OK);
  const auto points = ComPointer<IConnectionPointContainer>::of(control_.get(), IID_IConnectionPointContainer);
  ComPointer<IEnumConnectionPoints> all;
  ASSERT_EQ(points->EnumConnectionPoints(all.receive()), S_OK);
  std::array<IConnectionPoint*, 3> found{};
  ULONG count = 0;
  EXPECT_EQ(all->Next(3, found.data(), &count), S_FALSE);
  ASSERT_EQ(count, 2U);
  for (ULONG index = 0; index < count; ++index) {
    ComPointer<IEnumConnections> sinks;
    EXPECT_EQ(found.at(index)->EnumConnections(sinks.receive()), S_OK);
    CONNECTDATA sink{};
    EXPECT_EQ(sinks->Next(1, &sink, nullptr), S_OK);
    sink.pUnk->Release();
    EXPECT_EQ(sinks->Skip(1), S_FALSE);
    EXPECT_EQ(found.at(index)->Unadvise(4711), CONNECT_E_NOCONNECTION);
    found.at(index)->Release();
  }
}

TEST_F(Members, TheEnumerationHasItsNames) {
  const auto browsing = ComPointer<IPerPropertyBrowsing>::of(control_.get(), IID_IPerPropertyBrowsing);
  put(L"DatabaseType", number(1));
  BSTR shown = nullptr;
  ASSERT_EQ(browsing->GetDisplayString(1, &shown), S_OK);
  EXPECT_STREQ(shown, L"Korvel_AuditMU");
  ::SysFreeString(shown);
  CALPOLESTR texts{};
  CADWORD values{};
  ASSERT_EQ(browsing->GetPredefinedStrings(1, &texts, &values), S_OK);
  ASSERT_EQ(texts.cElems, 2U);
  EXPECT_STREQ(texts.pElems[0], L"Korvel_Audit");
  VARIANT value{};
  EXPECT_EQ(browsing->GetPredefinedValue(1, values.pElems[1], &value), S_OK);
  EXPECT_EQ(value.lVal, 1);
  for (ULONG index = 0; index < texts.cElems; ++index) ::CoTaskMemFree(texts.pElems[index]);
  ::CoTaskMemFree(texts.pElems);
  ::CoTaskMemFree(values.pElems);
  EXPECT_EQ(browsing->GetPredefinedStrings(17, &texts, &values), E_NOTIMPL);
}

TEST_F(Members, AnOuterObjectAnswersForTheControl) {
  ComPointer<IClassFactory> factory;
  ASSERT_EQ(file_.factory(factory), S_OK);
  const ContainerWindow window;
  // Any object can be the outer one; it is not asked for interfaces here but its own.
  Container outer(window.handle(), control_.get());
  outer.AddRef();
  auto* const outerObject = static_cast<IOleClientSite*>(&outer);
  ComPointer<IDispatch> refused;
  EXPECT_EQ(factory->CreateInstance(outerObject, IID_IDispatch, reinterpret_cast<void**>(refused.receive())),
            CLASS_E_NOAGGREGATION);
  ComPointer<IUnknown> inner;
  ASSERT_EQ(factory->CreateInstance(outerObject, IID_IUnknown, reinterpret_cast<void**>(inner.receive())), S_OK);
  const ULONG before = outer.references();
  const auto view = ComPointer<IViewObject2>::of(inner.get(), IID_IViewObject2);
  EXPECT_EQ(outer.references(), before + 1);
  const auto site = ComPointer<IOleClientSite>::of(view.get(), IID_IOleClientSite);
  EXPECT_EQ(site.get(), outerObject);
}

TEST(MissingLibrary, IsSaidInWords) {
  const LoadedControl file(KORVEL_BARE_FOLDER);
  ComPointer<IClassFactory> factory;
  EXPECT_EQ(file.factory(factory), HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND));
  EXPECT_FALSE(factory);
  const std::string said = utf8FromWide(test::lastFailure());
  EXPECT_THAT(said, StartsWith("KorvelAuditViewerOCX: The Korvel Audit Viewer control cannot load "));
  EXPECT_THAT(said, HasSubstr("KorvelAuditViewerHosting.dll"));
  EXPECT_EQ(file.canUnload(), S_OK);
}

}  // namespace
}  // namespace korvel::ocx
