// The stored properties in a bag, a stream and a storage, also damaged ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h
#include <oleauto.h>

#include <map>
#include <string>
#include <vector>

#include "base/wide_text_windows.h"
#include "ocx/failure.h"
#include "ocx/stored_stream.h"
#include "tests/ocx/loaded_control.h"
#include "tests/ocx/variants.h"

namespace korvel::ocx {
namespace {

using test::LoadedControl;
using test::number;
using test::text;
using testing::ElementsAre;
using testing::HasSubstr;

/// A container's bag, with texts and numbers.
class Bag final : public IPropertyBag {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
    asked.push_back(name);
    if (FAILED(failure)) return failure;
    const auto found = values.find(name);
    return found != values.end() ? ::VariantCopy(value, &found->second) : E_INVALIDARG;
  }
  HRESULT STDMETHODCALLTYPE Write(LPCOLESTR name, VARIANT* value) override {
    if (FAILED(failure)) return failure;
    written.push_back(name);
    VARIANT copy{};
    ::VariantCopy(&copy, value);
    put(name, copy);
    return S_OK;
  }
  void put(const std::wstring& name, VARIANT value) {
    ::VariantClear(&values[name]);
    values[name] = value;
  }
  ~Bag() {
    for (auto& each : values) ::VariantClear(&each.second);
  }

  HRESULT failure = S_OK;
  std::map<std::wstring, VARIANT> values;
  std::vector<std::wstring> asked;
  std::vector<std::wstring> written;
};

class Stored : public testing::Test {
 protected:
  Stored() { initialize(); }

  template <typename Interface>
  ComPointer<Interface> as(REFIID identifier) const {
    return ComPointer<Interface>::of(control_.get(), identifier);
  }
  /// Another control, as new as one can be.
  void initialize() {
    control_ = file_.make();
    EXPECT_EQ(as<IPersistStreamInit>(IID_IPersistStreamInit)->InitNew(), S_OK);
  }
  void change() {
    set(L"DefaultSQLServer", text(L"PLANT1"));
    set(L"DatabaseType", number(1));
    VARIANT no{};
    no.vt = VT_BOOL;
    set(L"ViewToolBar", no);
  }
  void set(const wchar_t* name, VARIANT value) {
    DISPID number = DISPID_UNKNOWN;
    std::wstring wanted(name);
    LPOLESTR pointer = wanted.data();
    const auto members = as<IDispatch>(IID_IDispatch);
    members->GetIDsOfNames(IID_NULL, &pointer, 1, 0, &number);
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&value, &put, 1, 1};
    EXPECT_EQ(members->Invoke(number, IID_NULL, 0, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr, nullptr), S_OK);
    ::VariantClear(&value);
  }
  std::wstring get(DISPID number) {
    VARIANT value{};
    DISPPARAMS none{};
    EXPECT_EQ(as<IDispatch>(IID_IDispatch)
                  ->Invoke(number, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
              S_OK);
    ::VariantChangeTypeEx(&value, &value, LOCALE_INVARIANT, 0, VT_BSTR);
    std::wstring text(value.bstrVal, ::SysStringLen(value.bstrVal));
    ::VariantClear(&value);
    return text;
  }
  /// Side tools, tool bar, server and type.
  std::vector<std::wstring> all() { return {get(15), get(16), get(17), get(1)}; }

  LoadedControl file_{KORVEL_PLAIN_FOLDER};
  ComPointer<IUnknown> control_;
};

/// A stream in memory with these bytes, at its beginning.
ComPointer<IStream> streamOf(const std::string& bytes) {
  ComPointer<IStream> stream;
  ::CreateStreamOnHGlobal(nullptr, TRUE, stream.receive());
  stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
  stream->Seek({}, STREAM_SEEK_SET, nullptr);
  return stream;
}
std::string bytesOf(IStream& stream) {
  stream.Seek({}, STREAM_SEEK_SET, nullptr);
  std::string bytes(4096, '\0');
  ULONG got = 0;
  stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &got);
  bytes.resize(got);
  return bytes;
}

TEST_F(Stored, TheBagHoldsWhatIsNotTheDefault) {
  const auto persistent = as<IPersistPropertyBag>(IID_IPersistPropertyBag);
  Bag fresh;
  ASSERT_EQ(persistent->Save(&fresh, TRUE, TRUE), S_OK);
  EXPECT_THAT(fresh.written, ElementsAre(L"ViewSideTools", L"ViewToolBar"));
  change();
  Bag bag;
  ASSERT_EQ(persistent->Save(&bag, TRUE, TRUE), S_OK);
  EXPECT_THAT(bag.written, ElementsAre(L"ViewSideTools", L"ViewToolBar", L"DefaultSQLServer", L"DatabaseType"));
  const std::vector<std::wstring> changed = all();
  initialize();
  ASSERT_EQ(as<IPersistPropertyBag>(IID_IPersistPropertyBag)->Load(&bag, nullptr), S_OK);
  EXPECT_THAT(bag.asked, ElementsAre(L"ViewSideTools", L"ViewToolBar", L"DefaultSQLServer", L"DatabaseType"));
  EXPECT_EQ(all(), changed);
  EXPECT_EQ(get(17), L"PLANT1");
}

TEST_F(Stored, NamesThatAreUnknownAreNotAskedFor) {
  Bag bag;
  bag.put(L"Unknown", number(5));
  bag.put(L"DatabaseType", number(1));
  ASSERT_EQ(as<IPersistPropertyBag>(IID_IPersistPropertyBag)->Load(&bag, nullptr), S_OK);
  EXPECT_EQ(get(1), L"1");
}

TEST_F(Stored, AFailingBagIsPassedOn) {
  const auto persistent = as<IPersistPropertyBag>(IID_IPersistPropertyBag);
  Bag bag;
  bag.failure = STG_E_ACCESSDENIED;
  EXPECT_EQ(persistent->Load(&bag, nullptr), STG_E_ACCESSDENIED);
  EXPECT_EQ(persistent->Save(&bag, TRUE, TRUE), STG_E_ACCESSDENIED);
}

TEST_F(Stored, AValueOfAWrongTypeIsSaid) {
  Bag bag;
  bag.put(L"DatabaseType", text(L"no number"));
  EXPECT_EQ(as<IPersistPropertyBag>(IID_IPersistPropertyBag)->Load(&bag, nullptr), E_FAIL);
  EXPECT_EQ(test::lastFailure(), L"KorvelAuditViewerOCX: 13:Type mismatch");
}

TEST_F(Stored, ChangesAreNoticed) {
  const auto persistent = as<IPersistStreamInit>(IID_IPersistStreamInit);
  EXPECT_EQ(persistent->IsDirty(), S_OK) << "new, and never stored";
  const auto stream = streamOf({});
  ASSERT_EQ(persistent->Save(stream.get(), TRUE), S_OK);
  EXPECT_EQ(persistent->IsDirty(), S_FALSE);
  change();
  EXPECT_EQ(persistent->IsDirty(), S_OK);
}

TEST_F(Stored, AStreamBringsThemBack) {
  change();
  const std::vector<std::wstring> changed = all();
  const auto persistent = as<IPersistStreamInit>(IID_IPersistStreamInit);
  const auto stream = streamOf({});
  ASSERT_EQ(persistent->Save(stream.get(), TRUE), S_OK);
  ULARGE_INTEGER most{};
  ASSERT_EQ(persistent->GetSizeMax(&most), S_OK);
  const std::string bytes = bytesOf(*stream.get());
  EXPECT_EQ(bytes.size(), most.QuadPart);
  initialize();
  EXPECT_NE(all(), changed);
  const auto copy = streamOf(bytes + "what follows is not the control's");
  ASSERT_EQ(as<IPersistStreamInit>(IID_IPersistStreamInit)->Load(copy.get()), S_OK);
  EXPECT_EQ(all(), changed);
  LARGE_INTEGER none{};
  ULARGE_INTEGER place{};
  copy->Seek(none, STREAM_SEEK_CUR, &place);
  EXPECT_EQ(place.QuadPart, bytes.size());
}

TEST_F(Stored, AnIncompleteStreamChangesNothing) {
  change();
  const auto stream = streamOf({});
  ASSERT_EQ(as<IPersistStreamInit>(IID_IPersistStreamInit)->Save(stream.get(), TRUE), S_OK);
  const std::string bytes = bytesOf(*stream.get());
  initialize();
  const std::vector<std::wstring> before = all();
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    const auto shorter = streamOf(bytes.substr(0, length));
    ASSERT_EQ(as<IPersistStreamInit>(IID_IPersistStreamInit)->Load(shorter.get()), STG_E_READFAULT) << length;
    ASSERT_THAT(utf8FromWide(test::lastFailure()), HasSubstr("damaged or incomplete")) << length;
    ASSERT_EQ(all(), before) << length;
  }
}

TEST_F(Stored, AStreamOfANewerVersionIsRefused) {
  const auto stream = streamOf({});
  ASSERT_EQ(as<IPersistStreamInit>(IID_IPersistStreamInit)->Save(stream.get(), TRUE), S_OK);
  std::string bytes = bytesOf(*stream.get());
  bytes[4] = 2;
  const auto newer = streamOf(bytes);
  EXPECT_EQ(as<IPersistStreamInit>(IID_IPersistStreamInit)->Load(newer.get()), STG_E_OLDDLL);
  EXPECT_THAT(utf8FromWide(test::lastFailure()), HasSubstr("newer version"));
}

TEST(StoredStream, NoByteMakesItReadOutsideOfItself) {
  const std::vector<StreamedProperty> properties{{L"A", true}, {L"B", LONG{-7}}, {L"C", std::wstring(L"text")}};
  const auto stream = streamOf({});
  writeProperties(*stream.get(), properties);
  const std::string bytes = bytesOf(*stream.get());
  int read = 0;
  for (std::size_t place = 0; place < bytes.size(); ++place)
    for (const char value : {'\x00', '\x01', '\x7F', '\xFF'}) {
      std::string damaged = bytes;
      damaged[place] = value;
      try {
        read += readProperties(*streamOf(damaged).get()).size() <= properties.size() ? 1 : 0;
      } catch (const Failure& failure) {
        ASSERT_TRUE(FAILED(failure.number()));
      }
    }
  EXPECT_GT(read, 0) << "some bytes may be anything";
}

TEST_F(Stored, AStorageBringsThemBack) {
  change();
  const std::vector<std::wstring> changed = all();
  ComPointer<ILockBytes> memory;
  ASSERT_EQ(::CreateILockBytesOnHGlobal(nullptr, TRUE, memory.receive()), S_OK);
  ComPointer<IStorage> storage;
  ASSERT_EQ(::StgCreateDocfileOnILockBytes(memory.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                           storage.receive()),
            S_OK);
  const auto persistent = as<IPersistStorage>(IID_IPersistStorage);
  ASSERT_EQ(persistent->Save(storage.get(), FALSE), S_OK);
  EXPECT_EQ(persistent->IsDirty(), S_OK);
  ASSERT_EQ(persistent->SaveCompleted(nullptr), S_OK);
  EXPECT_EQ(persistent->IsDirty(), S_FALSE);
  initialize();
  ASSERT_EQ(as<IPersistStorage>(IID_IPersistStorage)->Load(storage.get()), S_OK);
  EXPECT_EQ(all(), changed);
}

}  // namespace
}  // namespace korvel::ocx
