// The control called from another thread of its process: through the system's proxies on the thread that made it, and
// directly, which is refused where it would make a control.
#include <gmock/gmock.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "base/wide_text_windows.h"
#include "ocx/registration.h"
#include "ocx/registry_entries.h"
#include "tests/ocx/loaded_control.h"
#include "tests/ocx/variants.h"

namespace korvel::ocx {
namespace {

using testing::HasSubstr;

constexpr IID membersId{0x733363B4, 0x5C9A, 0x440E, {0xBE, 0xF2, 0x15, 0x72, 0x8B, 0xA5, 0x7F, 0x8E}};
/// The system's marshaller for interfaces of type libraries.
constexpr CLSID libraryMarshaller{0x00020424, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

std::wstring ocxFile() {
  return std::filesystem::absolute(lossyWideFromUtf8(KORVEL_OCX)).make_preferred().wstring();
}

class Apartments : public testing::Test {
 protected:
  Apartments() {
    EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    control_ = file_.make();
    (void)test::LoadedControl::notes();
  }
  ~Apartments() override {
    control_ = {};
    ::CoUninitialize();
  }

  /// Runs `work` on a thread that belongs to no apartment of one thread, while this one delivers its messages.
  static void elsewhere(const std::function<void()>& work) {
    const HANDLE done = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([&] {
      EXPECT_EQ(::CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
      work();
      ::CoUninitialize();
      ::SetEvent(done);
    });
    constexpr DWORD longest = 30000;
    DWORD seen = WAIT_OBJECT_0 + 1;
    while (seen == WAIT_OBJECT_0 + 1) {
      seen = ::MsgWaitForMultipleObjects(1, &done, FALSE, longest, QS_ALLINPUT);
      MSG message{};
      while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) ::DispatchMessageW(&message);
    }
    EXPECT_EQ(seen, WAIT_OBJECT_0);
    other.join();
    ::CloseHandle(done);
  }

  test::LoadedControl file_{KORVEL_PLAIN_FOLDER};
  ComPointer<IUnknown> control_;
};

/// A call by name, with its value or result.
HRESULT call(IDispatch& members, const wchar_t* name, WORD kind, VARIANT* value) {
  std::wstring wanted(name);
  LPOLESTR pointer = wanted.data();
  DISPID number = DISPID_UNKNOWN;
  if (const HRESULT found = members.GetIDsOfNames(IID_NULL, &pointer, 1, LOCALE_USER_DEFAULT, &number); FAILED(found))
    return found;
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{};
  if (kind == DISPATCH_PROPERTYPUT) parameters = {value, &put, 1, 1};
  return members.Invoke(number, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                        kind == DISPATCH_PROPERTYGET ? value : nullptr, nullptr, nullptr);
}

TEST_F(Apartments, CallsByNameArriveFromAnotherOne) {
  IStream* parcel = nullptr;
  ASSERT_EQ(::CoMarshalInterThreadInterfaceInStream(IID_IDispatch, control_.get(), &parcel), S_OK);
  const void* const direct = ComPointer<IDispatch>::of(control_.get(), IID_IDispatch).get();
  elsewhere([&] {
    ComPointer<IDispatch> members;
    ASSERT_EQ(::CoGetInterfaceAndReleaseStream(parcel, IID_IDispatch, reinterpret_cast<void**>(members.receive())),
              S_OK);
    EXPECT_NE(static_cast<const void*>(members.get()), direct);
    VARIANT server = test::text(L"PLANT7");
    EXPECT_EQ(call(*members.get(), L"DefaultSQLServer", DISPATCH_PROPERTYPUT, &server), S_OK);
    ::VariantClear(&server);
    EXPECT_EQ(call(*members.get(), L"DefaultSQLServer", DISPATCH_PROPERTYGET, &server), S_OK);
    ASSERT_EQ(server.vt, VT_BSTR);
    EXPECT_STREQ(server.bstrVal, L"PLANT7");
    ::VariantClear(&server);
    EXPECT_EQ(call(*members.get(), L"SelectALL", DISPATCH_METHOD, nullptr), S_OK);
    EXPECT_EQ(call(*members.get(), L"NoSuchMember", DISPATCH_METHOD, nullptr), DISP_E_UNKNOWNNAME);
  });
  EXPECT_THAT(utf8FromWide(test::LoadedControl::notes()), HasSubstr("SelectALL"));
}

/// The classes of this process while it exists: the control's, and the system's marshaller.
class OwnClasses {
 public:
  OwnClasses() {
    EXPECT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, key, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                &classes_, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(registerControl(classes_, ocxFile()), S_OK);
    const std::wstring server = L"CLSID\\{00020424-0000-0000-C000-000000000046}\\InprocServer32";
    EXPECT_EQ(writeEntries(classes_, {{server, {}, L"oleaut32.dll"}, {server, L"ThreadingModel", L"Both"}}),
              ERROR_SUCCESS);
    EXPECT_EQ(::RegOverridePredefKey(HKEY_CLASSES_ROOT, classes_), ERROR_SUCCESS);
    EXPECT_EQ(::CoRegisterPSClsid(membersId, libraryMarshaller), S_OK);
  }
  ~OwnClasses() {
    ::RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    ::RegCloseKey(classes_);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, key);
  }
  OwnClasses(const OwnClasses&) = delete;
  OwnClasses& operator=(const OwnClasses&) = delete;

 private:
  static constexpr const wchar_t* key = L"Software\\KorvelApartmentsTest";
  HKEY classes_ = nullptr;
};

TEST_F(Apartments, TheMembersInterfaceCrossesByItsTypeLibrary) {
  const OwnClasses classes;
  IStream* parcel = nullptr;
  ASSERT_EQ(::CoMarshalInterThreadInterfaceInStream(membersId, control_.get(), &parcel), S_OK);
  elsewhere([&] {
    ComPointer<IUnknown> members;
    ASSERT_EQ(::CoGetInterfaceAndReleaseStream(parcel, membersId, reinterpret_cast<void**>(members.receive())), S_OK);
    // The interface as code that was compiled with it calls it: by the place of a function, not by its number.
    ComPointer<ITypeLib> library;
    ComPointer<ITypeInfo> byNumber;
    ComPointer<ITypeInfo> byPlace;
    HREFTYPE reference = 0;
    ASSERT_EQ(::LoadTypeLibEx(ocxFile().c_str(), REGKIND_NONE, library.receive()), S_OK);
    ASSERT_EQ(library->GetTypeInfoOfGuid(membersId, byNumber.receive()), S_OK);
    ASSERT_EQ(byNumber->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    ASSERT_EQ(byNumber->GetRefTypeInfo(reference, byPlace.receive()), S_OK);
    std::wstring wanted(L"DatabaseType");
    LPOLESTR name = wanted.data();
    MEMBERID number = MEMBERID_NIL;
    ASSERT_EQ(byPlace->GetIDsOfNames(&name, 1, &number), S_OK);
    VARIANT type = test::number(1);
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS given{&type, &put, 1, 1};
    UINT wrong = 0;
    EXPECT_EQ(byPlace->Invoke(members.get(), number, DISPATCH_PROPERTYPUT, &given, nullptr, nullptr, &wrong), S_OK);
    DISPPARAMS nothing{};
    VARIANT read{};
    EXPECT_EQ(byPlace->Invoke(members.get(), number, DISPATCH_PROPERTYGET, &nothing, &read, nullptr, &wrong), S_OK);
    EXPECT_EQ(read.lVal, 1);
  });
}

TEST_F(Apartments, AControlIsMadeOnOneThreadOfAProcess) {
  ComPointer<IClassFactory> factory;
  ASSERT_EQ(file_.factory(factory), S_OK);
  HRESULT made = S_OK;
  std::string said;
  elsewhere([&] {
    ComPointer<IUnknown> second;
    made = factory->CreateInstance(nullptr, IID_IUnknown, reinterpret_cast<void**>(second.receive()));
    said = utf8FromWide(test::lastFailure());
  });
  EXPECT_EQ(made, RPC_E_WRONG_THREAD);
  EXPECT_THAT(said, HasSubstr("Another thread of this process uses the control already."));
}

}  // namespace
}  // namespace korvel::ocx
